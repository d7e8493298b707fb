#include "images/RowDrag.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QMouseEvent>
#include <QScrollBar>

#include <utility>

RowDrag::RowDrag(QAbstractItemView *view, std::function<int(const QPoint &)> destinationAt)
    : m_view(view)
    , m_destinationAt(std::move(destinationAt))
{
}

bool RowDrag::press(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    const QModelIndex index = m_view->indexAt(pos);
    m_pressed = event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier &&
                index.isValid() && m_view->selectionModel()->isRowSelected(index.row(), index.parent());
    if (m_pressed)
        m_press = pos;
    return m_pressed;
}

bool RowDrag::move(QMouseEvent *event)
{
    if (!m_pressed)
        return false;
    const QPoint pos = event->position().toPoint();
    if (m_destination < 0 && (pos - m_press).manhattanLength() < QApplication::startDragDistance())
        return true;
    QWidget *viewport = m_view->viewport();
    QScrollBar *bar = m_view->verticalScrollBar();
    if (pos.y() < 0 || pos.y() > viewport->height()) // beyond an edge: the view scrolls on
        bar->setValue(bar->value() + (pos.y() < 0 ? -20 : 20));
    m_destination = m_destinationAt(pos);
    viewport->setCursor(Qt::ClosedHandCursor);
    viewport->update();
    return true;
}

bool RowDrag::release(QMouseEvent *event, int *destination)
{
    Q_UNUSED(event)
    if (!m_pressed)
        return false;
    *destination = std::exchange(m_destination, -1);
    m_pressed = false;
    m_view->viewport()->unsetCursor();
    m_view->viewport()->update();
    if (*destination >= 0)
        return true;
    // A click on a selected row that did not move: that row alone is selected, as elsewhere.
    const QModelIndex index = m_view->indexAt(m_press);
    if (index.isValid()) {
        m_view->setCurrentIndex(index);
        m_view->selectionModel()->select(index,
                                         QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
    return true;
}
