#include "processor/ProcessorManifest.h"

#include "TestFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QStringList kBuiltInRequired = {
    "TARN-lite.exe",       "libcrypto-3-x64.dll",   "opencv_core4.dll",
    "opencv_imgproc4.dll", "opencv_imgcodecs4.dll", "zlib1.dll",
    "jpeg62.dll",          "libpng16.dll",          "tiff.dll",
    "libwebp.dll",         "libwebpdecoder.dll",    "libwebpdemux.dll",
    "libwebpmux.dll",      "libsharpyuv.dll",       "liblzma.dll",
    "msvcp140.dll",        "vcruntime140.dll",      "vcruntime140_1.dll",
    "concrt140.dll",
};

void fillFolder(const QString &dir, const QStringList &names)
{
    for (const QString &name : names)
        TestFiles::write(QDir(dir).filePath(name), "MZ not really a program");
}

} // namespace

class TestProcessorManifest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void builtInManifestMatchesTheDefaults();
    void filePresentNeedsANonEmptyRegularFile();
    void completeFolderValidates();
    void zeroByteFileCountsAsMissing();
    void missingFolderIsNotOkWithoutList();
    void emptyRequiredFallsBackToBuiltInList();
    void requiredFromObjectTakesStringsOnly();
    void brokenManifestFallsBackToDefaults_data();
    void brokenManifestFallsBackToDefaults();
    void overrideSearchOrder();
    void smokeTestDefaults();
    void smokeTestFromManifest();
    void smokeTestIgnoresUnusableValues();

private:
    QString processorDir() const { return m_dir.filePath(QStringLiteral("processor")); }
    QString appFile(const QString &relative) const
    {
        return QDir(QCoreApplication::applicationDirPath()).filePath(relative);
    }

    QTemporaryDir m_dir;
};

void TestProcessorManifest::init()
{
    QVERIFY(m_dir.isValid());
    QDir(processorDir()).removeRecursively();
    QVERIFY(QDir().mkpath(processorDir()));
}

void TestProcessorManifest::cleanup()
{
    // Manifests a test put beside its executable must never outlive it.
    QFile::remove(appFile(QStringLiteral("processor_manifest.json")));
    QDir(appFile(QStringLiteral("processor"))).removeRecursively();
}

void TestProcessorManifest::builtInManifestMatchesTheDefaults()
{
    QCOMPARE(ProcessorManifest::defaultRequiredFiles(), kBuiltInRequired);
    QCOMPARE(ProcessorManifest::locateManifestPath(processorDir()),
             QStringLiteral(":/manifest/processor_manifest.json"));
    QJsonObject manifest;
    QVERIFY(ProcessorManifest::loadManifestObject(processorDir(), &manifest));
    QCOMPARE(manifest.value("manifest_version").toInt(), 1);
    QCOMPARE(manifest.value("processor_dir").toString(), QStringLiteral("processor"));
    QCOMPARE(manifest.value("description").toString(),
             QStringLiteral("TARN-lite processor bundle manifest for GUI startup validation"));
    QCOMPARE(ProcessorManifest::requiredFilesFromObject(manifest), kBuiltInRequired);
    QCOMPARE(manifest.value("optional").toVariant().toStringList(), QStringList{"opencv_highgui4.dll"});
    QCOMPARE(manifest.value("forbidden_in_lite").toVariant().toStringList(),
             (QStringList{"*.onnx", "onnxruntime*.dll"}));
    const QJsonObject messages = manifest.value("user_messages").toObject();
    QCOMPARE(messages.value("missing_files").toString(),
             QStringLiteral("processor 目录不完整，缺少：{missing}"));
    QCOMPARE(messages.value("empty_files").toString(),
             QStringLiteral("processor 目录存在空文件（可能未完成同步）：{empty}"));
    QCOMPARE(messages.value("smoke_failed").toString(),
             QStringLiteral("TARN-lite 无法启动（退出码 {exit_code}），请检查 processor 目录是否完整"));
    QCOMPARE(messages.value("forbidden_found").toString(),
             QStringLiteral("lite 模式不应包含 ONNX 相关文件：{forbidden}"));
    const ProcessorManifest::SmokeTest smoke = ProcessorManifest::smokeTest(processorDir());
    QCOMPARE(smoke.executable, QStringLiteral("TARN-lite.exe"));
    QCOMPARE(smoke.args, QStringList{"--help"});
    QCOMPARE(smoke.expectExitCode, 0);
}

void TestProcessorManifest::filePresentNeedsANonEmptyRegularFile()
{
    const QString dir = processorDir();
    QVERIFY(TestFiles::write(QDir(dir).filePath("full.dll"), "x"));
    QVERIFY(TestFiles::write(QDir(dir).filePath("empty.dll"), QByteArray()));
    QVERIFY(QDir(dir).mkdir("folder.dll"));
    QVERIFY(ProcessorManifest::filePresent(dir, "full.dll"));
    QVERIFY(!ProcessorManifest::filePresent(dir, "empty.dll"));
    QVERIFY(!ProcessorManifest::filePresent(dir, "folder.dll"));
    QVERIFY(!ProcessorManifest::filePresent(dir, "absent.dll"));
}

void TestProcessorManifest::completeFolderValidates()
{
    fillFolder(processorDir(), kBuiltInRequired);
    const ProcessorManifest::Validation result = ProcessorManifest::validate(processorDir());
    QVERIFY(result.ok);
    QVERIFY(result.missing.isEmpty());
    QCOMPARE(result.processorDir, QFileInfo(processorDir()).absoluteFilePath());
}

void TestProcessorManifest::zeroByteFileCountsAsMissing()
{
    fillFolder(processorDir(), kBuiltInRequired);
    QVERIFY(TestFiles::write(QDir(processorDir()).filePath("zlib1.dll"), QByteArray()));
    QFile::remove(QDir(processorDir()).filePath("concrt140.dll"));
    const ProcessorManifest::Validation result = ProcessorManifest::validate(processorDir());
    QVERIFY(!result.ok);
    QCOMPARE(result.missing, (QStringList{"zlib1.dll", "concrt140.dll"})); // manifest order
}

void TestProcessorManifest::missingFolderIsNotOkWithoutList()
{
    const ProcessorManifest::Validation result = ProcessorManifest::validate(m_dir.filePath("nowhere"));
    QVERIFY(!result.ok);
    QVERIFY(result.missing.isEmpty());
    QCOMPARE(result.processorDir, m_dir.filePath("nowhere"));
}

void TestProcessorManifest::emptyRequiredFallsBackToBuiltInList()
{
    QVERIFY(
        TestFiles::write(QDir(processorDir()).filePath("processor_manifest.json"), R"({"required": []})"));
    const ProcessorManifest::Validation result = ProcessorManifest::validate(processorDir());
    QVERIFY(!result.ok);
    QCOMPARE(result.missing, kBuiltInRequired);
}

void TestProcessorManifest::requiredFromObjectTakesStringsOnly()
{
    QCOMPARE(ProcessorManifest::requiredFilesFromObject(QJsonObject()), kBuiltInRequired);
    QCOMPARE(ProcessorManifest::requiredFilesFromObject(QJsonObject{{"required", "a.dll"}}),
             kBuiltInRequired);
    QCOMPARE(ProcessorManifest::requiredFilesFromObject(QJsonObject{{"required", QJsonArray{1, true}}}),
             kBuiltInRequired);
    QCOMPARE(ProcessorManifest::requiredFilesFromObject(
                 QJsonObject{{"required", QJsonArray{"a.dll", 3, "b.dll"}}}),
             (QStringList{"a.dll", "b.dll"}));
}

void TestProcessorManifest::brokenManifestFallsBackToDefaults_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("truncated") << QByteArray(R"({"required": ["TARN-lite.exe")");
    QTest::newRow("root array") << QByteArray(R"(["TARN-lite.exe"])");
    QTest::newRow("not utf-8") << QByteArray("{\"required\": [\"caf\xe9\"]}");
    QTest::newRow("empty") << QByteArray();
}

void TestProcessorManifest::brokenManifestFallsBackToDefaults()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(TestFiles::write(QDir(processorDir()).filePath("processor_manifest.json"), bytes));
    QJsonObject manifest;
    QVERIFY(!ProcessorManifest::loadManifestObject(processorDir(), &manifest));
    fillFolder(processorDir(), {"TARN-lite.exe"});
    const ProcessorManifest::Validation result = ProcessorManifest::validate(processorDir());
    QVERIFY(!result.ok);
    QCOMPARE(result.missing, kBuiltInRequired.mid(1));
    const ProcessorManifest::SmokeTest smoke = ProcessorManifest::smokeTest(processorDir());
    QCOMPARE(smoke.executable, QStringLiteral("TARN-lite.exe"));
    QCOMPARE(smoke.args, QStringList{"--help"});
}

void TestProcessorManifest::overrideSearchOrder()
{
    const QString inProcessorDir = QDir(processorDir()).filePath("processor_manifest.json");
    const QString inAppProcessor = appFile(QStringLiteral("processor/processor_manifest.json"));
    const QString inAppDir = appFile(QStringLiteral("processor_manifest.json"));
    QVERIFY(!QFileInfo::exists(inAppProcessor));
    QVERIFY(!QFileInfo::exists(inAppDir));

    QCOMPARE(ProcessorManifest::locateManifestPath(processorDir()),
             QStringLiteral(":/manifest/processor_manifest.json"));
    QVERIFY(TestFiles::write(inAppDir, R"({"required": ["c.dll"]})"));
    QCOMPARE(ProcessorManifest::locateManifestPath(processorDir()), inAppDir);
    QVERIFY(TestFiles::write(inAppProcessor, R"({"required": ["b.dll"]})"));
    QCOMPARE(ProcessorManifest::locateManifestPath(processorDir()), inAppProcessor);
    QVERIFY(TestFiles::write(inProcessorDir, R"({"required": ["a.dll"]})"));
    QCOMPARE(ProcessorManifest::locateManifestPath(processorDir()), inProcessorDir);
    QCOMPARE(ProcessorManifest::validate(processorDir()).missing, QStringList{"a.dll"});
    QFile::remove(inProcessorDir);
    QCOMPARE(ProcessorManifest::validate(processorDir()).missing, QStringList{"b.dll"});
}

void TestProcessorManifest::smokeTestDefaults()
{
    QVERIFY(
        TestFiles::write(QDir(processorDir()).filePath("processor_manifest.json"), R"({"required": ["x"]})"));
    const ProcessorManifest::SmokeTest smoke = ProcessorManifest::smokeTest(processorDir());
    QCOMPARE(smoke.executable, QStringLiteral("TARN-lite.exe"));
    QCOMPARE(smoke.args, QStringList{"--help"});
    QCOMPARE(smoke.expectExitCode, 0);
}

void TestProcessorManifest::smokeTestFromManifest()
{
    QVERIFY(TestFiles::write(
        QDir(processorDir()).filePath("processor_manifest.json"),
        R"({"smoke_test": {"executable": "  other.exe ", "args": ["--version", "-q"], "expect_exit_code": 3}})"));
    const ProcessorManifest::SmokeTest smoke = ProcessorManifest::smokeTest(processorDir());
    QCOMPARE(smoke.executable, QStringLiteral("other.exe"));
    QCOMPARE(smoke.args, (QStringList{"--version", "-q"}));
    QCOMPARE(smoke.expectExitCode, 3);
}

void TestProcessorManifest::smokeTestIgnoresUnusableValues()
{
    QVERIFY(
        TestFiles::write(QDir(processorDir()).filePath("processor_manifest.json"),
                         R"({"smoke_test": {"executable": "   ", "args": [], "expect_exit_code": "3"}})"));
    ProcessorManifest::SmokeTest smoke = ProcessorManifest::smokeTest(processorDir());
    QCOMPARE(smoke.executable, QStringLiteral("TARN-lite.exe"));
    QCOMPARE(smoke.args, QStringList{"--help"});
    QCOMPARE(smoke.expectExitCode, 0);

    QVERIFY(TestFiles::write(QDir(processorDir()).filePath("processor_manifest.json"),
                             R"({"smoke_test": {"args": ["--help", 5]}})"));
    smoke = ProcessorManifest::smokeTest(processorDir());
    QCOMPARE(smoke.args, QStringList{"--help"});
}

QTEST_GUILESS_MAIN(TestProcessorManifest)
#include "tst_ProcessorManifest.moc"
