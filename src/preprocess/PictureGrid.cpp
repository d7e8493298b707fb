#include "preprocess/PictureGrid.h"

#include "preprocess/TileRenderer.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <QSet>
#include <QStyledItemDelegate>
#include <QTimer>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace {
constexpr int kPadding = 6;
// The tiles kept: about a hundred 200-pixel tiles of a landscape frame.
constexpr qsizetype kTileBudgetBytes = qsizetype(48) * 1024 * 1024;

// Paints a tile: the framed picture (or a blank frame until it is drawn), its marks over its
// top left corner, and the name and status below it.
class TileDelegate : public QStyledItemDelegate
{
public:
    explicit TileDelegate(PictureGrid *grid)
        : QStyledItemDelegate(grid)
        , m_grid(grid)
    {
    }

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return m_grid->gridSize() - QSize(2, 2);
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const GridTile tile = m_grid->tileAt(index.row());
        const QRect cell = option.rect;
        const QPalette &palette = option.palette;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (option.state & QStyle::State_Selected) {
            QColor fill = palette.color(QPalette::Highlight);
            fill.setAlpha(70);
            painter->setPen(QPen(palette.color(QPalette::Highlight), 2));
            painter->setBrush(fill);
            painter->drawRoundedRect(QRectF(cell).adjusted(1, 1, -1, -1), 6, 6);
        }

        const QSize size = m_grid->tileSize();
        const QRect picture(cell.x() + (cell.width() - size.width()) / 2, cell.y() + kPadding, size.width(),
                            size.height());
        const QImage image = m_grid->renderer()->tile(m_grid->idAt(index.row()), tile.request, size);
        if (image.isNull()) {
            painter->fillRect(picture, QColor(176, 126, 72));
            painter->fillRect(picture.adjusted(size.height() / 10, size.height() / 10, -size.height() / 10,
                                               -size.height() / 10),
                              palette.color(QPalette::Mid));
        } else {
            painter->setRenderHint(QPainter::SmoothPixmapTransform, image.size() != size);
            painter->drawImage(picture, image);
        }

        QFont markFont = option.font;
        markFont.setBold(true);
        painter->setFont(markFont);
        const QFontMetrics markMetrics(markFont);
        int x = picture.left() + 4;
        for (const auto &mark : tile.marks) {
            const QRect badge(x, picture.top() + 4, markMetrics.horizontalAdvance(mark.first) + 10,
                              markMetrics.height() + 4);
            painter->setPen(Qt::NoPen);
            painter->setBrush(QColor(0, 0, 0, 160));
            painter->drawRoundedRect(badge, 4, 4);
            painter->setPen(QColor(255, 214, 90));
            painter->drawText(badge, Qt::AlignCenter, mark.first);
            x = badge.right() + 4;
        }

        painter->setFont(option.font);
        const QFontMetrics metrics(option.font);
        const QRect name(cell.x() + kPadding, picture.bottom() + 3, cell.width() - 2 * kPadding,
                         metrics.height());
        painter->setPen(palette.color(QPalette::Text));
        painter->drawText(name, Qt::AlignHCenter | Qt::AlignVCenter,
                          metrics.elidedText(tile.name, Qt::ElideMiddle, name.width()));
        const QString status = metrics.elidedText(tile.status, Qt::ElideRight, name.width());
        QRect pill(0, 0, metrics.horizontalAdvance(status) + 12, metrics.height());
        pill.moveCenter(name.translated(0, metrics.height() + 1).center());
        painter->setPen(Qt::NoPen);
        painter->setBrush(tile.statusBackground.isValid() ? tile.statusBackground : Qt::transparent);
        painter->drawRoundedRect(pill, 4, 4);
        painter->setPen(tile.statusColour.isValid() ? tile.statusColour : palette.color(QPalette::Text));
        painter->drawText(pill, Qt::AlignCenter, status);
        painter->restore();
    }

private:
    PictureGrid *m_grid;
};
} // namespace

PictureGrid::PictureGrid(int idRole, QWidget *parent)
    : QListView(parent)
    , m_idRole(idRole)
    , m_renderer(new TileRenderer(kTileBudgetBytes, this))
    , m_drag(this, [this](const QPoint &pos) { return dropDestination(pos); })
{
    setViewMode(QListView::IconMode);
    setMovement(QListView::Static);
    setResizeMode(QListView::Adjust);
    setFlow(QListView::LeftToRight);
    setWrapping(true);
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionRectVisible(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setDragEnabled(false);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setItemDelegate(new TileDelegate(this));
    connect(m_renderer, &TileRenderer::tileReady, viewport(), qOverload<>(&QWidget::update));
    updateGridSize();
}

PictureGrid::~PictureGrid() = default;

void PictureGrid::setModel(QAbstractItemModel *model)
{
    QListView::setModel(model);
    if (!model)
        return;
    // The tiles of removed rows are forgotten once the removal is over.
    const auto forget = [this] {
        if (!std::exchange(m_forgetPosted, true))
            QTimer::singleShot(0, this, &PictureGrid::forgetRemovedRows);
    };
    connect(model, &QAbstractItemModel::rowsRemoved, this, forget);
    connect(model, &QAbstractItemModel::modelReset, this, forget);
    // A row's status or name changes in another column than the one shown.
    connect(model, &QAbstractItemModel::dataChanged, viewport(), qOverload<>(&QWidget::update));
}

void PictureGrid::setTileSource(std::function<GridTile(int)> source)
{
    m_source = std::move(source);
    viewport()->update();
}

GridTile PictureGrid::tileAt(int row) const { return m_source ? m_source(row) : GridTile(); }

quint64 PictureGrid::idAt(int row) const
{
    return model() ? model()->index(row, modelColumn()).data(m_idRole).toULongLong() : 0;
}

void PictureGrid::setFrame(const QSize &panel, bool landscape)
{
    if (panel == m_panel && landscape == m_landscape)
        return;
    m_panel = panel;
    m_landscape = landscape;
    updateGridSize();
}

void PictureGrid::setTileHeight(int height)
{
    height = std::clamp(height, kMinTileHeight, kMaxTileHeight);
    if (height == m_tileHeight)
        return;
    m_tileHeight = height;
    updateGridSize();
}

QSize PictureGrid::tileSize() const
{
    return PreviewRenderer::framedSize(m_panel, m_landscape, m_tileHeight);
}

void PictureGrid::updateGridSize()
{
    const QSize tile = tileSize();
    const int text = 2 * fontMetrics().height();
    setGridSize(
        QSize(std::max(tile.width(), kMinTileHeight) + 2 * kPadding, tile.height() + text + 3 * kPadding));
    viewport()->update();
}

void PictureGrid::forgetRemovedRows()
{
    m_forgetPosted = false;
    QSet<quint64> ids;
    for (int row = 0; model() && row < model()->rowCount(); ++row)
        ids.insert(idAt(row));
    m_renderer->keepOnly(ids);
}

QList<int> PictureGrid::selectedRowNumbers() const
{
    QList<int> rows;
    for (const QModelIndex &index : selectionModel()->selectedRows(modelColumn()))
        rows << index.row();
    std::sort(rows.begin(), rows.end());
    return rows;
}

QRect PictureGrid::tileRect(int row) const { return visualRect(model()->index(row, modelColumn())); }

int PictureGrid::dropDestination(const QPoint &viewportPos) const
{
    // Before the first tile that does not come before the point in reading order.
    const int rows = model() ? model()->rowCount() : 0;
    for (int row = 0; row < rows; ++row) {
        const QRect rect = tileRect(row);
        const bool before = rect.bottom() < viewportPos.y() ||
                            (rect.top() <= viewportPos.y() && rect.center().x() < viewportPos.x());
        if (!before)
            return row;
    }
    return rows;
}

void PictureGrid::mousePressEvent(QMouseEvent *event)
{
    if (!m_drag.press(event))
        QListView::mousePressEvent(event);
}

void PictureGrid::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_drag.move(event))
        QListView::mouseMoveEvent(event);
}

void PictureGrid::mouseReleaseEvent(QMouseEvent *event)
{
    int destination = -1;
    if (!m_drag.release(event, &destination))
        QListView::mouseReleaseEvent(event);
    else if (destination >= 0)
        Q_EMIT tilesDragged(selectedRowNumbers(), destination);
}

void PictureGrid::mouseDoubleClickEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index.isValid()) {
        Q_EMIT tileDoubleClicked(index.row());
        return;
    }
    QListView::mouseDoubleClickEvent(event);
}

void PictureGrid::paintEvent(QPaintEvent *event)
{
    QListView::paintEvent(event);
    const int rows = model() ? model()->rowCount() : 0;
    const int moveDestination = m_drag.destination();
    if (moveDestination < 0 || rows == 0)
        return;
    // Where the moved tiles will go: a line before a tile, or after the last.
    const QRect rect = tileRect(std::min(moveDestination, rows - 1));
    const int x = moveDestination < rows ? rect.left() : rect.right();
    QPainter painter(viewport());
    painter.setPen(QPen(palette().color(QPalette::Highlight), 4));
    painter.drawLine(x, rect.top(), x, rect.bottom());
}

bool PictureGrid::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto *help = static_cast<QHelpEvent *>(event);
        const QModelIndex index = indexAt(help->pos());
        if (index.isValid())
            QToolTip::showText(help->globalPos(), tileAt(index.row()).toolTip, viewport(),
                               tileRect(index.row()));
        else
            QToolTip::hideText();
        return true;
    }
    return QListView::viewportEvent(event);
}
