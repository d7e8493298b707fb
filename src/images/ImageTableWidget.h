#pragma once

#include <QStringList>
#include <QTableWidget>

#include <functional>

// The table of pictures, in playback order. It accepts files dropped from outside (on itself
// or its viewport) and reports them; it never reorders rows by dragging. swapRows and moveRow
// move rows together with their items, and hand what items cannot carry (cell widgets) to
// the owner's swap handler.
class ImageTableWidget : public QTableWidget
{
    Q_OBJECT

public:
    ImageTableWidget(int columns, QWidget *parent);

    void setSwapRowContentHandler(std::function<void(int, int)> handler);
    void swapRows(int a, int b);
    void moveRow(int from, int to);

Q_SIGNALS:
    void externalFilesDropped(const QStringList &paths);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void acceptUrlDrag(QDropEvent *event);

    std::function<void(int, int)> m_swapHandler;
};
