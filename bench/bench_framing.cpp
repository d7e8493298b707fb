// Measures framing a 12-megapixel photo in the preview dialog: the cost of one update of the
// framed preview while the picture is dragged or zoomed (what the user waits for between two
// mouse moves), beside the cost of rendering the preview at the panel's resolution, which is
// what every update would cost without the screen-size render; the e-paper look of a
// 1200 x 1600 composition; and the dialog's longest freeze (the longest time its event loop
// stood still) while the picture is framed, toned and switched to e-paper or actual pixels,
// with the time until the render at the panel's resolution arrived.
//
//   bench_framing [PHOTO] [--moves N]
//
// Without PHOTO it uses the first photo of the kept JPEG set (velora-bench-photos).
#include "BenchPhotos.h"
#include "BenchSetup.h"
#include "FramedState.h"
#include "Heartbeat.h"
#include "images/ImageLoader.h"
#include "preprocess/EpaperLook.h"
#include "preprocess/ImagePreviewDialog.h"
#include "preprocess/PanelRenderer.h"
#include "preprocess/ToneControls.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QWheelEvent>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

const QSize kPanel(1200, 1600);

struct Spread {
    double median = 0;
    double worst = 0;
    int changed = -1; // updates that changed the preview, where counted
};

Spread spreadOf(std::vector<double> ms)
{
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms.back()};
}

Spread timeEach(int count, const std::function<void(int)> &step)
{
    std::vector<double> ms;
    for (int i = 0; i < count; ++i) {
        QElapsedTimer timer;
        timer.start();
        step(i);
        ms.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    return spreadOf(ms);
}

void report(const char *name, const Spread &spread, const char *reference)
{
    std::printf("  %-36s median %6.1f ms  worst %6.1f ms   %s", name, spread.median, spread.worst, reference);
    if (spread.changed >= 0)
        std::printf(" (%d updates)", spread.changed);
    std::printf("\n");
    std::fflush(stdout);
}

// Counts the calls of step that gave the preview label a new pixmap.
std::function<void(int)> counting(QWidget *surface, int *changed, const std::function<void(int)> &step)
{
    return [surface, changed, step](int i) {
        const qint64 before = static_cast<QLabel *>(surface)->pixmap().cacheKey();
        step(i);
        if (static_cast<QLabel *>(surface)->pixmap().cacheKey() != before)
            ++*changed;
    };
}

// One drag of the picture across the dialog, a mouse move at a time; each move is timed from
// the event to the new pixmap on the label.
Spread dragUpdates(const QImage &photo, const PreprocState &state, int moves)
{
    ImagePreviewDialog dialog(photo, kPanel, false, state);
    dialog.show();
    QWidget *surface = dialog.previewLabel();
    const QPoint from = surface->rect().center();
    QTest::mousePress(surface, Qt::LeftButton, {}, from);
    int changed = 0;
    Spread spread = timeEach(moves, counting(surface, &changed, [&](int i) {
                                 const int x = (i % 40 < 20 ? i % 20 : 20 - i % 20) * 6; // back and forth
                                 QTest::mouseMove(surface, from + QPoint(x, x / 3));
                             }));
    QTest::mouseRelease(surface, Qt::LeftButton, {}, from);
    spread.changed = changed;
    return spread;
}

Spread wheelUpdates(const QImage &photo, const PreprocState &state, int steps)
{
    ImagePreviewDialog dialog(photo, kPanel, false, state);
    dialog.show();
    QWidget *surface = dialog.previewLabel();
    const QPointF at = surface->rect().center();
    int changed = 0;
    Spread spread = timeEach(steps, counting(surface, &changed, [&](int i) {
                                 QWheelEvent wheel(at, surface->mapToGlobal(at), QPoint(),
                                                   QPoint(0, i % 20 < 10 ? 120 : -120), Qt::NoButton,
                                                   Qt::NoModifier, Qt::NoScrollPhase, false);
                                 QApplication::sendEvent(surface, &wheel);
                             }));
    spread.changed = changed;
    return spread;
}

// The render at the panel's resolution itself, as the dialog's worker makes it.
Spread fullRenders(const QImage &photo, const PreprocState &state, bool epaper, int count)
{
    const PanelRenderer::Request request{photo, state, kPanel, false, epaper, QSize(390, 520)};
    return timeEach(count, [&](int) { (void)PanelRenderer::render(request); });
}

bool waitForFullRender(const ImagePreviewDialog &dialog)
{
    return QTest::qWaitFor([&dialog] { return !dialog.isShowingQuickPreview(); }, 30000);
}

// Runs a gesture of the user's in the shown dialog, with the event loop running between its
// steps as it does between mouse moves, and then waits for the render at the panel's resolution.
void freezeThrough(const char *name, ImagePreviewDialog &dialog, const std::function<void()> &gesture)
{
    waitForFullRender(dialog);
    QTest::qWait(50);
    const Heartbeat heartbeat;
    QTest::qWait(30);
    gesture();
    QElapsedTimer untilFull;
    untilFull.start();
    const bool arrived = waitForFullRender(dialog);
    const qint64 fullMs = untilFull.elapsed();
    QTest::qWait(30);
    std::printf("  %-36s longest freeze %5lld ms   full render after %5lld ms%s\n", name,
                static_cast<long long>(heartbeat.longestGapMs()), static_cast<long long>(fullMs),
                arrived ? "" : " (did not arrive)");
    std::fflush(stdout);
}

void freezes(const QImage &photo)
{
    ImagePreviewDialog dialog(photo, kPanel, false, framedState(FillMode::CenterCrop, 0.5, 0.5, 1.5));
    dialog.show();
    QWidget *surface = dialog.previewLabel();
    const QPoint from = surface->rect().center();
    const auto drag = [&] {
        QTest::mousePress(surface, Qt::LeftButton, {}, from);
        for (int i = 1; i <= 30; ++i) {
            QTest::mouseMove(surface, from + QPoint(i * 4, i));
            QTest::qWait(16); // a mouse at 60 Hz
        }
        QTest::mouseRelease(surface, Qt::LeftButton, {}, from + QPoint(120, 30));
    };
    freezeThrough("drag, then release", dialog, drag);
    QSlider *exposure = dialog.toneControls()->exposureSlider();
    freezeThrough("tone: preset Vivid", dialog,
                  [&] { dialog.toneControls()->presetBox()->setCurrentIndex(int(TonePreset::Vivid)); });
    freezeThrough("tone: exposure slider moved", dialog, [&] {
        for (int step = 1; step <= 20; ++step) {
            exposure->setValue(step * exposure->maximum() / 40);
            QTest::qWait(16);
        }
    });
    freezeThrough("switched to e-paper", dialog, [&] { dialog.epaperCheckBox()->click(); });
    freezeThrough("drag as e-paper, then release", dialog, drag);
    freezeThrough("switched to actual pixels", dialog, [&] { dialog.actualPixelsButton()->click(); });
    freezeThrough("switched to plain at actual pixels", dialog, [&] { dialog.epaperCheckBox()->click(); });
    freezeThrough("before/after at actual pixels", dialog, [&] { dialog.beforeButton()->click(); });
    freezeThrough("back to the fitted view", dialog, [&] { dialog.actualPixelsButton()->click(); });
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    // The offscreen platform's note on every dialog shown is noise here.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &message) {
        if (!message.contains(QLatin1String("propagateSizeHints")))
            std::fprintf(stderr, "%s\n", qPrintable(message));
    });
    BenchSetup::prepareProgram();
    QStringList args = QCoreApplication::arguments().mid(1);
    const int moves = BenchSetup::takeOption(args, QStringLiteral("--moves"), 60);
    const QString path =
        args.isEmpty() ? photoSet(QStringLiteral("jpeg"), 1).constFirst() : args.constFirst();
    const QImage photo = ImageLoader::load(path, 0);
    if (photo.isNull()) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
        return 1;
    }
    std::printf("Framing %s (%dx%d) for a %dx%d panel, %d updates each\n", qPrintable(path), photo.width(),
                photo.height(), kPanel.width(), kPanel.height(), moves);

    std::printf("\nOne update while framing (target: 30 ms)\n");
    report("drag, centre crop 100 %",
           dragUpdates(photo, framedState(FillMode::CenterCrop, 0.5, 0.5, 1.0), moves), "screen-size render");
    report("drag, centre crop 250 %",
           dragUpdates(photo, framedState(FillMode::CenterCrop, 0.5, 0.5, 2.5), moves), "screen-size render");
    report("drag, blur fill 200 %", dragUpdates(photo, framedState(FillMode::BlurFill, 0.5, 0.5, 2.0), moves),
           "screen-size render");
    report("wheel zoom, blur fill",
           wheelUpdates(photo, framedState(FillMode::BlurFill, 0.5, 0.5, 1.0), moves), "screen-size render");
    report("wheel zoom, centre crop",
           wheelUpdates(photo, framedState(FillMode::CenterCrop, 0.5, 0.5, 1.0), moves),
           "screen-size render");

    const int fullRounds = std::max(3, moves / 6);
    std::printf("\nThe preview at the panel's resolution (after a pause; the reference above)\n");
    struct FullCase {
        const char *name;
        PreprocState state;
        bool epaper;
        const char *note;
    };
    const FullCase fullCases[] = {
        {"full render, centre crop 100 %", framedState(FillMode::CenterCrop, 0.5, 0.5, 1.0), false,
         "as every update would cost"},
        {"full render, centre crop 250 %", framedState(FillMode::CenterCrop, 0.5, 0.5, 2.5), false,
         "as every update would cost"},
        {"full render, blur fill 200 %", framedState(FillMode::BlurFill, 0.5, 0.5, 2.0), false,
         "as every update would cost"},
        {"full render as e-paper, blur fill", framedState(FillMode::BlurFill, 0.5, 0.5, 1.0), true,
         "render + e-paper + frame"},
        {"full render, Vivid, centre crop",
         PreprocState{FillMode::CenterCrop, 0, 0.5, 0.5, 1.0, {TonePreset::Vivid}}, false, "with the tone"},
    };
    for (const FullCase &c : fullCases)
        report(c.name, fullRenders(photo, c.state, c.epaper, fullRounds), c.note);

    std::printf("\nThe dialog's longest freeze through a gesture (target: under 100 ms)\n");
    freezes(photo);

    std::printf("\nThe e-paper look of a 1200x1600 composition (target: 150 ms)\n");
    const QImage composition =
        renderPreprocDisplayPreview(photo, framedState(FillMode::BlurFill, 0.5, 0.5, 1.0), kPanel, false);
    report("e-paper look", timeEach(fullRounds, [&](int) { (void)EpaperLook::render(composition); }),
           "serpentine Floyd-Steinberg, six inks");
    return 0;
}
