#include "TestFiles.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLinearGradient>
#include <QPainter>
#include <QRandomGenerator>

namespace TestFiles {

namespace {
quint32 crc32(const QByteArray &bytes)
{
    quint32 crc = 0xffffffffu;
    for (char byte : bytes) {
        crc ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xedb88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}
} // namespace

bool write(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

QMap<QString, QByteArray> contents(const QString &folder)
{
    QMap<QString, QByteArray> files;
    const QDir dir(folder);
    for (const QString &name : dir.entryList(QDir::Files | QDir::Hidden | QDir::System))
        files.insert(name, read(dir.filePath(name)));
    return files;
}

QString savedPicture(const QString &path, const QImage &image)
{
    if (!QDir().mkpath(QFileInfo(path).absolutePath()) || !image.save(path))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

QStringList makePictures(const QString &folder, int count, const QString &prefix, const QSize &size)
{
    QDir().mkpath(folder);
    QStringList paths;
    for (int i = 0; i < count; ++i) {
        const QString path =
            QDir(folder).filePath(QStringLiteral("%1_%2.png").arg(prefix).arg(i, 4, 10, QLatin1Char('0')));
        solidImage(size.width(), size.height(), QColor::fromHsv((i * 37) % 360, 200, 220)).save(path);
        paths << path;
    }
    return paths;
}

bool setModified(const QString &path, const QDateTime &when)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && file.setFileTime(when, QFileDevice::FileModificationTime);
}

QImage markedImage(int width, int height)
{
    QImage image = solidImage(width, height, Qt::blue);
    for (int y = 0; y < height / 4; ++y)
        for (int x = 0; x < width / 4; ++x)
            image.setPixelColor(x, y, Qt::red);
    return image;
}

QImage positionImage(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            line[x] = qRgb(x * 255 / (width - 1), y * 255 / (height - 1), 128);
    }
    return image;
}

QPointF shownPosition(const QImage &render, int x, int y)
{
    const QRgb pixel = render.pixel(x, y);
    return QPointF(qRed(pixel) / 255.0, qGreen(pixel) / 255.0);
}

QImage photoLikeImage(int width, int height, quint32 seed)
{
    QRandomGenerator random(seed);
    QImage image(width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, width, height);
    sky.setColorAt(0, QColor::fromHsv(int(random.bounded(360)), 120, 230));
    sky.setColorAt(1, QColor::fromHsv(int(random.bounded(360)), 200, 90));
    painter.fillRect(image.rect(), sky);
    const double scale = width / 4000.0;
    for (int shape = 0; shape < 60; ++shape) {
        painter.setBrush(QColor::fromHsv(int(random.bounded(360)), 180, 200, 160));
        painter.setPen(Qt::NoPen);
        painter.drawEllipse(QPointF(random.bounded(double(width)), random.bounded(double(height))),
                            (random.bounded(400) + 20) * scale, (random.bounded(400) + 20) * scale);
    }
    painter.end();
    for (int y = 0; y < height; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const int grain = int(random.bounded(17)) - 8;
            line[x] = qRgb(qBound(0, qRed(line[x]) + grain, 255), qBound(0, qGreen(line[x]) + grain, 255),
                           qBound(0, qBlue(line[x]) + grain, 255));
        }
    }
    return image;
}

QImage solidImage(int width, int height, const QColor &colour)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

QByteArray jpegWithExifOrientation(const QImage &image, int orientation)
{
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", 95);
    // APP1 "Exif": a big-endian TIFF header and one IFD with the orientation tag (0x0112).
    QByteArray app1 = QByteArray::fromHex("FFE10022457869660000"
                                          "4D4D002A00000008"
                                          "0001"
                                          "011200030000000100");
    app1.append(char(orientation));
    app1.append(QByteArray::fromHex("0000"
                                    "00000000"));
    return jpeg.left(2) + app1 + jpeg.mid(2);
}

QByteArray exifWithDateTaken(const QString &text)
{
    const auto u16 = [](QByteArray &out, int value) {
        out.append(char(value & 0xff)).append(char((value >> 8) & 0xff));
    };
    const auto u32 = [&](QByteArray &out, quint32 value) {
        u16(out, int(value & 0xffff));
        u16(out, int(value >> 16));
    };
    const QByteArray date = text.toLatin1() + '\0';
    QByteArray tiff("II*\0", 4);
    u32(tiff, 8); // the first directory: one entry, the EXIF directory's place
    u16(tiff, 1);
    u16(tiff, 0x8769);
    u16(tiff, 4);
    u32(tiff, 1);
    u32(tiff, 26);
    u32(tiff, 0);
    u16(tiff, 1); // the EXIF directory, at 26: the date, its text at 44
    u16(tiff, 0x9003);
    u16(tiff, 2);
    u32(tiff, quint32(date.size()));
    u32(tiff, 44);
    u32(tiff, 0);
    return tiff + date;
}

QByteArray jpegWithDateTaken(const QImage &image, const QString &text)
{
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", 95);
    const QByteArray payload = QByteArray("Exif\0\0", 6) + exifWithDateTaken(text);
    const int length = int(payload.size()) + 2;
    QByteArray app1 = QByteArray::fromHex("FFE1");
    app1.append(char(length >> 8)).append(char(length & 0xff));
    return jpeg.left(2) + app1 + payload + jpeg.mid(2);
}

QByteArray pngWithOneRow(int width, int height)
{
    QByteArray png = QByteArray::fromHex("89504E470D0A1A0A");
    QByteArray ihdr = QByteArray::fromHex("49484452");
    for (int value : {width, height})
        for (int shift : {24, 16, 8, 0})
            ihdr.append(char((value >> shift) & 0xff));
    ihdr.append(QByteArray::fromHex("0806000000")); // 8-bit RGBA, no interlace
    png.append(QByteArray::fromHex("0000000D"));
    png.append(ihdr);
    const quint32 crc = crc32(ihdr);
    for (int shift : {24, 16, 8, 0})
        png.append(char((crc >> shift) & 0xff));
    // One row of data, then the end: the reader gets as far as allocating the whole picture.
    const QByteArray idat =
        QByteArray::fromHex("49444154") + qCompress(QByteArray(1 + 4 * width, '\0')).mid(4);
    for (int shift : {24, 16, 8, 0})
        png.append(char(((idat.size() - 4) >> shift) & 0xff));
    png.append(idat);
    const quint32 idatCrc = crc32(idat);
    for (int shift : {24, 16, 8, 0})
        png.append(char((idatCrc >> shift) & 0xff));
    png.append(QByteArray::fromHex("0000000049454E44AE426082")); // IEND
    return png;
}

QImage astronaut()
{
    const QString path = QStringLiteral(VELORA_TEST_DATA_DIR "/astronaut.png");
    const QImage image(path);
    if (image.isNull())
        qFatal("%s is missing: ./test takes it from Debian's python3-skimage package", qPrintable(path));
    return image.convertToFormat(QImage::Format_RGB32);
}

QString tarnSimPath() { return QStringLiteral(VELORA_TARN_SIM_PATH); }

QString binDir() { return QStringLiteral(VELORA_BIN_DIR); }

} // namespace TestFiles
