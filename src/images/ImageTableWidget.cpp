#include "images/ImageTableWidget.h"

#include "images/CellWidgetDelegate.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QUrl>

#include <algorithm>
#include <utility>

ImageTableWidget::ImageTableWidget(int columns, QWidget *parent)
    : QTableWidget(0, columns, parent)
    , m_drag(this, [this](const QPoint &pos) { return dropDestination(pos); })
{
    setDragDropMode(QAbstractItemView::DropOnly);
    setDefaultDropAction(Qt::CopyAction);
    setDragDropOverwriteMode(false);
    setDropIndicatorShown(true);
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    setDragEnabled(false);
    viewport()->installEventFilter(this);
    setItemDelegate(new CellWidgetDelegate(this));
}

void ImageTableWidget::setSwapRowContentHandler(std::function<void(int, int)> handler)
{
    m_swapHandler = std::move(handler);
}

void ImageTableWidget::swapRows(int a, int b)
{
    const int rows = rowCount();
    if (a < 0 || b < 0 || a >= rows || b >= rows || a == b)
        return;
    for (int column = 0; column < columnCount(); ++column) {
        QTableWidgetItem *itemA = takeItem(a, column);
        QTableWidgetItem *itemB = takeItem(b, column);
        if (itemB)
            setItem(a, column, itemB);
        if (itemA)
            setItem(b, column, itemA);
    }
    // A collapsed row (height below 1) takes the other row's height instead.
    const int heightA = rowHeight(a);
    const int heightB = rowHeight(b);
    setRowHeight(a, heightB >= 1 ? heightB : heightA);
    setRowHeight(b, heightA >= 1 ? heightA : heightB);
    if (m_swapHandler)
        m_swapHandler(a, b);
}

void ImageTableWidget::moveRow(int from, int to)
{
    const int rows = rowCount();
    if (from < 0 || from >= rows)
        return;
    to = qBound(0, to, rows - 1);
    if (to == from)
        return;

    setUpdatesEnabled(false);
    const int step = to > from ? 1 : -1;
    for (int row = from; row != to; row += step)
        swapRows(row, row + step);
    const int defaultHeight = verticalHeader()->defaultSectionSize();
    for (int row = qMin(from, to); row <= qMax(from, to); ++row) {
        if (rowHeight(row) < 1 && defaultHeight > 0)
            setRowHeight(row, defaultHeight);
    }
    setUpdatesEnabled(true);
    viewport()->update();
}

void ImageTableWidget::permuteRows(const QList<int> &from)
{
    const int rows = rowCount();
    if (from.size() != rows)
        return;
    bool ordered = true;
    for (int row = 0; row < rows && ordered; ++row)
        ordered = dynamic_cast<OrderedItem *>(item(row, 0)) != nullptr;
    if (ordered) {
        for (int row = 0; row < rows; ++row)
            item(from.at(row), 0)->setData(OrderedItem::kPlaceRole, row);
        sortItems(0, Qt::AscendingOrder);
        return;
    }
    // at[p]: the original row now at p; where[k]: where original row k is now.
    QList<int> at(rows);
    QList<int> where(rows);
    for (int row = 0; row < rows; ++row)
        at[row] = where[row] = row;
    setUpdatesEnabled(false);
    for (int row = 0; row < rows; ++row) {
        const int now = where.value(from.at(row), -1);
        if (now < 0 || now == row)
            continue;
        swapRows(row, now);
        std::swap(at[row], at[now]);
        where[at[row]] = row;
        where[at[now]] = now;
    }
    setUpdatesEnabled(true);
    viewport()->update();
}

QList<int> ImageTableWidget::selectedRowNumbers() const
{
    QList<int> rows;
    for (const QModelIndex &index : selectionModel()->selectedIndexes())
        rows << index.row();
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

int ImageTableWidget::dropDestination(const QPoint &viewportPos) const
{
    const int row = rowAt(viewportPos.y());
    if (row < 0)
        return viewportPos.y() < 0 ? 0 : rowCount();
    return viewportPos.y() > rowViewportPosition(row) + rowHeight(row) / 2 ? row + 1 : row;
}

void ImageTableWidget::mousePressEvent(QMouseEvent *event)
{
    if (!m_drag.press(event))
        QTableWidget::mousePressEvent(event);
}

void ImageTableWidget::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_drag.move(event))
        QTableWidget::mouseMoveEvent(event);
}

void ImageTableWidget::mouseReleaseEvent(QMouseEvent *event)
{
    int destination = -1;
    if (!m_drag.release(event, &destination))
        QTableWidget::mouseReleaseEvent(event);
    else if (destination >= 0)
        Q_EMIT rowsDragged(selectedRowNumbers(), destination);
}

void ImageTableWidget::paintEvent(QPaintEvent *event)
{
    QTableWidget::paintEvent(event);
    const int moveDestination = m_drag.destination();
    if (moveDestination < 0 || rowCount() == 0)
        return;
    // Where the moved rows will go: a line between two rows.
    const int last = rowCount() - 1;
    const int y = moveDestination <= last ? rowViewportPosition(moveDestination)
                                          : rowViewportPosition(last) + rowHeight(last) - 2;
    QPainter painter(viewport());
    painter.setPen(QPen(palette().color(QPalette::Highlight), 3));
    painter.drawLine(0, y, viewport()->width(), y);
}

void ImageTableWidget::acceptUrlDrag(QDropEvent *event)
{
    if (event->mimeData() && event->mimeData()->hasUrls())
        event->acceptProposedAction();
    else
        event->ignore();
}

void ImageTableWidget::dragEnterEvent(QDragEnterEvent *event) { acceptUrlDrag(event); }

void ImageTableWidget::dragMoveEvent(QDragMoveEvent *event) { acceptUrlDrag(event); }

void ImageTableWidget::dropEvent(QDropEvent *event)
{
    if (!event->mimeData() || !event->mimeData()->hasUrls()) {
        event->ignore();
        return;
    }
    QStringList paths;
    for (const QUrl &url : event->mimeData()->urls()) {
        const QString path = url.toLocalFile();
        if (!path.isEmpty())
            paths << path;
    }
    if (paths.isEmpty()) {
        event->ignore();
        return;
    }
    Q_EMIT externalFilesDropped(paths);
    event->acceptProposedAction();
}

bool ImageTableWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == viewport()) {
        switch (event->type()) {
        case QEvent::DragEnter:
            dragEnterEvent(static_cast<QDragEnterEvent *>(event));
            return true;
        case QEvent::DragMove:
            dragMoveEvent(static_cast<QDragMoveEvent *>(event));
            return true;
        case QEvent::Drop:
            dropEvent(static_cast<QDropEvent *>(event));
            return true;
        default:
            break;
        }
    }
    return QTableWidget::eventFilter(watched, event);
}
