// Working on an image's rows in bands: every row once, large images on several threads, small
// ones on the caller's, and calls from several threads at once.
#include "images/RowBands.h"

#include <QMutex>
#include <QSet>
#include <QTest>
#include <QThread>
#include <QThreadPool>

#include <atomic>
#include <vector>

class TestRowBands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyRowOnce_data();
    void everyRowOnce();
    void smallImagesStayOnTheCallersThread();
    void severalCallersAtOnce();
};

void TestRowBands::everyRowOnce_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("minimumRows");
    QTest::newRow("none") << 0 << 256;
    QTest::newRow("one") << 1 << 256;
    QTest::newRow("small") << 300 << 256;
    QTest::newRow("large") << 3000 << 256;
    QTest::newRow("odd") << 1001 << 7;
}

void TestRowBands::everyRowOnce()
{
    QFETCH(int, rows);
    QFETCH(int, minimumRows);
    std::vector<std::atomic<int>> seen(static_cast<size_t>(rows));
    RowBands::run(rows, minimumRows, [&seen](int first, int end) {
        for (int y = first; y < end; ++y)
            ++seen[size_t(y)];
    });
    for (int y = 0; y < rows; ++y)
        QCOMPARE(seen[size_t(y)].load(), 1);
}

void TestRowBands::smallImagesStayOnTheCallersThread()
{
    QSet<QThread *> threads;
    RowBands::run(255, 256, [&threads](int, int) { threads.insert(QThread::currentThread()); });
    QCOMPARE(threads, QSet<QThread *>{QThread::currentThread()});
    if (QThread::idealThreadCount() < 2)
        QSKIP("one core: every image is worked on in one piece");
    QMutex mutex;
    int bands = 0;
    RowBands::run(4096, 256, [&](int, int) {
        const QMutexLocker lock(&mutex);
        ++bands;
    });
    QCOMPARE(bands, QThread::idealThreadCount());
}

void TestRowBands::severalCallersAtOnce()
{
    // Callers on a pool of their own, as the program's decoding and rendering threads are.
    QThreadPool callers;
    callers.setMaxThreadCount(4);
    std::atomic<int> rowsDone{0};
    for (int call = 0; call < 16; ++call)
        callers.start([&rowsDone] {
            RowBands::run(2048, 64, [&rowsDone](int first, int end) { rowsDone += end - first; });
        });
    QVERIFY(callers.waitForDone(30000));
    QCOMPARE(rowsDone.load(), 16 * 2048);
}

QTEST_GUILESS_MAIN(TestRowBands)
#include "tst_RowBands.moc"
