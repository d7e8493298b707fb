// The row status of Str: texts, colours in both schemes, and its storage on a status cell.
#include "ui/AppStrings.h"
#include "ui/RowStatusCell.h"
#include "ui/UiLanguage.h"

#include <QApplication>
#include <QPalette>
#include <QTableWidgetItem>
#include <QTest>

#include "TestPalette.h"

using Str::RowStatus;

class TestRowStatus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void rowStatusTable_data();
    void rowStatusTable();
    void rowStatusOutOfRange();
    void rowStatusItemHelpers();
    void applyRowStatusSetsEverything();
};

void TestRowStatus::init()
{
    UiLanguage::set(UiLanguage::English);
    setWindowLightness(240);
}

void TestRowStatus::rowStatusTable_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("english");
    QTest::addColumn<QString>("chinese");
    QTest::addColumn<QColor>("lightBackground");
    QTest::addColumn<QColor>("darkBackground");
    QTest::addColumn<QColor>("lightText");
    QTest::addColumn<QColor>("darkText");
    const QColor failBgL(255, 150, 150), failBgD(74, 42, 42), failTxL(120, 30, 30), failTxD(240, 160, 160);
    QTest::newRow("0 Pending") << 0 << "Pending"
                               << "待处理" << QColor(238, 238, 238) << QColor(58, 58, 58)
                               << QColor(80, 80, 80) << QColor(176, 176, 176);
    QTest::newRow("1 Processing") << 1 << "Processing..."
                                  << "处理中..." << QColor(173, 216, 230) << QColor(42, 74, 90)
                                  << QColor(30, 60, 90) << QColor(170, 212, 238);
    QTest::newRow("2 Done") << 2 << "Done ✓"
                            << "完成 ✓" << QColor(144, 238, 144) << QColor(42, 74, 50) << QColor(30, 90, 30)
                            << QColor(144, 220, 144);
    QTest::newRow("3 Failed") << 3 << "Failed"
                              << "失败" << failBgL << failBgD << failTxL << failTxD;
    QTest::newRow("4 StartFailed") << 4 << "Start failed"
                                   << "启动失败" << failBgL << failBgD << failTxL << failTxD;
    QTest::newRow("5 Cancelled") << 5 << "Cancelled"
                                 << "已取消" << QColor(255, 200, 100) << QColor(74, 58, 32)
                                 << QColor(120, 80, 20) << QColor(224, 176, 96);
    QTest::newRow("6 Crashed") << 6 << "Crashed"
                               << "崩溃" << failBgL << failBgD << failTxL << failTxD;
    QTest::newRow("7 ExitCodeFailed") << 7 << "Failed (3)"
                                      << "失败(3)" << failBgL << failBgD << failTxL << failTxD;
}

void TestRowStatus::rowStatusTable()
{
    QFETCH(int, value);
    QFETCH(QString, english);
    QFETCH(QString, chinese);
    QFETCH(QColor, lightBackground);
    QFETCH(QColor, darkBackground);
    QFETCH(QColor, lightText);
    QFETCH(QColor, darkText);
    const auto status = static_cast<RowStatus>(value);

    QCOMPARE(Str::rowStatusText(status, 3), english);
    UiLanguage::set(UiLanguage::Chinese);
    QCOMPARE(Str::rowStatusText(status, 3), chinese);
    UiLanguage::set(UiLanguage::English);
    setWindowLightness(240);
    QCOMPARE(Str::rowStatusColor(status), lightBackground);
    QCOMPARE(Str::rowStatusTextColor(status), lightText);
    setWindowLightness(30);
    QCOMPARE(Str::rowStatusColor(status), darkBackground);
    QCOMPARE(Str::rowStatusTextColor(status), darkText);
}

void TestRowStatus::rowStatusOutOfRange()
{
    for (int value : {-1, 8, 100}) {
        const auto status = static_cast<RowStatus>(value);
        QCOMPARE(Str::rowStatusText(status, 3), QString());
        QCOMPARE(Str::rowStatusColor(status), Str::rowStatusColor(RowStatus::Pending));
        QCOMPARE(Str::rowStatusTextColor(status), Str::rowStatusTextColor(RowStatus::Pending));
    }
    QCOMPARE(Str::rowStatusText(RowStatus::Failed, 3), QStringLiteral("Failed"));
    QCOMPARE(Str::rowStatusText(RowStatus::ExitCodeFailed, 0), QStringLiteral("Failed (0)"));
    QCOMPARE(Str::rowStatusText(RowStatus::ExitCodeFailed, -5), QStringLiteral("Failed (-5)"));
}

void TestRowStatus::rowStatusItemHelpers()
{
    QCOMPARE(Str::rowStatusUserRole(), 276);
    QCOMPARE(Str::rowStatusFromItem(nullptr), 0);
    QVERIFY(Str::rowStatusIsPending(nullptr));

    QTableWidgetItem item;
    QCOMPARE(Str::rowStatusFromItem(&item), 0);
    QVERIFY(Str::rowStatusIsPending(&item));
    item.setData(276, QStringLiteral("not a number"));
    QCOMPARE(Str::rowStatusFromItem(&item), 0);
    QVERIFY(Str::rowStatusIsPending(&item));
    item.setData(276, 6);
    QCOMPARE(Str::rowStatusFromItem(&item), 6);
    QVERIFY(!Str::rowStatusIsPending(&item));
    item.setData(276, 0);
    QVERIFY(Str::rowStatusIsPending(&item));
    item.setData(276, 42);
    QCOMPARE(Str::rowStatusFromItem(&item), 42);
    QVERIFY(!Str::rowStatusIsPending(&item));
}

void TestRowStatus::applyRowStatusSetsEverything()
{
    Str::applyRowStatus(nullptr, RowStatus::Done, 0); // does nothing, does not crash
    QTableWidgetItem item;
    Str::applyRowStatus(&item, RowStatus::ExitCodeFailed, 3);
    QCOMPARE(item.data(276).toInt(), 7);
    QCOMPARE(item.text(), QStringLiteral("Failed (3)"));
    QCOMPARE(item.background().color(), QColor(255, 150, 150));
    QCOMPARE(item.foreground().color(), QColor(120, 30, 30));
    Str::applyRowStatus(&item, RowStatus::Done, 0);
    QCOMPARE(item.data(276).toInt(), 2);
    QCOMPARE(item.text(), QStringLiteral("Done ✓"));
    QCOMPARE(item.background().color(), QColor(144, 238, 144));
}

QTEST_MAIN(TestRowStatus)
#include "tst_RowStatus.moc"
