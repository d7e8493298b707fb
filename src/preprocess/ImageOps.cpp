#include "preprocess/ImageOps.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

// Unless a step says otherwise, "scaled" is QImage::scaled with smooth transformation, new
// images are Format_RGB32, and products of doubles become integers by truncation (never
// rounding): the arithmetic below is the product's contract.

namespace {

constexpr int kBlurWorkingBound = 640;
constexpr double kBackgroundEnlargement = 1.12;
constexpr double kBackgroundOpacity = 0.95;
constexpr int kBackgroundDarkeningAlpha = 30;
constexpr int kReducedBlurRadius = 8;

// One pass of a box filter of width 2 * radius + 1 along rows (horizontal) or columns, with
// the edge pixels repeated beyond the border, so a uniform picture stays uniform up to its
// edges (no dark rim where a blur would pull in transparent or black surroundings).
void boxPass(std::vector<std::array<int, 3>> &line, std::vector<std::array<int, 3>> &scratch, int radius)
{
    const int n = int(line.size());
    const int window = 2 * radius + 1;
    std::array<int, 3> sum{0, 0, 0};
    for (int i = -radius; i <= radius; ++i) {
        const auto &p = line[std::clamp(i, 0, n - 1)];
        for (int c = 0; c < 3; ++c)
            sum[c] += p[c];
    }
    for (int i = 0; i < n; ++i) {
        for (int c = 0; c < 3; ++c)
            scratch[i][c] = (sum[c] + window / 2) / window;
        const auto &leaving = line[std::clamp(i - radius, 0, n - 1)];
        const auto &entering = line[std::clamp(i + radius + 1, 0, n - 1)];
        for (int c = 0; c < 3; ++c)
            sum[c] += entering[c] - leaving[c];
    }
    line.swap(scratch);
}

// The box radii of three passes that together approximate a Gaussian whose visible reach
// (three standard deviations) is the blur radius.
std::array<int, 3> boxRadiiFor(int blurRadius)
{
    const double sigma = blurRadius / 3.0;
    const double ideal = std::sqrt(12.0 * sigma * sigma / 3.0 + 1.0);
    int lower = int(std::floor(ideal));
    if (lower % 2 == 0)
        --lower;
    const int upper = lower + 2;
    const double m =
        std::round((12.0 * sigma * sigma - 3.0 * lower * lower - 12.0 * lower - 9.0) / (-4.0 * lower - 4.0));
    std::array<int, 3> radii{};
    for (int i = 0; i < 3; ++i)
        radii[i] = std::max(0, ((i < m ? lower : upper) - 1) / 2);
    return radii;
}

QImage blurClamped(const QImage &source, int blurRadius)
{
    QImage image = source.convertToFormat(QImage::Format_RGB32);
    const int width = image.width();
    const int height = image.height();
    const std::array<int, 3> radii = boxRadiiFor(blurRadius);

    std::vector<std::array<int, 3>> line;
    std::vector<std::array<int, 3>> scratch;
    const auto run = [&](int count, int length, auto pixelAt) {
        line.resize(length);
        scratch.resize(length);
        for (int k = 0; k < count; ++k) {
            for (int i = 0; i < length; ++i) {
                const QRgb p = *pixelAt(k, i);
                line[i] = {qRed(p), qGreen(p), qBlue(p)};
            }
            for (int radius : radii)
                boxPass(line, scratch, radius);
            for (int i = 0; i < length; ++i)
                *pixelAt(k, i) = qRgb(line[i][0], line[i][1], line[i][2]);
        }
    };
    run(height, width, [&](int y, int x) { return reinterpret_cast<QRgb *>(image.scanLine(y)) + x; });
    run(width, height, [&](int x, int y) { return reinterpret_cast<QRgb *>(image.scanLine(y)) + x; });
    return image;
}

bool isWhole(double value) { return std::abs(value - std::round(value)) < 1e-9; }

} // namespace

QImage buildSolidFillImage(const QImage &image, int w, int h, const QColor &colour)
{
    if (image.isNull() || w < 1 || h < 1)
        return QImage();
    QImage canvas(w, h, QImage::Format_RGB32);
    canvas.fill(colour);
    const QImage scaled = image.scaled(w, h, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QPoint((w - scaled.width()) / 2, (h - scaled.height()) / 2), scaled);
    return canvas;
}

QImage centerCropToSize(const QImage &image, int w, int h)
{
    if (image.isNull() || w < 1 || h < 1)
        return QImage();
    const double s = std::max(double(h) / image.height(), double(w) / image.width());
    const int scaledWidth = std::max(1, int(image.width() * s));
    const int scaledHeight = std::max(1, int(image.height() * s));
    const QImage scaled =
        image.scaled(scaledWidth, scaledHeight, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const int x = scaledWidth - w > 1 ? (scaledWidth - w) / 2 : 0;
    const int y = scaledHeight - h > 1 ? (scaledHeight - h) / 2 : 0;
    return scaled.copy(x, y, w, h);
}

BlurFillGeometry blurFillGeometry(const QSize &source, int w, int h, double scale, bool useScale)
{
    BlurFillGeometry geometry;
    const double sourceWidth = source.width();
    const double sourceHeight = source.height();
    if (sourceWidth <= 0 || sourceHeight <= 0 || w <= 0 || h <= 0)
        return geometry;

    const double cover = std::max(h / sourceHeight, w / sourceWidth) * kBackgroundEnlargement;
    geometry.background =
        QSize(std::max(1, int(sourceWidth * cover)), std::max(1, int(sourceHeight * cover)));
    geometry.backgroundOffset =
        QPoint(int((w - geometry.background.width()) * 0.5), int((h - geometry.background.height()) * 0.5));
    geometry.working = geometry.background.scaled(kBlurWorkingBound, kBlurWorkingBound, Qt::KeepAspectRatio);
    const int shorter = std::min(geometry.working.width(), geometry.working.height());
    geometry.radius = shorter <= 47 ? 5 : shorter / 8;

    const double fit = std::min(w / sourceWidth, h / sourceHeight);
    double foregroundWidth = sourceWidth * fit;
    double foregroundHeight = sourceHeight * fit;
    if (useScale) {
        foregroundWidth *= scale;
        foregroundHeight *= scale;
        // A zoom that leaves both sides short of the frame snaps to the covering size
        // instead of leaving a second margin.
        if (w > foregroundWidth && h > foregroundHeight) {
            const double snap = std::max(w / foregroundWidth, h / foregroundHeight);
            foregroundWidth *= snap;
            foregroundHeight *= snap;
        }
    }
    geometry.foreground =
        QRectF((w - foregroundWidth) * 0.5, (h - foregroundHeight) * 0.5, foregroundWidth, foregroundHeight);
    return geometry;
}

namespace {

// The blur fill's canvas before its foreground: the picture blurred, enlarged and darkened.
// The blur is made from smaller when that copy is still as large as the blur needs, else from
// the picture. A Gaussian of radius r equals one of radius r * s at s times the size, scaled
// back up, so a large radius is blurred smaller at a fraction of the cost with the same look.
QImage blurFillBackdrop(const QImage &image, const QImage &smaller, const BlurFillGeometry &geometry, int w,
                        int h)
{
    const double reduce = std::min(1.0, double(kReducedBlurRadius) / std::max(1, geometry.radius));
    const QSize blurSize(std::max(1, qRound(geometry.working.width() * reduce)),
                         std::max(1, qRound(geometry.working.height() * reduce)));
    const int blurRadius = std::max(1, qRound(geometry.radius * reduce));
    const bool smallerIsEnough =
        !smaller.isNull() && smaller.width() >= blurSize.width() && smaller.height() >= blurSize.height();
    QImage blurred =
        (smallerIsEnough ? smaller : image).scaled(blurSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (!blurred.isNull())
        blurred = blurClamped(blurred, blurRadius);

    QImage canvas(w, h, QImage::Format_RGB32);
    canvas.fill(Qt::black);
    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    // Scaled back up to the background size as it is drawn: only the part inside the
    // canvas is ever computed.
    painter.setOpacity(kBackgroundOpacity);
    painter.drawImage(QRect(geometry.backgroundOffset, geometry.background), blurred);
    painter.setOpacity(1.0);
    painter.fillRect(canvas.rect(), QColor(0, 0, 0, kBackgroundDarkeningAlpha));
    return canvas;
}

} // namespace

QImage buildBlurFillImage(const QImage &image, int w, int h, double scale, bool useScale)
{
    if (image.isNull() || w <= 0 || h <= 0)
        return QImage();
    const BlurFillGeometry geometry = blurFillGeometry(image.size(), w, h, scale, useScale);

    // A foreground placed on whole pixels is pre-scaled with area averaging: the same
    // rectangle as a painter's bilinear downscale, without its aliasing.
    const QRectF &target = geometry.foreground;
    QImage fitted;
    if (isWhole(target.x()) && isWhole(target.y()) && isWhole(target.width()) && isWhole(target.height()))
        fitted = image.scaled(qRound(target.width()), qRound(target.height()), Qt::IgnoreAspectRatio,
                              Qt::SmoothTransformation);

    QImage canvas = blurFillBackdrop(image, fitted, geometry, w, h);
    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!fitted.isNull())
        painter.drawImage(target.topLeft().toPoint(), fitted);
    else
        painter.drawImage(target, image);
    return canvas;
}

QImage buildBlurFillBackdrop(const QImage &image, int w, int h)
{
    if (image.isNull() || w <= 0 || h <= 0)
        return QImage();
    return blurFillBackdrop(image, QImage(), blurFillGeometry(image.size(), w, h, 1.0, false), w, h);
}

QImage scaledRegion(const QImage &image, const QRectF &region, const QSize &size)
{
    const QRect whole = region.toAlignedRect() & image.rect();
    if (image.isNull() || whole.isEmpty() || size.isEmpty() || region.width() <= 0 || region.height() <= 0)
        return QImage();
    // The whole pixels around the region, read in place (no copy of a large picture), scaled so
    // that the region comes out at the wanted size, then cut out of that.
    const QImage source = image.depth() == 32 ? image : image.convertToFormat(QImage::Format_RGB32);
    const QImage part(source.constScanLine(whole.y()) + std::ptrdiff_t(whole.x()) * 4, whole.width(),
                      whole.height(), source.bytesPerLine(), source.format());
    const double sx = size.width() / region.width();
    const double sy = size.height() / region.height();
    const QSize scaledSize(std::max(size.width(), qRound(whole.width() * sx)),
                           std::max(size.height(), qRound(whole.height() * sy)));
    const QImage scaled = part.scaled(scaledSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (scaled.isNull())
        return QImage();
    const int x = std::clamp(qRound((region.x() - whole.x()) * sx), 0, scaled.width() - size.width());
    const int y = std::clamp(qRound((region.y() - whole.y()) * sy), 0, scaled.height() - size.height());
    return scaled.copy(x, y, size.width(), size.height());
}

namespace {
QImage quarterTurn(const QImage &image, qreal degrees)
{
    if (image.isNull())
        return image;
    QImage canvas(image.height(), image.width(), QImage::Format_RGB32);
    canvas.fill(Qt::black);
    QPainter painter(&canvas);
    painter.translate(canvas.width() * 0.5, canvas.height() * 0.5);
    painter.rotate(degrees);
    painter.drawImage(QPointF(-image.width() * 0.5, -image.height() * 0.5), image);
    return canvas;
}
} // namespace

QImage rotateImageCW90(const QImage &image) { return quarterTurn(image, 90); }

QImage rotateImageCCW90(const QImage &image) { return quarterTurn(image, -90); }

QImage applyNormalizedCrop(const QImage &image, const NormalizedCropRect &rect)
{
    if (image.isNull() || rect.width <= 0.001 || rect.height <= 0.001)
        return image.copy();
    const int width = image.width();
    const int height = image.height();
    const int x0 = std::clamp(int(width * rect.x), 0, width - 1);
    const int y0 = std::clamp(int(height * rect.y), 0, height - 1);
    const int w = std::max(1, std::min(width - x0, int(width * rect.width)));
    const int h = std::max(1, std::min(height - y0, int(height * rect.height)));
    return image.copy(x0, y0, w, h);
}
