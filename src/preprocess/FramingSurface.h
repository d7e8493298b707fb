#pragma once

#include <QLabel>
#include <QPoint>

// The picture of the preview dialog as a surface the user frames with: dragging with the left
// button reports how far the picture was moved (moved, then released when the button goes
// up), the mouse wheel reports whole zoom steps (partial steps of fine wheels add up), and the
// arrow keys report a nudge of a few pixels. It shows what it is given and decides nothing.
class FramingSurface : public QLabel
{
    Q_OBJECT

public:
    static constexpr int kNudgePixels = 10;

    explicit FramingSurface(QWidget *parent = nullptr);

    bool isDragging() const { return m_dragging; }
    // The move an arrow key stands for; a null point for any other key.
    static QPoint nudgeFor(int key);

Q_SIGNALS:
    void moved(const QPoint &delta);
    void released();
    void zoomed(int steps);
    void nudged(const QPoint &delta);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool m_dragging = false;
    QPoint m_last;
    int m_wheelRemainder = 0;
};
