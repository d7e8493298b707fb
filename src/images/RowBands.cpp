#include "images/RowBands.h"

#include <QRunnable>
#include <QSemaphore>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <memory>
#include <vector>

namespace RowBands {

namespace {

QThreadPool &pool()
{
    // Never destroyed: its threads end by themselves when idle, and a band is never left
    // waiting for them (see run()).
    static QThreadPool *const shared = [] {
        auto *threads = new QThreadPool;
        threads->setMaxThreadCount(std::max(1, QThread::idealThreadCount() - 1));
        return threads;
    }();
    return *shared;
}

} // namespace

void run(int rows, int minimumRows, const std::function<void(int first, int end)> &work)
{
    const int bands = std::min(QThread::idealThreadCount(), rows / std::max(1, minimumRows));
    if (bands < 2) {
        work(0, rows);
        return;
    }
    const auto first = [rows, bands](int band) { return int(qint64(rows) * band / bands); };
    QSemaphore done;
    std::vector<std::unique_ptr<QRunnable>> others;
    for (int band = 1; band < bands; ++band) {
        others.emplace_back(QRunnable::create([&work, &done, &first, band] {
            work(first(band), first(band + 1));
            done.release();
        }));
        others.back()->setAutoDelete(false);
        pool().start(others.back().get());
    }
    work(0, first(1));
    for (const std::unique_ptr<QRunnable> &band : others) {
        if (pool().tryTake(band.get()))
            band->run();
    }
    done.acquire(bands - 1);
}

} // namespace RowBands
