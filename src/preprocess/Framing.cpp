#include "preprocess/Framing.h"

#include "preprocess/ImageOps.h"
#include "ui/AppStrings.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Framing {

namespace {

constexpr double kCentre = 0.5;
constexpr double kEdgeTolerance = 1e-9;

int quarterTurns(int degrees) { return (((degrees / 90) % 4) + 4) % 4; }

QSize rotatedSize(const QSize &picture, int degrees)
{
    return quarterTurns(degrees) % 2 == 1 ? picture.transposed() : picture;
}

// The picture's scale in the frame before the zoom: covering it for centre crop, fitted into
// it for the fills.
double baseScale(const QSizeF &picture, FillMode mode, const QSizeF &frame)
{
    const double across = frame.width() / picture.width();
    const double down = frame.height() / picture.height();
    return mode == FillMode::CenterCrop ? std::max(across, down) : std::min(across, down);
}

// Where a picture of length length starts along a frame of length frame: centred when it fits,
// else with its focus at the frame's centre as far as its edges allow.
double placed(double frame, double length, double focus)
{
    if (length <= frame + kEdgeTolerance)
        return (frame - length) / 2;
    return std::clamp(frame / 2 - focus * length, frame - length, 0.0);
}

bool isUsable(const QSize &size) { return size.width() > 0 && size.height() > 0; }

// The part of the picture that shows, drawn where it goes: only that part is ever scaled.
void drawVisiblePart(QImage &canvas, const QImage &picture, const QRectF &where)
{
    const QRectF visible = where & QRectF(canvas.rect());
    const QRect target(QPoint(qRound(visible.left()), qRound(visible.top())),
                       QPoint(qRound(visible.right()) - 1, qRound(visible.bottom()) - 1));
    if (target.isEmpty())
        return;
    const double sx = picture.width() / where.width();
    const double sy = picture.height() / where.height();
    const QRectF region((target.left() - where.left()) * sx, (target.top() - where.top()) * sy,
                        target.width() * sx, target.height() * sy);
    const QImage part = scaledRegion(picture, region, target.size());
    if (part.isNull())
        return;
    QPainter painter(&canvas);
    painter.drawImage(target.topLeft(), part);
}

} // namespace

bool isUntouched(const PreprocState &state)
{
    return state.focusX == kCentre && state.focusY == kCentre && state.zoom == kMinZoom;
}

PreprocState clamped(PreprocState state)
{
    // NaN (a hostile value) is taken as the default.
    const auto within = [](double value, double low, double high, double fallback) {
        return std::isnan(value) ? fallback : std::clamp(value, low, high);
    };
    state.focusX = within(state.focusX, 0.0, 1.0, kCentre);
    state.focusY = within(state.focusY, 0.0, 1.0, kCentre);
    state.zoom = within(state.zoom, kMinZoom, kMaxZoom, kMinZoom);
    return state;
}

PreprocState withoutFraming(PreprocState state)
{
    state.focusX = kCentre;
    state.focusY = kCentre;
    state.zoom = kMinZoom;
    return state;
}

PreprocState turned(PreprocState state, int degrees)
{
    state.rotationDegrees = (((state.rotationDegrees + degrees) % 360) + 360) % 360;
    const double x = state.focusX;
    const double y = state.focusY;
    switch (quarterTurns(degrees)) {
    case 1: // clockwise: the left edge becomes the top
        state.focusX = 1.0 - y;
        state.focusY = x;
        break;
    case 2:
        state.focusX = 1.0 - x;
        state.focusY = 1.0 - y;
        break;
    case 3:
        state.focusX = y;
        state.focusY = 1.0 - x;
        break;
    default:
        break;
    }
    return state;
}

QRectF pictureRect(const QSize &picture, FillMode mode, const QSize &frame, const QPointF &focus, double zoom)
{
    if (!isUsable(picture) || !isUsable(frame))
        return QRectF();
    const QSizeF size = QSizeF(picture) * baseScale(QSizeF(picture), mode, QSizeF(frame)) * zoom;
    return QRectF(placed(frame.width(), size.width(), focus.x()),
                  placed(frame.height(), size.height(), focus.y()), size.width(), size.height());
}

QPointF shownFocus(const QSize &picture, FillMode mode, const QSize &frame, const QPointF &focus, double zoom)
{
    const QRectF rect = pictureRect(picture, mode, frame, focus, zoom);
    if (rect.isEmpty())
        return focus;
    const auto along = [](double frameLength, double start, double length) {
        return length <= frameLength + kEdgeTolerance ? kCentre : (frameLength / 2 - start) / length;
    };
    return QPointF(along(frame.width(), rect.x(), rect.width()),
                   along(frame.height(), rect.y(), rect.height()));
}

QImage renderFramed(const QImage &rotated, const PreprocState &state, const QSize &target)
{
    const bool untouched = state.zoom == kMinZoom && (state.fillMode != FillMode::CenterCrop ||
                                                      isUntouched(state)); // fills ignore the focus at 1
    if (rotated.isNull() || untouched || state.fillMode == FillMode::Direct || !isUsable(target))
        return renderFillMode(rotated, state.fillMode, target);

    QImage canvas;
    switch (state.fillMode) {
    case FillMode::BlurFill:
        canvas = buildBlurFillBackdrop(rotated, target.width(), target.height());
        break;
    case FillMode::WhiteFill:
    case FillMode::BlackFill:
    case FillMode::CenterCrop:
        canvas = QImage(target, QImage::Format_RGB32);
        canvas.fill(state.fillMode == FillMode::WhiteFill ? Qt::white : Qt::black);
        break;
    case FillMode::Direct:
        break;
    }
    if (canvas.isNull())
        return renderFillMode(rotated, state.fillMode, target); // values outside the enumeration
    const PreprocState framing = clamped(state);
    drawVisiblePart(canvas, rotated,
                    pictureRect(rotated.size(), state.fillMode, target,
                                QPointF(framing.focusX, framing.focusY), framing.zoom));
    return canvas;
}

double enlargement(const QSize &picture, const PreprocState &state, const QSize &panel, bool landscape)
{
    const QSize frame = effectiveFrameResolution(panel, landscape);
    if (state.fillMode == FillMode::Direct || !isUsable(picture) || !isUsable(frame))
        return 0.0;
    const QSize rotated = rotatedSize(picture, state.rotationDegrees);
    return baseScale(QSizeF(rotated), state.fillMode, QSizeF(frame)) * clamped(state).zoom;
}

bool isLowResolution(double enlargement) { return enlargement > kLowResolutionLimit; }

QString lowResolutionText(const QSize &picture, const PreprocState &state, const QSize &panel, bool landscape)
{
    const double factor = enlargement(picture, state, panel, landscape);
    if (!isLowResolution(factor))
        return QString();
    return Str::lowResolutionWarning(formatPanelResolutionText(picture), factor);
}

} // namespace Framing
