#include "preprocess/ImagePreprocess.h"

#include "preprocess/Caption.h"
#include "preprocess/Framing.h"
#include "preprocess/ImageOps.h"
#include "preprocess/Tone.h"
#include "ui/AppStrings.h"

#include <QTransform>

namespace {
const QColor kDirectPreviewGrey(228, 228, 228);

bool isValidSize(const QSize &size) { return size.width() > 0 && size.height() > 0; }

// The composition size: the panel, as (height, width) when the frame hangs in landscape.
QSize compositionSize(const QSize &panel, bool landscape)
{
    return landscape && isValidSize(panel) ? panel.transposed() : panel;
}

// Where a framed picture shows the picture: all of the frame, but for the surround of a white
// or black fill, which stays the panel's pure white or black whatever the tone.
QRect pictureArea(const QSize &rotated, const PreprocState &state, const QImage &framed)
{
    if (state.fillMode != FillMode::WhiteFill && state.fillMode != FillMode::BlackFill)
        return framed.rect();
    const PreprocState framing = Framing::clamped(state);
    const QRectF drawn = Framing::pictureRect(rotated, state.fillMode, framed.size(),
                                              QPointF(framing.focusX, framing.focusY), framing.zoom);
    return drawn.isEmpty() ? framed.rect() : drawn.toAlignedRect() & framed.rect();
}

// The picture turned and placed in the frame, then toned, then captioned. The tone works on
// the frame's pixels (a few megapixels), not on every pixel of a large photo, most of which the
// frame drops. The caption is drawn on the composition, at a size set by its height, so that
// it looks the same at every size the composition is made at.
QImage composed(const QImage &image, const PreprocState &state, const QSize &target)
{
    const QImage rotated = rotateImageByDegrees(image, state.rotationDegrees);
    QImage framed = Framing::renderFramed(rotated, state, target);
    Tone::applyWithin(framed, pictureArea(rotated.size(), state, framed), state.tone);
    Caption::draw(framed, state.caption);
    return framed;
}
} // namespace

bool operator==(const PreprocState &a, const PreprocState &b)
{
    return a.fillMode == b.fillMode && a.rotationDegrees == b.rotationDegrees && a.focusX == b.focusX &&
           a.focusY == b.focusY && a.zoom == b.zoom && a.tone == b.tone && a.caption == b.caption;
}

bool operator!=(const PreprocState &a, const PreprocState &b) { return !(a == b); }

bool operator==(const CaptionSettings &a, const CaptionSettings &b)
{
    return a.kind == b.kind && a.corner == b.corner && a.style == b.style && a.custom == b.custom &&
           a.shown == b.shown;
}

bool operator!=(const CaptionSettings &a, const CaptionSettings &b) { return !(a == b); }

QString fillModeLabel(FillMode mode) { return Str::fillModeLabel(mode); }
QString fillModeButtonText(FillMode mode) { return Str::fillModeButtonText(mode); }
QString fillModeToolTip(FillMode mode) { return Str::fillModeToolTip(mode); }

QString formatPreprocStateLabel(const PreprocState &state)
{
    QString label = Str::formatPreprocStateLabel(state.fillMode, state.rotationDegrees);
    if (state.fillMode != FillMode::Direct && state.zoom != Framing::kMinZoom)
        label += Str::zoomSuffix(qRound(state.zoom * 100));
    if (state.fillMode != FillMode::Direct && !Tone::isNeutral(state.tone))
        label += Str::toneSuffix(Tone::shortName(state.tone));
    return label;
}

FillMode defaultFillMode() { return FillMode::BlurFill; }

QImage rotateImageByDegrees(const QImage &image, int degrees)
{
    const int normalised = ((degrees % 360) + 360) % 360;
    if (image.isNull() || normalised == 0)
        return image.copy();
    return image.transformed(QTransform().rotate(normalised), Qt::SmoothTransformation);
}

QImage renderFillMode(const QImage &image, FillMode mode, const QSize &target)
{
    if (image.isNull())
        return QImage();
    const int w = target.width();
    const int h = target.height();
    if (w <= 0 || h <= 0)
        return image.copy();
    switch (mode) {
    case FillMode::BlurFill:
        return buildBlurFillImage(image, w, h, 1.0, false);
    case FillMode::WhiteFill:
        return buildSolidFillImage(image, w, h, Qt::white);
    case FillMode::BlackFill:
        return buildSolidFillImage(image, w, h, Qt::black);
    case FillMode::CenterCrop:
        return centerCropToSize(image, w, h);
    case FillMode::Direct:
        break;
    }
    return image.copy(); // Direct, and values outside the enumeration
}

QImage renderPreprocPipeline(const QImage &image, const PreprocState &state, const QSize &target)
{
    if (image.isNull())
        return QImage();
    if (state.fillMode == FillMode::Direct)
        return image.copy(); // direct mode ignores the rotation, framing and tone, on purpose
    return composed(image, state, target);
}

QSize effectiveFrameResolution(const QSize &panel, bool landscape)
{
    if (landscape && panel.width() > 0 && panel.height() >= 1)
        return panel.transposed();
    return panel;
}

QImage renderPreprocDisplayPreview(const QImage &image, const PreprocState &state, const QSize &panel,
                                   bool landscape)
{
    if (image.isNull())
        return QImage();
    const QSize size = compositionSize(panel, landscape);
    if (state.fillMode != FillMode::Direct)
        return composed(image, state, size);
    if (!isValidSize(size))
        return image.copy();
    // Direct: show how much of the frame a picture sent unprepared would leave empty.
    return buildSolidFillImage(rotateImageByDegrees(image, state.rotationDegrees), size.width(),
                               size.height(), kDirectPreviewGrey);
}

QImage renderPreprocExport(const QImage &image, const PreprocState &state, const QSize &panel, bool landscape)
{
    if (image.isNull())
        return QImage();
    const QImage composed = renderPreprocPipeline(image, state, compositionSize(panel, landscape));
    if (landscape && !composed.isNull() && state.fillMode != FillMode::Direct)
        return composed.transformed(QTransform().rotate(90), Qt::SmoothTransformation);
    return composed;
}

QSize previewFrameOuterSize(const QSize &frame, int box)
{
    if (box < 1)
        return QSize();
    if (frame.width() <= 0 || frame.height() < 1)
        return QSize(box, box);
    return frame.scaled(box, box, Qt::KeepAspectRatio);
}

QSize scaledResolutionForPreview(const QSize &frame, int maxSide)
{
    if (maxSide < 1 || !isValidSize(frame) || maxSide >= qMax(frame.width(), frame.height()))
        return frame;
    return frame.scaled(maxSide, maxSide, Qt::KeepAspectRatio);
}

QString formatPanelResolutionText(const QSize &size)
{
    if (isValidSize(size))
        return QStringLiteral("%1×%2").arg(size.width()).arg(size.height());
    return Str::panelResolutionUnset();
}
