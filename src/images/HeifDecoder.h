#pragma once

#include "images/ColourProfile.h"

#include <QImage>
#include <QString>

struct WicImage;

// The platform's HEIC/HEIF decoder, for pictures Qt's own readers cannot open: the full
// first (primary) frame as a 32-bit image without alpha, or a null image, with the colour
// description the file gives (its ICC profile, or its nclx description; none means sRGB),
// the pixels still as stored. Windows decodes through WIC (HeifDecoderWic.cpp); every other
// platform through libheif (HeifDecoderLibheif.cpp), whose rotation and mirroring are applied
// once, never EXIF on top.
QImage decodeHeif(const QString &path, ColourProfile *colour = nullptr);

// WIC's 32-bit BGRA pixels as an RGB32 image, alpha dropped; null for an inconsistent buffer.
// Builds on every platform, so that it is tested everywhere.
QImage imageFromWicBgra(const WicImage &image);
// The colour description of WIC's colour context: its ICC profile, else the EXIF colour space
// it names (Adobe RGB; sRGB and none are sRGB).
ColourProfile colourFromWic(const WicImage &image);
