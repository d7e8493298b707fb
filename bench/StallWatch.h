#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <atomic>
#include <cstdio>
#include <memory>
#include <thread>

// Where the GUI thread is while its event loop stalls (Linux; elsewhere it watches nothing).
// A 5-ms timer on the GUI thread marks that the loop runs; a watcher thread, when no mark came
// for longer than the threshold, samples the GUI thread's stack every 20 ms (a signal whose
// handler records a backtrace) until the loop runs again. finish() ends the watching and prints
// each stall with its length and samples (named frames only, innermost first).
class StallWatch : public QObject
{
public:
    explicit StallWatch(int thresholdMs = 50);
    ~StallWatch() override;

    void finish(FILE *out);

private:
    struct Stall {
        qint64 startMs = 0;
        qint64 lengthMs = 0;
        QList<QStringList> samples;
    };
    void watch();

    QElapsedTimer m_clock;
    QTimer m_beat;
    std::atomic<qint64> m_lastBeatMs{0};
    std::atomic<bool> m_stop{false};
    int m_thresholdMs;
    QList<Stall> m_stalls; // written by the watcher, read once it has ended
    std::unique_ptr<std::thread> m_watcher;
};
