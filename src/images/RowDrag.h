#pragma once

#include <QPoint>

#include <functional>

class QAbstractItemView;
class QMouseEvent;

// A move of the selected rows with the mouse, in a view of the table's rows (the table, the
// grid): a press on a selected row without a modifier may begin it, and the selection stays;
// once the mouse has gone far enough, destinationAt() says before which row the rows would go
// (the view scrolls at its top and bottom edges), and the release ends it there. A release
// without a move selects the pressed row alone, as a click does. The view hands each mouse
// event here first and does its own handling only when it is not taken.
class RowDrag
{
public:
    RowDrag(QAbstractItemView *view, std::function<int(const QPoint &viewportPos)> destinationAt);

    bool press(QMouseEvent *event);
    bool move(QMouseEvent *event);
    // Taken when the press was; destination is where the rows go (-1: they stay).
    bool release(QMouseEvent *event, int *destination);
    // Where the rows would go while they are moved (-1: not moving).
    int destination() const { return m_destination; }

private:
    QAbstractItemView *m_view;
    std::function<int(const QPoint &)> m_destinationAt;
    bool m_pressed = false;
    QPoint m_press;
    int m_destination = -1;
};
