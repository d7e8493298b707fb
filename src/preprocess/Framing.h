#pragma once

#include "preprocess/ImagePreprocess.h"

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QSize>

// Where a picture sits in its frame once its owner has moved or zoomed it. The zoom enlarges
// the rotated picture from its fitted size (blur, white and black fill) or its covering size
// (centre crop). The focus point, in fractions of the rotated picture, shows at the frame's
// centre, except that a picture larger than the frame along an axis never leaves a gap there;
// along an axis where it is smaller it stays centred. FillMode::Direct ignores the framing as
// it ignores the rotation. A state whose framing is untouched (focus at the centre, zoom 1)
// renders exactly as the fill modes do without one.
namespace Framing {

constexpr double kMinZoom = 1.0;
constexpr double kMaxZoom = 4.0;
// A picture enlarged more than this to fill its frame is flagged as low resolution.
constexpr double kLowResolutionLimit = 1.5;

bool isUntouched(const PreprocState &state);
// The state with its focus within 0..1 and its zoom within the limits.
PreprocState clamped(PreprocState state);
PreprocState withoutFraming(PreprocState state);
// The state turned by degrees (a multiple of 90) more, its focus turned with the picture so
// that the same subject stays framed.
PreprocState turned(PreprocState state, int degrees);

// The rectangle the whole rotated picture (of size picture) takes in a frame of size frame, in
// the frame's pixels; it reaches beyond the frame where the picture is cut off.
QRectF pictureRect(const QSize &picture, FillMode mode, const QSize &frame, const QPointF &focus,
                   double zoom);
// The focus point that pictureRect really puts at the frame's centre: the given one once the
// picture's edges are held at the frame's, and 0.5 along an axis where it does not overflow.
QPointF shownFocus(const QSize &picture, FillMode mode, const QSize &frame, const QPointF &focus,
                   double zoom);

// The rotated picture rendered into target as its state frames it.
QImage renderFramed(const QImage &rotated, const PreprocState &state, const QSize &target);

// How much a picture of size picture (upright, unrotated) is enlarged to fill the frame with
// this state: the fitted foreground for fills, the crop window for centre crop, zoom
// included. 0 when nothing is known or for FillMode::Direct.
double enlargement(const QSize &picture, const PreprocState &state, const QSize &panel, bool landscape);
bool isLowResolution(double enlargement);
// The warning for a low-resolution picture, or an empty text when it is not one.
QString lowResolutionText(const QSize &picture, const PreprocState &state, const QSize &panel,
                          bool landscape);

} // namespace Framing
