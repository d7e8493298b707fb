// Times whole runs through the real window and the stand-in processor, and prints the tool's
// own overhead per row: the run's wall time minus the time the processor reports spending.
//
//   bench_run [FOLDER] [--rows N]
//
// Without FOLDER it makes N (default 20) 12-megapixel JPEG photos first. The processor is the
// built stand-in beside the program (build/bin/processor).
#include "BenchPhotos.h"
#include "app/MainWindow.h"
#include "images/ImageLoader.h"
#include "ui/UiLanguage.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    UiLanguage::set(UiLanguage::English);
    ImageLoader::applyAllocationLimit();

    QStringList args = QCoreApplication::arguments().mid(1);
    int rows = 20;
    const int rowsAt = int(args.indexOf(QStringLiteral("--rows")));
    if (rowsAt >= 0 && rowsAt + 1 < args.size()) {
        rows = qMax(1, args.at(rowsAt + 1).toInt());
        args.remove(rowsAt, 2);
    }
    QTemporaryDir scratch;
    QString folder = args.value(0);
    if (folder.isEmpty()) {
        folder = scratch.filePath(QStringLiteral("photos"));
        QDir().mkpath(folder);
        std::printf("No folder given: making %d 4000x3000 JPEG photos\n", rows);
        makePhotos(folder, rows);
    }
    const QStringList photos = photosIn(folder).mid(0, rows);

    // The window finds its processor through a configuration in the working directory.
    const QString processorDir =
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../bin/processor"));
    QFile config(scratch.filePath(QStringLiteral("tarngui_lite.json")));
    config.open(QIODevice::WriteOnly);
    config.write(QStringLiteral(R"({"variants": {"lite": {"executable": "%1/TARN-lite", "work_dir": "%1"}}})")
                     .arg(QDir::cleanPath(processorDir))
                     .toUtf8());
    config.close();
    QDir::setCurrent(scratch.path());
    qputenv("TMPDIR", QFile::encodeName(scratch.path()));
    const QString settings =
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("VeloraOfflineTool.ini"));
    QFile::remove(settings);

    double wallMs = 0;
    qint64 processorMs = 0;
    int done = 0;
    {
        MainWindow window;
        for (QLineEdit *edit : window.findChildren<QLineEdit *>()) {
            if (edit->placeholderText().startsWith(QStringLiteral("Required")))
                edit->setText(scratch.filePath(QStringLiteral("out")));
        }
        window.addImageFiles(photos);
        // The completion box is closed as soon as it shows.
        QTimer closer;
        QObject::connect(&closer, &QTimer::timeout, [] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
                box->done(QMessageBox::Cancel);
        });
        closer.start(20);

        QElapsedTimer timer;
        timer.start();
        window.onStartProcess();
        while (window.isProcessing())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        wallMs = double(timer.nsecsElapsed()) / 1e6;

        static const QRegularExpression finished(QStringLiteral("tarn-sim: finished in (\\d+) ms"));
        const QString log = window.findChild<QPlainTextEdit *>()->toPlainText();
        for (auto match = finished.globalMatch(log); match.hasNext();)
            processorMs += match.next().captured(1).toLongLong();
        done = int(log.count(QStringLiteral("  ✅ Done")));
    }
    QFile::remove(settings);

    const int count = int(photos.size());
    std::printf("%d row(s), %d done\n", count, done);
    std::printf("  run wall time                 %9.1f ms/row\n", wallMs / count);
    std::printf("  processor's own time          %9.1f ms/row\n", double(processorMs) / count);
    std::printf("  tool overhead                 %9.1f ms/row\n", (wallMs - double(processorMs)) / count);
    return done == count ? 0 : 1;
}
