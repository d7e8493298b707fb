#include "TarnFrame.h"

#include <QList>

#include <array>
#include <climits>

namespace TarnFrame {

namespace {
constexpr std::array<QRgb, 6> kPalette = {
    0xff000000u, // black
    0xffffffffu, // white
    0xffffff00u, // yellow
    0xffff0000u, // red
    0xff0000ffu, // blue
    0xff00ff00u, // green
};

constexpr int kMaxSide = 20000;
} // namespace

int nearestColourIndex(QRgb colour)
{
    int best = 0;
    int bestDistance = INT_MAX;
    for (int i = 0; i < int(kPalette.size()); ++i) {
        const int dr = qRed(colour) - qRed(kPalette[i]);
        const int dg = qGreen(colour) - qGreen(kPalette[i]);
        const int db = qBlue(colour) - qBlue(kPalette[i]);
        const int distance = dr * dr + dg * dg + db * db;
        if (distance < bestDistance) {
            bestDistance = distance;
            best = i;
        }
    }
    return best;
}

QRgb paletteColour(int index)
{
    return (index >= 0 && index < int(kPalette.size())) ? kPalette[index] : kPalette[0];
}

QByteArray encode(const QImage &image, const QString &panel)
{
    const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
    QByteArray out = QStringLiteral("TSIM 1 %1 %2 %3\n")
                         .arg(rgb.width())
                         .arg(rgb.height())
                         .arg(panel.isEmpty() ? QStringLiteral("none") : panel)
                         .toLatin1();
    const int bytesPerRow = (rgb.width() + 1) / 2;
    const int headerSize = out.size();
    out.resize(headerSize + qsizetype(bytesPerRow) * rgb.height(), '\0');
    char *pixels = out.data() + headerSize;
    for (int y = 0; y < rgb.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(rgb.constScanLine(y));
        char *row = pixels + qsizetype(bytesPerRow) * y;
        for (int x = 0; x < rgb.width(); ++x) {
            const int index = nearestColourIndex(line[x]);
            row[x / 2] = char(uchar(row[x / 2]) | (x % 2 == 0 ? index << 4 : index));
        }
    }
    return out;
}

QImage decode(const QByteArray &data, QString *panel, QString *error)
{
    const auto fail = [error](const QString &why) {
        if (error)
            *error = why;
        return QImage();
    };
    const qsizetype newline = data.indexOf('\n');
    if (newline < 0 || newline > 128)
        return fail(QStringLiteral("no TSIM header line"));
    const QList<QByteArray> fields = data.left(newline).split(' ');
    if (fields.size() != 5 || fields.at(0) != "TSIM" || fields.at(1) != "1")
        return fail(QStringLiteral("not a TSIM 1 frame"));
    bool okWidth = false;
    bool okHeight = false;
    const int width = fields.at(2).toInt(&okWidth);
    const int height = fields.at(3).toInt(&okHeight);
    if (!okWidth || !okHeight || width < 1 || height < 1 || width > kMaxSide || height > kMaxSide)
        return fail(QStringLiteral("bad frame size"));
    const int bytesPerRow = (width + 1) / 2;
    if (data.size() - newline - 1 != qsizetype(bytesPerRow) * height)
        return fail(QStringLiteral("frame data has the wrong length"));

    QImage image(width, height, QImage::Format_RGB32);
    const auto *pixels = reinterpret_cast<const uchar *>(data.constData() + newline + 1);
    for (int y = 0; y < height; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        const uchar *row = pixels + qsizetype(bytesPerRow) * y;
        for (int x = 0; x < width; ++x) {
            const int index = x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 0x0f;
            line[x] = paletteColour(index);
        }
    }
    if (panel)
        *panel = QString::fromLatin1(fields.at(4));
    return image;
}

} // namespace TarnFrame
