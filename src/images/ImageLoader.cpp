#include "images/ImageLoader.h"

#include "images/EmbeddedProfile.h"
#include "images/HeifDecoder.h"
#include "images/SrgbConversion.h"

#include <QColorSpace>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QLoggingCategory>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>
#include <atomic>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace ImageLoader {

namespace {
const QStringList kSupportedExtensions = {
    QStringLiteral("jpg"),  QStringLiteral("jpeg"), QStringLiteral("png"),
    QStringLiteral("bmp"),  QStringLiteral("tif"),  QStringLiteral("tiff"),
    QStringLiteral("webp"), QStringLiteral("heic"), QStringLiteral("heif"),
};
const QStringList kHeicExtensions = {QStringLiteral("heic"), QStringLiteral("heif")};

constexpr int kJpegQuality = 92;

std::atomic<int> g_heifDecodes{0};

// A HEIC/HEIF picture decoded in full, in sRGB.
QImage decodeHeifInSrgb(const QString &path, ColourProfile::Problem *colourProblem)
{
    ++g_heifDecodes;
    ColourProfile colour;
    return SrgbConversion::toSrgb(decodeHeif(path, &colour), colour, colourProblem);
}

// A picture Qt's reader decoded, in sRGB: the profile the reader reports, or one it could not
// take (which the file still holds), else sRGB.
QImage readInSrgb(QImageReader &reader, const QString &path, ColourProfile::Problem *colourProblem)
{
    QImage image = reader.read();
    if (colourProblem)
        *colourProblem = ColourProfile::Problem::None;
    if (image.isNull())
        return image;
    if (image.colorSpace().isValid()) {
        const ColourProfile profile = ColourProfile::fromColorSpace(image.colorSpace());
        return SrgbConversion::toSrgb(std::move(image), profile, colourProblem);
    }
    bool unreadable = false;
    const QByteArray icc = EmbeddedProfile::read(path, &unreadable);
    return SrgbConversion::toSrgb(std::move(image),
                                  unreadable ? ColourProfile{QByteArray(), ColourProfile::Problem::Damaged}
                                             : ColourProfile::fromIcc(icc),
                                  colourProblem);
}
} // namespace

int heifDecodeCount() { return g_heifDecodes.load(); }

void releaseFreedMemory()
{
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

void prepareReaders()
{
    QImageReader::setAllocationLimit(kAllocationLimitMB);
    QLoggingCategory::setFilterRules(QStringLiteral("qt.gui.icc=false"));
}

QStringList supportedExtensions() { return kSupportedExtensions; }

std::optional<QStringList> findPictures(const QString &folder, bool recursive,
                                        const std::function<bool(int)> &keepGoing)
{
    QStringList nameFilters;
    for (const QString &extension : kSupportedExtensions)
        nameFilters << QStringLiteral("*.") + extension;
    QDirIterator it(folder, nameFilters, QDir::Files,
                    recursive ? QDirIterator::Subdirectories | QDirIterator::FollowSymlinks
                              : QDirIterator::NoIteratorFlags);
    QStringList found;
    while (it.hasNext()) {
        found << it.next();
        if (keepGoing && found.size() % 100 == 0 && !keepGoing(int(found.size())))
            return std::nullopt;
    }
    std::sort(found.begin(), found.end(),
              [](const QString &a, const QString &b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
    return found;
}

bool isHeicPath(const QString &path) { return kHeicExtensions.contains(QFileInfo(path).suffix().toLower()); }

QImage load(const QString &path, int maxSide, ColourProfile::Problem *colourProblem)
{
    if (colourProblem)
        *colourProblem = ColourProfile::Problem::None;
    if (path.isEmpty())
        return QImage();

    QImageReader reader(path);
    reader.setAutoTransform(true);
    if (maxSide > 0) {
        const QSize size = reader.size();
        if (size.width() >= 0 && size.height() >= 0 && qMax(size.width(), size.height()) > maxSide) {
            const QSize scaled = size.scaled(maxSide, maxSide, Qt::KeepAspectRatio);
            reader.setScaledSize(QSize(qMax(1, scaled.width()), qMax(1, scaled.height())));
        }
    }
    const QImage image = readInSrgb(reader, path, colourProblem);
    if (!image.isNull() || !isHeicPath(path))
        return image;

    const QImage decoded = decodeHeifInSrgb(path, colourProblem);
    return maxSide < 1 ? decoded : scaledToFit(decoded, maxSide);
}

QImage loadCovering(const QString &path, const QSize &box, Qt::AspectRatioMode mode,
                    ColourProfile::Problem *colourProblem)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize stored = reader.size();
    if (reader.format() == "jpeg" && stored.isValid() && box.isValid()) {
        // The box in the stored orientation, as the reader's sizes are.
        const bool turned = reader.transformation() & QImageIOHandler::TransformationRotate90;
        const QSize needed = stored.scaled(turned ? box.transposed() : box, mode);
        // libjpeg decodes at M/8 of the size (M = 1..8); Qt picks M from the asked size.
        for (int m = 1; m < 8; ++m) {
            const QSize scaled(stored.width() * m / 8, stored.height() * m / 8);
            if (scaled.width() >= needed.width() && scaled.height() >= needed.height()) {
                reader.setScaledSize(scaled);
                break;
            }
        }
    }
    const QImage image = readInSrgb(reader, path, colourProblem);
    if (!image.isNull() || !isHeicPath(path))
        return image;
    return decodeHeifInSrgb(path, colourProblem);
}

QImage halved(const QImage &image)
{
    const QImage source = image.convertToFormat(QImage::Format_RGB32);
    QImage half(source.width() / 2, source.height() / 2, QImage::Format_RGB32);
    for (int y = 0; y < half.height(); ++y) {
        const auto *top = reinterpret_cast<const QRgb *>(source.constScanLine(2 * y));
        const auto *bottom = reinterpret_cast<const QRgb *>(source.constScanLine(2 * y + 1));
        auto *out = reinterpret_cast<QRgb *>(half.scanLine(y));
        for (int x = 0; x < half.width(); ++x) {
            const QRgb a = top[2 * x], b = top[2 * x + 1], c = bottom[2 * x], d = bottom[2 * x + 1];
            out[x] = qRgb((qRed(a) + qRed(b) + qRed(c) + qRed(d) + 2) / 4,
                          (qGreen(a) + qGreen(b) + qGreen(c) + qGreen(d) + 2) / 4,
                          (qBlue(a) + qBlue(b) + qBlue(c) + qBlue(d) + 2) / 4);
        }
    }
    return half;
}

QImage scaledToFit(const QImage &image, int maxSide)
{
    if (image.isNull() || maxSide < 1 || (image.width() <= maxSide && image.height() <= maxSide))
        return image;
    const QSize target = image.size().scaled(maxSide, maxSide, Qt::KeepAspectRatio);
    QImage reduced = image.convertToFormat(QImage::Format_RGB32);
    // Halve while the picture is at least twice the target size.
    while (reduced.width() >= 2 * target.width() && reduced.height() >= 2 * target.height())
        reduced = halved(reduced);
    return reduced.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QSize pictureSize(const QString &path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize stored = reader.size();
    if (!stored.isValid())
        return QSize();
    return reader.transformation() & QImageIOHandler::TransformationRotate90 ? stored.transposed() : stored;
}

QString heicCacheDir()
{
    return QStandardPaths::writableLocation(QStandardPaths::TempLocation) +
           QStringLiteral("/tarngui_heic_cache");
}

QString resolveProcessorInputPath(const QString &path, QImage *decoded, ColourProfile::Problem *colourProblem)
{
    if (colourProblem)
        *colourProblem = ColourProfile::Problem::None;
    if (!isHeicPath(path))
        return path;

    // The key changes with the file's modification time, so an edited picture is converted
    // again; the old cache file stays until its row is removed. Its first part names what
    // the cache holds (sRGB pixels), so that files an earlier version made, whose pixels
    // kept the picture's own colours, are never taken for them.
    const QFileInfo info(path);
    const QByteArray key = QByteArrayLiteral("srgb|") + info.absoluteFilePath().toUtf8() + '|' +
                           QByteArray::number(info.lastModified().toMSecsSinceEpoch());
    const QString cachePath =
        QDir(heicCacheDir())
            .filePath(QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Md5).toHex()) +
                      QStringLiteral(".jpg"));
    if (QFileInfo::exists(cachePath))
        return cachePath;

    const QImage image = load(path, 0, colourProblem);
    if (image.isNull())
        return QString();
    if (decoded)
        *decoded = image;
    QDir().mkpath(heicCacheDir());
    // Written through a temporary file and renamed, so an interrupted write never leaves a
    // half file that a later call would take for a finished conversion.
    QSaveFile file(cachePath);
    if (!file.open(QIODevice::WriteOnly) || !writeJpeg(image, &file) || !file.commit())
        return QString();
    return cachePath;
}

bool writeJpeg(const QImage &image, QIODevice *device)
{
    QImage untagged = image;
    untagged.setColorSpace(QColorSpace()); // a copy only when the image was tagged
    return untagged.save(device, "JPEG", kJpegQuality);
}

bool writeJpeg(const QImage &image, const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && writeJpeg(image, &file);
}

void removeCachedConversion(const QString &cachedPath)
{
    if (!cachedPath.isEmpty())
        QFile::remove(cachedPath);
}

int pruneHeicCache(qint64 maxBytes)
{
    // Another copy of the program may still use a file removed here: the run converts again
    // when a row's cache file is missing.
    const QFileInfoList files =
        QDir(heicCacheDir())
            .entryInfoList({QStringLiteral("*.jpg")}, QDir::Files, QDir::Time | QDir::Reversed);
    qint64 total = 0;
    for (const QFileInfo &file : files)
        total += file.size();
    int removed = 0;
    for (const QFileInfo &file : files) {
        if (total <= maxBytes)
            break;
        if (QFile::remove(file.absoluteFilePath())) {
            total -= file.size();
            ++removed;
        }
    }
    return removed;
}

QString imageFileDialogFilter()
{
    QStringList patterns;
    for (const QString &extension : kSupportedExtensions)
        patterns << QStringLiteral("*.") + extension;
    return QStringLiteral("Images (%1);;All files (*)").arg(patterns.join(QLatin1Char(' ')));
}

} // namespace ImageLoader
