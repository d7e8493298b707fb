#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

// Writes HEIC test pictures through libheif's own encoder (HEVC), so that tests can make
// them at run time, rotated ones included.
namespace HeicWriter {

// exifOrientation uses the EXIF numbering (1 = as stored, 6 = turn 90 degrees clockwise to
// view, ...) and is written as the file's irot/imir boxes. With withAlpha the image's alpha
// channel is stored too.
bool write(const QString &path, const QImage &image, int exifOrientation = 1, bool withAlpha = false);

// As a phone writes a photo: quality 90, a 320 x 240 thumbnail beside the picture, and the
// encoder's fastest preset (a 12-megapixel picture takes about 2 s instead of 13).
bool writePhoneLike(const QString &path, const QImage &image);

// With its colours described by an ICC profile (a "prof" colour box).
bool writeWithProfile(const QString &path, const QImage &image, const QByteArray &icc);
// With its colours described by nclx code points (primaries and transfer; the matrix is
// BT.601's, at full range).
bool writeWithNclx(const QString &path, const QImage &image, int primaries, int transfer);

// With an EXIF block (a TIFF header and its directories), as a camera's "Exif" item.
bool writeWithExif(const QString &path, const QImage &image, const QByteArray &exif);

} // namespace HeicWriter
