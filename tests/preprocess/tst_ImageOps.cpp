#include "preprocess/ImageOps.h"

#include "TestFiles.h"

#include <QTest>

namespace {

bool near(const QColor &a, const QColor &b, int tolerance = 2)
{
    return qAbs(a.red() - b.red()) <= tolerance && qAbs(a.green() - b.green()) <= tolerance &&
           qAbs(a.blue() - b.blue()) <= tolerance;
}

QString describe(const QColor &c)
{
    return QStringLiteral("(%1,%2,%3)").arg(c.red()).arg(c.green()).arg(c.blue());
}

// The uniform background a blur fill makes of a uniform source: 95 % opacity over black,
// then black at alpha 30 on top.
QColor darkenedBackground(const QColor &c)
{
    const auto channel = [](int v) { return qRound(v * 0.95 * (255 - 30) / 255.0); };
    return QColor(channel(c.red()), channel(c.green()), channel(c.blue()));
}

} // namespace

#define QVERIFY_NEAR(actual, expected, tolerance)                                                            \
    QVERIFY2(near(actual, expected, tolerance), qPrintable(describe(actual) + " vs " + describe(expected)))

class TestImageOps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nullAndEmptyInputs();
    void solidFillLetterboxes();
    void solidFillOddMargins();
    void centerCropOfTheWantedSizeIsUnchanged();
    void centerCropOffsets();
    void centerCropOnePixelShortComesOutZero();
    void blurFillGeometryOfAPhoto();
    void blurFillGeometryOfATinyBackground();
    void blurFillZoomSnapsToCover();
    void blurFillPlacesTheForeground();
    void blurFillHasNoDarkRim();
    void blurFillBlursTheBackground();
    void quarterTurns();
    void normalizedCrop();
};

void TestImageOps::nullAndEmptyInputs()
{
    const QImage null;
    const QImage image = TestFiles::markedImage(40, 20);
    QVERIFY(buildSolidFillImage(null, 10, 10, Qt::white).isNull());
    QVERIFY(buildSolidFillImage(image, 0, 10, Qt::white).isNull());
    QVERIFY(buildSolidFillImage(image, 10, -1, Qt::white).isNull());
    QVERIFY(centerCropToSize(null, 10, 10).isNull());
    QVERIFY(centerCropToSize(image, 10, 0).isNull());
    QVERIFY(buildBlurFillImage(null, 10, 10, 1.0, false).isNull());
    QVERIFY(buildBlurFillImage(image, 0, 10, 1.0, false).isNull());
    QVERIFY(rotateImageCW90(null).isNull());
    QVERIFY(rotateImageCCW90(null).isNull());
    QVERIFY(applyNormalizedCrop(null, {0, 0, 1, 1}).isNull());
}

void TestImageOps::solidFillLetterboxes()
{
    // 400 x 200 into 100 x 100: fitted 100 x 50 at y = 25.
    const QImage result =
        buildSolidFillImage(TestFiles::solidImage(400, 200, Qt::green), 100, 100, Qt::black);
    QCOMPARE(result.size(), QSize(100, 100));
    QCOMPARE(result.format(), QImage::Format_RGB32);
    QCOMPARE(result.pixelColor(50, 24), QColor(Qt::black));
    QCOMPARE(result.pixelColor(50, 25), QColor(Qt::green));
    QCOMPARE(result.pixelColor(50, 74), QColor(Qt::green));
    QCOMPARE(result.pixelColor(50, 75), QColor(Qt::black));
    QCOMPARE(result.pixelColor(0, 50), QColor(Qt::green));

    const QImage white = buildSolidFillImage(TestFiles::solidImage(200, 400, Qt::red), 100, 100, Qt::white);
    QCOMPARE(white.pixelColor(24, 50), QColor(Qt::white));
    QCOMPARE(white.pixelColor(25, 50), QColor(Qt::red));
    QCOMPARE(white.pixelColor(74, 50), QColor(Qt::red));
    QCOMPARE(white.pixelColor(75, 50), QColor(Qt::white));
}

void TestImageOps::solidFillOddMargins()
{
    // 300 x 100 into 100 x 101: fitted 100 x 33, offset (101 - 33) / 2 = 34 (integer division).
    const QImage result = buildSolidFillImage(TestFiles::solidImage(300, 100, Qt::red), 100, 101, Qt::white);
    QCOMPARE(result.size(), QSize(100, 101));
    QCOMPARE(result.pixelColor(50, 33), QColor(Qt::white));
    QCOMPARE(result.pixelColor(50, 34), QColor(Qt::red));
    QCOMPARE(result.pixelColor(50, 66), QColor(Qt::red));
    QCOMPARE(result.pixelColor(50, 67), QColor(Qt::white));
}

void TestImageOps::centerCropOfTheWantedSizeIsUnchanged()
{
    const QImage source = TestFiles::markedImage(64, 48);
    const QImage result = centerCropToSize(source, 64, 48);
    QCOMPARE(result.size(), QSize(64, 48));
    QCOMPARE(result.pixelColor(0, 0), QColor(Qt::red)); // offset (0, 0)
    QCOMPARE(result.pixelColor(15, 11), QColor(Qt::red));
    QCOMPARE(result.pixelColor(16, 12), QColor(Qt::blue));
}

void TestImageOps::centerCropOffsets()
{
    // Columns coloured by their pair index: 206 x 100 halves to 103 x 50, column k = pair k.
    QImage source(206, 100, QImage::Format_RGB32);
    for (int x = 0; x < 206; ++x)
        for (int y = 0; y < 100; ++y)
            source.setPixel(x, y, qRgb(2 * (x / 2), 0, 0));
    // Excess 3: offset 1.
    QImage result = centerCropToSize(source, 100, 50);
    QCOMPARE(result.size(), QSize(100, 50));
    QCOMPARE(qRed(result.pixel(0, 25)), 2);
    QCOMPARE(qRed(result.pixel(99, 25)), 200);
    // Excess 1: no offset.
    result = centerCropToSize(source.copy(0, 0, 204, 100), 101, 50);
    QCOMPARE(result.size(), QSize(101, 50));
    QCOMPARE(qRed(result.pixel(0, 25)), 0);
    // Vertical: 100 x 300 to 50 x 100 halves to 50 x 150, offset 25.
    QImage tall(100, 300, QImage::Format_RGB32);
    for (int y = 0; y < 300; ++y)
        for (int x = 0; x < 100; ++x)
            tall.setPixel(x, y, qRgb(0, y / 2, 0));
    result = centerCropToSize(tall, 50, 100);
    QCOMPARE(qGreen(result.pixel(25, 0)), 25);
    QCOMPARE(qGreen(result.pixel(25, 99)), 124);
}

void TestImageOps::centerCropOnePixelShortComesOutZero()
{
    // 11 x 11 to 15 x 10: s = 15 / 11, and 11 * s truncates to 14, one short of 15.
    const QImage result = centerCropToSize(TestFiles::solidImage(11, 11, Qt::white), 15, 10);
    QCOMPARE(result.size(), QSize(15, 10));
    QCOMPARE(result.pixelColor(13, 5), QColor(Qt::white));
    QCOMPARE(qRed(result.pixel(14, 5)), 0);
    QCOMPARE(qGreen(result.pixel(14, 5)), 0);
}

void TestImageOps::blurFillGeometryOfAPhoto()
{
    const BlurFillGeometry g = blurFillGeometry(QSize(4000, 3000), 1200, 1600, 1.0, false);
    QCOMPARE(g.background, QSize(2389, 1792));
    QCOMPARE(g.backgroundOffset, QPoint(-594, -96)); // (1200 - 2389) / 2 = -594.5, truncated toward zero
    QCOMPARE(g.working, QSize(640, 480));
    QCOMPARE(g.radius, 60);
    QCOMPARE(g.foreground, QRectF(0, 350, 1200, 900));
}

void TestImageOps::blurFillGeometryOfATinyBackground()
{
    // The working size is the background fitted into 640 x 640, small ones scaled up: a
    // small background blurs with the radius of its working size.
    BlurFillGeometry g = blurFillGeometry(QSize(30, 20), 40, 30, 1.0, false);
    QCOMPARE(g.background, QSize(50, 33));
    QCOMPARE(g.working, QSize(640, 422));
    QCOMPARE(g.radius, 52);
    // A thin strip: 1000 x 70 into 100 x 7 gives a 112 x 7 background, working 640 x 40,
    // whose shorter side (40 <= 47) keeps the radius at 5.
    g = blurFillGeometry(QSize(1000, 70), 100, 7, 1.0, false);
    QCOMPARE(g.background, QSize(112, 7));
    QCOMPARE(g.working, QSize(640, 40));
    QCOMPARE(g.radius, 5);
    QCOMPARE(blurFillGeometry(QSize(2000, 1000), 100, 100, 1.0, false).radius, 40); // working 640 x 320
    QCOMPARE(buildBlurFillImage(TestFiles::solidImage(1000, 70, Qt::red), 100, 7, 1.0, false).size(),
             QSize(100, 7));
}

void TestImageOps::blurFillZoomSnapsToCover()
{
    // Half the fitted 1200 x 900 leaves both sides short: it snaps to cover 1600 rows.
    BlurFillGeometry g = blurFillGeometry(QSize(4000, 3000), 1200, 1600, 0.5, true);
    QCOMPARE(qRound(g.foreground.height()), 1600);
    QCOMPARE(qRound(g.foreground.width()), 2133);
    // Twice the fitted size is kept as it is.
    g = blurFillGeometry(QSize(4000, 3000), 1200, 1600, 2.0, true);
    QCOMPARE(g.foreground, QRectF(-600, -100, 2400, 1800));
    // Without useScale the scale is ignored.
    QCOMPARE(blurFillGeometry(QSize(4000, 3000), 1200, 1600, 0.5, false).foreground,
             QRectF(0, 350, 1200, 900));
}

void TestImageOps::blurFillPlacesTheForeground()
{
    const QImage result =
        buildBlurFillImage(TestFiles::solidImage(4000, 3000, Qt::green), 1200, 1600, 1.0, false);
    QCOMPARE(result.size(), QSize(1200, 1600));
    QCOMPARE(result.format(), QImage::Format_RGB32);
    const QColor background = darkenedBackground(Qt::green);
    QVERIFY_NEAR(result.pixelColor(600, 349), background, 2);
    QVERIFY_NEAR(result.pixelColor(600, 350), QColor(Qt::green), 1);
    QVERIFY_NEAR(result.pixelColor(0, 350), QColor(Qt::green), 1);
    QVERIFY_NEAR(result.pixelColor(1199, 1249), QColor(Qt::green), 1);
    QVERIFY_NEAR(result.pixelColor(600, 1250), background, 2);
}

void TestImageOps::blurFillHasNoDarkRim()
{
    // A uniform source gives a uniform background right up to the canvas edges.
    const QColor colour(200, 120, 40);
    const QImage result =
        buildBlurFillImage(TestFiles::solidImage(4000, 3000, colour), 1200, 1600, 1.0, false);
    const QColor expected = darkenedBackground(colour);
    for (const QPoint &p : {QPoint(0, 0), QPoint(1199, 0), QPoint(600, 0), QPoint(0, 175), QPoint(1199, 1599),
                            QPoint(0, 1599), QPoint(600, 1599)})
        QVERIFY_NEAR(result.pixelColor(p), expected, 2);
    // The same for a landscape frame, where the background overhangs left and right.
    const QImage wide = buildBlurFillImage(TestFiles::solidImage(900, 1600, colour), 1600, 1200, 1.0, false);
    for (const QPoint &p : {QPoint(0, 0), QPoint(1599, 0), QPoint(0, 1199), QPoint(1599, 1199)})
        QVERIFY_NEAR(wide.pixelColor(p), expected, 2);
}

void TestImageOps::blurFillBlursTheBackground()
{
    // Left half red, right half blue. In the rows above the foreground only the background
    // shows: far from the middle it keeps its colour, at the middle the two are mixed.
    QImage source = TestFiles::solidImage(4000, 3000, Qt::blue);
    for (int y = 0; y < 3000; ++y)
        for (int x = 0; x < 2000; ++x)
            source.setPixelColor(x, y, Qt::red);
    const QImage result = buildBlurFillImage(source, 1200, 1600, 1.0, false);
    const QColor left = result.pixelColor(100, 100);
    const QColor middle = result.pixelColor(600, 100);
    const QColor right = result.pixelColor(1100, 100);
    QVERIFY2(left.red() > 180 && left.blue() < 20, qPrintable(describe(left)));
    QVERIFY2(right.blue() > 180 && right.red() < 20, qPrintable(describe(right)));
    QVERIFY2(qAbs(middle.red() - middle.blue()) < 40 && middle.red() > 60, qPrintable(describe(middle)));
}

void TestImageOps::quarterTurns()
{
    const QImage source = TestFiles::markedImage(40, 20);
    const QImage cw = rotateImageCW90(source);
    QCOMPARE(cw.size(), QSize(20, 40));
    QCOMPARE(cw.pixelColor(19, 0), QColor(Qt::red)); // top-left went to top-right
    QCOMPARE(cw.pixelColor(0, 0), QColor(Qt::blue));
    const QImage ccw = rotateImageCCW90(source);
    QCOMPARE(ccw.size(), QSize(20, 40));
    QCOMPARE(ccw.pixelColor(0, 39), QColor(Qt::red)); // top-left went to bottom-left
    QCOMPARE(ccw.pixelColor(0, 0), QColor(Qt::blue));
    QCOMPARE(rotateImageCCW90(cw), source);
}

void TestImageOps::normalizedCrop()
{
    const QImage source = TestFiles::markedImage(200, 100);
    QImage crop = applyNormalizedCrop(source, {0.25, 0.5, 0.5, 0.5});
    QCOMPARE(crop.size(), QSize(100, 50));
    QCOMPARE(crop, source.copy(50, 50, 100, 50));
    QCOMPARE(applyNormalizedCrop(source, {0, 0, 1, 1}), source);
    QCOMPARE(applyNormalizedCrop(source, {0.5, 0.5, 0.001, 0.5}), source); // too thin: the whole image
    QCOMPARE(applyNormalizedCrop(source, {0.5, 0.5, 0.5, 0.0}), source);
    crop = applyNormalizedCrop(source, {1.5, -1, 0.5, 0.5});
    QCOMPARE(crop.size(), QSize(1, 50)); // clamped inside the image
    crop = applyNormalizedCrop(source, {0, 0, 0.002, 0.002});
    QCOMPARE(crop.size(), QSize(1, 1));
    QCOMPARE(applyNormalizedCrop(source, {0.9, 0.9, 0.5, 0.5}).size(), QSize(20, 10));
}

QTEST_MAIN(TestImageOps)
#include "tst_ImageOps.moc"
