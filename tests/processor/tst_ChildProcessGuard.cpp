// A processor never outlives the program that started it: the program is killed outright and
// its processor goes with it; without the guard it would not.
#include "TestFiles.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <csignal>

namespace {

// Alive and not a zombie (a killed child that nobody has reaped yet counts as gone).
bool isRunning(qint64 pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return false;
    const QByteArray fields = stat.readAll();
    const int afterName = int(fields.lastIndexOf(')'));
    return afterName > 0 && fields.size() > afterName + 2 && fields.at(afterName + 2) != 'Z';
}

// The pid the program reports for its child ("child <pid>"), 0 when it says none in time.
qint64 childPid(QProcess &program)
{
    QByteArray output;
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 10000) {
        program.waitForReadyRead(100);
        output += program.readAll();
        const int at = int(output.indexOf("child "));
        const int end = at < 0 ? -1 : int(output.indexOf('\n', at));
        if (end > at)
            return output.mid(at + 6, end - at - 6).toLongLong();
    }
    return 0;
}

} // namespace

class TestChildProcessGuard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void processorDiesWithTheProgram_data();
    void processorDiesWithTheProgram();
};

void TestChildProcessGuard::processorDiesWithTheProgram_data()
{
    QTest::addColumn<bool>("guarded");
    QTest::newRow("guarded, as the tool starts it") << true;
    QTest::newRow("unguarded: the test can tell") << false;
}

void TestChildProcessGuard::processorDiesWithTheProgram()
{
    QFETCH(bool, guarded);
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TARN_SIM_HANG", "1"); // a processor that never ends by itself
    program.setProcessEnvironment(environment);
    QStringList args{TestFiles::tarnSimPath(), "--help"};
    if (!guarded)
        args.prepend("--unguarded");
    program.start(QStringLiteral(VELORA_RUN_HOST), args);
    const qint64 child = childPid(program);
    QVERIFY(child > 0);
    QVERIFY(isRunning(child));
    // Once the processor has written its first line: one that writes to the dead program's
    // pipe would die of that (SIGPIPE), guard or not.
    QTest::qWait(500);

    program.kill(); // the program dies without a chance to clean up
    QVERIFY(program.waitForFinished(5000));
    if (guarded) {
        QTRY_VERIFY_WITH_TIMEOUT(!isRunning(child), 5000);
    } else {
        QTest::qWait(500);
        QVERIFY(isRunning(child));
        ::kill(pid_t(child), SIGKILL);
    }
}

QTEST_GUILESS_MAIN(TestChildProcessGuard)
#include "tst_ChildProcessGuard.moc"
