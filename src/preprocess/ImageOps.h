#pragma once

#include <QColor>
#include <QImage>

// The image building blocks of preprocessing. Each takes its inputs by const reference and
// returns a new image; unusable input gives a null image (or, where said, the input back).

// A region of an image as fractions of its width and height; (0, 0, 1, 1) is the whole.
struct NormalizedCropRect {
    double x;
    double y;
    double width;
    double height;
};

// The picture fitted into w x h (aspect kept) and centred on a canvas of that colour.
QImage buildSolidFillImage(const QImage &image, int w, int h, const QColor &colour);

// The picture scaled to cover w x h and cropped to it around the centre.
QImage centerCropToSize(const QImage &image, int w, int h);

// The picture fitted into w x h over a blurred, slightly enlarged and darkened copy of itself.
// With useScale the foreground is zoomed by scale (a zoom below the fitted size snaps to the
// covering size); the pipeline passes 1.0 and false.
QImage buildBlurFillImage(const QImage &image, int w, int h, double scale, bool useScale);

// Exact quarter turns on a black canvas of the turned size.
QImage rotateImageCW90(const QImage &image);
QImage rotateImageCCW90(const QImage &image);

QImage applyNormalizedCrop(const QImage &image, const NormalizedCropRect &rect);
