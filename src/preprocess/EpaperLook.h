#pragma once

#include <QImage>
#include <QRgb>

#include <array>

// How a six-colour e-paper panel would show a composition, for the preview: every pixel
// becomes one of the panel's inks by serpentine Floyd–Steinberg error diffusion, at the size
// it is given (the panel's resolution). An approximation for the eye only; the processor makes
// the real frames with its own method.
namespace EpaperLook {

// Black, white, yellow, red, blue and green as such panels reflect them: far from pure RGB.
const std::array<QRgb, 6> &inks();

// The composition in the inks only; null for a null composition.
QImage render(const QImage &composition);

} // namespace EpaperLook
