// Arranges a table of many rows in the real window and prints, each beside its target: the
// time of a sort by date taken (the dates already read), of undoing a batch fill over every
// row, of undoing a removal of every row (the rows made anew), of showing the grid of framed
// tiles and scrolling it through, page by page as each is drawn; the longest the event loop went
// without running meanwhile (a 10-ms heartbeat, the thumbnails drawn again included), and the
// resident memory per row with its undo steps, before the grid and with it.
//
//   bench_arrange [--rows N]
//
// Default: 1000 rows of small generated pictures (their decode is not what is measured here),
// each with its own date taken.
#include "BenchPhotos.h"
#include "BenchSetup.h"
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PictureGrid.h"
#include "preprocess/PreprocWidget.h"
#include "preprocess/PreviewRenderer.h"
#include "preprocess/TileRenderer.h"

#include "Heartbeat.h"
#include "TestFiles.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSlider>
#include <QUndoStack>

#include <cstdio>
#include <functional>

namespace {

// Runs step, then lets the window settle (its thumbnails drawn again); prints how long the step
// took and the longest freeze from its start to the settling.
void measure(const char *what, double targetMs, MainWindow &window, const std::function<void()> &step)
{
    BenchSetup::waitFor(200);
    const Heartbeat heartbeat;
    QElapsedTimer timer;
    timer.start();
    step();
    const double ms = double(timer.nsecsElapsed()) / 1e6;
    // The heartbeat beats again only once the loop runs: its first beat measures the step.
    BenchSetup::waitFor(300);
    auto *renderer = window.findChild<PreviewRenderer *>();
    BenchSetup::waitFor(60000, [renderer] { return !renderer || renderer->isIdle(); });
    const QByteArray target =
        targetMs > 0 ? "(target <= " + QByteArray::number(targetMs) + ")" : "(no target)";
    std::printf("  %-34s %7.0f ms %-16s longest gap %4lld ms (target <= 100)\n", what, ms, target.constData(),
                heartbeat.longestGapMs());
    std::fflush(stdout);
}

// Whether every tile in view is drawn for what its row shows now.
bool tilesInViewDrawn(MainWindow &window)
{
    PictureGrid *grid = window.pictureGrid();
    for (int row = 0; row < window.imageTable()->rowCount(); ++row) {
        if (grid->tileRect(row).intersects(grid->viewport()->rect()) &&
            !grid->renderer()->isCurrent(grid->idAt(row), window.preprocWidgetAt(row)->previewRequest(),
                                         grid->tileSize()))
            return false;
    }
    return true;
}

// Scrolls the grid from top to bottom a page at a time, each page once its tiles are drawn;
// prints how long that took and the longest freeze meanwhile.
void scrollThrough(MainWindow &window)
{
    QScrollBar *bar = window.pictureGrid()->verticalScrollBar();
    bar->setValue(0);
    BenchSetup::waitFor(10000, [&window] { return tilesInViewDrawn(window); });
    const Heartbeat heartbeat;
    QElapsedTimer timer;
    timer.start();
    int pages = 0;
    for (; bar->value() < bar->maximum(); ++pages) {
        bar->setValue(bar->value() + bar->pageStep());
        BenchSetup::waitFor(10000, [&window] { return tilesInViewDrawn(window); });
    }
    std::printf("  %-34s %7.0f ms %-16s longest gap %4lld ms (target <= 100)\n", "scroll the grid through",
                double(timer.nsecsElapsed()) / 1e6, qPrintable(QStringLiteral("(%1 pages)").arg(pages)),
                heartbeat.longestGapMs());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    BenchSetup::prepareProgram();
    QStringList args = QCoreApplication::arguments().mid(1);
    const int rows = BenchSetup::takeOption(args, QStringLiteral("--rows"), 1000);

    BenchSetup setup;
    const QStringList pictures = TestFiles::makePictures(setup.path(QStringLiteral("pictures")), rows,
                                                         QStringLiteral("pic"), QSize(320, 240));
    MainWindow window;
    setup.prepare(window);
    window.findChild<QAction *>(QStringLiteral("warnDuplicates"))->setChecked(false); // all one colour scheme
    window.show();
    BenchSetup::waitFor(300);
    const qint64 before = residentBytes();
    window.addImageFiles({setup.path(QStringLiteral("pictures"))});
    auto *renderer = window.findChild<PreviewRenderer *>();
    BenchSetup::waitFor(120000, [renderer] { return !renderer || renderer->isIdle(); });
    QRandomGenerator random(5);
    const QDateTime start(QDate(2020, 1, 1), QTime(0, 0));
    for (int row = 0; row < window.imageTable()->rowCount(); ++row)
        window.preprocWidgetAt(row)->setDateTaken(start.addSecs(qint64(random.bounded(100000000))));
    std::printf("%d rows\n", window.imageTable()->rowCount());

    measure("sort by date taken", 300, window, [&window] { window.onSortByDateTaken(); });
    measure("batch white fill, every row", 0, window, [&window] {
        window.onSelectAllToggled(true);
        window.applyFillToCheckedRows(FillMode::WhiteFill);
    });
    measure("undo the batch", 500, window, [&window] { window.undoStack()->undo(); });
    measure("redo the batch", 500, window, [&window] { window.undoStack()->redo(); });
    measure("remove every row", 0, window, [&window] { window.onRemoveSelected(); });
    measure("undo the removal (rows made anew)", 0, window, [&window] { window.undoStack()->undo(); });
    const int count = qMax(1, window.imageTable()->rowCount());
    std::printf("  resident memory per row, undo steps included: %lld KB\n",
                (residentBytes() - before) / 1024 / count);

    measure("show the grid (200-px tiles)", 0, window, [&window] {
        window.findChild<QAction *>(QStringLiteral("viewGrid"))->trigger();
        window.findChild<QSlider *>(QStringLiteral("gridZoom"))->setValue(200);
    });
    scrollThrough(window);
    std::printf("  resident memory per row, grid open, undo steps included: %lld KB (target <= 400)\n",
                (residentBytes() - before) / 1024 / count);
    (void)pictures;
    return 0;
}
