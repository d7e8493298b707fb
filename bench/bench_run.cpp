// Times whole runs through the real window and the stand-in processor, and prints the run's
// wall time per row beside the processor's own time per row (and their ratio), the tool's own
// overhead per row, and the longest the event loop went without running.
//
//   bench_run [FOLDER] [--rows N] [--sleep MS] [--busy MS] [--processors N]
//   bench_run [FOLDER] [--rows N] --pack
//
// Without FOLDER it takes N (default 20) 12-megapixel JPEG photos of the kept photo set.
// --sleep gives the stand-in processor that many ms more per picture (TARN_SIM_SLEEP_MS), as
// a slower processor would take; --busy as many ms on the CPU (TARN_SIM_BUSY_MS), as a
// processor that uses a core would. --processors sets "Processors at once". --pack times
// velora-pack on the same pictures with --jobs 1 and --jobs 2 instead.
#include "BenchPhotos.h"
#include "BenchSetup.h"
#include "app/MainWindow.h"
#include "preprocess/PreviewRenderer.h"

#include "Heartbeat.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProcess>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <memory>

namespace {

// velora-pack's wall time for the pictures with --jobs jobs, in ms; negative when it failed.
double packWallMs(const QStringList &photos, int jobs)
{
    QTemporaryDir out;
    QProcess pack;
    pack.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer timer;
    timer.start();
    pack.start(
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../bin/velora-pack")),
        QStringList{QStringLiteral("--out"), out.path(), QStringLiteral("--jobs"), QString::number(jobs)} +
            photos);
    if (!pack.waitForFinished(3600 * 1000) || pack.exitCode() != 0)
        return -1;
    return double(timer.nsecsElapsed()) / 1e6;
}

int benchPack(const QStringList &photos)
{
    const double one = packWallMs(photos, 1);
    const double two = packWallMs(photos, 2);
    const int count = int(photos.size());
    std::printf("velora-pack, %d picture(s)\n", count);
    std::printf("  --jobs 1                  %9.1f ms/picture\n", one / count);
    std::printf("  --jobs 2                  %9.1f ms/picture   ratio %.2f\n", two / count, two / one);
    return one > 0 && two > 0 ? 0 : 1;
}

// Sets "Processors at once", beyond the cores as a computer with that many would offer it.
void setProcessors(MainWindow &window, int processors)
{
    auto *spin = window.findChild<QSpinBox *>(QStringLiteral("processorsAtOnce"));
    spin->setMaximum(qMax(spin->maximum(), processors));
    spin->setValue(processors);
}

// How long Stop, and then closing the window, hold the GUI thread one second into a run.
void timeStopAndClose(BenchSetup &setup, const QStringList &photos, int processors, double *stopMs,
                      double *closeMs)
{
    auto window = std::make_unique<MainWindow>();
    setup.prepare(*window);
    setProcessors(*window, processors);
    window->addImageFiles(photos);
    QElapsedTimer timer;
    window->onStartProcess();
    BenchSetup::waitFor(1000);
    timer.start();
    window->onStopProcess();
    *stopMs = double(timer.nsecsElapsed()) / 1e6;
    window->onStartProcess();
    BenchSetup::waitFor(1000);
    timer.start();
    window.reset();
    *closeMs = double(timer.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    BenchSetup::prepareProgram();

    QStringList args = QCoreApplication::arguments().mid(1);
    const int rows = qMax(1, BenchSetup::takeOption(args, QStringLiteral("--rows"), 20));
    const int sleepMs = qMax(0, BenchSetup::takeOption(args, QStringLiteral("--sleep"), 0));
    const int busyMs = qMax(0, BenchSetup::takeOption(args, QStringLiteral("--busy"), 0));
    const int processors = qMax(1, BenchSetup::takeOption(args, QStringLiteral("--processors"), 1));
    const bool pack = args.removeAll(QStringLiteral("--pack")) > 0;
    const QStringList photos =
        (args.isEmpty() ? photoSet(QStringLiteral("jpeg"), rows) : photosIn(args.first())).mid(0, rows);
    if (sleepMs > 0)
        qputenv("TARN_SIM_SLEEP_MS", QByteArray::number(sleepMs));
    if (busyMs > 0)
        qputenv("TARN_SIM_BUSY_MS", QByteArray::number(busyMs));
    if (pack)
        return benchPack(photos);

    BenchSetup setup;
    double wallMs = 0;
    qint64 processorMs = 0;
    qint64 gap = 0;
    int done = 0;
    {
        MainWindow window;
        setup.prepare(window);
        setProcessors(window, processors);
        window.addImageFiles(photos);
        // The run is timed alone: the rows' thumbnails are drawn first.
        PreviewRenderer *renderer = window.findChild<PreviewRenderer *>();
        BenchSetup::waitFor(600000, [renderer] { return renderer->isIdle(); });
        BenchSetup::waitFor(300);
        // The completion box is closed as soon as it shows.
        QTimer closer;
        QObject::connect(&closer, &QTimer::timeout, [] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
                box->done(QMessageBox::Cancel);
        });
        closer.start(20);

        const Heartbeat heartbeat;
        QElapsedTimer timer;
        timer.start();
        window.onStartProcess();
        BenchSetup::waitFor(3600 * 1000, [&window] { return !window.isProcessing(); });
        wallMs = double(timer.nsecsElapsed()) / 1e6;
        gap = heartbeat.longestGapMs();

        static const QRegularExpression finished(QStringLiteral("tarn-sim: finished in (\\d+) ms"));
        const QString log = window.findChild<QPlainTextEdit *>()->toPlainText();
        for (auto match = finished.globalMatch(log); match.hasNext();)
            processorMs += match.next().captured(1).toLongLong();
        done = int(log.count(QStringLiteral("  ✅ Done")));
    }

    double stopMs = 0;
    double closeMs = 0;
    timeStopAndClose(setup, photos, processors, &stopMs, &closeMs);

    const int count = int(photos.size());
    const double wallPerRow = wallMs / count;
    const double processorPerRow = double(processorMs) / count;
    std::printf("%d row(s), %d done, processor sleeping %d ms, busy %d ms, %d processor(s) at once\n", count,
                done, sleepMs, busyMs, processors);
    std::printf("  run wall time             %9.1f ms/row   processor %9.1f ms/row   ratio %.2f\n",
                wallPerRow, processorPerRow, wallPerRow / processorPerRow);
    std::printf("  tool overhead             %9.1f ms/row\n", wallPerRow - processorPerRow);
    std::printf("  longest event-loop gap    %9lld ms       (target <= 50)\n", gap);
    std::printf("  Stop during a run         %9.1f ms       (target <= 100)\n", stopMs);
    std::printf("  closing during a run      %9.1f ms       (target <= 100)\n", closeMs);
    return done == count ? 0 : 1;
}
