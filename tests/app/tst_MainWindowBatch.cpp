// Batch changes of the checked rows and the frame settings of every row, in the real window.
// frame settings.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocControlPanel.h"
#include "preprocess/PreprocWidget.h"
#include "ui/UiLanguage.h"

#include "DialogSpy.h"
#include "LanguageGuard.h"
#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowFixture.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>

namespace {

PreprocControlPanel *batchPanel(MainWindow &window)
{
    for (PreprocControlPanel *panel : window.findChildren<PreprocControlPanel *>()) {
        if (!window.imageTable()->isAncestorOf(panel))
            return panel;
    }
    return nullptr;
}

} // namespace

class TestMainWindowBatch : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void batchWithoutCheckedRowsExplains();
    void batchOverTenRowsNeedsNoDialog();
    void batchOverElevenRowsShowsProgress();
    void batchRotate();
    void batchOfTheModeAlreadyChosenAppliesNothing();
    void batchSkipsRowsWithoutRowWidget();
    void frameSettingsReachEveryRow();
};

void TestMainWindowBatch::batchWithoutCheckedRowsExplains()
{
    addPictures(2);
    const int linesBefore = int(logLines(*m_window).size());
    {
        ModalAnswerer answerer(QMessageBox::Ok);
        QTest::mouseClick(batchPanel(*m_window)->fillButton(FillMode::WhiteFill), Qt::LeftButton);
        QCOMPARE(answerer.title(), QStringLiteral("Batch Processing"));
        QCOMPARE(answerer.text(), QStringLiteral("Select images to apply batch actions."));
        QCOMPARE(answerer.icon(), QMessageBox::Information);
    }
    QCOMPARE(int(logLines(*m_window).size()), linesBefore);
    QCOMPARE(m_window->preprocWidgetAt(0)->state().fillMode, FillMode::BlurFill);
    ModalAnswerer rotate(QMessageBox::Ok);
    m_window->onBatchRotateLeft();
    QCOMPARE(rotate.title(), QStringLiteral("Batch Rotate"));
}

void TestMainWindowBatch::batchOverTenRowsNeedsNoDialog()
{
    addPictures(12);
    for (int row = 0; row < 10; ++row)
        check({row});
    DialogSpy spy;
    QTest::mouseClick(batchPanel(*m_window)->fillButton(FillMode::WhiteFill), Qt::LeftButton);
    QCOMPARE(spy.progressDialogsShown(), 0);
    for (int row = 0; row < 10; ++row)
        QCOMPARE(m_window->preprocWidgetAt(row)->state().fillMode, FillMode::WhiteFill);
    QCOMPARE(m_window->preprocWidgetAt(10)->state().fillMode, FillMode::BlurFill);
    QCOMPARE(logLines(*m_window).last(),
             QStringLiteral("  Batch fill/crop \"White fill\" applied to 10 image(s)"));
}

void TestMainWindowBatch::batchOverElevenRowsShowsProgress()
{
    addPictures(11);
    selectAllBox()->setChecked(true);
    DialogSpy spy;
    QTest::mouseClick(batchPanel(*m_window)->fillButton(FillMode::CenterCrop), Qt::LeftButton);
    QCOMPARE(spy.progressDialogsShown(), 1);
    QCOMPARE(spy.shownTitles(), QStringList{"Batch Processing"});
    for (int row = 0; row < 11; ++row)
        QCOMPARE(m_window->preprocWidgetAt(row)->state().fillMode, FillMode::CenterCrop);
    QCOMPARE(logLines(*m_window).last(),
             QStringLiteral("  Batch fill/crop \"Center crop\" applied to 11 image(s)"));
}

void TestMainWindowBatch::batchRotate()
{
    addPictures(3);
    check({0, 2});
    QTest::mouseClick(batchPanel(*m_window)->rotateLeftButton(), Qt::LeftButton);
    QCOMPARE(m_window->preprocWidgetAt(0)->state().rotationDegrees, 270);
    QCOMPARE(m_window->preprocWidgetAt(1)->state().rotationDegrees, 0);
    QCOMPARE(logLines(*m_window).last(), QStringLiteral("  Batch rotate 90° left: 2 image(s)"));
    QTest::mouseClick(batchPanel(*m_window)->rotateRightButton(), Qt::LeftButton);
    QTest::mouseClick(batchPanel(*m_window)->rotateRightButton(), Qt::LeftButton);
    QCOMPARE(m_window->preprocWidgetAt(2)->state().rotationDegrees, 90);
    QCOMPARE(logLines(*m_window).last(), QStringLiteral("  Batch rotate 90° right: 2 image(s)"));
    QCOMPARE(m_window->preprocWidgetAt(0)->state().fillMode,
             FillMode::BlurFill); // rotation keeps a prepared mode
}

void TestMainWindowBatch::batchOfTheModeAlreadyChosenAppliesNothing()
{
    addPictures(2);
    check({0, 1});
    m_window->preprocWidgetAt(0)->setFillMode(FillMode::BlackFill, false);
    const int linesBefore = int(logLines(*m_window).size());
    QTest::mouseClick(batchPanel(*m_window)->fillButton(FillMode::BlurFill),
                      Qt::LeftButton); // already "Blur"
    QCOMPARE(m_window->preprocWidgetAt(0)->state().fillMode, FillMode::BlackFill);
    QCOMPARE(int(logLines(*m_window).size()), linesBefore);
}

void TestMainWindowBatch::batchSkipsRowsWithoutRowWidget()
{
    addPictures(2);
    check({0, 1});
    m_window->imageTable()->removeCellWidget(0, MainWindow::FileColumn);
    m_window->imageTable()->removeCellWidget(1, MainWindow::FileColumn);
    const int linesBefore = int(logLines(*m_window).size());
    QCOMPARE(m_window->applyFillToCheckedRows(FillMode::WhiteFill), 0);
    QCOMPARE(int(logLines(*m_window).size()), linesBefore);
}

void TestMainWindowBatch::frameSettingsReachEveryRow()
{
    addPictures(12);
    auto *orientation = comboStartingWith(*m_window, QStringLiteral("Portrait (0)"));
    QCOMPARE(orientation->itemData(1).toString(), QStringLiteral("90"));
    DialogSpy spy;
    orientation->setCurrentIndex(1);
    QCOMPARE(spy.shownTitles(), QStringList{"Frame Settings"});
    for (int row = 0; row < 12; ++row) {
        QVERIFY(m_window->preprocWidgetAt(row)->isLandscape());
        QCOMPARE(m_window->preprocWidgetAt(row)->previewLabel()->size(), QSize(88, 66));
    }
    auto *panel = comboStartingWith(*m_window, QStringLiteral("133"));
    panel->setCurrentText(QStringLiteral("253"));
    QCOMPARE(m_window->preprocWidgetAt(11)->panelResolution(), QSize(1800, 3200));
    QCOMPARE(m_window->panelResolution(), QSize(1800, 3200));
    bool labelFound = false;
    for (QLabel *label : m_window->findChildren<QLabel *>())
        labelFound |= label->text() == QStringLiteral("1800 × 3200");
    QVERIFY(labelFound);
    // A picture added now gets the current frame settings.
    addPictures(1);
    QVERIFY(m_window->preprocWidgetAt(12)->isLandscape());
    QCOMPARE(m_window->preprocWidgetAt(12)->panelResolution(), QSize(1800, 3200));
}

QTEST_MAIN(TestMainWindowBatch)
#include "tst_MainWindowBatch.moc"
