// Times whole runs through the real window and the stand-in processor, and prints the run's
// wall time per row beside the processor's own time per row (and their ratio), the tool's own
// overhead per row, and the longest the event loop went without running.
//
//   bench_run [FOLDER] [--rows N] [--sleep MS]
//
// Without FOLDER it takes N (default 20) 12-megapixel JPEG photos of the kept photo set.
// --sleep gives the stand-in processor that many ms more per picture (TARN_SIM_SLEEP_MS), as
// a slower processor would take.
#include "BenchPhotos.h"
#include "BenchSetup.h"
#include "app/MainWindow.h"

#include "Heartbeat.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    BenchSetup::prepareProgram();

    QStringList args = QCoreApplication::arguments().mid(1);
    const int rows = qMax(1, BenchSetup::takeOption(args, QStringLiteral("--rows"), 20));
    const int sleepMs = qMax(0, BenchSetup::takeOption(args, QStringLiteral("--sleep"), 0));
    const QStringList photos =
        (args.isEmpty() ? photoSet(QStringLiteral("jpeg"), rows) : photosIn(args.first())).mid(0, rows);
    if (sleepMs > 0)
        qputenv("TARN_SIM_SLEEP_MS", QByteArray::number(sleepMs));

    BenchSetup setup;
    double wallMs = 0;
    qint64 processorMs = 0;
    qint64 gap = 0;
    int done = 0;
    {
        MainWindow window;
        setup.prepare(window);
        window.addImageFiles(photos);
        BenchSetup::waitFor(500);
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

    const int count = int(photos.size());
    const double wallPerRow = wallMs / count;
    const double processorPerRow = double(processorMs) / count;
    std::printf("%d row(s), %d done, processor delay %d ms\n", count, done, sleepMs);
    std::printf("  run wall time             %9.1f ms/row   processor %9.1f ms/row   ratio %.2f\n",
                wallPerRow, processorPerRow, wallPerRow / processorPerRow);
    std::printf("  tool overhead             %9.1f ms/row\n", wallPerRow - processorPerRow);
    std::printf("  longest event-loop gap    %9lld ms       (target <= 100)\n", gap);
    return done == count ? 0 : 1;
}
