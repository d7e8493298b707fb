#include "ui/UiLanguage.h"

#include <QTest>

class TestUiLanguage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsChineseUntilSet();
    void setAndIsEnglish();
    void liteEditionStartsInEnglish();
    void settingsKey();
    void toSettingsValue();
    void fromSettingsValue_data();
    void fromSettingsValue();
};

void TestUiLanguage::startsChineseUntilSet()
{
    // The process-wide value is zero-initialised: Chinese until the entry sets it.
    QCOMPARE(UiLanguage::current(), UiLanguage::Chinese);
    QVERIFY(!UiLanguage::isEnglish());
}

void TestUiLanguage::setAndIsEnglish()
{
    UiLanguage::set(UiLanguage::English);
    QCOMPARE(UiLanguage::current(), UiLanguage::English);
    QVERIFY(UiLanguage::isEnglish());
    UiLanguage::set(UiLanguage::Chinese);
    QCOMPARE(UiLanguage::current(), UiLanguage::Chinese);
    QVERIFY(!UiLanguage::isEnglish());
    QCOMPARE(int(UiLanguage::Chinese), 0);
    QCOMPARE(int(UiLanguage::English), 1);
}

void TestUiLanguage::liteEditionStartsInEnglish()
{
    QCOMPARE(UiLanguage::defaultForEdition(), UiLanguage::English);
}

void TestUiLanguage::settingsKey() { QCOMPARE(UiLanguage::settingsKey(), QStringLiteral("ui_language")); }

void TestUiLanguage::toSettingsValue()
{
    QCOMPARE(UiLanguage::toSettingsValue(UiLanguage::English), QStringLiteral("en"));
    QCOMPARE(UiLanguage::toSettingsValue(UiLanguage::Chinese), QStringLiteral("zh"));
    QCOMPARE(UiLanguage::toSettingsValue(static_cast<UiLanguage::Lang>(7)), QStringLiteral("zh"));
    QCOMPARE(UiLanguage::toSettingsValue(static_cast<UiLanguage::Lang>(-1)), QStringLiteral("zh"));
}

void TestUiLanguage::fromSettingsValue_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("expected");
    QTest::newRow("en") << QStringLiteral("en") << int(UiLanguage::English);
    QTest::newRow("EN") << QStringLiteral("EN") << int(UiLanguage::Chinese);
    QTest::newRow("En") << QStringLiteral("En") << int(UiLanguage::Chinese);
    QTest::newRow("en with trailing blank") << QStringLiteral("en ") << int(UiLanguage::Chinese);
    QTest::newRow("leading blank") << QStringLiteral(" en") << int(UiLanguage::Chinese);
    QTest::newRow("empty") << QString() << int(UiLanguage::Chinese);
    QTest::newRow("zh") << QStringLiteral("zh") << int(UiLanguage::Chinese);
    QTest::newRow("english") << QStringLiteral("english") << int(UiLanguage::Chinese);
}

void TestUiLanguage::fromSettingsValue()
{
    QFETCH(QString, value);
    QFETCH(int, expected);
    QCOMPARE(int(UiLanguage::fromSettingsValue(value)), expected);
}

QTEST_GUILESS_MAIN(TestUiLanguage)
#include "tst_UiLanguage.moc"
