// The processor's start-up self-test in the background: its four outcomes, with the event loop
// running all along.
#include "processor/ProcessorSelfTest.h"
#include "ui/UiLanguage.h"

#include "Heartbeat.h"
#include "TestFiles.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

class TestProcessorSelfTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void passes();
    void unexpectedExitCode();
    void crash();
    void cannotStart();
    void neverEndsIsKilledWithoutBlocking();
    void destroyedWhileRunning();

private:
    QString run(ProcessorSelfTest &test, int expectedExitCode = 0);

    QTemporaryDir m_dir;
    QString m_processor; // a copy of the stand-in of this test's own, so no other test's is touched
};

void TestProcessorSelfTest::initTestCase()
{
    UiLanguage::set(UiLanguage::English);
    QVERIFY(m_dir.isValid());
    m_processor = m_dir.filePath(QStringLiteral("self-test-processor"));
    QVERIFY(QFile::copy(TestFiles::tarnSimPath(), m_processor));
}

void TestProcessorSelfTest::cleanup()
{
    for (const char *name : {"TARN_SIM_HANG", "TARN_SIM_HELP_EXIT", "TARN_SIM_CRASH"})
        qunsetenv(name);
}

QString TestProcessorSelfTest::run(ProcessorSelfTest &test, int expectedExitCode)
{
    QSignalSpy finished(&test, &ProcessorSelfTest::finished);
    test.start(m_processor, {"--help"}, TestFiles::binDir(), expectedExitCode);
    if (!finished.wait(20000) || finished.size() != 1)
        return QStringLiteral("no single finished()");
    return finished.first().first().toString();
}

void TestProcessorSelfTest::passes()
{
    ProcessorSelfTest test;
    QCOMPARE(run(test), QString());
    QVERIFY(!test.isRunning());
}

void TestProcessorSelfTest::unexpectedExitCode()
{
    qputenv("TARN_SIM_HELP_EXIT", "7");
    ProcessorSelfTest test;
    QCOMPARE(run(test), QStringLiteral("Error: abnormal exit (exitCode=7)"));
    QCOMPARE(run(test, 7), QString());
}

void TestProcessorSelfTest::crash()
{
    qputenv("TARN_SIM_HANG", "1");
    ProcessorSelfTest test;
    QSignalSpy finished(&test, &ProcessorSelfTest::finished);
    test.start(m_processor, {"--help"}, TestFiles::binDir(), 0);
    QTest::qWait(200);
    QVERIFY(test.isRunning());
    // Killed from outside, it ends as a crash.
    QVERIFY(QProcess::execute("pkill", {"-KILL", "-f", m_processor}) == 0);
    QVERIFY(finished.wait(5000));
    QCOMPARE(finished.first().first().toString(),
             QStringLiteral("Error: process crashed (exitCode=0x00000009)"));
}

void TestProcessorSelfTest::cannotStart()
{
    ProcessorSelfTest test;
    QSignalSpy finished(&test, &ProcessorSelfTest::finished);
    test.start(TestFiles::binDir() + "/absent-program", {"--help"}, TestFiles::binDir(), 0);
    QVERIFY(finished.wait(10000));
    QVERIFY(
        finished.first().first().toString().startsWith(QStringLiteral("Error: failed to start process: ")));
}

void TestProcessorSelfTest::neverEndsIsKilledWithoutBlocking()
{
    qputenv("TARN_SIM_HANG", "1");
    ProcessorSelfTest test;
    QSignalSpy finished(&test, &ProcessorSelfTest::finished);
    const Heartbeat heartbeat;
    test.start(m_processor, {"--help"}, TestFiles::binDir(), 0);
    QVERIFY(finished.wait(20000));
    QCOMPARE(finished.first().first().toString(), QStringLiteral("Error: processor self-test timed out."));
    QVERIFY(heartbeat.elapsedMs() >= ProcessorSelfTest::kFinishMs);
    QVERIFY2(heartbeat.longestGapMs() < 500, qPrintable(QString::number(heartbeat.longestGapMs())));
}

void TestProcessorSelfTest::destroyedWhileRunning()
{
    qputenv("TARN_SIM_HANG", "1");
    QElapsedTimer timer;
    {
        ProcessorSelfTest test;
        test.start(m_processor, {"--help"}, TestFiles::binDir(), 0);
        QTest::qWait(100);
        timer.start();
    }
    QVERIFY(timer.elapsed() < ProcessorSelfTest::kKillMs);
    QTest::qWait(100);
    QCOMPARE(QProcess::execute("pgrep", {"-f", m_processor}), 1); // none left
}

QTEST_GUILESS_MAIN(TestProcessorSelfTest)
#include "tst_ProcessorSelfTest.moc"
