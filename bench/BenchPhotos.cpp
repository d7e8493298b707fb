#include "BenchPhotos.h"

#include "images/ImageLoader.h"

#include <QDir>
#include <QDirIterator>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QRandomGenerator>
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

// Photo-like content: smooth gradients with shapes and grain, so JPEG coding does real work.
void makePhotos(const QString &folder, int count)
{
    QRandomGenerator random(42);
    for (int i = 0; i < count; ++i) {
        QImage image(4000, 3000, QImage::Format_RGB32);
        QPainter painter(&image);
        QLinearGradient sky(0, 0, 4000, 3000);
        sky.setColorAt(0, QColor::fromHsv(int(random.bounded(360)), 120, 230));
        sky.setColorAt(1, QColor::fromHsv(int(random.bounded(360)), 200, 90));
        painter.fillRect(image.rect(), sky);
        for (int shape = 0; shape < 60; ++shape) {
            painter.setBrush(QColor::fromHsv(int(random.bounded(360)), 180, 200, 160));
            painter.setPen(Qt::NoPen);
            painter.drawEllipse(QPointF(random.bounded(4000), random.bounded(3000)), random.bounded(400) + 20,
                                random.bounded(400) + 20);
        }
        painter.end();
        for (int y = 0; y < image.height(); ++y) {
            auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
            for (int x = 0; x < image.width(); ++x) {
                const int grain = int(random.bounded(17)) - 8;
                line[x] = qRgb(qBound(0, qRed(line[x]) + grain, 255), qBound(0, qGreen(line[x]) + grain, 255),
                               qBound(0, qBlue(line[x]) + grain, 255));
            }
        }
        image.save(QDir(folder).filePath(QStringLiteral("photo_%1.jpg").arg(i, 3, 10, QLatin1Char('0'))),
                   "JPEG", 90);
    }
}
