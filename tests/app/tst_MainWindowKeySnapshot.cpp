// One key for the whole run: the device key file is read once at Start, a key that cannot be
// read or names another panel refuses the run, and the frames and playlist.json are made from
// that one snapshot whatever happens to the file during the run: every processor gets the run's own copy.
#include "app/MainWindow.h"
#include "ui/UiLanguage.h"

#include "ModalAnswerer.h"
#include "PackageCheck.h"
#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <functional>

namespace {
const QByteArray kFrameKey = R"({"panel": "13.3", "device_id": "FRAME-133", "uid": "owner"})";
const QByteArray kOtherPanelKey = R"({"panel": "25.3", "device_id": "FRAME-253", "uid": "owner"})";
const QByteArray kOtherDeviceKey = R"({"panel": "13.3", "device_id": "FRAME-NEW", "uid": "owner"})";

QJsonObject playlistOf(const QString &package)
{
    return QJsonDocument::fromJson(TestFiles::read(QDir(package).filePath("playlist.json"))).object();
}
} // namespace

class TestMainWindowKeySnapshot : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void keyForAnotherPanelIsRefused();
    void keyDeletedBeforeStartIsRefused();
    void keyThatIsNotAKeyIsRefused();
    void keyReplacedBeforeStartRemakesTheFrames();
    void keyDeletedDuringTheRun();
    void keyReplacedDuringTheRun();

private:
    // A new window whose processor reads the key 0.3 s after it starts and notes its device.
    void useSlowKeyReader();
    void runWhileTheKeyFileChanges(const std::function<void(const QString &)> &change);
    QString importKey(const QByteArray &json);
    QString m_keysRead;
    QStringList commandLines() const { return logLines(*m_window).filter(QStringLiteral("  $ TARN-lite")); }
};

QString TestMainWindowKeySnapshot::importKey(const QByteArray &json)
{
    const QString path = key("device.json", json);
    setKeyFile(path);
    return path;
}

void TestMainWindowKeySnapshot::keyForAnotherPanelIsRefused()
{
    const QString path = importKey(kFrameKey);
    addColours({Qt::red});
    QVERIFY(TestFiles::write(path, kOtherPanelKey)); // another device's key, after the import
    ModalAnswerer refusal(QMessageBox::Ok);
    m_window->onStartProcess();
    QCOMPARE(refusal.title(), QStringLiteral("Device Key File"));
    QCOMPARE(refusal.text(),
             QStringLiteral("The device key file is for frame model 253, but frame model 133 is "
                            "chosen:\n%1\n\nChoose the frame model that matches the key, or "
                            "import the right key file.")
                 .arg(QDir::toNativeSeparators(path)));
    QVERIFY(!m_window->isProcessing());
    QVERIFY(commandLines().isEmpty());
    QVERIFY(!QFileInfo::exists(packageDir()));
}

void TestMainWindowKeySnapshot::keyDeletedBeforeStartIsRefused()
{
    const QString path = importKey(kFrameKey);
    addColours({Qt::red});
    QVERIFY(QFile::remove(path));
    ModalAnswerer refusal(QMessageBox::Ok);
    m_window->onStartProcess();
    QCOMPARE(refusal.title(), QStringLiteral("Device Key File"));
    QCOMPARE(refusal.text(),
             QStringLiteral("The device key file cannot be read:\n%1\n\nNo such file or directory\n\n"
                            "Import the key file again before you start processing.")
                 .arg(QDir::toNativeSeparators(path)));
    QVERIFY(commandLines().isEmpty());
    QCOMPARE(statusText(0), QStringLiteral("Pending"));
}

void TestMainWindowKeySnapshot::keyThatIsNotAKeyIsRefused()
{
    const QString path = importKey(kFrameKey);
    addColours({Qt::red});
    QVERIFY(TestFiles::write(path, "[1, 2"));
    ModalAnswerer refusal(QMessageBox::Ok);
    m_window->onStartProcess();
    QCOMPARE(refusal.title(), QStringLiteral("Device Key File"));
    QVERIFY2(
        refusal.text().startsWith(QStringLiteral("The device key file is not a valid key file (not a JSON "
                                                 "object):\n%1\n\n")
                                      .arg(QDir::toNativeSeparators(path))),
        qPrintable(refusal.text()));
    QVERIFY(commandLines().isEmpty());
}

void TestMainWindowKeySnapshot::keyReplacedBeforeStartRemakesTheFrames()
{
    const QString path = importKey(kFrameKey);
    addColours({Qt::red, Qt::blue});
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    QCOMPARE(
        playlistOf(packageDir()).value("encrypt").toObject().value("device_ids").toArray().first().toString(),
        QStringLiteral("FRAME-133"));
    // The same panel, another device: frames made for the old key are made again.
    QVERIFY(TestFiles::write(path, kOtherDeviceKey));
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QCOMPARE(completion.titles(), QStringList{"Ready for Your TF Card"}); // no "reprocess all?" question
    QCOMPARE(commandLines().size(), 2);
    expectPackage({Qt::red, Qt::blue});
    QCOMPARE(
        playlistOf(packageDir()).value("encrypt").toObject().value("device_ids").toArray().first().toString(),
        QStringLiteral("FRAME-NEW"));
}

void TestMainWindowKeySnapshot::useSlowKeyReader()
{
    // A processor that reads the key a moment after it starts, and notes whose key it read.
    const QString dir = m_fixture->path(QStringLiteral("slow-key-reader"));
    QDir(dir).removeRecursively();
    QDir().mkpath(dir);
    QVERIFY(QFile::copy(WindowFixture::demoProcessorDir() + "/processor_manifest.json",
                        dir + "/processor_manifest.json"));
    m_keysRead = dir + "/keys-read.txt";
    const QString script = QStringList{"#!/bin/sh",
                                       "[ \"$1\" = \"--help\" ] && exec \"%1\" --help",
                                       "sleep 0.3",
                                       "key=\"\"",
                                       "previous=\"\"",
                                       "for argument in \"$@\"; do",
                                       "    [ \"$previous\" = \"--pubkey\" ] && key=\"$argument\"",
                                       "    previous=\"$argument\"",
                                       "done",
                                       "if [ -f \"$key\" ]; then grep -o '\"device_id\": \"[^\"]*\"' "
                                       "\"$key\" >> \"%2\"; else echo \"no key\" >> \"%2\"; fi",
                                       "exec \"%1\" \"$@\"",
                                       ""}
                               .join('\n')
                               .arg(WindowFixture::demoProcessor(), m_keysRead);
    QVERIFY(TestFiles::write(dir + "/TARN-lite", script.toUtf8()));
    QFile(dir + "/TARN-lite").setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    m_fixture->useProcessor(dir + "/TARN-lite", dir);
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    QTRY_VERIFY(!startupCheckRunning(*m_window));
    saveLocation(*m_window)->setText(m_fixture->path("out"));
    withoutDuplicateWarnings(*m_window);
}

void TestMainWindowKeySnapshot::runWhileTheKeyFileChanges(const std::function<void(const QString &)> &change)
{
    useSlowKeyReader();
    const QString path = importKey(kFrameKey);
    addColours({Qt::red, Qt::blue, Qt::green});
    ModalAnswerer completion(QMessageBox::Cancel);
    m_window->onStartProcess();
    // Changed once the first picture's processor has started, before it reads the key.
    QTRY_COMPARE(commandLines().size(), 1);
    change(path);
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->isProcessing(), 30000);
    for (int row = 0; row < 3; ++row)
        QCOMPARE(statusText(row), QStringLiteral("Done ✓"));
    // Every picture was made with the key read at Start: each processor got the run's own copy.
    QCOMPARE(TestFiles::read(m_keysRead), QByteArray("\"device_id\": \"FRAME-133\"\n").repeated(3));
    const QString windowId = QFileInfo(m_window->liteBinStagingDir()).fileName();
    const QString copy = m_fixture->path("tmp/tarngui_pubkey/" + windowId + "/device_key.json");
    for (const QString &line : commandLines())
        QVERIFY2(line.endsWith("--pubkey " + copy), qPrintable(line));
    QCOMPARE(TestFiles::read(copy), kFrameKey);
    expectPackage({Qt::red, Qt::blue, Qt::green});
    for (const QString &frame : PackageCheck::listedFrames(packageDir()))
        QVERIFY(TestFiles::read(QDir(packageDir()).filePath(frame)).startsWith("TSIM 1 1200 1600 133\n"));
    const QJsonObject encrypt = playlistOf(packageDir()).value("encrypt").toObject();
    QVERIFY(encrypt.value("enabled").toBool());
    QCOMPARE(encrypt.value("device_ids").toArray().first().toString(), QStringLiteral("FRAME-133"));
    QCOMPARE(encrypt.value("account_uid").toString(), QStringLiteral("owner"));
}

void TestMainWindowKeySnapshot::keyDeletedDuringTheRun()
{
    runWhileTheKeyFileChanges([](const QString &path) { QVERIFY(QFile::remove(path)); });
}

void TestMainWindowKeySnapshot::keyReplacedDuringTheRun()
{
    runWhileTheKeyFileChanges([](const QString &path) { QVERIFY(TestFiles::write(path, kOtherDeviceKey)); });
}

QTEST_MAIN(TestMainWindowKeySnapshot)
#include "tst_MainWindowKeySnapshot.moc"
