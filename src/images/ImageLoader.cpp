#include "images/ImageLoader.h"

#include "images/HeifDecoder.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QSaveFile>
#include <QStandardPaths>

namespace ImageLoader {

namespace {
const QStringList kSupportedExtensions = {
    QStringLiteral("jpg"),  QStringLiteral("jpeg"), QStringLiteral("png"),
    QStringLiteral("bmp"),  QStringLiteral("tif"),  QStringLiteral("tiff"),
    QStringLiteral("webp"), QStringLiteral("heic"), QStringLiteral("heif"),
};
const QStringList kHeicExtensions = {QStringLiteral("heic"), QStringLiteral("heif")};
} // namespace

void applyAllocationLimit() { QImageReader::setAllocationLimit(kAllocationLimitMB); }

QStringList supportedExtensions() { return kSupportedExtensions; }

bool isHeicPath(const QString &path) { return kHeicExtensions.contains(QFileInfo(path).suffix().toLower()); }

QImage load(const QString &path, int maxSide)
{
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
    const QImage image = reader.read();
    if (!image.isNull() || !isHeicPath(path))
        return image;

    const QImage decoded = decodeHeif(path);
    if (decoded.isNull() || maxSide < 1 || (decoded.width() <= maxSide && decoded.height() <= maxSide))
        return decoded;
    return decoded.scaled(maxSide, maxSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QString heicCacheDir()
{
    return QStandardPaths::writableLocation(QStandardPaths::TempLocation) +
           QStringLiteral("/tarngui_heic_cache");
}

QString resolveProcessorInputPath(const QString &path)
{
    if (!isHeicPath(path))
        return path;

    // The key changes with the file's modification time, so an edited picture is converted
    // again; the old cache file stays until its row is removed.
    const QFileInfo info(path);
    const QByteArray key =
        info.absoluteFilePath().toUtf8() + '|' + QByteArray::number(info.lastModified().toMSecsSinceEpoch());
    const QString cachePath =
        QDir(heicCacheDir())
            .filePath(QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Md5).toHex()) +
                      QStringLiteral(".jpg"));
    if (QFileInfo::exists(cachePath))
        return cachePath;

    const QImage image = load(path, 0);
    if (image.isNull())
        return QString();
    QDir().mkpath(heicCacheDir());
    // Written through a temporary file and renamed, so an interrupted write never leaves a
    // half file that a later call would take for a finished conversion.
    QSaveFile file(cachePath);
    if (!file.open(QIODevice::WriteOnly) || !image.save(&file, "JPEG", 92) || !file.commit())
        return QString();
    return cachePath;
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
