#pragma once

#include <QImage>
#include <QString>

struct WicImage;

// The platform's HEIC/HEIF decoder, for pictures Qt's own readers cannot open: the full
// first (primary) frame as a 32-bit image without alpha, or a null image. Windows decodes
// through WIC (HeifDecoderWic.cpp); every other platform through libheif
// (HeifDecoderLibheif.cpp), whose rotation and mirroring are applied once, never EXIF on top.
QImage decodeHeif(const QString &path);

// WIC's 32-bit BGRA pixels as an RGB32 image, alpha dropped; null for an inconsistent buffer.
// Builds on every platform, so that it is tested everywhere.
QImage imageFromWicBgra(const WicImage &image);
