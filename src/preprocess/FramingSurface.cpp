#include "preprocess/FramingSurface.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

namespace {
constexpr int kWheelStep = 120; // one notch of a common wheel
}

FramingSurface::FramingSurface(QWidget *parent)
    : QLabel(parent)
{
    setCursor(Qt::OpenHandCursor);
    setFocusPolicy(Qt::StrongFocus);
}

QPoint FramingSurface::nudgeFor(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return QPoint(-kNudgePixels, 0);
    case Qt::Key_Right:
        return QPoint(kNudgePixels, 0);
    case Qt::Key_Up:
        return QPoint(0, -kNudgePixels);
    case Qt::Key_Down:
        return QPoint(0, kNudgePixels);
    default:
        return QPoint();
    }
}

void FramingSurface::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QLabel::mousePressEvent(event);
        return;
    }
    setFocus(Qt::MouseFocusReason);
    m_dragging = true;
    m_last = event->globalPosition().toPoint(); // global: at actual pixels the surface moves under the mouse
    setCursor(Qt::ClosedHandCursor);
    event->accept();
}

void FramingSurface::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_dragging) {
        QLabel::mouseMoveEvent(event);
        return;
    }
    const QPoint at = event->globalPosition().toPoint();
    const QPoint delta = at - m_last;
    m_last = at;
    if (!delta.isNull())
        Q_EMIT moved(delta);
    event->accept();
}

void FramingSurface::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_dragging || event->button() != Qt::LeftButton) {
        QLabel::mouseReleaseEvent(event);
        return;
    }
    m_dragging = false;
    setCursor(Qt::OpenHandCursor);
    Q_EMIT released();
    event->accept();
}

void FramingSurface::wheelEvent(QWheelEvent *event)
{
    m_wheelRemainder += event->angleDelta().y();
    const int steps = m_wheelRemainder / kWheelStep;
    m_wheelRemainder -= steps * kWheelStep;
    if (steps != 0)
        Q_EMIT zoomed(steps);
    event->accept();
}

void FramingSurface::keyPressEvent(QKeyEvent *event)
{
    const QPoint nudge = nudgeFor(event->key());
    if (nudge.isNull()) {
        QLabel::keyPressEvent(event);
        return;
    }
    Q_EMIT nudged(nudge);
    event->accept();
}
