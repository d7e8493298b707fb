#include "preprocess/EpaperLook.h"

#include <algorithm>
#include <vector>

namespace EpaperLook {

namespace {

// Colours measured off six-colour panels in daylight, as published with the six-colour palette
// of the open-source dithering library epdoptimize: a white that is light grey, a black that
// is dark slate, and muted inks.
constexpr std::array<QRgb, 6> kInks = {
    qRgb(25, 30, 33),    // black
    qRgb(232, 232, 232), // white
    qRgb(239, 222, 68),  // yellow
    qRgb(178, 19, 24),   // red
    qRgb(33, 87, 186),   // blue
    qRgb(18, 95, 32),    // green
};

struct Colour {
    float r, g, b;
};

int nearestInk(const Colour &c)
{
    int best = 0;
    float bestDistance = 0;
    for (int i = 0; i < int(kInks.size()); ++i) {
        const float dr = c.r - float(qRed(kInks[i]));
        const float dg = c.g - float(qGreen(kInks[i]));
        const float db = c.b - float(qBlue(kInks[i]));
        const float distance = dr * dr + dg * dg + db * db;
        if (i == 0 || distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

} // namespace

const std::array<QRgb, 6> &inks() { return kInks; }

QImage render(const QImage &composition)
{
    if (composition.isNull())
        return QImage();
    QImage image = composition.convertToFormat(QImage::Format_RGB32);
    const int width = image.width();
    // The errors carried into this row and the next, with a pixel of margin on either side.
    std::vector<Colour> current(size_t(width) + 2, Colour{0, 0, 0});
    std::vector<Colour> next(current.size(), Colour{0, 0, 0});
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        const bool forward = y % 2 == 0; // serpentine: every other row right to left
        const int step = forward ? 1 : -1;
        for (int i = 0; i < width; ++i) {
            const int x = forward ? i : width - 1 - i;
            const int at = x + 1;
            const Colour wanted{std::clamp(float(qRed(line[x])) + current[size_t(at)].r, 0.0f, 255.0f),
                                std::clamp(float(qGreen(line[x])) + current[size_t(at)].g, 0.0f, 255.0f),
                                std::clamp(float(qBlue(line[x])) + current[size_t(at)].b, 0.0f, 255.0f)};
            const QRgb ink = kInks[size_t(nearestInk(wanted))];
            line[x] = ink;
            const Colour error{wanted.r - float(qRed(ink)), wanted.g - float(qGreen(ink)),
                               wanted.b - float(qBlue(ink))};
            const auto spread = [&error](Colour &to, float share) {
                to.r += error.r * share;
                to.g += error.g * share;
                to.b += error.b * share;
            };
            spread(current[size_t(at + step)], 7.0f / 16);
            spread(next[size_t(at - step)], 3.0f / 16);
            spread(next[size_t(at)], 5.0f / 16);
            spread(next[size_t(at + step)], 1.0f / 16);
        }
        current.swap(next);
        std::fill(next.begin(), next.end(), Colour{0, 0, 0});
    }
    return image;
}

} // namespace EpaperLook
