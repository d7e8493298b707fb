#include "images/ImageTableWidget.h"

#include "images/CellWidgetDelegate.h"

#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QMimeData>
#include <QUrl>

ImageTableWidget::ImageTableWidget(int columns, QWidget *parent)
    : QTableWidget(0, columns, parent)
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
