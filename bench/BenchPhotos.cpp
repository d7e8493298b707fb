#include "BenchPhotos.h"

#include "images/ImageLoader.h"

#include "HeicWriter.h"
#include "TestFiles.h"

#include <QColorSpace>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <cstdio>
namespace {

constexpr int kDistinctPhotos = 20;

} // namespace

QStringList photoSet(const QString &kind, int count)
{
    const bool heic = kind == QLatin1String("heic");
    const bool p3 = kind == QLatin1String("jpeg-p3");
    const QString suffix = heic ? QStringLiteral("heic") : QStringLiteral("jpg");
    const QDir folder(QDir::temp().filePath(QStringLiteral("velora-bench-photos/") + kind));
    folder.mkpath(QStringLiteral("."));
    const quint32 seed = heic ? 7 : 42; // the P3 set holds the JPEG set's pictures, tagged
    QStringList paths;
    for (int i = 0; i < count; ++i) {
        const QString path =
            folder.filePath(QStringLiteral("photo_%1.%2").arg(i, 4, 10, QLatin1Char('0')).arg(suffix));
        paths << path;
        if (QFileInfo::exists(path))
            continue;
        if (i >= kDistinctPhotos) {
            QFile::copy(paths.at(i % kDistinctPhotos), path);
            continue;
        }
        std::printf("making %s\n", qPrintable(path));
        std::fflush(stdout);
        QImage image = TestFiles::photoLikeImage(4000, 3000, seed + quint32(i));
        if (p3)
            image.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
        if (heic)
            HeicWriter::writePhoneLike(path, image);
        else
            image.save(path, "JPEG", 90);
    }
    return paths;
}

qint64 residentBytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.size() > 1 ? fields.at(1).toLongLong() * 4096 : 0;
}

QStringList photosIn(const QString &folder)
{
    QStringList patterns;
    for (const QString &extension : ImageLoader::supportedExtensions())
        patterns << QStringLiteral("*.") + extension << QStringLiteral("*.") + extension.toUpper();
    QStringList files;
    QDirIterator it(folder, patterns, QDir::Files);
    while (it.hasNext())
        files << it.next();
    files.sort();
    return files;
}

void makePhotos(const QString &folder, int count, const QColorSpace &colorSpace)
{
    for (int i = 0; i < count; ++i) {
        QImage photo = TestFiles::photoLikeImage(4000, 3000, 42 + quint32(i));
        photo.setColorSpace(colorSpace);
        photo.save(QDir(folder).filePath(QStringLiteral("photo_%1.jpg").arg(i, 3, 10, QLatin1Char('0'))),
                   "JPEG", 90);
    }
}
