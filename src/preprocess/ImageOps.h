#pragma once

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRectF>
#include <QSize>

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

// Where the parts of a blur fill go, for a source of the given size in a w x h frame: the
// background covers the frame 12 % enlarged and is centred (offset truncated toward zero); it
// is blurred at a working size within 640 x 640 with a radius of an eighth of the working
// size's shorter side (never below 5); the foreground is the fitted picture, centred at
// fractional coordinates.
struct BlurFillGeometry {
    QSize background;
    QPoint backgroundOffset;
    QSize working;
    int radius = 0;
    QRectF foreground;
};
BlurFillGeometry blurFillGeometry(const QSize &source, int w, int h, double scale, bool useScale);

// The picture fitted into w x h over a blurred, slightly enlarged and darkened copy of itself.
// With useScale the foreground is zoomed by scale (a zoom below the fitted size snaps to the
// covering size); the pipeline passes 1.0 and false.
QImage buildBlurFillImage(const QImage &image, int w, int h, double scale, bool useScale);

// The blur fill's canvas without its foreground: the blurred, enlarged and darkened picture.
QImage buildBlurFillBackdrop(const QImage &image, int w, int h);

// The part region (in pixels, fractions allowed) of the image scaled smoothly to exactly size;
// null when the region holds none of the image.
QImage scaledRegion(const QImage &image, const QRectF &region, const QSize &size);

// Exact quarter turns on a black canvas of the turned size.
QImage rotateImageCW90(const QImage &image);
QImage rotateImageCCW90(const QImage &image);

QImage applyNormalizedCrop(const QImage &image, const NormalizedCropRect &rect);
