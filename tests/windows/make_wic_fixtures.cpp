// Writes the pictures the Windows check decodes under wine: a PNG with a half-transparent
// first pixel, a JPEG, the same PNG under a non-ASCII name, a text file named like a
// picture, a HEIC (which wine has no codec for), and a PNG and a JPEG tagged Display P3,
// whose profile's size is written to p3.size.
#include "HeicWriter.h"

#include <QColorSpace>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QDir out(QCoreApplication::arguments().value(1));
    QDir().mkpath(out.path());

    QImage png(3, 2, QImage::Format_ARGB32);
    png.fill(QColor(10, 20, 30, 255));
    png.setPixelColor(0, 0, QColor(200, 100, 50, 128));
    bool ok = png.save(out.filePath("half.png"), "PNG");
    ok = ok && png.save(out.filePath(QStringLiteral("ünïcödé-名前.png")), "PNG");

    QImage jpeg(8, 6, QImage::Format_RGB32);
    jpeg.fill(QColor(250, 250, 250));
    ok = ok && jpeg.save(out.filePath("photo.jpg"), "JPEG", 100);

    QFile text(out.filePath("notes.png"));
    ok = ok && text.open(QIODevice::WriteOnly) && text.write("this is not a picture\n") > 0;
    text.close();

    ok = ok && HeicWriter::write(out.filePath("phone.heic"), jpeg);

    const QColorSpace p3(QColorSpace::DisplayP3);
    QImage tagged = jpeg;
    tagged.setColorSpace(p3);
    ok = ok && tagged.save(out.filePath("p3.png"), "PNG") && tagged.save(out.filePath("p3.jpg"), "JPEG", 95);
    QFile size(out.filePath("p3.size"));
    ok = ok && size.open(QIODevice::WriteOnly) && size.write(QByteArray::number(p3.iccProfile().size())) > 0;
    return ok ? 0 : 1;
}
