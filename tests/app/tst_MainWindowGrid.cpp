// The picture grid of the real window: the framed tiles with their names, statuses and marks, the
// zoom, the selection acting as the check boxes do, tiles dragged with the mouse, the preview
// opened by a double-click, and tiles drawn as they come into view.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "preprocess/ImagePreviewDialog.h"
#include "preprocess/PictureGrid.h"
#include "preprocess/PreprocWidget.h"
#include "preprocess/TileRenderer.h"

#include "ModalAnswerer.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QScrollBar>
#include <QSlider>
#include <QTest>

namespace {

QAction *viewAction(MainWindow &window, const char *name)
{
    return window.findChild<QAction *>(QLatin1String(name));
}

QPoint centreOf(PictureGrid *grid, int row) { return grid->tileRect(row).center(); }

// Whether the tile of row is drawn for what its row shows now.
bool tileIsCurrent(MainWindow &window, int row)
{
    PictureGrid *grid = window.pictureGrid();
    return grid->renderer()->isCurrent(grid->idAt(row), window.preprocWidgetAt(row)->previewRequest(),
                                       grid->tileSize());
}

void click(PictureGrid *grid, int row, Qt::KeyboardModifiers modifiers = {})
{
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, modifiers, centreOf(grid, row));
}

// Presses on a selected tile, moves the mouse to to and lets go, as a hand does.
void dragWithMouse(QWidget *viewport, const QPoint &from, const QPoint &to)
{
    QTest::mousePress(viewport, Qt::LeftButton, {}, from);
    QTest::mouseMove(viewport, from + QPoint(QApplication::startDragDistance() + 4, 0));
    QTest::mouseMove(viewport, (from + to) / 2);
    QTest::mouseMove(viewport, to);
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, to);
}

} // namespace

class TestMainWindowGrid : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void listIsTheDefaultAndTheGridIsRemembered();
    void tilesShowWhatTheFrameWillShow();
    void tilesShowTheStatusAndTheMarks();
    void theZoomSetsTheTileHeight();
    void selectedTilesAreTheCheckedRows();
    void theBatchBarAndDeleteActOnTheSelectedTiles();
    void tilesDraggedWithTheMouseMakeThePackageInTheirOrder();
    void aTileDraggedToTheEndGoesLast();
    void aDoubleClickOpensThePreview();
    void tilesAreDrawnAsTheyComeIntoView();

private:
    PictureGrid *showGrid(int tileHeight = PictureGrid::kMinTileHeight)
    {
        viewAction(*m_window, "viewGrid")->trigger();
        m_window->findChild<QSlider *>(QStringLiteral("gridZoom"))->setValue(tileHeight);
        m_window->resize(1000, 900);
        (void)QTest::qWaitFor([this] { return m_window->pictureGrid()->isVisible(); });
        return m_window->pictureGrid();
    }
};

void TestMainWindowGrid::listIsTheDefaultAndTheGridIsRemembered()
{
    QVERIFY(!m_window->isGridShown());
    QVERIFY(m_window->imageTable()->isVisible());
    QVERIFY(viewAction(*m_window, "viewList")->isChecked());

    showGrid(260);
    QVERIFY(m_window->isGridShown());
    QVERIFY(!m_window->imageTable()->isVisible());
    QVERIFY(viewAction(*m_window, "viewGrid")->isChecked());

    m_window = std::make_unique<MainWindow>();
    m_window->show();
    QVERIFY(m_window->isGridShown());
    QCOMPARE(m_window->pictureGrid()->tileHeight(), 260);
    viewAction(*m_window, "viewList")->trigger();
    QVERIFY(m_window->imageTable()->isVisible());
    m_window = std::make_unique<MainWindow>();
    QVERIFY(!m_window->isGridShown());
}

void TestMainWindowGrid::tilesShowWhatTheFrameWillShow()
{
    addColours({Qt::red, Qt::green, Qt::blue});
    PictureGrid *grid = showGrid(200);
    for (int row = 0; row < 3; ++row)
        QTRY_VERIFY(tileIsCurrent(*m_window, row));
    QCOMPARE(grid->tileSize().height(), 200);

    // The tile is the framed picture at the tile's size, and the grid paints it.
    const PreviewRenderer::Request request = m_window->preprocWidgetAt(1)->previewRequest();
    const QImage expected = PreviewRenderer::render(request, grid->tileSize());
    QCOMPARE(expected.height(), 200);
    QCOMPARE(grid->renderer()->tile(grid->idAt(1), request, grid->tileSize()), expected);
    const QImage shown = grid->viewport()->grab().toImage();
    const QRect rect = grid->tileRect(1);
    const QColor centre = shown.pixelColor(rect.center().x(), rect.top() + 6 + grid->tileSize().height() / 2);
    QVERIFY2(centre.green() > 200 && centre.red() < 60 && centre.blue() < 60, qPrintable(centre.name()));

    // A change of the row is drawn again.
    m_window->preprocWidgetAt(1)->stepRotate(90, true);
    QVERIFY(!tileIsCurrent(*m_window, 1));
    QTRY_VERIFY(tileIsCurrent(*m_window, 1));

    // So is a frame hung the other way, each tile as wide as the frame now is.
    comboStartingWith(*m_window, QStringLiteral("Portrait (0)"))->setCurrentIndex(1);
    QCOMPARE(grid->tileSize().height(), 200);
    QVERIFY(grid->tileSize().width() > 200);
    QVERIFY(grid->tileRect(0).width() > grid->tileSize().width());
    for (int row = 0; row < 3; ++row)
        QTRY_VERIFY(tileIsCurrent(*m_window, row));
}

void TestMainWindowGrid::tilesShowTheStatusAndTheMarks()
{
    addPictures(
        QList<QImage>{QImage(40, 30, QImage::Format_RGB32), QImage(1600, 1200, QImage::Format_RGB32)});
    PictureGrid *grid = showGrid();
    QCOMPARE(grid->tileAt(0).name, rowNames().at(0));
    QCOMPARE(grid->tileAt(0).status, statusText(0));

    // The small picture is marked as too small; the other is not until it gets a tone.
    const GridTile small = grid->tileAt(0);
    QCOMPARE(small.marks.size(), 1);
    QCOMPARE(small.marks.first().first, m_window->preprocWidgetAt(0)->lowResolutionMark()->text());
    QVERIFY(!small.marks.first().second.isEmpty());
    QVERIFY(small.toolTip.contains(small.marks.first().second));
    QVERIFY(grid->tileAt(1).marks.isEmpty());
    ToneSettings tone;
    tone.exposure = 0.5;
    m_window->preprocWidgetAt(1)->setTone(tone, true);
    QCOMPARE(grid->tileAt(1).marks.size(), 1);
    QCOMPARE(grid->tileAt(1).marks.first().first, QStringLiteral("◐"));

    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QCOMPARE(grid->tileAt(1).status, QStringLiteral("Done ✓"));
}

void TestMainWindowGrid::theZoomSetsTheTileHeight()
{
    addColours({Qt::red});
    PictureGrid *grid = showGrid(200);
    QTRY_VERIFY(tileIsCurrent(*m_window, 0));
    auto *zoom = m_window->findChild<QSlider *>(QStringLiteral("gridZoom"));
    zoom->setValue(320);
    QCOMPARE(grid->tileSize().height(), 320);
    QVERIFY(grid->tileRect(0).height() > 320);
    QTRY_VERIFY(tileIsCurrent(*m_window, 0));
    const PreviewRenderer::Request request = m_window->preprocWidgetAt(0)->previewRequest();
    QCOMPARE(grid->renderer()->tile(grid->idAt(0), request, grid->tileSize()).height(), 320);
    zoom->setValue(50);
    QCOMPARE(grid->tileHeight(), PictureGrid::kMinTileHeight);
    zoom->setValue(900);
    QCOMPARE(grid->tileHeight(), PictureGrid::kMaxTileHeight);
}

void TestMainWindowGrid::selectedTilesAreTheCheckedRows()
{
    addPictures(6);
    check({4}); // checked in the list: selected as the grid comes up
    PictureGrid *grid = showGrid();
    QCOMPARE(grid->selectedRowNumbers(), QList<int>{4});

    click(grid, 1);
    click(grid, 3, Qt::ControlModifier);
    QCOMPARE(m_window->checkedRows(), (QList<int>{1, 3}));
    QTRY_COMPARE(m_window->checkedRowsInTable(), (QList<int>{1, 3}));
    // Shift adds the run from the last tile clicked.
    click(grid, 5, Qt::ShiftModifier);
    QCOMPARE(m_window->checkedRows(), (QList<int>{1, 3, 4, 5}));
    QTRY_COMPARE(m_window->checkedRowsInTable(), (QList<int>{1, 3, 4, 5}));

    grid->setFocus();
    QTest::keyClick(grid, Qt::Key_A, Qt::ControlModifier);
    QTRY_COMPARE(m_window->checkedRowsInTable(), (QList<int>{0, 1, 2, 3, 4, 5}));

    // Select all unticked: no tile is selected any more.
    selectAllBox()->setChecked(true);
    selectAllBox()->setChecked(false);
    QVERIFY(grid->selectedRowNumbers().isEmpty());
    QVERIFY(m_window->checkedRows().isEmpty());

    // A rubber band from below the tiles up over the first column of tiles.
    const QRect last = grid->tileRect(5);
    const QPoint start(grid->tileRect(0).left() + 4, last.bottom() + 12);
    QVERIFY(start.y() < grid->viewport()->height());
    const QPoint end = grid->tileRect(0).center();
    QTest::mousePress(grid->viewport(), Qt::LeftButton, {}, start);
    QTest::mouseMove(grid->viewport(), (start + end) / 2);
    QTest::mouseMove(grid->viewport(), end);
    QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, end);
    QList<int> inBand;
    for (int row = 0; row < 6; ++row) {
        if (QRect(start, end).normalized().intersects(grid->tileRect(row)))
            inBand << row;
    }
    QVERIFY(!inBand.isEmpty() && inBand.size() < 6);
    QCOMPARE(m_window->checkedRows(), inBand);
    QTRY_COMPARE(m_window->checkedRowsInTable(), inBand);

    // Back in the list, the rows stay checked.
    viewAction(*m_window, "viewList")->trigger();
    QCOMPARE(m_window->checkedRows(), inBand);
}

void TestMainWindowGrid::theBatchBarAndDeleteActOnTheSelectedTiles()
{
    addPictures(4);
    const QStringList names = rowNames();
    PictureGrid *grid = showGrid();
    click(grid, 0);
    click(grid, 2, Qt::ControlModifier);
    QCOMPARE(m_window->applyRotateStepToCheckedRows(90), 2);
    for (int row = 0; row < 4; ++row)
        QCOMPARE(m_window->preprocWidgetAt(row)->state().rotationDegrees, row % 2 == 0 ? 90 : 0);

    grid->setFocus();
    QTest::keyClick(grid, Qt::Key_Delete);
    QCOMPARE(rowNames(), (QStringList{names[1], names[3]}));
    // And the removal is undone as any other.
    QTest::keyClick(grid, Qt::Key_Z, Qt::ControlModifier);
    QTRY_COMPARE(rowNames(), names);
}

void TestMainWindowGrid::tilesDraggedWithTheMouseMakeThePackageInTheirOrder()
{
    addColours({Qt::red, Qt::green, Qt::blue, Qt::yellow});
    const QStringList names = rowNames();
    PictureGrid *grid = showGrid();
    click(grid, 2);
    click(grid, 3, Qt::ControlModifier);
    const QRect first = grid->tileRect(0);
    dragWithMouse(grid->viewport(), centreOf(grid, 3),
                  QPoint(first.left() + first.width() / 4, first.center().y()));

    QCOMPARE(rowNames(), (QStringList{names[2], names[3], names[0], names[1]}));
    QCOMPARE(grid->selectedRowNumbers(), (QList<int>{0, 1}));
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    expectPackage({Qt::blue, Qt::yellow, Qt::red, Qt::green});
}

void TestMainWindowGrid::aTileDraggedToTheEndGoesLast()
{
    addColours({Qt::red, Qt::green, Qt::blue});
    const QStringList names = rowNames();
    PictureGrid *grid = showGrid();
    click(grid, 0);
    const QRect last = grid->tileRect(2);
    dragWithMouse(grid->viewport(), centreOf(grid, 0), QPoint(last.right() - 4, last.center().y()));
    QCOMPARE(rowNames(), (QStringList{names[1], names[2], names[0]}));
    // A click on a selected tile that does not move selects it alone.
    click(grid, 1, Qt::ControlModifier);
    click(grid, 2);
    QCOMPARE(grid->selectedRowNumbers(), QList<int>{2});
}

void TestMainWindowGrid::aDoubleClickOpensThePreview()
{
    addColours({Qt::red, Qt::green});
    PictureGrid *grid = showGrid();
    QColor shown;
    ModalAnswerer answerer(QMessageBox::Ok, [&](QWidget *widget) {
        auto *dialog = qobject_cast<ImagePreviewDialog *>(widget);
        if (!dialog)
            return;
        const auto closing = ModalAnswerer::closingGuard(dialog);
        const QImage preview = dialog->previewLabel()->pixmap().toImage();
        shown = preview.pixelColor(preview.width() / 2, preview.height() / 2);
    });
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, centreOf(grid, 1));
    QTRY_VERIFY(shown.isValid());
    // The second picture, the green one.
    QVERIFY2(shown.green() > 150 && shown.red() < 100 && shown.blue() < 100, qPrintable(shown.name()));
}

void TestMainWindowGrid::tilesAreDrawnAsTheyComeIntoView()
{
    addPictures(80);
    PictureGrid *grid = showGrid(160);
    m_window->resize(800, 700);
    QTRY_VERIFY(tileIsCurrent(*m_window, 0));
    // Only the tiles in view (and none far below) are drawn.
    QTest::qWait(200);
    QVERIFY(!tileIsCurrent(*m_window, 79));
    QVERIFY2(grid->renderer()->keptTiles() < 40, qPrintable(QString::number(grid->renderer()->keptTiles())));

    grid->verticalScrollBar()->setValue(grid->verticalScrollBar()->maximum());
    QTRY_VERIFY(tileIsCurrent(*m_window, 79));
}

QTEST_MAIN(TestMainWindowGrid)
#include "tst_MainWindowGrid.moc"
