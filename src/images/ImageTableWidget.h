#pragma once

#include "images/RowDrag.h"

#include <QStringList>
#include <QTableWidget>

#include <functional>

// The first cell of a row: it carries the row's place while permuteRows() puts the rows in a
// new order (the model's stable sort, which cell widgets and the selection follow by
// themselves).
class OrderedItem : public QTableWidgetItem
{
public:
    static constexpr int kPlaceRole = Qt::UserRole + 100;
    bool operator<(const QTableWidgetItem &other) const override
    {
        return data(kPlaceRole).toInt() < other.data(kPlaceRole).toInt();
    }
};

// The table of pictures, in playback order. It accepts files dropped from outside (on itself
// or its viewport) and reports them. Selected rows dragged with the mouse within it (pressed
// on a selected row; a line shows where they go) are reported too (rowsDragged) and moved by
// the owner. swapRows, moveRow and permuteRows move rows together with their items, and hand
// what items cannot carry (cell widgets) to the owner's swap handler.
class ImageTableWidget : public QTableWidget
{
    Q_OBJECT

public:
    ImageTableWidget(int columns, QWidget *parent);

    void setSwapRowContentHandler(std::function<void(int, int)> handler);
    void swapRows(int a, int b);
    void moveRow(int from, int to);
    // Row i takes what row from[i] holds (from: a permutation of 0..rowCount()-1): with an
    // OrderedItem in every row's first cell, rows move whole, their cell widgets and selection
    // with them; otherwise row by row, through the swap handler.
    void permuteRows(const QList<int> &from);
    // The rows with a selected cell, in table order.
    QList<int> selectedRowNumbers() const;

Q_SIGNALS:
    void externalFilesDropped(const QStringList &paths);
    // The selected rows were dragged before row destination (rowCount(): to the end).
    void rowsDragged(const QList<int> &rows, int destination);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void acceptUrlDrag(QDropEvent *event);
    int dropDestination(const QPoint &viewportPos) const;

    std::function<void(int, int)> m_swapHandler;
    RowDrag m_drag; // the selected rows moved with the mouse
};
