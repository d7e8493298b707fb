#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

// When a photo was taken, as its camera wrote it: the EXIF DateTimeOriginal of a JPEG (its APP1
// "Exif" segment) or of a HEIC/HEIF picture (its "Exif" item), read from the file's own
// structure without decoding its pixels, the same on every platform. The time is the camera's
// local time, without a zone. Invalid when the file has none, is of another type, or is
// damaged; reading never fails otherwise and reads a few kilobytes at most.
namespace DateTaken {

QDateTime read(const QString &path);

// The DateTimeOriginal of an EXIF block: a TIFF header and its directories.
QDateTime fromTiff(const QByteArray &tiff);

} // namespace DateTaken
