#include "processor/ProcessorConfig.h"

#include "TestFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonValue>
#include <QTemporaryDir>
#include <QTest>

namespace {
const QString kName = QStringLiteral("tarngui_lite.json");
}

class TestProcessorConfig : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void jsonToStringListTakesArraysOnly();
    void loadsAFullVariant();
    void emptyVariantsFail();
    void missingOrWronglyTypedVariantsFail_data();
    void missingOrWronglyTypedVariantsFail();
    void emptyExecutableFailsNamingTheVariant();
    void badJsonFails_data();
    void badJsonFails();
    void unreadableFileFails();
    void nonObjectVariantsAreSkipped();
    void unknownActiveVariantFallsBackToTheOnlyOne();
    void knownActiveVariantWins();
    void extraArgsAsStringGivesEmptyList();
    void featuresDefaultToTrue();
    void workDirDefaultsToExecutableFolder();
    void defaultLutIsRelativeToWorkDir();
    void absolutePathsAreCleaned();
    void unknownIdsNeverFail();
    void setActiveVariant();
    void locatesTheFileInSearchOrder();
    void reportsWhenNoFileIsFound();

private:
    QString writeConfig(const QByteArray &json, const QString &subdir = QStringLiteral("cfg"));
    QTemporaryDir m_dir;
};

void TestProcessorConfig::init() { QVERIFY(m_dir.isValid()); }

QString TestProcessorConfig::writeConfig(const QByteArray &json, const QString &subdir)
{
    const QString path = QDir(m_dir.filePath(subdir)).filePath(kName);
    if (!TestFiles::write(path, json))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

void TestProcessorConfig::jsonToStringListTakesArraysOnly()
{
    QCOMPARE(jsonToStringList(QJsonArray{"a", "b"}), (QStringList{"a", "b"}));
    QCOMPARE(jsonToStringList(QJsonValue(QStringLiteral("--fast"))), QStringList());
    QCOMPARE(jsonToStringList(QJsonValue(3)), QStringList());
    QCOMPARE(jsonToStringList(QJsonValue()), QStringList());
    QCOMPARE(jsonToStringList(QJsonArray()), QStringList());
}

void TestProcessorConfig::loadsAFullVariant()
{
    const QString path = writeConfig(R"({
        "active_variant": "lite",
        "variants": {
            "lite": {
                "display_name": "TARN lite",
                "executable": "bin/TARN-lite.exe",
                "work_dir": "work",
                "default_lut": "luts/a.bin",
                "extra_args": ["--fast", "--q", "3"],
                "omit_args": ["--crop"],
                "key_file_arg": "--key",
                "features": {"analysis_only": false, "disable_analysis": true, "disable_crop": false, "output_bin": true}
            }
        }
    })");
    ProcessorConfig config;
    QVERIFY2(config.load(path), qPrintable(config.lastError()));
    QCOMPARE(config.lastError(), QString());
    QCOMPARE(config.configPath(), QDir::cleanPath(path));
    QCOMPARE(config.activeVariantId(), QStringLiteral("lite"));
    QCOMPARE(config.variantIds(), QStringList{"lite"});
    QCOMPARE(config.displayName(QStringLiteral("lite")), QStringLiteral("TARN lite"));

    const VariantConfig v = config.variant(QStringLiteral("lite"));
    QCOMPARE(v.id, QStringLiteral("lite"));
    QCOMPARE(v.executable, QStringLiteral("bin/TARN-lite.exe"));
    QCOMPARE(v.workDir, QStringLiteral("work"));
    QCOMPARE(v.defaultLut, QStringLiteral("luts/a.bin"));
    QCOMPARE(v.extraArgs, (QStringList{"--fast", "--q", "3"}));
    QCOMPARE(v.omitArgs, QStringList{"--crop"});
    QCOMPARE(v.keyFileArg, QStringLiteral("--key"));
    QVERIFY(!v.analysisOnly);
    QVERIFY(v.disableAnalysis);
    QVERIFY(!v.disableCrop);
    QVERIFY(v.outputBin);

    const QString cfgDir = m_dir.filePath(QStringLiteral("cfg"));
    QCOMPARE(config.resolvedExecutable(QStringLiteral("lite")), cfgDir + "/bin/TARN-lite.exe");
    QCOMPARE(config.resolvedWorkDir(QStringLiteral("lite")), cfgDir + "/work");
    QCOMPARE(config.resolvedDefaultLut(QStringLiteral("lite")), cfgDir + "/work/luts/a.bin");
}

void TestProcessorConfig::emptyVariantsFail()
{
    ProcessorConfig config;
    QVERIFY(!config.load(writeConfig(R"({"variants": {}})")));
    QCOMPARE(config.lastError(), QStringLiteral("配置文件缺少 variants 节点"));
    QVERIFY(config.variantIds().isEmpty());
}

void TestProcessorConfig::missingOrWronglyTypedVariantsFail_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("absent") << QByteArray(R"({"active_variant": "lite"})");
    QTest::newRow("array") << QByteArray(R"({"variants": [{"executable": "a.exe"}]})");
    QTest::newRow("string") << QByteArray(R"({"variants": "lite"})");
    QTest::newRow("null") << QByteArray(R"({"variants": null})");
    QTest::newRow("only non-objects") << QByteArray(R"({"variants": {"lite": "a.exe", "x": 3}})");
}

void TestProcessorConfig::missingOrWronglyTypedVariantsFail()
{
    QFETCH(QByteArray, json);
    ProcessorConfig config;
    QVERIFY(!config.load(writeConfig(json)));
    QCOMPARE(config.lastError(), QStringLiteral("配置文件缺少 variants 节点"));
}

void TestProcessorConfig::emptyExecutableFailsNamingTheVariant()
{
    ProcessorConfig config;
    QVERIFY(!config.load(writeConfig(R"({"variants": {"lite": {"executable": ""}}})")));
    QCOMPARE(config.lastError(), QStringLiteral("variants.lite 缺少 executable"));

    QVERIFY(!config.load(
        writeConfig(R"({"variants": {"alpha": {"executable": "a.exe"}, "beta": {"work_dir": "w"}}})")));
    QCOMPARE(config.lastError(), QStringLiteral("variants.beta 缺少 executable"));
    QVERIFY(config.variantIds().isEmpty());

    // A wrongly typed executable counts as missing.
    QVERIFY(!config.load(writeConfig(R"({"variants": {"lite": {"executable": 42}}})")));
    QCOMPARE(config.lastError(), QStringLiteral("variants.lite 缺少 executable"));
}

void TestProcessorConfig::badJsonFails_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("truncated") << QByteArray(R"({"variants": {"lite": {"executable": "a.ex)");
    QTest::newRow("not json") << QByteArray("executable = a.exe\n");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("root is an array") << QByteArray(R"([{"variants": {}}])");
    QTest::newRow("root is a number") << QByteArray("42");
    QTest::newRow("not utf-8") << QByteArray("{\"variants\": {\"lite\": {\"executable\": \"caf\xe9.exe\"}}}");
    QTest::newRow("binary") << QByteArray("\x00\x01\x02\xff\xfe", 5);
}

void TestProcessorConfig::badJsonFails()
{
    QFETCH(QByteArray, bytes);
    ProcessorConfig config;
    QVERIFY(!config.load(writeConfig(bytes)));
    QVERIFY2(config.lastError().startsWith(QStringLiteral("配置文件 JSON 解析失败: ")),
             qPrintable(config.lastError()));
    QVERIFY(config.lastError().size() > QStringLiteral("配置文件 JSON 解析失败: ").size());
    QVERIFY(config.variantIds().isEmpty());
}

void TestProcessorConfig::unreadableFileFails()
{
    ProcessorConfig config;
    const QString missing = m_dir.filePath(QStringLiteral("nowhere/tarngui_lite.json"));
    QVERIFY(!config.load(missing));
    QCOMPARE(config.lastError(), QStringLiteral("无法读取配置文件: ") + missing);
    // A folder is not a readable file either.
    QVERIFY(!config.load(m_dir.path()));
    QVERIFY(config.lastError().startsWith(QStringLiteral("配置文件 JSON 解析失败: ")) ||
            config.lastError().startsWith(QStringLiteral("无法读取配置文件: ")));
}

void TestProcessorConfig::nonObjectVariantsAreSkipped()
{
    ProcessorConfig config;
    QVERIFY(config.load(writeConfig(R"({"variants": {"junk": [1, 2], "lite": {"executable": "a.exe"}}})")));
    QCOMPARE(config.variantIds(), QStringList{"lite"});
}

void TestProcessorConfig::unknownActiveVariantFallsBackToTheOnlyOne()
{
    ProcessorConfig config;
    QVERIFY(config.load(
        writeConfig(R"({"active_variant": "ghost", "variants": {"only": {"executable": "a.exe"}}})")));
    QCOMPARE(config.activeVariantId(), QStringLiteral("only"));
    QVERIFY(
        config.load(writeConfig(R"({"active_variant": 7, "variants": {"only": {"executable": "a.exe"}}})")));
    QCOMPARE(config.activeVariantId(), QStringLiteral("only"));
}

void TestProcessorConfig::knownActiveVariantWins()
{
    ProcessorConfig config;
    QVERIFY(config.load(writeConfig(
        R"({"active_variant": "b", "variants": {"a": {"executable": "a.exe"}, "b": {"executable": "b.exe"}, "c": {"executable": "c.exe"}}})")));
    QCOMPARE(config.activeVariantId(), QStringLiteral("b"));
    QStringList ids = config.variantIds();
    ids.sort();
    QCOMPARE(ids, (QStringList{"a", "b", "c"}));
}

void TestProcessorConfig::extraArgsAsStringGivesEmptyList()
{
    ProcessorConfig config;
    QVERIFY(config.load(writeConfig(
        R"({"variants": {"lite": {"executable": "a.exe", "extra_args": "--fast", "omit_args": {"x": 1}}}})")));
    QCOMPARE(config.variant(QStringLiteral("lite")).extraArgs, QStringList());
    QCOMPARE(config.variant(QStringLiteral("lite")).omitArgs, QStringList());
}

void TestProcessorConfig::featuresDefaultToTrue()
{
    ProcessorConfig config;
    QVERIFY(config.load(writeConfig(
        R"({"variants": {"a": {"executable": "a.exe"}, "b": {"executable": "b.exe", "features": {"disable_crop": false}}}})")));
    const VariantConfig a = config.variant(QStringLiteral("a"));
    QVERIFY(a.analysisOnly && a.disableAnalysis && a.disableCrop && a.outputBin);
    const VariantConfig b = config.variant(QStringLiteral("b"));
    QVERIFY(b.analysisOnly && b.disableAnalysis && !b.disableCrop && b.outputBin);
    // Strings are kept exactly, display name defaults to the id.
    QCOMPARE(a.displayName, QStringLiteral("a"));
    QCOMPARE(a.keyFileArg, QString());
}

void TestProcessorConfig::workDirDefaultsToExecutableFolder()
{
    ProcessorConfig config;
    const QString path = writeConfig(R"({"variants": {"lite": {"executable": "bin/p.exe"}}})");
    QVERIFY(config.load(path));
    const QString cfgDir = m_dir.filePath(QStringLiteral("cfg"));
    QCOMPARE(config.resolvedWorkDir(QStringLiteral("lite")), cfgDir + "/bin");
    QCOMPARE(config.resolvedDefaultLut(QStringLiteral("lite")), QString());
}

void TestProcessorConfig::defaultLutIsRelativeToWorkDir()
{
    const QString workDir = m_dir.filePath(QStringLiteral("w"));
    ProcessorConfig config;
    const char *json =
        R"({"variants": {"lite": {"executable": "p.exe", "work_dir": "%1", "default_lut": "luts/a.bin"}}})";
    QVERIFY(config.load(writeConfig(QString::fromUtf8(json).arg(workDir).toUtf8())));
    QCOMPARE(config.resolvedWorkDir(QStringLiteral("lite")), workDir);
    QCOMPARE(config.resolvedDefaultLut(QStringLiteral("lite")), workDir + "/luts/a.bin");
}

void TestProcessorConfig::absolutePathsAreCleaned()
{
    const QString base = m_dir.path();
    ProcessorConfig config;
    const char *json =
        R"({"variants": {"lite": {"executable": "%1/x/../bin//p.exe", "default_lut": "%1/l/./a.bin"}}})";
    QVERIFY(config.load(writeConfig(QString::fromUtf8(json).arg(base).toUtf8())));
    QCOMPARE(config.resolvedExecutable(QStringLiteral("lite")), base + "/bin/p.exe");
    QCOMPARE(config.resolvedWorkDir(QStringLiteral("lite")), base + "/bin");
    QCOMPARE(config.resolvedDefaultLut(QStringLiteral("lite")), base + "/l/a.bin");
    QCOMPARE(config.resolvePath(QString()), QString());
    QCOMPARE(config.resolvePath(QStringLiteral("./a/../b.txt")), m_dir.filePath(QStringLiteral("cfg/b.txt")));
}

void TestProcessorConfig::unknownIdsNeverFail()
{
    ProcessorConfig config;
    QVERIFY(config.load(writeConfig(R"({"variants": {"lite": {"executable": "p.exe"}}})")));
    QCOMPARE(config.displayName(QStringLiteral("ghost")), QStringLiteral("ghost"));
    QCOMPARE(config.resolvedExecutable(QStringLiteral("ghost")), QString());
    QCOMPARE(config.resolvedWorkDir(QStringLiteral("ghost")), QString());
    QCOMPARE(config.resolvedDefaultLut(QStringLiteral("ghost")), QString());
    const VariantConfig v = config.variant(QStringLiteral("ghost"));
    QVERIFY(v.id.isEmpty() && v.executable.isEmpty() && v.extraArgs.isEmpty());
    QVERIFY(v.analysisOnly && v.disableAnalysis && v.disableCrop && v.outputBin);
}

void TestProcessorConfig::setActiveVariant()
{
    ProcessorConfig config;
    QVERIFY(config.load(writeConfig(
        R"({"active_variant": "a", "variants": {"a": {"executable": "a.exe"}, "b": {"executable": "b.exe"}}})")));
    QVERIFY(!config.setActiveVariant(QStringLiteral("ghost")));
    QCOMPARE(config.activeVariantId(), QStringLiteral("a"));
    QVERIFY(config.setActiveVariant(QStringLiteral("b")));
    QCOMPARE(config.activeVariantId(), QStringLiteral("b"));
}

void TestProcessorConfig::locatesTheFileInSearchOrder()
{
    // Candidates: beside the executable, one and two folders up, ../configs, the working
    // directory. Files are made from last to first, each must then win.
    const QDir appDir(QCoreApplication::applicationDirPath());
    const QString cwdFile = m_dir.filePath(QStringLiteral("cwd/") + kName);
    const QStringList candidates = {
        appDir.filePath(kName),
        appDir.filePath(QStringLiteral("../") + kName),
        appDir.filePath(QStringLiteral("../../") + kName),
        appDir.filePath(QStringLiteral("../configs/") + kName),
        cwdFile,
    };
    for (const QString &candidate : candidates)
        QVERIFY2(!QFileInfo::exists(candidate), qPrintable("left over: " + candidate));

    const QString previousCwd = QDir::currentPath();
    QVERIFY(TestFiles::write(cwdFile, "{}"));
    QVERIFY(QDir::setCurrent(QFileInfo(cwdFile).path()));
    QStringList made;
    bool ok = true;
    for (int i = candidates.size() - 1; i >= 0 && ok; --i) {
        if (i < candidates.size() - 1) {
            ok = TestFiles::write(candidates.at(i), "{}");
            made << candidates.at(i);
        }
        const QString found = ProcessorConfig::locateConfigFile();
        if (found != QDir::cleanPath(QFileInfo(candidates.at(i)).absoluteFilePath())) {
            qWarning("candidate %d: found %s", i, qPrintable(found));
            ok = false;
        }
    }
    for (const QString &file : made)
        QFile::remove(file);
    QDir(appDir.filePath(QStringLiteral("../configs"))).removeRecursively();
    QDir::setCurrent(previousCwd);
    QVERIFY(ok);

    // load() without a path uses the search.
    QFile::remove(cwdFile);
    QVERIFY(TestFiles::write(cwdFile, R"({"variants": {"lite": {"executable": "p.exe"}}})"));
    QVERIFY(QDir::setCurrent(QFileInfo(cwdFile).path()));
    ProcessorConfig config;
    const bool loaded = config.load();
    QDir::setCurrent(previousCwd);
    QVERIFY(loaded);
    QCOMPARE(config.configPath(), QDir::cleanPath(cwdFile));
}

void TestProcessorConfig::reportsWhenNoFileIsFound()
{
    const QString previousCwd = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_dir.path()));
    const QString found = ProcessorConfig::locateConfigFile();
    ProcessorConfig config;
    const bool loaded = config.load();
    QDir::setCurrent(previousCwd);
    QCOMPARE(found, QString());
    QVERIFY(!loaded);
    QCOMPARE(config.lastError(), QStringLiteral("未找到 tarngui_lite.json"));
}

QTEST_GUILESS_MAIN(TestProcessorConfig)
#include "tst_ProcessorConfig.moc"
