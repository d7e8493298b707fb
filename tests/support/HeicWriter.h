#pragma once

#include <QImage>
#include <QString>

// Writes HEIC test pictures through libheif's own encoder (HEVC), so that tests can make
// them at run time, rotated ones included.
namespace HeicWriter {

// exifOrientation uses the EXIF numbering (1 = as stored, 6 = turn 90 degrees clockwise to
// view, ...) and is written as the file's irot/imir boxes. With withAlpha the image's alpha
// channel is stored too.
bool write(const QString &path, const QImage &image, int exifOrientation = 1, bool withAlpha = false);

} // namespace HeicWriter
