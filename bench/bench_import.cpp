// Adds photos to the real window, as a user adding a folder would, and prints per photo set:
// the wall time per row, the longest the event loop went without running (a 10-ms heartbeat),
// the resident memory per row, each beside its reference: the serial cost of one decode per
// photo (at 280 px for JPEGs, full size for HEICs), and the ratio.
//
//   bench_import [--jpeg N] [--p3 N] [--heic N] [--faces N] [--frame-faces] [--face-share N]
//                [--no-duplicate-warnings] [--stalls]
//
// Defaults: 1000 JPEGs, 0 JPEGs tagged Display P3 (the same pictures) and 20 HEICs, 12
// megapixels each, made once and kept below the temporary folder (velora-bench-photos): 20
// distinct photos and copies of them, so with duplicate warnings on (the program's default)
// the adding also reads every copy to compare its bytes, and the box that tells of them is
// closed at once; --no-duplicate-warnings switches them off. The
// HEIC conversion cache starts empty. With P3 photos it also prints what their colour profile
// adds to one decode at 280 px. With --faces, the cost of finding the faces of N photos of the
// JPEG set: their decode at the detector's size, and the detection itself. With --frame-faces,
// the JPEGs are added a second time with "Frame new pictures around faces" on. With
// --face-share, N wide pictures with one to three faces (the tests' photograph) placed off
// centre: the share of their faces that a portrait frame keeps whole, centre-cropped and
// auto-framed. With --stalls, where the window was during each gap of the adding over 50 ms.
#include "BenchPhotos.h"
#include "BenchSetup.h"
#include "StallWatch.h"
#include "app/MainWindow.h"
#include "images/FaceDetector.h"
#include "images/ImageLoader.h"
#include "images/ImageTableWidget.h"
#include "preprocess/AutoFrame.h"
#include "preprocess/PreviewRenderer.h"
#include "ui/AppStrings.h"

#include "Heartbeat.h"
#include "TestFiles.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPainter>
#include <QRandomGenerator>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>

namespace {

// The serial cost of the one decode each photo needs, in ms per photo: the median of three
// rounds over (at most) 20 photos, as this machine's speed varies from one moment to the next.
double serialDecodeMs(const QStringList &photos, int maxSide)
{
    const QStringList sample = photos.mid(0, 20);
    QList<double> rounds;
    for (int round = 0; round < 3; ++round) {
        QElapsedTimer timer;
        timer.start();
        for (const QString &photo : sample)
            (void)ImageLoader::load(photo, maxSide);
        rounds << double(timer.nsecsElapsed()) / 1e6 / double(sample.size());
    }
    std::sort(rounds.begin(), rounds.end());
    return rounds.at(1);
}

void changeEveryRow(MainWindow &window);

// What a Display P3 profile adds to one decode at 280 px: the same pictures with and without
// it, each the fastest of five rounds taken in turn, so that the machine's moods fall on both.
void profileCost(const QStringList &untagged, const QStringList &p3)
{
    double plain = 1e9, tagged = 1e9;
    for (int round = 0; round < 5; ++round) {
        plain = std::min(plain, serialDecodeMs(untagged, 280));
        tagged = std::min(tagged, serialDecodeMs(p3, 280));
    }
    std::printf("  decode at 280 px, untagged %7.2f ms   Display P3 %7.2f ms   profile costs %5.2f ms "
                "(target <= 5)\n",
                plain, tagged, tagged - plain);
    std::fflush(stdout);
}

// The detection's own cost per photo, beside the decode at the detector's size it works on:
// medians over the photos (the bench's photos hold no face: the cascade scans every window,
// and the saliency fallback runs too).
void faceCost(const QStringList &photos)
{
    std::vector<double> decodes, detections;
    int faces = 0;
    for (const QString &photo : photos) {
        QElapsedTimer timer;
        timer.start();
        const QImage reduced = ImageLoader::load(photo, FaceDetector::kMaxSide);
        decodes.push_back(double(timer.nsecsElapsed()) / 1e6);
        timer.restart();
        faces += int(FaceDetector::detect(reduced).faces.size());
        detections.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(decodes.begin(), decodes.end());
    std::sort(detections.begin(), detections.end());
    std::printf("Finding faces: %d photo(s), %d face(s) found\n", int(photos.size()), faces);
    std::printf("  decode at %d px %7.1f ms   detection %7.1f ms per photo (target <= 40)\n",
                FaceDetector::kMaxSide, decodes[decodes.size() / 2], detections[detections.size() / 2]);
    std::fflush(stdout);
}

// Pictures with faces where a centre crop loses them: the share of faces a 1200 x 1600 portrait
// frame keeps whole (every pixel of the face's box in the crop window), centre-cropped and
// auto-framed, and how many of the faces the detector found.
void faceShare(int count)
{
    // Where the face is in the tests' photograph (fractions of it).
    const QRectF face(0.30, 0.08, 0.30, 0.33);
    const QSize panel(1200, 1600);
    QRandomGenerator random(20261126);
    int faces = 0, centred = 0, framed = 0, found = 0;
    for (int i = 0; i < count; ++i) {
        const QSize canvas = i % 2 ? QSize(2400, 1350) : QSize(2400, 1800);
        QImage picture(canvas, QImage::Format_RGB32);
        picture.fill(QColor(150 + random.bounded(80), 150 + random.bounded(80), 150 + random.bounded(80)));
        QPainter painter(&picture);
        const int people = 1 + i % 3;
        const int side = 420 + random.bounded(300);
        // A group stands together, away from the middle, on the left or the right.
        const bool right = random.bounded(2) == 1;
        QList<QRectF> expected;
        for (int p = 0; p < people; ++p) {
            const int x = right ? canvas.width() - side - p * side * 7 / 10 - random.bounded(120)
                                : p * side * 7 / 10 + random.bounded(120);
            const int y = random.bounded(qMax(1, canvas.height() - side));
            painter.drawImage(QRect(x, y, side, side), TestFiles::astronaut());
            expected << QRectF((x + face.x() * side) / canvas.width(),
                               (y + face.y() * side) / canvas.height(), face.width() * side / canvas.width(),
                               face.height() * side / canvas.height());
        }
        painter.end();
        const PictureSubjects subjects = FaceDetector::detect(picture.scaled(
            FaceDetector::kMaxSide, FaceDetector::kMaxSide, Qt::KeepAspectRatio, Qt::SmoothTransformation));
        found += int(subjects.faces.size());
        const PreprocState centre{FillMode::CenterCrop, 0};
        const PreprocState auto_ = AutoFrame::frame(centre, canvas, subjects, panel, false).state;
        const QRectF centreWindow = AutoFrame::window(canvas, centre, panel, false);
        const QRectF autoWindow = AutoFrame::window(canvas, auto_, panel, false);
        // The faces a later one covers (a person in front) count as long as their box shows.
        for (const QRectF &box : expected) {
            ++faces;
            centred += centreWindow.contains(box);
            framed += autoWindow.contains(box);
        }
    }
    std::printf("Faces kept whole by a portrait frame: %d picture(s), %d face(s), %d found by the detector\n",
                count, faces, found);
    std::printf("  centre crop %5.1f %%   auto-frame %5.1f %%\n", 100.0 * centred / qMax(1, faces),
                100.0 * framed / qMax(1, faces));
    std::fflush(stdout);
}

bool g_warnDuplicates = true;
bool g_stalls = false;

void importSet(const char *title, const QStringList &photos, int referenceMaxSide, bool framesFaces = false)
{
    const double reference = serialDecodeMs(photos, referenceMaxSide);
    QDir(ImageLoader::heicCacheDir()).removeRecursively();

    BenchSetup setup;
    MainWindow window;
    setup.prepare(window);
    for (QCheckBox *box : window.findChildren<QCheckBox *>())
        if (box->text() == Str::frameFacesSetting())
            box->setChecked(framesFaces);
    window.findChild<QAction *>(QStringLiteral("warnDuplicates"))->setChecked(g_warnDuplicates);
    window.show();
    BenchSetup::waitFor(300);
    // The pictures are in one folder: the window shows its progress dialog, as for a user.
    const QString folder = QFileInfo(photos.first()).absolutePath();
    const qint64 before = residentBytes();
    const Heartbeat heartbeat;
    std::optional<StallWatch> stalls;
    if (g_stalls)
        stalls.emplace();
    QElapsedTimer timer;
    timer.start();
    window.addImageFiles({folder});
    const double wall = double(timer.nsecsElapsed()) / 1e6;
    // The thumbnails the rows still wait for, and what the end of the adding queued up.
    PreviewRenderer *renderer = window.findChild<PreviewRenderer *>();
    BenchSetup::waitFor(600000, [renderer] { return renderer->isIdle(); });
    const double thumbnails = double(timer.nsecsElapsed()) / 1e6;
    BenchSetup::waitFor(300);
    const qint64 gap = heartbeat.longestGapMs();
    if (stalls)
        stalls->finish(stdout);
    const int rows = window.imageTable()->rowCount();
    const double perRowKb = double(residentBytes() - before) / 1024.0 / qMax(1, rows);

    std::printf("%s: %d photo(s), %d row(s)\n", title, int(photos.size()), rows);
    std::printf(
        "  wall time per row          %8.1f ms   one serial decode %7.1f ms   ratio %.2f (target <= %.1f)\n",
        wall / qMax(1, rows), reference, wall / qMax(1, rows) / reference, framesFaces ? 0.9 : 0.6);
    std::printf("  every thumbnail drawn      %8.1f ms   per row\n", thumbnails / qMax(1, rows));
    std::printf("  longest event-loop gap     %8lld ms   (target <= 100)\n", gap);
    std::printf("  resident memory per row    %8.0f KB   (target <= 300)\n", perRowKb);
    std::fflush(stdout);
    if (referenceMaxSide > 0 && !framesFaces)
        changeEveryRow(window);
}

// A batch fill over every row, then the frame turned to landscape: each row changes at once,
// its thumbnail follows from the pool.
void changeEveryRow(MainWindow &window)
{
    window.onSelectAllToggled(true);
    const auto measure = [&window](const char *what, const std::function<void()> &change) {
        PreviewRenderer *renderer = window.findChild<PreviewRenderer *>();
        const Heartbeat heartbeat;
        QElapsedTimer timer;
        timer.start();
        change();
        const double changed = double(timer.nsecsElapsed()) / 1e6;
        BenchSetup::waitFor(600000, [renderer] { return renderer->isIdle(); });
        std::printf("  %-26s %8.0f ms, thumbnails after %6.0f ms   longest gap %4lld ms (target <= 100)\n",
                    what, changed, double(timer.nsecsElapsed()) / 1e6, heartbeat.longestGapMs());
    };
    measure("batch white fill, all rows", [&window] { window.applyFillToCheckedRows(FillMode::WhiteFill); });
    measure("landscape frame, all rows", [&window] {
        for (QComboBox *combo : window.findChildren<QComboBox *>()) {
            if (combo->count() == 2 && combo->itemData(1).toString() == QLatin1String("90"))
                combo->setCurrentIndex(1);
        }
    });
    std::fflush(stdout);
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    BenchSetup::prepareProgram();
    QStringList args = QCoreApplication::arguments().mid(1);
    const int jpegs = BenchSetup::takeOption(args, QStringLiteral("--jpeg"), 1000);
    const int p3s = BenchSetup::takeOption(args, QStringLiteral("--p3"), 0);
    const int heics = BenchSetup::takeOption(args, QStringLiteral("--heic"), 20);
    const int faceCount = BenchSetup::takeOption(args, QStringLiteral("--faces"), 0);
    const int shareCount = BenchSetup::takeOption(args, QStringLiteral("--face-share"), 0);
    const bool frameFaces = args.removeAll(QStringLiteral("--frame-faces")) > 0;
    g_warnDuplicates = args.removeAll(QStringLiteral("--no-duplicate-warnings")) == 0;
    g_stalls = args.removeAll(QStringLiteral("--stalls")) > 0;
    // Dialogs that pop up (a start-up check that fails, a notice) are closed at once.
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
            box->done(QMessageBox::Ok);
    });
    closer.start(50);
    const QStringList jpegSet = jpegs > 0 ? photoSet(QStringLiteral("jpeg"), jpegs) : QStringList();
    const QStringList p3Set = p3s > 0 ? photoSet(QStringLiteral("jpeg-p3"), p3s) : QStringList();
    const QStringList heicSet = heics > 0 ? photoSet(QStringLiteral("heic"), heics) : QStringList();
    if (!jpegSet.isEmpty())
        importSet("JPEG", jpegSet, 280);
    if (!jpegSet.isEmpty() && frameFaces)
        importSet("JPEG, framing new pictures around faces", jpegSet, 280, true);
    if (!p3Set.isEmpty()) {
        importSet("JPEG tagged Display P3", p3Set, 280);
        profileCost(photoSet(QStringLiteral("jpeg"), int(p3Set.size())), p3Set);
    }
    if (!heicSet.isEmpty())
        importSet("HEIC (empty conversion cache)", heicSet, 0);
    if (faceCount > 0)
        faceCost(photoSet(QStringLiteral("jpeg"), faceCount));
    if (shareCount > 0)
        faceShare(shareCount);
    return 0;
}
