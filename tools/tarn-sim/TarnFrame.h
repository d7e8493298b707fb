#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

// The stand-in frame format of tarn-sim: the ASCII line "TSIM 1 <width> <height> <panel>",
// a newline, then the picture quantised to six colours (black, white, yellow, red, blue,
// green = indices 0..5), 4 bits a pixel, two pixels a byte (first pixel in the high
// nibble), each row padded to a whole byte. It only stands in for the real device format.
namespace TarnFrame {

int nearestColourIndex(QRgb colour);
QRgb paletteColour(int index);

QByteArray encode(const QImage &image, const QString &panel);
// A null image on malformed data, with the reason in *error.
QImage decode(const QByteArray &data, QString *panel, QString *error);

} // namespace TarnFrame
