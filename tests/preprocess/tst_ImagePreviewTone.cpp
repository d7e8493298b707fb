// Toning a picture in the preview dialog, comparing it with the picture before, and looking at
// the e-paper view one panel pixel to one screen pixel.
#include "preprocess/EpaperLook.h"
#include "preprocess/FramingSurface.h"
#include "preprocess/ImagePreviewDialog.h"
#include "preprocess/Tone.h"
#include "preprocess/ToneControls.h"
#include "ui/UiLanguage.h"

#include "ModalAnswerer.h"
#include "PreviewProbe.h"
#include "TestFiles.h"
#include "WindowProbe.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSet>
#include <QSlider>
#include <QTest>

namespace {

const QSize kPanel(1200, 1600);

QImage expectedPixmap(const ImagePreviewDialog &dialog, const QImage &picture, const ToneSettings &tone)
{
    PreprocState state = dialog.workingState();
    state.tone = tone;
    return makeFramedPreviewPixmapExact(renderPreprocDisplayPreview(picture, state, kPanel, false),
                                        shownPixmap(dialog).size())
        .toImage();
}

QSet<QRgb> coloursOf(const QImage &image)
{
    const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
    QSet<QRgb> colours;
    for (int y = 0; y < rgb.height(); ++y)
        for (int x = 0; x < rgb.width(); ++x)
            colours.insert(rgb.pixel(x, y) | 0xff000000u);
    return colours;
}

} // namespace

class TestImagePreviewTone : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void controlsStartFromTheRowsTone();
    void presetAndSlidersToneThePreview();
    void beforeShowsThePictureUntoned();
    void okAppliesTheToneCancelLeavesIt();
    void actualPixelsShowThePanelsPixels();
    void actualPixelsPanByDragging();

private:
    QImage m_picture = TestFiles::positionImage(1600, 1200);
};

void TestImagePreviewTone::initTestCase() { UiLanguage::set(UiLanguage::English); }

void TestImagePreviewTone::controlsStartFromTheRowsTone()
{
    const ToneSettings soft{TonePreset::Soft, 0.5, 0.0, 1.2};
    ImagePreviewDialog dialog(m_picture, kPanel, false, {FillMode::BlurFill, 0, 0.5, 0.5, 1.0, soft});
    ToneControls *controls = dialog.toneControls();
    QCOMPARE(controls->presetBox()->count(), 5);
    QCOMPARE(controls->presetBox()->currentText(), QStringLiteral("Soft"));
    QVERIFY(controls->tone() == soft);
    QCOMPARE(controls->exposureSlider()->value() > 0, true);
    QCOMPARE(dialog.beforeButton()->text(), QStringLiteral("Before"));
    QVERIFY(!dialog.beforeButton()->isChecked());
    QCOMPARE(dialog.actualPixelsButton()->text(), QStringLiteral("Actual pixels"));
    QVERIFY(dialog.infoLabel()->text().contains(QStringLiteral("Soft")));
    QCOMPARE(renderedPixmap(dialog), expectedPixmap(dialog, m_picture, soft));
}

void TestImagePreviewTone::presetAndSlidersToneThePreview()
{
    ImagePreviewDialog dialog(m_picture, kPanel, false, {FillMode::CenterCrop, 0});
    const QImage plain = renderedPixmap(dialog);
    dialog.toneControls()->presetBox()->setCurrentIndex(int(TonePreset::Vivid));
    QCOMPARE(dialog.workingState().tone.preset, TonePreset::Vivid);
    QCOMPARE(renderedPixmap(dialog), expectedPixmap(dialog, m_picture, dialog.workingState().tone));
    QVERIFY(shownPixmap(dialog) != plain);

    dialog.toneControls()->exposureSlider()->setValue(dialog.toneControls()->exposureSlider()->maximum());
    QCOMPARE(dialog.workingState().tone.exposure, Tone::kMaxExposure);
    dialog.toneControls()->saturationSlider()->setValue(0);
    QCOMPARE(dialog.workingState().tone.saturation, 0.0);
    const QImage toned = renderedPixmap(dialog);
    QCOMPARE(toned, expectedPixmap(dialog, m_picture, dialog.workingState().tone));
    QVERIFY(dialog.infoLabel()->text().contains(QStringLiteral("Vivid")));

    QTest::mouseClick(dialog.toneControls()->resetButton(), Qt::LeftButton);
    QVERIFY(dialog.workingState().tone == ToneSettings());
    QCOMPARE(renderedPixmap(dialog), plain);
}

void TestImagePreviewTone::beforeShowsThePictureUntoned()
{
    const ToneSettings mono{TonePreset::Monochrome};
    ImagePreviewDialog dialog(m_picture, kPanel, false, {FillMode::BlurFill, 0, 0.5, 0.5, 1.0, mono});
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog)); // the shortcut is the window's
    const QImage after = renderedPixmap(dialog);
    QTest::keyClick(&dialog, Qt::Key_Backslash);
    QVERIFY(dialog.beforeButton()->isChecked());
    QCOMPARE(renderedPixmap(dialog), expectedPixmap(dialog, m_picture, ToneSettings()));
    QVERIFY(dialog.workingState().tone == mono); // only the view changes
    dialog.beforeButton()->click();
    QCOMPARE(renderedPixmap(dialog), after);
}

void TestImagePreviewTone::okAppliesTheToneCancelLeavesIt()
{
    const PreprocState start{FillMode::WhiteFill, 90, 0.5, 0.5, 1.0};
    {
        ModalAnswerer ok(QMessageBox::Ok, [](QWidget *widget) {
            auto *dialog = qobject_cast<ImagePreviewDialog *>(widget);
            dialog->toneControls()->presetBox()->setCurrentIndex(int(TonePreset::Balanced));
            dialog->toneControls()->contrastSlider()->setValue(30);
            dialog->beforeButton()->click(); // a view, not a change
            QTest::mouseClick(withText<QPushButton>(*dialog, QStringLiteral("OK")), Qt::LeftButton);
        });
        const auto [accepted, state] =
            ImagePreviewDialog::openPreview(m_picture, kPanel, false, start, nullptr);
        QVERIFY(accepted);
        QCOMPARE(state.tone.preset, TonePreset::Balanced);
        QCOMPARE(state.tone.contrast, 0.3);
        QCOMPARE(state.fillMode, FillMode::WhiteFill);
        QCOMPARE(state.rotationDegrees, 90);
    }
    ModalAnswerer cancel(QMessageBox::Ok, [](QWidget *widget) {
        auto *dialog = qobject_cast<ImagePreviewDialog *>(widget);
        dialog->toneControls()->presetBox()->setCurrentIndex(int(TonePreset::Vivid));
        dialog->reject();
    });
    const auto [cancelled, kept] = ImagePreviewDialog::openPreview(m_picture, kPanel, false, start, nullptr);
    QVERIFY(!cancelled);
    QVERIFY(kept == start);
}

void TestImagePreviewTone::actualPixelsShowThePanelsPixels()
{
    const PreprocState state{FillMode::CenterCrop, 0, 0.5, 0.5, 1.0, {TonePreset::Vivid}};
    ImagePreviewDialog dialog(m_picture, kPanel, false, state);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QTest::keyClick(&dialog, Qt::Key_Z);
    QVERIFY(dialog.actualPixelsButton()->isChecked());
    const QImage plain = renderedPixmap(dialog);
    QCOMPARE(plain.size(), kPanel); // one panel pixel on one screen pixel
    QCOMPARE(plain,
             renderPreprocDisplayPreview(m_picture, state, kPanel, false).convertToFormat(plain.format()));

    QTest::keyClick(&dialog, Qt::Key_E);
    const QImage epaper = renderedPixmap(dialog);
    QCOMPARE(epaper.size(), kPanel);
    QSet<QRgb> inks;
    for (QRgb ink : EpaperLook::inks())
        inks.insert(ink | 0xff000000u);
    const QSet<QRgb> shown = coloursOf(epaper);
    QVERIFY2(inks.contains(shown), qPrintable(QString::number(shown.size())));
    QVERIFY(shown.size() >= 4); // a photo in several inks, not a flat fill

    // Back to the view that fits: the framed picture at the dialog's size.
    dialog.actualPixelsButton()->click();
    QVERIFY(renderedPixmap(dialog).width() < kPanel.width());
}

void TestImagePreviewTone::actualPixelsPanByDragging()
{
    ImagePreviewDialog dialog(m_picture, kPanel, false, {FillMode::CenterCrop, 0});
    dialog.resize(900, 800);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    dialog.actualPixelsButton()->click();
    QVERIFY(!renderedPixmap(dialog).isNull());
    QScrollBar *horizontal = dialog.scrollArea()->horizontalScrollBar();
    QScrollBar *vertical = dialog.scrollArea()->verticalScrollBar();
    QTRY_VERIFY(horizontal->maximum() > 0 && vertical->maximum() > 0);
    QTRY_COMPARE(horizontal->value(), horizontal->maximum() / 2); // the middle in view first
    const QPoint start(horizontal->value(), vertical->value());

    // The picture follows the mouse: dragging left and up shows more of the right and bottom.
    QWidget *surface = dialog.framingSurface();
    const QPoint from = dialog.scrollArea()->viewport()->rect().center();
    const QPoint at = surface->mapFrom(dialog.scrollArea()->viewport(), from);
    QTest::mousePress(surface, Qt::LeftButton, {}, at);
    for (int step = 1; step <= 4; ++step)
        QTest::mouseMove(surface,
                         surface->mapFrom(dialog.scrollArea()->viewport(), from - step * QPoint(20, 10)));
    QTest::mouseRelease(surface, Qt::LeftButton, {},
                        surface->mapFrom(dialog.scrollArea()->viewport(), from - QPoint(80, 40)));
    QCOMPARE(QPoint(horizontal->value(), vertical->value()), start + QPoint(80, 40));
    QVERIFY(dialog.workingState() == PreprocState({FillMode::CenterCrop, 0})); // panning frames nothing

    QTest::keyClick(surface, Qt::Key_Left); // the keys move the view too
    const QPoint at2(horizontal->value(), vertical->value());
    QCOMPARE(at2.x(), start.x() + 80 - FramingSurface::nudgeFor(Qt::Key_Right).x());

    // The e-paper look and the plain picture compare at the same place.
    const QImage plain = renderedPixmap(dialog);
    dialog.epaperCheckBox()->click();
    const QImage epaper = renderedPixmap(dialog);
    QVERIFY(epaper != plain);
    QCOMPARE(epaper.size(), plain.size());
    QCOMPARE(QPoint(horizontal->value(), vertical->value()), at2);
}

QTEST_MAIN(TestImagePreviewTone)
#include "tst_ImagePreviewTone.moc"
