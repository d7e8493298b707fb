// The picture grid (View → Grid): the rows as framed tiles, beside the table (View → List, the
// default). Both are views of the same rows. In the grid, the selected tiles are the rows the
// batch bar and Remove Selected act on, and the check boxes follow the selection: a selected
// tile is a checked row, and checks changed otherwise (Select all, undo, a list opened) select
// their tiles.
#include "app/MainWindow.h"

#include "images/ImageTableWidget.h"
#include "preprocess/PictureGrid.h"
#include "preprocess/PreprocWidget.h"
#include "ui/RowStatusCell.h"

#include <QAction>
#include <QActionGroup>
#include <QHBoxLayout>
#include <QItemSelection>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QSlider>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

namespace {
const QString kViewSetting = QStringLiteral("view");
const QString kTileHeightSetting = QStringLiteral("grid_tile_height");
} // namespace

QWidget *MainWindow::createPictureViews(QWidget *parent)
{
    m_pictureViews = new QStackedWidget(parent);
    setupImageTable();
    m_pictureViews->addWidget(m_imageTable);

    m_gridPage = new QWidget(m_pictureViews);
    auto *layout = new QVBoxLayout(m_gridPage);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    m_pictureGrid = new PictureGrid(kRowIdRole, m_gridPage);
    m_pictureGrid->setModel(m_imageTable->model());
    m_pictureGrid->setModelColumn(FileColumn);
    m_pictureGrid->setSelectionModel(m_imageTable->selectionModel());
    m_pictureGrid->setFrame(panelResolution(), isLandscapeOrientation());
    m_pictureGrid->setTileSource([this](int row) { return gridTile(row); });
    layout->addWidget(m_pictureGrid, 1);

    auto *zoomRow = new QHBoxLayout;
    m_gridZoomLabel = new QLabel(Str::gridTileSize(), m_gridPage);
    m_gridZoom = new QSlider(Qt::Horizontal, m_gridPage);
    m_gridZoom->setObjectName(QStringLiteral("gridZoom"));
    m_gridZoom->setRange(PictureGrid::kMinTileHeight, PictureGrid::kMaxTileHeight);
    m_gridZoom->setSingleStep(10);
    m_gridZoom->setPageStep(40);
    m_gridZoom->setMaximumWidth(220);
    m_gridZoom->setToolTip(Str::gridTileSizeTip());
    m_gridZoom->setValue(appSettings()->value(kTileHeightSetting, PictureGrid::kDefaultTileHeight).toInt());
    m_pictureGrid->setTileHeight(m_gridZoom->value());
    zoomRow->addStretch(1);
    zoomRow->addWidget(m_gridZoomLabel);
    zoomRow->addWidget(m_gridZoom);
    layout->addLayout(zoomRow);
    m_pictureViews->addWidget(m_gridPage);

    connect(m_gridZoom, &QSlider::valueChanged, this, [this](int height) {
        m_pictureGrid->setTileHeight(height);
        appSettings()->setValue(kTileHeightSetting, height);
    });
    connect(m_pictureGrid, &PictureGrid::tilesDragged, this, &MainWindow::onRowsDragged);
    connect(m_pictureGrid, &PictureGrid::tileDoubleClicked, this, [this](int row) {
        if (PreprocWidget *widget = preprocWidgetAt(row))
            widget->openPreviewDialog();
    });
    connect(m_imageTable->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { scheduleGridSync(GridSync::ChecksFromSelection); });
    connect(m_imageTable, &QTableWidget::itemChanged, this, [this](QTableWidgetItem *item) {
        if (item->column() == SelectColumn)
            scheduleGridSync(GridSync::SelectionFromChecks);
    });
    connect(m_imageTable->model(), &QAbstractItemModel::rowsInserted, this,
            [this] { scheduleGridSync(GridSync::SelectionFromChecks); });
    return m_pictureViews;
}

void MainWindow::setupViewMenu()
{
    // Texts come from retranslateUi.
    m_viewMenu = menuBar()->addMenu(QString());
    auto *views = new QActionGroup(this);
    m_actionViewList = m_viewMenu->addAction(QString());
    m_actionViewGrid = m_viewMenu->addAction(QString());
    m_actionViewList->setObjectName(QStringLiteral("viewList"));
    m_actionViewGrid->setObjectName(QStringLiteral("viewGrid"));
    for (QAction *action : {m_actionViewList, m_actionViewGrid}) {
        action->setCheckable(true);
        views->addAction(action);
    }
    const bool grid = appSettings()->value(kViewSetting).toString() == QLatin1String("grid");
    (grid ? m_actionViewGrid : m_actionViewList)->setChecked(true);
    showGrid(grid);
    connect(m_actionViewGrid, &QAction::toggled, this, [this](bool on) {
        showGrid(on);
        appSettings()->setValue(kViewSetting, on ? QStringLiteral("grid") : QStringLiteral("list"));
    });
}

bool MainWindow::isGridShown() const
{
    return m_pictureViews && m_pictureViews->currentWidget() == m_gridPage;
}

void MainWindow::showGrid(bool on)
{
    if (on == isGridShown())
        return;
    m_pictureViews->setCurrentWidget(on ? m_gridPage : static_cast<QWidget *>(m_imageTable));
    if (on) {
        // The tiles of the checked rows are selected as the grid comes up.
        m_gridSync = GridSync::SelectionFromChecks;
        syncGridSelection();
    }
}

GridTile MainWindow::gridTile(int row) const
{
    GridTile tile;
    if (const QTableWidgetItem *file = m_imageTable->item(row, FileColumn)) {
        tile.name = file->text();
        tile.toolTip = file->toolTip();
    }
    if (const QTableWidgetItem *status = m_imageTable->item(row, StatusColumn)) {
        tile.status = status->text();
        const auto value = RowStatus(Str::rowStatusFromItem(status));
        tile.statusColour = Str::rowStatusTextColor(value);
        tile.statusBackground = Str::rowStatusColor(value);
    }
    if (const PreprocWidget *widget = preprocWidgetAt(row)) {
        tile.request = widget->previewRequest();
        for (const QLabel *mark :
             {widget->lowResolutionMark(), widget->faceMark(), widget->toneMark(), widget->captionMark()}) {
            if (mark->isHidden())
                continue;
            tile.marks.append({mark->text(), mark->toolTip()});
            tile.toolTip += QLatin1Char('\n') + mark->toolTip();
        }
    }
    return tile;
}

void MainWindow::scheduleGridSync(GridSync direction)
{
    if (!isGridShown() || m_syncingGrid)
        return;
    const bool posted = m_gridSync != GridSync::None;
    // Checks changed by the program win over a selection changed meanwhile.
    if (m_gridSync != GridSync::SelectionFromChecks)
        m_gridSync = direction;
    if (!posted)
        QTimer::singleShot(0, this, &MainWindow::syncGridSelection);
}

void MainWindow::syncGridSelection()
{
    const GridSync direction = std::exchange(m_gridSync, GridSync::None);
    if (!isGridShown() || direction == GridSync::None)
        return;
    m_syncingGrid = true;
    QItemSelectionModel *selection = m_imageTable->selectionModel();
    if (direction == GridSync::ChecksFromSelection) {
        for (int row = 0; row < m_imageTable->rowCount(); ++row) {
            if (QTableWidgetItem *item = m_imageTable->item(row, SelectColumn))
                item->setCheckState(selection->isRowSelected(row, QModelIndex()) ? Qt::Checked
                                                                                 : Qt::Unchecked);
        }
    } else {
        QItemSelection checked;
        QAbstractItemModel *model = m_imageTable->model();
        const QList<int> rows = checkedRowsInTable();
        for (int first = 0; first < rows.size();) {
            int last = first;
            while (last + 1 < rows.size() && rows.at(last + 1) == rows.at(last) + 1)
                ++last;
            checked.select(model->index(rows.at(first), 0), model->index(rows.at(last), 0));
            first = last + 1;
        }
        selection->select(checked, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
    m_syncingGrid = false;
}
