#include "preprocess/Tone.h"

#include "ui/AppStrings.h"

#include <QColorSpace>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>

bool operator==(const ToneSettings &a, const ToneSettings &b)
{
    return a.preset == b.preset && a.exposure == b.exposure && a.contrast == b.contrast &&
           a.saturation == b.saturation;
}

bool operator!=(const ToneSettings &a, const ToneSettings &b) { return !(a == b); }

namespace Tone {

namespace {

struct Preset {
    TonePreset preset;
    const char *key;
    Adjustment adjustment;
};

// A six-colour panel shows a photo darker and flatter than a screen: the presets lift it by a
// little exposure, contrast and colour, each by its own measure.
constexpr std::array<Preset, 5> kPresets = {{
    {TonePreset::Neutral, "neutral", {0.0, 0.0, 1.0}},
    {TonePreset::Balanced, "balanced", {0.15, 0.2, 1.15}},
    {TonePreset::Vivid, "vivid", {0.1, 0.35, 1.45}},
    {TonePreset::Soft, "soft", {0.2, -0.25, 0.9}},
    {TonePreset::Monochrome, "monochrome", {0.1, 0.2, 0.0}},
}};

const Preset *find(TonePreset preset)
{
    const auto found = std::find_if(kPresets.begin(), kPresets.end(),
                                    [preset](const Preset &p) { return p.preset == preset; });
    return found == kPresets.end() ? nullptr : &*found;
}

double linearFromSrgb(double code)
{
    return code <= 0.04045 ? code / 12.92 : std::pow((code + 0.055) / 1.055, 2.4);
}

double srgbFromLinear(double linear)
{
    return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

// An S through black, mid grey and white: steeper in the middle for a positive strength (more
// contrast), flatter there for a negative one; the identity at 0. Monotonic for every strength.
double sCurve(double x, double strength)
{
    if (strength >= 0)
        return (1 - strength) * x + strength * x * x * (3 - 2 * x);
    const double flattened = 0.5 - std::sin(std::asin(1 - 2 * x) / 3); // the inverse of the S
    return (1 + strength) * x - strength * flattened;
}

// The tone curve of one channel, code value to code value.
std::array<uchar, 256> toneCurve(const Adjustment &adjustment)
{
    const double gain = std::exp2(adjustment.exposure);
    std::array<uchar, 256> curve{};
    for (int v = 0; v < 256; ++v) {
        const double exposed = srgbFromLinear(std::min(1.0, linearFromSrgb(v / 255.0) * gain));
        curve[size_t(v)] =
            uchar(std::clamp(std::lround(255 * sCurve(exposed, adjustment.contrast)), 0L, 255L));
    }
    return curve;
}

double within(double value, double low, double high, double fallback)
{
    return std::isnan(value) ? fallback : std::clamp(value, low, high);
}

} // namespace

QList<TonePreset> presets()
{
    QList<TonePreset> all;
    for (const Preset &preset : kPresets)
        all << preset.preset;
    return all;
}

Adjustment presetAdjustment(TonePreset preset)
{
    const Preset *found = find(preset);
    return found ? found->adjustment : Adjustment();
}

Adjustment adjustmentOf(const ToneSettings &tone)
{
    const ToneSettings t = clamped(tone);
    const Adjustment base = presetAdjustment(t.preset);
    return {base.exposure + t.exposure, std::clamp(base.contrast + t.contrast, kMinContrast, kMaxContrast),
            base.saturation * t.saturation};
}

bool isAdjusted(const ToneSettings &tone)
{
    const ToneSettings t = clamped(tone);
    return t.exposure != 0.0 || t.contrast != 0.0 || t.saturation != 1.0;
}

bool isNeutral(const ToneSettings &tone)
{
    return clamped(tone).preset == TonePreset::Neutral && !isAdjusted(tone);
}

ToneSettings clamped(ToneSettings tone)
{
    if (!find(tone.preset))
        tone.preset = TonePreset::Neutral;
    tone.exposure = within(tone.exposure, kMinExposure, kMaxExposure, 0.0);
    tone.contrast = within(tone.contrast, kMinContrast, kMaxContrast, 0.0);
    tone.saturation = within(tone.saturation, kMinSaturation, kMaxSaturation, 1.0);
    return tone;
}

namespace {

// Tones the area of source into the same place of target (both 32-bit RGB, of one size).
void toneArea(const QImage &source, QImage &target, const QRect &area, const ToneSettings &tone)
{
    const Adjustment adjustment = adjustmentOf(tone);
    const std::array<uchar, 256> curve = toneCurve(adjustment);
    const int saturation = int(std::lround(adjustment.saturation * 256)); // 8.8 fixed point
    // Towards or away from the pixel's own grey (Rec. 709 weights, in 1/256, exact for greys),
    // in 16.16 fixed point: c' = grey + saturation * (c - grey), rounded and clamped.
    const auto saturated = [saturation](int grey256, int c) {
        const int value = grey256 * 256 + saturation * (c * 256 - grey256) + (1 << 15);
        return std::clamp(value, 0, (256 << 16) - 1) >> 16;
    };
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const auto *in = reinterpret_cast<const QRgb *>(source.constScanLine(y));
        auto *out = reinterpret_cast<QRgb *>(target.scanLine(y));
        for (int x = area.left(); x <= area.right(); ++x) {
            const QRgb pixel = in[x];
            int r = curve[size_t(qRed(pixel))], g = curve[size_t(qGreen(pixel))],
                b = curve[size_t(qBlue(pixel))];
            if (saturation != 256) {
                const int grey256 = 54 * r + 183 * g + 19 * b;
                r = saturated(grey256, r);
                g = saturated(grey256, g);
                b = saturated(grey256, b);
            }
            out[x] = qRgba(r, g, b, qAlpha(pixel));
        }
    }
}

QImage::Format toneFormat(const QImage &image)
{
    return image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32;
}

} // namespace

QImage apply(QImage image, const ToneSettings &tone)
{
    if (image.isNull() || isNeutral(tone))
        return image;
    const QImage source =
        image.format() == toneFormat(image) ? image : image.convertToFormat(toneFormat(image));
    QImage toned(source.size(), source.format());
    if (toned.isNull())
        return image; // no memory for the toned copy: the picture as it is
    toned.setDotsPerMeterX(source.dotsPerMeterX());
    toned.setDotsPerMeterY(source.dotsPerMeterY());
    toned.setColorSpace(source.colorSpace());
    toneArea(source, toned, toned.rect(), tone);
    return toned;
}

void applyWithin(QImage &image, const QRect &area, const ToneSettings &tone)
{
    const QRect within = area & image.rect();
    if (image.isNull() || within.isEmpty() || isNeutral(tone))
        return;
    if (image.format() != toneFormat(image))
        image.convertTo(toneFormat(image));
    toneArea(image, image, within, tone);
}

QString presetKey(TonePreset preset)
{
    const Preset *found = find(preset);
    return found ? QString::fromLatin1(found->key) : QString();
}

std::optional<TonePreset> presetFromKey(const QString &key)
{
    for (const Preset &preset : kPresets) {
        if (key.compare(QLatin1String(preset.key), Qt::CaseInsensitive) == 0)
            return preset.preset;
    }
    return std::nullopt;
}

QString presetName(TonePreset preset) { return Str::tonePresetName(preset); }

QString description(const ToneSettings &tone)
{
    const ToneSettings t = clamped(tone);
    QStringList parts{presetName(t.preset)};
    if (t.exposure != 0.0)
        parts << Str::toneExposurePart(t.exposure);
    if (t.contrast != 0.0)
        parts << Str::toneContrastPart(int(std::lround(t.contrast * 100)));
    if (t.saturation != 1.0)
        parts << Str::toneSaturationPart(int(std::lround(t.saturation * 100)));
    return parts.join(Str::listSeparator());
}

QString shortName(const ToneSettings &tone)
{
    const QString name = presetName(clamped(tone).preset);
    return isAdjusted(tone) ? Str::toneAdjustedName(name) : name;
}

} // namespace Tone
