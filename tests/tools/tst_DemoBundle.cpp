// The demo bundle the build lays out beside the program: the stand-in processor under the
// real name, its manifest and the configuration that points at it must work together.
#include "processor/ProcessorConfig.h"
#include "processor/ProcessorManifest.h"

#include "TestFiles.h"

#include <QDir>
#include <QProcess>
#include <QTest>

class TestDemoBundle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void configurationPointsAtTheStandIn();
    void manifestValidatesTheBundle();
    void smokeTestPasses();
};

void TestDemoBundle::configurationPointsAtTheStandIn()
{
    const QDir bin(TestFiles::binDir());
    ProcessorConfig config;
    QVERIFY2(config.load(bin.filePath("tarngui_lite.json")), qPrintable(config.lastError()));
    QCOMPARE(config.activeVariantId(), QStringLiteral("lite"));
    const QString executable = config.resolvedExecutable(QStringLiteral("lite"));
    QVERIFY2(QFileInfo(executable).isExecutable(), qPrintable(executable));
    QCOMPARE(QFileInfo(executable).completeBaseName(), QStringLiteral("TARN-lite"));
    QCOMPARE(config.resolvedWorkDir(QStringLiteral("lite")), QDir::cleanPath(bin.filePath("processor")));
}

void TestDemoBundle::manifestValidatesTheBundle()
{
    const QString processorDir = QDir(TestFiles::binDir()).filePath("processor");
    QCOMPARE(ProcessorManifest::locateManifestPath(processorDir),
             QDir(processorDir).filePath("processor_manifest.json"));
    const ProcessorManifest::Validation result = ProcessorManifest::validate(processorDir);
    QVERIFY2(result.ok, qPrintable(result.missing.join(", ")));
}

void TestDemoBundle::smokeTestPasses()
{
    const QString processorDir = QDir(TestFiles::binDir()).filePath("processor");
    const ProcessorManifest::SmokeTest smoke = ProcessorManifest::smokeTest(processorDir);
    QProcess process;
    process.setWorkingDirectory(processorDir);
    process.start(QDir(processorDir).filePath(smoke.executable), smoke.args);
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), smoke.expectExitCode);
    QVERIFY(process.readAllStandardOutput().contains("TEST DOUBLE"));
}

QTEST_GUILESS_MAIN(TestDemoBundle)
#include "tst_DemoBundle.moc"
