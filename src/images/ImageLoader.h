#pragma once

#include "images/ColourProfile.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class QIODevice;

// Every picture the tool reads comes through here: the accepted file types, decoding (HEIC
// and HEIF through the platform's decoder when Qt has none) into sRGB as the picture's colour
// profile says (SrgbConversion), and the conversion of HEIC/HEIF files into cached JPEGs for
// the processor. Failures give a null image or an empty path; nothing here shows a message. A
// colour profile that cannot be used never fails a picture: it is shown as sRGB, and the
// functions that take colourProblem say why.
namespace ImageLoader {

// The reader allocation limit, in megabytes, that the program sets at start-up: enough for
// 108-megapixel photos at 32 bits, small enough that a hostile header cannot exhaust memory.
constexpr int kAllocationLimitMB = 512;
// What the program sets up at start-up: that limit, and quiet from Qt's profile parser, whose
// complaints about a profile it cannot take would be repeated at every decode (the adding
// reports such a picture once, by its name).
void prepareReaders();

QStringList supportedExtensions();
bool isHeicPath(const QString &path);

// The supported pictures in a folder (and below it when recursive), sorted by path without
// regard to case: the order in which an adding lists them. keepGoing, when given, is asked
// after every 100 pictures found, with their count; false stops the search and gives nothing.
std::optional<QStringList> findPictures(const QString &folder, bool recursive,
                                        const std::function<bool(int found)> &keepGoing = {});

// maxSide <= 0: full size; otherwise the reader itself decodes at the size that fits a
// maxSide x maxSide box (aspect kept). EXIF orientation is applied to Qt-read files.
QImage load(const QString &path, int maxSide, ColourProfile::Problem *colourProblem = nullptr);

// The picture at the smallest size the reader can decode it at (a JPEG at M/8 of its size)
// that is still no smaller than the picture scaled into box with mode (fitted in, or
// covering it); box is in the picture's upright orientation. Pictures the reader cannot
// shrink while decoding come at full size.
QImage loadCovering(const QString &path, const QSize &box, Qt::AspectRatioMode mode,
                    ColourProfile::Problem *colourProblem = nullptr);

// The image at half its width and height, each pixel the average of a 2 x 2 block (RGB32).
QImage halved(const QImage &image);

// The size of the picture as it is viewed (EXIF orientation applied), read from its header;
// invalid when the reader cannot tell without decoding (HEIC/HEIF among them).
QSize pictureSize(const QString &path);

// The image scaled into a maxSide x maxSide box, aspect kept, smoothly; unchanged when it fits.
// Large reductions first average 2 x 2 blocks, which is much faster and looks the same.
QImage scaledToFit(const QImage &image, int maxSide);

// The path the processor gets: the path itself for every non-HEIC file, a cached JPEG (of sRGB
// pixels) for a HEIC/HEIF file, empty when such a file cannot be converted. When it converts,
// the picture it decoded for that is handed back through decoded (null when the cache already
// held it), and a colour profile it could not use through colourProblem.
QString resolveProcessorInputPath(const QString &path, QImage *decoded = nullptr,
                                  ColourProfile::Problem *colourProblem = nullptr);
void removeCachedConversion(const QString &cachedPath);
QString heicCacheDir();

// The conversion cache is kept below this size: at start-up the oldest files go first.
constexpr qint64 kHeicCacheLimitBytes = qint64(1) << 30;
// Removes the least recently written cache files until the rest take at most maxBytes; the
// number of files removed.
int pruneHeicCache(qint64 maxBytes);

QString imageFileDialogFilter();

// Writes the image as the program writes every JPEG of its own (the processor's pictures, the
// conversion cache, the rows' compact thumbnails): quality 92, without a colour profile, since
// its pixels are sRGB, which untagged pictures are taken to be.
bool writeJpeg(const QImage &image, QIODevice *device);
bool writeJpeg(const QImage &image, const QString &path);

// Gives the system back the memory that large decodes freed. The C library of Linux keeps it
// in per-thread pools otherwise, a photo's worth per worker thread; elsewhere nothing to do.
void releaseFreedMemory();

// How many HEIC/HEIF pictures this process has decoded so far (each costs most of a second).
int heifDecodeCount();

} // namespace ImageLoader
