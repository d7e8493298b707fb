#include "preprocess/ImagePreviewDialog.h"
#include "preprocess/PreprocControlPanel.h"
#include "ui/AppTheme.h"
#include "ui/UiLanguage.h"

#include "DialogSpy.h"
#include "ModalAnswerer.h"
#include "TestFiles.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>

namespace {
const QSize kPanel(1200, 1600);

QPushButton *buttonNamed(QWidget *dialog, const QString &text)
{
    for (QPushButton *button : dialog->findChildren<QPushButton *>()) {
        if (button->text() == text)
            return button;
    }
    return nullptr;
}
} // namespace

class TestImagePreviewDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void nullImageNeverOpens();
    void layout();
    void fourRotationsAndOkGiveZero();
    void cancelAndCloseKeepTheState();
    void fillModeChoice();
    void directStateStaysDirectWhenRotating();
    void smallDialogKeepsABoxOf480();
    void largerDialogGrowsThePreview();
    void infoLine();
    void unrenderablePreviewSaysSo();

private:
    // Large enough for the frame: no low-resolution line in the info label.
    QImage m_photo = TestFiles::solidImage(2400, 1800, QColor(30, 140, 200));
};

void TestImagePreviewDialog::initTestCase() { UiLanguage::set(UiLanguage::English); }

void TestImagePreviewDialog::nullImageNeverOpens()
{
    DialogSpy spy;
    const auto [accepted, state] =
        ImagePreviewDialog::openPreview(QImage(), kPanel, false, {FillMode::WhiteFill, 90}, nullptr);
    QVERIFY(!accepted);
    QCOMPARE(state.fillMode, FillMode::WhiteFill);
    QCOMPARE(state.rotationDegrees, 90);
    QVERIFY(spy.shownTitles().isEmpty());
}

void TestImagePreviewDialog::layout()
{
    ImagePreviewDialog dialog(m_photo, kPanel, false, {FillMode::BlackFill, 90});
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Image Preview & Edit"));
    QCOMPARE(dialog.size(), QSize(900, 720));
    QVERIFY(!dialog.windowIcon().isNull());
    QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("tarnHeaderTitle"))->text(),
             QStringLiteral("Image Preview & Edit"));
    bool hintFound = false;
    for (QLabel *label : dialog.findChildren<QLabel *>())
        hintFound |=
            label->text() ==
            QStringLiteral("Set rotation first, then fill/crop. Applied to the current row on confirm.");
    QVERIFY(hintFound);
    PreprocControlPanel *panel = dialog.controlPanel();
    QVERIFY(!panel->fillButton(FillMode::Direct));
    QVERIFY(panel->rotationLabel());
    QVERIFY(panel->fillButton(FillMode::BlackFill)->isChecked());
    QCOMPARE(panel->rotationLabel()->text(), QStringLiteral("Current 90°"));
    QCOMPARE(dialog.previewLabel()->minimumSize(), QSize(640, 480));
    QCOMPARE(dialog.previewLabel()->styleSheet(),
             QStringLiteral("background: #707070; border: 1px solid #999; border-radius: 4px;"));
    QVERIFY(dialog.findChild<QScrollArea *>()->widgetResizable());
    QPushButton *ok = buttonNamed(&dialog, QStringLiteral("OK"));
    QVERIFY(ok && ok->isDefault());
    QCOMPARE(ok->styleSheet(), AppTheme::primaryButtonStyleSheet());
    QVERIFY(buttonNamed(&dialog, QStringLiteral("Cancel")));
}

void TestImagePreviewDialog::fourRotationsAndOkGiveZero()
{
    ModalAnswerer answerer(QMessageBox::Ok, [](QWidget *widget) {
        auto *dialog = qobject_cast<ImagePreviewDialog *>(widget);
        for (int i = 0; i < 4; ++i)
            QTest::mouseClick(dialog->controlPanel()->rotateRightButton(), Qt::LeftButton);
        QTest::mouseClick(buttonNamed(dialog, QStringLiteral("OK")), Qt::LeftButton);
    });
    const auto [accepted, state] =
        ImagePreviewDialog::openPreview(m_photo, kPanel, false, {FillMode::BlurFill, 90}, nullptr);
    QVERIFY(accepted);
    QCOMPARE(state.rotationDegrees, 90); // four quarter turns from 90 come back to 90
    ModalAnswerer fromZero(QMessageBox::Ok, [](QWidget *widget) {
        auto *dialog = qobject_cast<ImagePreviewDialog *>(widget);
        for (int i = 0; i < 4; ++i)
            dialog->controlPanel()->rotateRightButton()->click();
        dialog->accept();
    });
    const auto [accepted2, state2] =
        ImagePreviewDialog::openPreview(m_photo, kPanel, false, {FillMode::BlurFill, 0}, nullptr);
    QVERIFY(accepted2);
    QCOMPARE(state2.rotationDegrees, 0);
}

void TestImagePreviewDialog::cancelAndCloseKeepTheState()
{
    ModalAnswerer cancel(QMessageBox::Ok, [](QWidget *widget) {
        auto *dialog = qobject_cast<ImagePreviewDialog *>(widget);
        dialog->controlPanel()->rotateLeftButton()->click();
        dialog->controlPanel()->fillButton(FillMode::CenterCrop)->click();
        QTest::mouseClick(buttonNamed(dialog, QStringLiteral("Cancel")), Qt::LeftButton);
    });
    auto [accepted, state] =
        ImagePreviewDialog::openPreview(m_photo, kPanel, false, {FillMode::WhiteFill, 180}, nullptr);
    QVERIFY(!accepted);
    QCOMPARE(state.fillMode, FillMode::WhiteFill);
    QCOMPARE(state.rotationDegrees, 180);

    ModalAnswerer close(QMessageBox::Ok, [](QWidget *widget) {
        qobject_cast<ImagePreviewDialog *>(widget)->controlPanel()->rotateLeftButton()->click();
        widget->close();
    });
    std::tie(accepted, state) =
        ImagePreviewDialog::openPreview(m_photo, kPanel, false, {FillMode::WhiteFill, 180}, nullptr);
    QVERIFY(!accepted);
    QCOMPARE(state.rotationDegrees, 180);
}

void TestImagePreviewDialog::fillModeChoice()
{
    ImagePreviewDialog dialog(m_photo, kPanel, false, {FillMode::BlurFill, 0});
    dialog.controlPanel()->fillButton(FillMode::WhiteFill)->click();
    QCOMPARE(dialog.workingState().fillMode, FillMode::WhiteFill);
    QVERIFY(dialog.infoLabel()->text().startsWith(QStringLiteral("Current: White fill — preview 1200×1600")));
}

void TestImagePreviewDialog::directStateStaysDirectWhenRotating()
{
    ImagePreviewDialog dialog(m_photo, kPanel, false, {FillMode::Direct, 0});
    QVERIFY(dialog.controlPanel()->fillButton(FillMode::BlurFill)->isChecked()); // shown as blur fill
    dialog.controlPanel()->rotateRightButton()->click();
    QCOMPARE(dialog.workingState().fillMode, FillMode::Direct);
    QCOMPARE(dialog.workingState().rotationDegrees, 90);
    QVERIFY(dialog.infoLabel()->text().startsWith(QStringLiteral("Current: TARN direct — ")));
}

void TestImagePreviewDialog::smallDialogKeepsABoxOf480()
{
    ImagePreviewDialog dialog(m_photo, kPanel, false, {FillMode::BlurFill, 0});
    dialog.resize(540, 600); // narrower than 544 and lower than 680
    dialog.refreshPreview();
    QCOMPARE(dialog.previewLabel()->pixmap().size(), QSize(360, 480));
    ImagePreviewDialog wide(m_photo, kPanel, true, {FillMode::BlurFill, 0});
    wide.resize(500, 500);
    wide.refreshPreview();
    QCOMPARE(wide.previewLabel()->pixmap().size(), QSize(480, 360));
}

void TestImagePreviewDialog::largerDialogGrowsThePreview()
{
    ImagePreviewDialog dialog(m_photo, kPanel, false, {FillMode::BlurFill, 0});
    dialog.resize(900, 720); // box = min(900 - 64, 720 - 200) = 520
    dialog.refreshPreview();
    QCOMPARE(dialog.previewLabel()->pixmap().size(), QSize(390, 520));
    dialog.show();
    dialog.resize(1400, 1200); // box 1000: resizing redraws by itself
    QTRY_COMPARE(dialog.previewLabel()->pixmap().size(), QSize(750, 1000));
}

void TestImagePreviewDialog::infoLine()
{
    ImagePreviewDialog portrait(m_photo, kPanel, false, {FillMode::BlurFill, 90});
    QCOMPARE(portrait.infoLabel()->text(),
             QStringLiteral("Current: Blur fill + Rotate 90° — preview 1200×1600 (rotate, then fill/crop)"));
    ImagePreviewDialog landscape(m_photo, kPanel, true, {FillMode::BlurFill, 90});
    QCOMPARE(landscape.infoLabel()->text(),
             QStringLiteral(
                 "Current: Blur fill + Rotate 90° — preview 1600×1200 (landscape frame; rotates 90° CW on "
                 "export) (rotate, then fill/crop)"));
}

void TestImagePreviewDialog::unrenderablePreviewSaysSo()
{
    ImagePreviewDialog dialog(QImage(), kPanel, false, {FillMode::BlurFill, 0});
    QCOMPARE(dialog.previewLabel()->text(), QStringLiteral("Cannot load preview"));
    QVERIFY(dialog.previewLabel()->pixmap().isNull());
}

QTEST_MAIN(TestImagePreviewDialog)
#include "tst_ImagePreviewDialog.moc"
