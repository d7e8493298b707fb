#pragma once

#include "images/ColourProfile.h"

#include <QImage>

// Turns decoded pixels into sRGB as their colour profile says: the first thing done with a
// picture, so that everything after it (thumbnails, previews, the processor's picture) works
// on sRGB. Untagged and sRGB pictures, and profiles whose conversion would change no 8-bit
// value, come back untouched: the very same image. Profiles made of a matrix and curves (those
// of nearly every phone, camera and editor: Display P3, Adobe RGB, ProPhoto, gamma 1.8, ...)
// are converted through integer tables, a few nanoseconds a pixel, large pictures on every core
// (RowBands); any other profile lcms2 can read (table-based, grey) through lcms2. The
// conversion is relative colorimetric for the former
// and perceptual for the latter, as colour-managed viewers show them. A converted image is
// marked sRGB and keeps its alpha; an 8-bit grey one stays grey. A profile that cannot be used
// leaves the image as it is and says why. Conversions are built once per profile and kept, so
// a thousand pictures from one phone build one. Safe on any thread.
namespace SrgbConversion {

// Converts in place when the caller hands over the only reference to the pixels (std::move).
QImage toSrgb(QImage image, const ColourProfile &profile, ColourProfile::Problem *problem = nullptr);

} // namespace SrgbConversion
