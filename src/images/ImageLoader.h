#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

// Every picture the tool reads comes through here: the accepted file types, decoding (HEIC
// and HEIF through the platform's decoder when Qt has none), and the conversion of HEIC/HEIF
// files into cached JPEGs for the processor. Failures give a null image or an empty path;
// nothing here shows a message.
namespace ImageLoader {

// The reader allocation limit, in megabytes, that the program sets at start-up: enough for
// 108-megapixel photos at 32 bits, small enough that a hostile header cannot exhaust memory.
constexpr int kAllocationLimitMB = 512;
void applyAllocationLimit();

QStringList supportedExtensions();
bool isHeicPath(const QString &path);

// maxSide <= 0: full size; otherwise the reader itself decodes at the size that fits a
// maxSide x maxSide box (aspect kept). EXIF orientation is applied to Qt-read files.
QImage load(const QString &path, int maxSide);

// The path the processor gets: the path itself for every non-HEIC file, a cached JPEG for a
// HEIC/HEIF file, empty when such a file cannot be converted.
QString resolveProcessorInputPath(const QString &path);
void removeCachedConversion(const QString &cachedPath);
QString heicCacheDir();

// The conversion cache is kept below this size: at start-up the oldest files go first.
constexpr qint64 kHeicCacheLimitBytes = qint64(1) << 30;
// Removes the least recently written cache files until the rest take at most maxBytes; the
// number of files removed.
int pruneHeicCache(qint64 maxBytes);

QString imageFileDialogFilter();

} // namespace ImageLoader
