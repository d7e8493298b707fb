#pragma once

#include "preprocess/ImagePreprocess.h"

#include <QImage>
#include <QList>
#include <QRect>
#include <QString>

#include <optional>

// The tone of a picture for a six-colour panel, whose narrow gamut and dim white make a photo
// look darker and flatter than on a screen: a preset (Neutral, Balanced, Vivid, Soft,
// Monochrome) and three adjustments on top of it: exposure in EV (in linear light, clipped at
// white), contrast as the strength of an S-curve that keeps black, mid grey and white where
// they are, and saturation as a factor on the distance from grey (0: grey). apply() is the
// one tone function: the thumbnail, the preview, the e-paper view and the processor's picture
// all go through it, so they agree. A neutral tone gives back the very same image.
namespace Tone {

constexpr double kMinExposure = -2.0;
constexpr double kMaxExposure = 2.0;
constexpr double kMinContrast = -1.0;
constexpr double kMaxContrast = 1.0;
constexpr double kMinSaturation = 0.0;
constexpr double kMaxSaturation = 2.0;

// What a tone does in all: its preset's own adjustments with the sliders' on top.
struct Adjustment {
    double exposure = 0.0;
    double contrast = 0.0;
    double saturation = 1.0;
};

QList<TonePreset> presets();
Adjustment presetAdjustment(TonePreset preset);
Adjustment adjustmentOf(const ToneSettings &tone);

bool isNeutral(const ToneSettings &tone);
// The adjustments moved from their defaults (the preset aside).
bool isAdjusted(const ToneSettings &tone);
// The tone with its adjustments within their ranges (NaN taken as the default) and a known
// preset (Neutral for any other value).
ToneSettings clamped(ToneSettings tone);

// The image toned; the same image when the tone is neutral. Alpha is kept.
QImage apply(QImage image, const ToneSettings &tone);
// The area of the image toned in place, the rest left as it is.
void applyWithin(QImage &image, const QRect &area, const ToneSettings &tone);

// The names of the presets in picture lists and on velora-pack's command line (read in any case).
QString presetKey(TonePreset preset);
std::optional<TonePreset> presetFromKey(const QString &key);

// For people: the preset's name, and the tone with its adjustments ("Vivid, exposure +0.5 EV").
QString presetName(TonePreset preset);
QString description(const ToneSettings &tone);
// Short, for the state's one-line label: the preset's name, marked when adjusted.
QString shortName(const ToneSettings &tone);

} // namespace Tone
