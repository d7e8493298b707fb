#include "processor/ProcessorSelfTest.h"

#include "processor/ChildProcessGuard.h"
#include "ui/AppStrings.h"

#include <QDir>
#include <QFileInfo>

ProcessorSelfTest::ProcessorSelfTest(QObject *parent)
    : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer); // the bounds are minimums: never give up early
    connect(&m_timer, &QTimer::timeout, this, &ProcessorSelfTest::onTimeout);
    connect(&m_process, &QProcess::started, this, &ProcessorSelfTest::onStarted);
    connect(&m_process, &QProcess::errorOccurred, this, &ProcessorSelfTest::onErrorOccurred);
    connect(&m_process, &QProcess::finished, this, &ProcessorSelfTest::onProcessFinished);
}

ProcessorSelfTest::~ProcessorSelfTest()
{
    m_process.disconnect(this);
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished(kKillMs);
    }
}

void ProcessorSelfTest::start(const QString &executable, const QStringList &args, const QString &workDir,
                              int expectedExitCode)
{
    m_expectedExitCode = expectedExitCode;
    m_killedForTimeout = false;
    m_running = true;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"),
                       QDir::toNativeSeparators(QFileInfo(executable).absolutePath()) +
                           QDir::listSeparator() + environment.value(QStringLiteral("PATH")));
    m_process.setProcessEnvironment(environment);
    m_process.setWorkingDirectory(workDir);
    ChildProcessGuard::prepare(&m_process);
    m_timer.start(kStartMs);
    m_process.start(executable, args);
}

void ProcessorSelfTest::onStarted()
{
    ChildProcessGuard::adopt(&m_process);
    m_timer.start(kFinishMs);
}

void ProcessorSelfTest::onErrorOccurred(QProcess::ProcessError error)
{
    // Only a failed start ends the test here; every other error is followed by finished().
    if (error == QProcess::FailedToStart && m_running)
        report(Str::processorSelfTestStartFailed(m_process.errorString()));
}

void ProcessorSelfTest::onTimeout()
{
    if (!m_running)
        return;
    if (m_process.state() == QProcess::Starting) {
        m_process.kill();
        report(Str::processorSelfTestStartFailed(m_process.errorString()));
        return;
    }
    if (!m_killedForTimeout) {
        m_killedForTimeout = true;
        m_process.kill();
        m_timer.start(kKillMs);
        return;
    }
    report(Str::processorSelfTestTimedOut()); // did not even go after the kill
}

void ProcessorSelfTest::onProcessFinished(int exitCode, QProcess::ExitStatus status)
{
    if (!m_running)
        return;
    if (m_killedForTimeout)
        report(Str::processorSelfTestTimedOut());
    else if (status == QProcess::CrashExit)
        report(Str::processorSelfTestCrashed(exitCode));
    else if (exitCode != m_expectedExitCode)
        report(Str::processorSelfTestAbnormalExit(exitCode));
    else
        report(QString());
}

void ProcessorSelfTest::report(const QString &errorLine)
{
    m_running = false;
    m_timer.stop();
    Q_EMIT finished(errorLine);
}
