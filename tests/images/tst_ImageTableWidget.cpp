#include "images/ImageTableWidget.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QLabel>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include "Drops.h"

namespace {

void fill(ImageTableWidget &table, int rows)
{
    table.setRowCount(rows);
    for (int row = 0; row < rows; ++row) {
        table.setItem(row, 0, new QTableWidgetItem(QStringLiteral("r%1").arg(row)));
        table.setItem(row, 1, new QTableWidgetItem(QStringLiteral("s%1").arg(row)));
        table.setRowHeight(row, 100 + row);
    }
}

QStringList column(const ImageTableWidget &table, int c)
{
    QStringList texts;
    for (int row = 0; row < table.rowCount(); ++row)
        texts << (table.item(row, c) ? table.item(row, c)->text() : QString());
    return texts;
}

std::unique_ptr<QMimeData> urls(const QList<QUrl> &list)
{
    auto data = std::make_unique<QMimeData>();
    data->setUrls(list);
    return data;
}

} // namespace

class TestImageTableWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void construction();
    void swapRowsExchangesItemsAndHeights();
    void swapRowsIgnoresBadArguments();
    void collapsedRowTakesTheOtherHeight();
    void moveRowShiftsEveryRowBetween();
    void moveRowClampsAndIgnores();
    void dropOfFilesReportsLocalPaths();
    void dropWithoutUsableUrlsIsRefused();
    void dragsAreAcceptedOnlyWithUrls();
};

void TestImageTableWidget::construction()
{
    ImageTableWidget table(5, nullptr);
    QCOMPARE(table.rowCount(), 0);
    QCOMPARE(table.columnCount(), 5);
    QCOMPARE(table.dragDropMode(), QAbstractItemView::DropOnly);
    QCOMPARE(table.defaultDropAction(), Qt::CopyAction);
    QVERIFY(!table.dragDropOverwriteMode());
    QVERIFY(table.showDropIndicator());
    QVERIFY(table.acceptDrops());
    QVERIFY(table.viewport()->acceptDrops());
    QVERIFY(!table.dragEnabled());
}

void TestImageTableWidget::swapRowsExchangesItemsAndHeights()
{
    ImageTableWidget table(3, nullptr);
    fill(table, 3);
    QList<QPair<int, int>> calls;
    table.setSwapRowContentHandler([&calls](int a, int b) { calls << qMakePair(a, b); });
    table.swapRows(0, 2);
    QCOMPARE(column(table, 0), (QStringList{"r2", "r1", "r0"}));
    QCOMPARE(column(table, 1), (QStringList{"s2", "s1", "s0"}));
    QCOMPARE(column(table, 2), (QStringList{"", "", ""})); // missing items stay missing
    QCOMPARE(table.rowHeight(0), 102);
    QCOMPARE(table.rowHeight(2), 100);
    QCOMPARE(calls, (QList<QPair<int, int>>{{0, 2}}));
}

void TestImageTableWidget::swapRowsIgnoresBadArguments()
{
    ImageTableWidget table(2, nullptr);
    fill(table, 3);
    int calls = 0;
    table.setSwapRowContentHandler([&calls](int, int) { ++calls; });
    table.swapRows(-1, 1);
    table.swapRows(0, 3);
    table.swapRows(1, 1);
    QCOMPARE(column(table, 0), (QStringList{"r0", "r1", "r2"}));
    QCOMPARE(calls, 0);
    table.setSwapRowContentHandler({});
    table.swapRows(0, 1); // no handler: just the items
    QCOMPARE(column(table, 0), (QStringList{"r1", "r0", "r2"}));
}

void TestImageTableWidget::collapsedRowTakesTheOtherHeight()
{
    ImageTableWidget table(2, nullptr);
    fill(table, 2);
    table.setRowHeight(0, 0);
    table.setRowHeight(1, 140);
    table.swapRows(0, 1);
    QCOMPARE(table.rowHeight(0), 140);
    QCOMPARE(table.rowHeight(1), 140);
}

void TestImageTableWidget::moveRowShiftsEveryRowBetween()
{
    ImageTableWidget table(2, nullptr);
    fill(table, 5);
    int calls = 0;
    table.setSwapRowContentHandler([&calls](int, int) { ++calls; });
    table.moveRow(0, 99); // clamped to the last row
    QCOMPARE(column(table, 0), (QStringList{"r1", "r2", "r3", "r4", "r0"}));
    QCOMPARE(calls, 4);
    table.moveRow(4, 1);
    QCOMPARE(column(table, 0), (QStringList{"r1", "r0", "r2", "r3", "r4"}));
    table.moveRow(3, -7);
    QCOMPARE(column(table, 0), (QStringList{"r3", "r1", "r0", "r2", "r4"}));
}

void TestImageTableWidget::moveRowClampsAndIgnores()
{
    ImageTableWidget table(2, nullptr);
    fill(table, 3);
    int calls = 0;
    table.setSwapRowContentHandler([&calls](int, int) { ++calls; });
    table.moveRow(-1, 0);
    table.moveRow(3, 0);
    table.moveRow(2, 2);
    table.moveRow(2, 10); // already the last row
    QCOMPARE(calls, 0);
    QCOMPARE(column(table, 0), (QStringList{"r0", "r1", "r2"}));
    table.verticalHeader()->setDefaultSectionSize(140);
    table.setRowHeight(1, 0);
    table.moveRow(0, 2);
    for (int row = 0; row < 3; ++row)
        QVERIFY(table.rowHeight(row) >= 1); // collapsed rows get the default height back
}

void TestImageTableWidget::dropOfFilesReportsLocalPaths()
{
    ImageTableWidget table(5, nullptr);
    QSignalSpy spy(&table, &ImageTableWidget::externalFilesDropped);
    const auto data = urls({QUrl::fromLocalFile("/photos/a.jpg"), QUrl("https://example.com/b.jpg"),
                            QUrl::fromLocalFile("/photos/folder")});
    QVERIFY(dropOn(table.viewport(), data.get()));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toStringList(), (QStringList{"/photos/a.jpg", "/photos/folder"}));
}

void TestImageTableWidget::dropWithoutUsableUrlsIsRefused()
{
    ImageTableWidget table(5, nullptr);
    QSignalSpy spy(&table, &ImageTableWidget::externalFilesDropped);
    const auto web = urls({QUrl("https://example.com/b.jpg")});
    QVERIFY(!dropOn(table.viewport(), web.get()));
    QMimeData text;
    text.setText(QStringLiteral("/photos/a.jpg"));
    QVERIFY(!dropOn(table.viewport(), &text));
    QCOMPARE(spy.count(), 0);
}

void TestImageTableWidget::dragsAreAcceptedOnlyWithUrls()
{
    ImageTableWidget table(5, nullptr);
    const auto data = urls({QUrl::fromLocalFile("/photos/a.jpg")});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(table.viewport(), &enter);
    QVERIFY(enter.isAccepted());
    QDragMoveEvent move(QPoint(6, 6), Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(table.viewport(), &move);
    QVERIFY(move.isAccepted());

    QMimeData text;
    text.setText(QStringLiteral("hello"));
    QDragEnterEvent refused(QPoint(5, 5), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(table.viewport(), &refused);
    QVERIFY(!refused.isAccepted());
}

QTEST_MAIN(TestImageTableWidget)
#include "tst_ImageTableWidget.moc"
