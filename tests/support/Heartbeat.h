#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

// Beats every 10 ms while the event loop runs, from construction on: the longest gap between
// two beats is the longest time the loop did not run, that is, the window's longest freeze.
class Heartbeat : public QObject
{
public:
    Heartbeat()
    {
        m_clock.start();
        connect(&m_timer, &QTimer::timeout, this, [this] {
            m_longestGap = qMax(m_longestGap, m_clock.elapsed() - m_lastBeat);
            m_lastBeat = m_clock.elapsed();
        });
        m_timer.start(10);
    }

    qint64 longestGapMs() const { return m_longestGap; }
    qint64 elapsedMs() const { return m_clock.elapsed(); }

private:
    QElapsedTimer m_clock;
    QTimer m_timer;
    qint64 m_lastBeat = 0;
    qint64 m_longestGap = 0;
};
