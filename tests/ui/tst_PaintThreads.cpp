// The threads of Qt's shared pool, which the window's painting splits its fills across and waits
// for, run at normal priority even when background work at idle priority is what starts them.
#include "ui/PaintThreads.h"

#include <QMutex>
#include <QSemaphore>
#include <QTest>
#include <QThread>
#include <QThreadPool>

#include <memory>

#if defined(Q_OS_LINUX)
#include <sched.h>
#endif

class TestPaintThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void threadsStartedByIdleWorkRunAtNormalPriority();
};

void TestPaintThreads::threadsStartedByIdleWorkRunAtNormalPriority()
{
#if !defined(Q_OS_LINUX)
    QSKIP("the scheduling class of a thread is read on Linux");
#else
    PaintThreads::keepNormal();
    // Nothing in this test program has used the pool yet: each of its threads is started now,
    // by the idle thread below, for tasks that hold it until all of them run.
    QThreadPool *pool = QThreadPool::globalInstance();
    const int threads = pool->maxThreadCount();
    QSemaphore running;
    QSemaphore release;
    QMutex mutex;
    QList<int> policies;
    const std::unique_ptr<QThread> background(QThread::create([&] {
        for (int i = 0; i < threads; ++i) {
            pool->start([&] {
                {
                    const QMutexLocker lock(&mutex);
                    policies << sched_getscheduler(0);
                }
                running.release();
                release.acquire();
            });
        }
    }));
    background->start(QThread::IdlePriority);
    QVERIFY(background->wait(10000));
    QVERIFY(running.tryAcquire(threads, 10000));
    release.release(threads);
    pool->waitForDone();

    QCOMPARE(policies.size(), threads);
    for (const int policy : std::as_const(policies))
        QCOMPARE(policy, SCHED_OTHER);
#endif
}

QTEST_GUILESS_MAIN(TestPaintThreads)
#include "tst_PaintThreads.moc"
