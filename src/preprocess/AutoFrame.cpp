#include "preprocess/AutoFrame.h"

#include "preprocess/Framing.h"

#include <algorithm>

namespace AutoFrame {

namespace {

constexpr double kTolerance = 1e-6;

QSize rotatedSize(const QSize &picture, int degrees)
{
    return degrees % 180 != 0 ? picture.transposed() : picture;
}

QRectF unionOf(const QList<QRectF> &rects)
{
    QRectF all;
    for (const QRectF &rect : rects)
        all = all.isNull() ? rect : all.united(rect);
    return all;
}

bool fitsIn(const QRectF &rect, const QSizeF &window)
{
    return rect.width() <= window.width() + kTolerance && rect.height() <= window.height() + kTolerance;
}

double area(const QList<QRectF> &rects)
{
    double sum = 0;
    for (const QRectF &rect : rects)
        sum += rect.width() * rect.height();
    return sum;
}

// The faces that a window of this size can hold together with the most face area: windows
// whose edges meet a face's edges are tried, as one of them holds the best group.
QList<QRectF> largestGroup(const QList<QRectF> &faces, const QSizeF &window)
{
    QList<double> lefts{0.0}, tops{0.0};
    for (const QRectF &face : faces) {
        lefts << face.left() << face.right() - window.width();
        tops << face.top() << face.bottom() - window.height();
    }
    QList<QRectF> best;
    for (double left : lefts) {
        for (double top : tops) {
            const QRectF candidate(std::clamp(left, 0.0, std::max(0.0, 1 - window.width())),
                                   std::clamp(top, 0.0, std::max(0.0, 1 - window.height())), window.width(),
                                   window.height());
            QList<QRectF> held;
            for (const QRectF &face : faces) {
                if (candidate.adjusted(-kTolerance, -kTolerance, kTolerance, kTolerance).contains(face))
                    held << face;
            }
            if (area(held) > area(best))
                best = held;
        }
    }
    return best;
}

PreprocState focusedOn(PreprocState state, const QRectF &subjects, double zoom)
{
    state.focusX = subjects.center().x();
    state.focusY = subjects.center().y();
    state.zoom = zoom;
    return Framing::clamped(state);
}

} // namespace

QList<QRectF> turned(const QList<QRectF> &rects, int degrees)
{
    const int quarter = ((degrees % 360) + 360) % 360 / 90;
    QList<QRectF> result;
    for (const QRectF &r : rects) {
        switch (quarter) {
        case 1: // clockwise: the left edge becomes the top
            result << QRectF(1 - r.bottom(), r.left(), r.height(), r.width());
            break;
        case 2:
            result << QRectF(1 - r.right(), 1 - r.bottom(), r.width(), r.height());
            break;
        case 3:
            result << QRectF(r.top(), 1 - r.right(), r.height(), r.width());
            break;
        default:
            result << r;
            break;
        }
    }
    return result;
}

QRectF window(const QSize &picture, const PreprocState &state, const QSize &panel, bool landscape)
{
    const QSize rotated = rotatedSize(picture, state.rotationDegrees);
    const QSize frame = effectiveFrameResolution(panel, landscape);
    const PreprocState framing = Framing::clamped(state);
    const QRectF drawn = Framing::pictureRect(rotated, state.fillMode, frame,
                                              QPointF(framing.focusX, framing.focusY), framing.zoom);
    if (drawn.isEmpty() || state.fillMode == FillMode::Direct)
        return QRectF(0, 0, 1, 1);
    const QRectF shown = drawn.intersected(QRectF(QPointF(0, 0), QSizeF(frame)));
    return QRectF((shown.left() - drawn.left()) / drawn.width(), (shown.top() - drawn.top()) / drawn.height(),
                  shown.width() / drawn.width(), shown.height() / drawn.height());
}

int cutFaces(const QSize &picture, const PreprocState &state, const QSize &panel, bool landscape,
             const QList<QRectF> &faces)
{
    const QRectF shown = window(picture, state, panel, landscape);
    int cut = 0;
    for (const QRectF &face : turned(faces, state.rotationDegrees)) {
        const QRectF inside = face.intersected(shown);
        const double share =
            face.isEmpty() ? 1.0 : inside.width() * inside.height() / (face.width() * face.height());
        cut += share < kKeptShare ? 1 : 0;
    }
    return cut;
}

Result frame(const PreprocState &state, const QSize &picture, const PictureSubjects &subjects,
             const QSize &panel, bool landscape)
{
    Result result{state, true};
    const bool byFaces = !subjects.faces.isEmpty();
    const QList<QRectF> targets =
        turned(byFaces ? subjects.faces : QList<QRectF>{subjects.salient}, state.rotationDegrees);
    if (state.fillMode == FillMode::Direct || unionOf(targets).isEmpty())
        return result;
    const PreprocState framing = Framing::clamped(state);
    const QSizeF shown = window(picture, framing, panel, landscape).size();
    if (shown.width() >= 1 - kTolerance && shown.height() >= 1 - kTolerance)
        return result; // the whole picture shows: nothing to move
    const QRectF all = unionOf(targets);
    if (fitsIn(all, shown)) {
        result.state = focusedOn(framing, all, framing.zoom);
        return result;
    }
    // A lower zoom widens the window in proportion; never below the fitted or covering size.
    const double zoom = std::max(Framing::kMinZoom, framing.zoom * std::min(shown.width() / all.width(),
                                                                            shown.height() / all.height()));
    const QSizeF widened = shown * (framing.zoom / zoom);
    if (fitsIn(all, widened)) {
        result.state = focusedOn(framing, all, zoom);
        return result;
    }
    const QList<QRectF> group = largestGroup(targets, widened);
    result.state = focusedOn(framing, unionOf(group.isEmpty() ? targets.mid(0, 1) : group), zoom);
    result.allFacesFit = !byFaces;
    return result;
}

} // namespace AutoFrame
