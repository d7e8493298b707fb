// The table of the real window: row order, selection, removal, statuses, batch changes and
// frame settings.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocControlPanel.h"
#include "preprocess/PreprocWidget.h"
#include "ui/RowStatusCell.h"
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

QStringList widgetNames(MainWindow &window)
{
    QStringList names;
    for (int row = 0; row < window.imageTable()->rowCount(); ++row)
        names << QFileInfo(window.preprocWidgetAt(row)->sourcePath()).fileName();
    return names;
}

QColor thumbColour(MainWindow &window, int row)
{
    auto *label = qobject_cast<QLabel *>(window.imageTable()->cellWidget(row, MainWindow::ThumbColumn));
    return label->pixmap().toImage().pixelColor(2, 2);
}

QPushButton *reorderButton(MainWindow &window, int row, int which)
{
    return window.imageTable()
        ->cellWidget(row, MainWindow::OrderColumn)
        ->findChildren<QPushButton *>()
        .at(which);
}

} // namespace

class TestMainWindowTable : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void endsDoNotMove();
    void reorderButtonsFindTheirRowAnew();
    void moveRowCarriesThumbnailsAndRowWidgets();
    void selectAllChecksEveryRow();
    void removeTakesCheckedRowsOverSelectedOnes();
    void removeTakesSelectedRowsWhenNoneIsChecked();
    void removeWithNothingUnchecksSelectAll();
    void removeDeletesTheRowsTemporaryFiles();
    void clearDeletesEverythingButKeepsSelectAll();
    void exitCodeSurvivesALanguageChange();
};

void TestMainWindowTable::endsDoNotMove()
{
    addPictures(3);
    const QStringList before = rowNames();
    QTest::mouseClick(reorderButton(*m_window, 0, 0), Qt::LeftButton); // first row up
    QTest::mouseClick(reorderButton(*m_window, 2, 1), Qt::LeftButton); // last row down
    m_window->moveTableRowUp(0);
    m_window->moveTableRowDown(2);
    m_window->moveTableRowUp(7);
    m_window->moveTableRowDown(-1);
    QCOMPARE(rowNames(), before);
}

void TestMainWindowTable::reorderButtonsFindTheirRowAnew()
{
    addPictures(3);
    QPushButton *firstDown = reorderButton(*m_window, 0, 1);
    QTest::mouseClick(firstDown, Qt::LeftButton);
    QCOMPARE(rowNames(), (QStringList{"pic_0001.png", "pic_0000.png", "pic_0002.png"}));
    QCOMPARE(m_window->imageTable()->selectionModel()->selectedRows().first().row(), 1);
    // The same button still sits in row 0 and now moves what is shown there.
    QTest::mouseClick(firstDown, Qt::LeftButton);
    QCOMPARE(rowNames(), (QStringList{"pic_0000.png", "pic_0001.png", "pic_0002.png"}));
    QTest::mouseClick(reorderButton(*m_window, 2, 0), Qt::LeftButton);
    QCOMPARE(rowNames(), (QStringList{"pic_0000.png", "pic_0002.png", "pic_0001.png"}));
    QCOMPARE(m_window->imageTable()->selectionModel()->selectedRows().first().row(), 1);
    QCOMPARE(m_window->findRowForReorderButton(reorderButton(*m_window, 2, 0)), 2);
    QCOMPARE(m_window->findRowForReorderButton(m_window.get()), -1);
    QCOMPARE(m_window->findRowForReorderButton(nullptr), -1);
}

void TestMainWindowTable::moveRowCarriesThumbnailsAndRowWidgets()
{
    addPictures(5);
    QList<QColor> thumbs;
    for (int row = 0; row < 5; ++row)
        thumbs << thumbColour(*m_window, row);
    m_window->preprocWidgetAt(0)->commitState({FillMode::WhiteFill, 90}, false);
    m_window->imageTable()->moveRow(0, 99);
    const QStringList expected = {"pic_0001.png", "pic_0002.png", "pic_0003.png", "pic_0004.png",
                                  "pic_0000.png"};
    QCOMPARE(rowNames(), expected);
    QCOMPARE(widgetNames(*m_window), expected);
    for (int row = 0; row < 4; ++row)
        QCOMPARE(thumbColour(*m_window, row), thumbs.at(row + 1));
    QCOMPARE(thumbColour(*m_window, 4), thumbs.at(0));
    QCOMPARE(m_window->preprocWidgetAt(4)->state().fillMode, FillMode::WhiteFill);
    QCOMPARE(m_window->preprocWidgetAt(4)->state().rotationDegrees, 90);
    QCOMPARE(m_window->preprocWidgetAt(0)->state().fillMode, FillMode::BlurFill);
    QCOMPARE(
        m_window->imageTable()->item(4, MainWindow::FileColumn)->data(MainWindow::kSourcePathRole).toString(),
        m_window->preprocWidgetAt(4)->sourcePath());
}

void TestMainWindowTable::selectAllChecksEveryRow()
{
    addPictures(4);
    selectAllBox()->setChecked(true);
    QCOMPARE(m_window->checkedRows(), (QList<int>{0, 1, 2, 3}));
    selectAllBox()->setChecked(false);
    QVERIFY(m_window->checkedRows().isEmpty());
}

void TestMainWindowTable::removeTakesCheckedRowsOverSelectedOnes()
{
    addPictures(4);
    check({0, 2});
    m_window->imageTable()->selectRow(3);
    selectAllBox()->blockSignals(true);
    selectAllBox()->setChecked(true);
    selectAllBox()->blockSignals(false);
    QPushButton *remove = nullptr;
    for (QPushButton *button : m_window->findChildren<QPushButton *>())
        remove = button->text() == QStringLiteral("Remove Selected") ? button : remove;
    QTest::mouseClick(remove, Qt::LeftButton);
    QCOMPARE(rowNames(), (QStringList{"pic_0001.png", "pic_0003.png"}));
    QVERIFY(!selectAllBox()->isChecked());
}

void TestMainWindowTable::removeTakesSelectedRowsWhenNoneIsChecked()
{
    addPictures(4);
    m_window->imageTable()->setSelectionMode(QAbstractItemView::MultiSelection);
    m_window->imageTable()->selectRow(1);
    m_window->imageTable()->selectRow(3);
    m_window->onRemoveSelected();
    QCOMPARE(rowNames(), (QStringList{"pic_0000.png", "pic_0002.png"}));
}

void TestMainWindowTable::removeWithNothingUnchecksSelectAll()
{
    addPictures(2);
    m_window->imageTable()->clearSelection();
    selectAllBox()->blockSignals(true);
    selectAllBox()->setChecked(true);
    selectAllBox()->blockSignals(false);
    m_window->onRemoveSelected();
    QCOMPARE(m_window->imageTable()->rowCount(), 2);
    QVERIFY(!selectAllBox()->isChecked());
}

void TestMainWindowTable::removeDeletesTheRowsTemporaryFiles()
{
    addPictures(3);
    ImageTableWidget *table = m_window->imageTable();
    QStringList temps;
    QStringList caches;
    for (int row = 0; row < 3; ++row) {
        temps << m_fixture->path(QStringLiteral("tmp/tarngui_preproc/row%1_preproc.jpg").arg(row));
        caches << m_fixture->path(QStringLiteral("tmp/tarngui_heic_cache/row%1.jpg").arg(row));
        QVERIFY(TestFiles::write(temps.last(), "jpeg"));
        QVERIFY(TestFiles::write(caches.last(), "jpeg"));
        table->item(row, MainWindow::FileColumn)->setData(MainWindow::kTempPreprocRole, temps.last());
        table->item(row, MainWindow::FileColumn)->setData(MainWindow::kHeicCacheRole, caches.last());
    }
    const QStringList sources = {
        table->item(1, MainWindow::FileColumn)->data(MainWindow::kSourcePathRole).toString()};
    check({1});
    m_window->onRemoveSelected();
    QCOMPARE(table->rowCount(), 2);
    QVERIFY(!QFileInfo::exists(temps.at(1)));
    QVERIFY(!QFileInfo::exists(caches.at(1)));
    QVERIFY(QFileInfo::exists(temps.at(0)) && QFileInfo::exists(caches.at(2)));
    QVERIFY(QFileInfo::exists(sources.at(0))); // the user's picture is never touched
}

void TestMainWindowTable::clearDeletesEverythingButKeepsSelectAll()
{
    addPictures(2);
    const QString temp = m_fixture->path("tmp/tarngui_preproc/clear_preproc.jpg");
    const QString cache = m_fixture->path("tmp/tarngui_heic_cache/clear.jpg");
    QVERIFY(TestFiles::write(temp, "jpeg") && TestFiles::write(cache, "jpeg"));
    m_window->imageTable()->item(0, MainWindow::FileColumn)->setData(MainWindow::kTempPreprocRole, temp);
    m_window->imageTable()->item(1, MainWindow::FileColumn)->setData(MainWindow::kHeicCacheRole, cache);
    selectAllBox()->setChecked(true);
    m_window->onClearAll();
    QCOMPARE(m_window->imageTable()->rowCount(), 0);
    QVERIFY(!QFileInfo::exists(temp));
    QVERIFY(!QFileInfo::exists(cache));
    QVERIFY(selectAllBox()->isChecked()); // unlike a removal
}

void TestMainWindowTable::exitCodeSurvivesALanguageChange()
{
    addPictures(3);
    m_window->setRowStatus(0, Str::RowStatus::ExitCodeFailed, 3);
    m_window->setRowStatus(1, Str::RowStatus::Crashed);
    m_window->setRowStatus(7, Str::RowStatus::Done); // no such row: nothing happens
    ImageTableWidget *table = m_window->imageTable();
    QCOMPARE(table->item(0, MainWindow::StatusColumn)->text(), QStringLiteral("Failed (3)"));
    {
        LanguageGuard zh(UiLanguage::Chinese);
        m_window->refreshAllRowStatusText();
        QCOMPARE(table->item(0, MainWindow::StatusColumn)->text(), QStringLiteral("失败(3)"));
        QCOMPARE(table->item(1, MainWindow::StatusColumn)->text(), QStringLiteral("崩溃"));
        QCOMPARE(table->item(2, MainWindow::StatusColumn)->text(), QStringLiteral("待处理"));
    }
    m_window->refreshAllRowStatusText();
    QCOMPARE(table->item(0, MainWindow::StatusColumn)->text(), QStringLiteral("Failed (3)"));
    QCOMPARE(table->item(0, MainWindow::StatusColumn)->data(Str::rowStatusUserRole()).toInt(), 7);
    // A text that lost its brackets falls back to code 0.
    table->item(0, MainWindow::StatusColumn)->setText(QStringLiteral("Failed"));
    m_window->refreshAllRowStatusText();
    QCOMPARE(table->item(0, MainWindow::StatusColumn)->text(), QStringLiteral("Failed (0)"));
}

QTEST_MAIN(TestMainWindowTable)
#include "tst_MainWindowTable.moc"
