#pragma once

#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QTimer>

// The processor's start-up self-test, run without blocking the window: the smoke test's
// executable is started in the processor folder with that folder first on PATH, given 5 s
// to start and 10 s to end; one that does not end is killed and given 2 s more to go.
// finished() then brings the error line of the failure message, or an empty text when the
// processor passed. It is emitted once per start(). Destroying the object ends a test still
// under way, quietly.
class ProcessorSelfTest : public QObject
{
    Q_OBJECT

public:
    static constexpr int kStartMs = 5000;
    static constexpr int kFinishMs = 10000;
    static constexpr int kKillMs = 2000;

    explicit ProcessorSelfTest(QObject *parent = nullptr);
    ~ProcessorSelfTest() override;

    void start(const QString &executable, const QStringList &args, const QString &workDir,
               int expectedExitCode);
    bool isRunning() const { return m_running; }

Q_SIGNALS:
    void finished(const QString &errorLine);

private:
    void onStarted();
    void onErrorOccurred(QProcess::ProcessError error);
    void onProcessFinished(int exitCode, QProcess::ExitStatus status);
    void onTimeout();
    void report(const QString &errorLine);

    QProcess m_process;
    QTimer m_timer;
    int m_expectedExitCode = 0;
    bool m_running = false;
    bool m_killedForTimeout = false;
};
