#pragma once

#include <QImage>
#include <QPixmap>
#include <QSize>
#include <QString>
#include <QtGlobal>

// How a rotated picture is fitted to the frame. The numeric values are the switch order of
// the whole program and must be kept.
enum class FillMode : qint32 {
    Direct = 0,
    BlurFill = 1,
    WhiteFill = 2,
    BlackFill = 3,
    CenterCrop = 4,
};

// The tone presets, made for six-colour e-paper panels. Their values are the order in which
// they are offered and must be kept.
enum class TonePreset : qint32 {
    Neutral = 0,
    Balanced = 1,
    Vivid = 2,
    Soft = 3,
    Monochrome = 4,
};

// A picture's tone: a preset, with three adjustments on top of it (Tone holds the ranges and
// the one tone function). The default, Neutral with nothing adjusted, leaves the pixels as
// they are.
struct ToneSettings {
    TonePreset preset = TonePreset::Neutral;
    double exposure = 0.0;   // EV, added to the preset's
    double contrast = 0.0;   // S-curve strength, added to the preset's
    double saturation = 1.0; // a factor on the preset's
};

bool operator==(const ToneSettings &a, const ToneSettings &b);
bool operator!=(const ToneSettings &a, const ToneSettings &b);

// What a picture's caption says. The values are the order in which they are offered and must
// be kept.
enum class CaptionKind : qint32 {
    None = 0,
    DateTaken = 1,
    FileName = 2,
    Custom = 3,
};
enum class CaptionCorner : qint32 {
    BottomLeft = 0,
    BottomRight = 1,
};
enum class CaptionStyle : qint32 {
    Band = 0,    // white on a black band
    Outline = 1, // white, outlined in black
};

// A picture's caption (Caption holds the drawing): what it says, where and how. shown is the
// text drawn, made for the picture by Caption::resolved() from the kind (its date taken, its
// file name, or custom); empty, nothing is drawn. The default draws nothing.
struct CaptionSettings {
    CaptionKind kind = CaptionKind::None;
    CaptionCorner corner = CaptionCorner::BottomRight;
    CaptionStyle style = CaptionStyle::Band;
    QString custom;
    QString shown;
};

bool operator==(const CaptionSettings &a, const CaptionSettings &b);
bool operator!=(const CaptionSettings &a, const CaptionSettings &b);

// A picture's preprocessing: fill mode, then clockwise rotation in degrees (multiples of 90),
// then its framing: the focus point (fractions of the rotated picture) that shows at the
// frame's centre and the zoom from the fitted (fills) or covering (centre crop) size; then its
// tone; then its caption. The framing's, the tone's and the caption's defaults render every
// mode exactly as it renders without them.
struct PreprocState {
    FillMode fillMode;
    qint32 rotationDegrees;
    double focusX = 0.5;
    double focusY = 0.5;
    double zoom = 1.0;
    ToneSettings tone = ToneSettings();
    CaptionSettings caption = CaptionSettings();
};

bool operator==(const PreprocState &a, const PreprocState &b);
bool operator!=(const PreprocState &a, const PreprocState &b);

// The render pipeline: a source picture, its state and the frame settings (the panel's
// native portrait resolution and whether the frame hangs in landscape) give the image for the
// processor, the on-screen preview and the framed thumbnail. Stateless; a null or unusable
// input gives a null (or, where said, unchanged) result, never an exception.

QString fillModeLabel(FillMode mode);
QString fillModeButtonText(FillMode mode);
QString fillModeToolTip(FillMode mode);
QString formatPreprocStateLabel(const PreprocState &state);
FillMode defaultFillMode();

QImage rotateImageByDegrees(const QImage &image, int degrees);
QImage renderFillMode(const QImage &image, FillMode mode, const QSize &target);
QImage renderPreprocPipeline(const QImage &image, const PreprocState &state, const QSize &target);

// The frame as the viewer sees it: the panel size, swapped in landscape.
QSize effectiveFrameResolution(const QSize &panel, bool landscape);
QImage renderPreprocDisplayPreview(const QImage &image, const PreprocState &state, const QSize &panel,
                                   bool landscape);
// What the processor gets: always the panel's native portrait size; a landscape composition
// is turned 90 degrees clockwise. FillMode::Direct sends the source untouched.
QImage renderPreprocExport(const QImage &image, const PreprocState &state, const QSize &panel,
                           bool landscape);

QSize previewFrameOuterSize(const QSize &frame, int box);
QSize scaledResolutionForPreview(const QSize &frame, int maxSide);
// The picture inside an imitation wooden frame, fitted into a box or of an exact outer size.
QPixmap makeFramedPreviewPixmap(const QImage &image, const QSize &box);
QPixmap makeFramedPreviewPixmapExact(const QImage &image, const QSize &outer);
// The same as an image, which (unlike a pixmap) can be made on any thread.
QImage makeFramedPreviewImageExact(const QImage &image, const QSize &outer);
// The width of the wooden border of a framed picture of that outer size.
int framedPreviewBorder(const QSize &outer);

// "W×H" of a panel size, or the catalogue's "not set" text for an invalid size.
QString formatPanelResolutionText(const QSize &size);
