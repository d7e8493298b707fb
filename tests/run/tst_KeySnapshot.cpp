// The device key read once: what it names, when the file still matches, and which path the
// processor gets.
#include "run/KeySnapshot.h"
#include "ui/UiLanguage.h"

#include "TestFiles.h"

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

class TestKeySnapshot : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void readsWhatTheToolUses();
    void panelCodesAndTypes_data();
    void panelCodesAndTypes();
    void failuresSayWhy();
    void processorGetsACopyWhileTheFileIsUnchanged();
    void aCopyThatCannotBeMadeIsNoPath();
    void processorGetsACopyWhenTheFileChanged();
    void nonAsciiPathGoesAsACopyMadeOnce();

private:
    QString file(const QString &name, const QByteArray &bytes) const;
    QTemporaryDir m_dir;
};

void TestKeySnapshot::initTestCase() { UiLanguage::set(UiLanguage::English); }

QString TestKeySnapshot::file(const QString &name, const QByteArray &bytes) const
{
    const QString path = m_dir.filePath(name);
    TestFiles::write(path, bytes);
    return path;
}

void TestKeySnapshot::readsWhatTheToolUses()
{
    const QByteArray bytes = R"({"panel": "25.3", "device_id": "D-1", "uid": "U-1", "stamac": "x"})";
    const KeySnapshot key = KeySnapshot::read(file("k.json", bytes), nullptr);
    QVERIFY(!key.isNull());
    QCOMPARE(key.path(), QDir::toNativeSeparators(m_dir.filePath("k.json")));
    QCOMPARE(key.bytes(), bytes);
    QCOMPARE(key.panelCode(), QStringLiteral("25.3"));
    QCOMPARE(key.deviceId(), QStringLiteral("D-1"));
    QCOMPARE(key.accountUid(), QStringLiteral("U-1"));
    QCOMPARE(key.fingerprint().size(), 64);
    QVERIFY(KeySnapshot().isNull());
    QCOMPARE(KeySnapshot().fingerprint(), QByteArray());
    // Another key, another fingerprint.
    QVERIFY(KeySnapshot::read(file("k2.json", R"({"panel": "25.3"})"), nullptr).fingerprint() !=
            key.fingerprint());
}

void TestKeySnapshot::panelCodesAndTypes_data()
{
    QTest::addColumn<QString>("panel");
    QTest::addColumn<QString>("guiType");
    QTest::addColumn<QSize>("size");
    QTest::newRow("13.3") << "13.3"
                          << "133" << QSize(1200, 1600);
    QTest::newRow("7.09") << "7.09"
                          << "070" << QSize(1200, 1600);
    QTest::newRow("28.5") << "28.5"
                          << "285" << QSize(2160, 3060);
    QTest::newRow("GUI type 253") << "253"
                                  << "253" << QSize(1800, 3200);
    QTest::newRow("unknown 12") << "12"
                                << "" << QSize();
    QTest::newRow("none") << ""
                          << "" << QSize();
}

void TestKeySnapshot::panelCodesAndTypes()
{
    QFETCH(QString, panel);
    QFETCH(QString, guiType);
    QFETCH(QSize, size);
    const QByteArray json = panel.isEmpty() ? QByteArray("{}") : R"({"panel": ")" + panel.toUtf8() + R"("})";
    const KeySnapshot key = KeySnapshot::read(file("p.json", json), nullptr);
    QCOMPARE(key.guiPanelType(), guiType);
    QCOMPARE(key.panel().ok, size.isValid());
    if (size.isValid())
        QCOMPARE(key.panel().size, size);
}

void TestKeySnapshot::failuresSayWhy()
{
    QString error;
    QVERIFY(KeySnapshot::read(m_dir.filePath("absent.json"), &error).isNull());
    QCOMPARE(error, QStringLiteral("The device key file cannot be read:\n%1\n\nNo such file or directory\n\n"
                                   "Import the key file again before you start processing.")
                        .arg(QDir::toNativeSeparators(m_dir.filePath("absent.json"))));
    QVERIFY(KeySnapshot::read(file("list.json", "[1, 2]"), &error).isNull());
    QVERIFY(error.startsWith(
        QStringLiteral("The device key file is not a valid key file (not a JSON object):\n")));
    QVERIFY(error.contains(QStringLiteral("\n\nnot a JSON object\n\n")));
    QVERIFY(KeySnapshot::read(file("broken.json", "{ \"panel\": "), &error).isNull());
    QVERIFY(error.contains(QStringLiteral("\n\nillegal value\n\n")) || error.contains("unterminated"));
}

void TestKeySnapshot::processorGetsACopyWhileTheFileIsUnchanged()
{
    const QString path = file("plain.json", R"({"panel": "13.3"})");
    const KeySnapshot key = KeySnapshot::read(path, nullptr);
    QVERIFY(key.fileStillMatches());
    const QString copy = m_dir.filePath("staging/device_key.json");
    QCOMPARE(key.pathForProcessor(m_dir.filePath("staging")), copy);
    QCOMPARE(TestFiles::read(copy), key.bytes());
}

void TestKeySnapshot::aCopyThatCannotBeMadeIsNoPath()
{
    const KeySnapshot key = KeySnapshot::read(file("plain.json", R"({"panel": "13.3"})"), nullptr);
    // A file stands where the folder should be.
    const QString blocked = file("blocked", "a file");
    QString error;
    QCOMPARE(key.pathForProcessor(blocked + "/keys", &error), QString());
    QVERIFY(!error.isEmpty());
}

void TestKeySnapshot::processorGetsACopyWhenTheFileChanged()
{
    const QByteArray bytes = R"({"panel": "13.3", "device_id": "first"})";
    const QString path = file("changing.json", bytes);
    const KeySnapshot key = KeySnapshot::read(path, nullptr);
    QVERIFY(TestFiles::write(path, R"({"panel": "13.3", "device_id": "second"})"));
    QVERIFY(!key.fileStillMatches());
    const QString copy = m_dir.filePath("staging/device_key.json");
    QCOMPARE(key.pathForProcessor(m_dir.filePath("staging")), copy);
    QCOMPARE(TestFiles::read(copy), bytes);
    QVERIFY(QFile::remove(path));
    QCOMPARE(key.pathForProcessor(m_dir.filePath("staging")), copy);
    QCOMPARE(TestFiles::read(copy), bytes);
}

void TestKeySnapshot::nonAsciiPathGoesAsACopyMadeOnce()
{
    const QString path = file(QStringLiteral("密钥/key"), R"({"panel": "13.3"})");
    const KeySnapshot key = KeySnapshot::read(path, nullptr);
    const QString copy = m_dir.filePath("keys/device_key.json"); // no suffix: ".json"
    QCOMPARE(key.pathForProcessor(m_dir.filePath("keys")), copy);
    const QDateTime longAgo = QDateTime::currentDateTime().addDays(-2);
    {
        QFile staged(copy);
        QVERIFY(staged.open(QIODevice::ReadWrite) &&
                staged.setFileTime(longAgo, QFileDevice::FileModificationTime));
    }
    QCOMPARE(key.pathForProcessor(m_dir.filePath("keys")), copy);
    QCOMPARE(QFileInfo(copy).lastModified(), longAgo); // not copied again
    // A staged copy that is not this key any more is replaced.
    QVERIFY(TestFiles::write(copy, "another key"));
    QCOMPARE(key.pathForProcessor(m_dir.filePath("keys")), copy);
    QCOMPARE(TestFiles::read(copy), key.bytes());
}

QTEST_GUILESS_MAIN(TestKeySnapshot)
#include "tst_KeySnapshot.moc"
