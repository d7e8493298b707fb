// Measures the per-photo cost of the image work of a run: loading at thumbnail, preview and
// full size, the export render of every fill mode, the JPEG save, and the whole per-row export
// (load + render + save), against a bare full decode of the same files. Then the export of
// the same pictures tagged Display P3 (as phones tag them), beside the untagged ones: what
// honouring the colour profile costs.
//
//   bench_export [FOLDER] [--rounds N]
//
// Without FOLDER it makes six 12-megapixel JPEG photos in a temporary folder first, and their
// Display P3 twins in a second one.
#include "BenchPhotos.h"
#include "images/ImageLoader.h"
#include "preprocess/ImagePreprocess.h"
#include "run/ExportRender.h"
#include "run/RenderAheadQueue.h"
#include "ui/UiLanguage.h"

#include <QBuffer>
#include <QColorSpace>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImageReader>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

const QSize kPanel(1200, 1600);

// Median over the rounds of the mean milliseconds per photo.
double medianMsPerPhoto(int rounds, const QStringList &files,
                        const std::function<void(const QString &)> &work)
{
    std::vector<double> perPhoto;
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        for (const QString &file : files)
            work(file);
        perPhoto.push_back(double(timer.nsecsElapsed()) / 1e6 / files.size());
    }
    std::sort(perPhoto.begin(), perPhoto.end());
    return perPhoto[perPhoto.size() / 2];
}

void report(const char *name, double ms)
{
    std::printf("  %-40s %9.1f ms/photo\n", name, ms);
    std::fflush(stdout);
}

// The export of untagged photos beside their Display P3 twins, through the per-row export
// above and through the run's own render (decoded no larger than the frame needs).
void compareProfiles(int rounds, const QStringList &untagged, const QStringList &p3, const QString &out)
{
    std::printf("Untagged photos and their Display P3 twins (profile share: target <= 15 %%)\n");
    const auto perRow = [&out](const QString &file) {
        renderPreprocExport(ImageLoader::load(file, 0), {FillMode::BlurFill, 0}, kPanel, false)
            .save(out, "JPEG", 92);
    };
    const auto runRender = [&out](const QString &file) {
        ExportRender::write({file, {FillMode::BlurFill, 0}, kPanel, false, QString()}, out);
    };
    const auto twins = [&](const char *what, const std::function<void(const QString &)> &work) {
        const double plain = medianMsPerPhoto(rounds, untagged, work);
        const double tagged = medianMsPerPhoto(rounds, p3, work);
        std::printf("  %-40s untagged %7.1f  P3 %7.1f ms/photo   profile share %+5.1f %%\n", what, plain,
                    tagged, (tagged - plain) / plain * 100);
        std::fflush(stdout);
    };
    twins("load full", [](const QString &file) { ImageLoader::load(file, 0); });
    twins("load maxSide 280", [](const QString &file) { ImageLoader::load(file, 280); });
    twins("per-row export (load + blur fill + save)", perRow);
    twins("run's render (covering load + blur + save)", runRender);
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    UiLanguage::set(UiLanguage::English);
    ImageLoader::prepareReaders();

    QStringList args = QCoreApplication::arguments().mid(1);
    int rounds = 3;
    const int roundsAt = int(args.indexOf(QStringLiteral("--rounds")));
    if (roundsAt >= 0 && roundsAt + 1 < args.size()) {
        rounds = std::max(1, args.at(roundsAt + 1).toInt());
        args.remove(roundsAt, 2);
    }
    QTemporaryDir scratch;
    QString folder = args.value(0);
    QString p3Folder;
    if (folder.isEmpty()) {
        folder = scratch.filePath(QStringLiteral("photos"));
        p3Folder = scratch.filePath(QStringLiteral("photos-p3"));
        QDir().mkpath(folder);
        QDir().mkpath(p3Folder);
        std::printf("No folder given: making six 4000x3000 JPEG photos in %s, and their Display P3 twins\n",
                    qPrintable(folder));
        makePhotos(folder, 6);
        makePhotos(p3Folder, 6, QColorSpace(QColorSpace::DisplayP3));
    }
    const QStringList files = photosIn(folder);
    if (files.isEmpty()) {
        std::fprintf(stderr, "no photos in %s\n", qPrintable(folder));
        return 2;
    }
    std::printf("%lld photo(s) from %s, median of %d round(s)\n", qint64(files.size()), qPrintable(folder),
                rounds);

    const double bare =
        medianMsPerPhoto(rounds, files, [](const QString &file) { QImageReader(file).read(); });
    report("bare full decode (QImageReader)", bare);
    for (int maxSide : {72, 280, 0}) {
        const QByteArray name =
            "load " + (maxSide ? "maxSide " + QByteArray::number(maxSide) : QByteArray("full"));
        report(name.constData(), medianMsPerPhoto(rounds, files, [maxSide](const QString &file) {
                   ImageLoader::load(file, maxSide);
               }));
    }

    // Renders and saves work on the images already in memory.
    std::vector<QImage> images;
    for (const QString &file : files)
        images.push_back(ImageLoader::load(file, 0));
    int index = 0;
    const auto eachImage = [&](const std::function<void(const QImage &)> &work) {
        return [&, work](const QString &) { work(images[size_t(index++ % images.size())]); };
    };
    for (bool landscape : {false, true}) {
        for (FillMode mode :
             {FillMode::BlurFill, FillMode::WhiteFill, FillMode::BlackFill, FillMode::CenterCrop}) {
            const QByteArray name =
                "render " + fillModeLabel(mode).toUtf8() + (landscape ? " (landscape)" : " (portrait)");
            report(name.constData(),
                   medianMsPerPhoto(rounds, files, eachImage([mode, landscape](const QImage &image) {
                                        renderPreprocExport(image, {mode, 0}, kPanel, landscape);
                                    })));
        }
    }
    const QImage exported = renderPreprocExport(images.front(), {FillMode::BlurFill, 0}, kPanel, false);
    report("JPEG save q92 (1200x1600)", medianMsPerPhoto(rounds, files, [&](const QString &) {
               QByteArray bytes;
               QBuffer buffer(&bytes);
               buffer.open(QIODevice::WriteOnly);
               exported.save(&buffer, "JPEG", 92);
           }));

    const QString out = scratch.filePath(QStringLiteral("export.jpg"));
    const double row = medianMsPerPhoto(rounds, files, [&](const QString &file) {
        renderPreprocExport(ImageLoader::load(file, 0), {FillMode::BlurFill, 0}, kPanel, false)
            .save(out, "JPEG", 92);
    });
    report("per-row export (load + blur fill + save)", row);
    std::printf("  per-row export / bare full decode: %.2f\n", row / bare);
    if (!p3Folder.isEmpty())
        compareProfiles(rounds, files, photosIn(p3Folder), out);
    return 0;
}
