// The framed thumbnail: sizes, border and highlight widths, and the colours on the frame.
#include "preprocess/ImagePreprocess.h"

#include "TestFiles.h"

#include <QTest>

namespace {

bool near(const QColor &a, const QColor &b, int tolerance)
{
    return qAbs(a.red() - b.red()) <= tolerance && qAbs(a.green() - b.green()) <= tolerance &&
           qAbs(a.blue() - b.blue()) <= tolerance;
}

QString describe(const QColor &c)
{
    return QStringLiteral("(%1,%2,%3)").arg(c.red()).arg(c.green()).arg(c.blue());
}

// The wood gradient from (0, 0) to (w, h) at a point, from its five stops.
QColor woodAt(double x, double y, double w, double h)
{
    const double t = (x * w + y * h) / (w * w + h * h);
    const QList<QPair<double, QColor>> stops = {{0.0, QColor(210, 168, 102)},
                                                {0.25, QColor(176, 126, 72)},
                                                {0.55, QColor(148, 98, 52)},
                                                {0.8, QColor(186, 140, 82)},
                                                {1.0, QColor(118, 78, 42)}};
    for (int i = 1; i < stops.size(); ++i) {
        if (t <= stops[i].first) {
            const double f = (t - stops[i - 1].first) / (stops[i].first - stops[i - 1].first);
            const QColor a = stops[i - 1].second, b = stops[i].second;
            return QColor(qRound(a.red() + (b.red() - a.red()) * f),
                          qRound(a.green() + (b.green() - a.green()) * f),
                          qRound(a.blue() + (b.blue() - a.blue()) * f));
        }
    }
    return stops.last().second;
}

const QColor kHighlight(236, 204, 122);

} // namespace

#define QVERIFY_NEAR(actual, expected, tolerance)                                                            \
    QVERIFY2(near(actual, expected, tolerance), qPrintable(describe(actual) + " vs " + describe(expected)))

class TestFramedPreview : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unusableInputs();
    void boxFitting();
    void largeFrameBorderAndHighlight();
    void smallFrameBorderAndHighlight();
    void openingMarginsTakeTheCentreColour();
    void tinyRequestsAreScaledToTheExactSize();
};

void TestFramedPreview::unusableInputs()
{
    const QImage image = TestFiles::solidImage(30, 40, Qt::green);
    QVERIFY(makeFramedPreviewPixmap(QImage(), QSize(88, 88)).isNull());
    QVERIFY(makeFramedPreviewPixmap(image, QSize(-1, 88)).isNull());
    QVERIFY(makeFramedPreviewPixmap(image, QSize(0, 0)).isNull());
    QVERIFY(makeFramedPreviewPixmapExact(QImage(), QSize(40, 60)).isNull());
    QVERIFY(makeFramedPreviewPixmapExact(image, QSize(0, 60)).isNull());
    QVERIFY(makeFramedPreviewPixmapExact(image, QSize(40, -1)).isNull());
}

void TestFramedPreview::boxFitting()
{
    const QImage portrait = TestFiles::solidImage(300, 400, Qt::green);
    QCOMPARE(makeFramedPreviewPixmap(portrait, QSize(88, 88)).size(), QSize(66, 88));
    QCOMPARE(makeFramedPreviewPixmap(portrait, QSize(88, 20)).size(),
             QSize(66, 88)); // the larger side counts
    QCOMPARE(makeFramedPreviewPixmap(TestFiles::solidImage(400, 300, Qt::green), QSize(0, 88)).size(),
             QSize(88, 66));
    QCOMPARE(makeFramedPreviewPixmapExact(portrait, QSize(150, 90)).size(), QSize(150, 90));
}

void TestFramedPreview::largeFrameBorderAndHighlight()
{
    // 300 x 400: border 30, highlight 7, opening 240 x 340 exactly filled by the picture.
    const QColor picture(10, 200, 10);
    const QImage framed =
        makeFramedPreviewPixmapExact(TestFiles::solidImage(240, 340, picture), QSize(300, 400)).toImage();
    QCOMPARE(framed.size(), QSize(300, 400));
    for (int x : {0, 3, 6})
        QVERIFY_NEAR(framed.pixelColor(x, 200), kHighlight, 1);
    QVERIFY_NEAR(framed.pixelColor(150, 2), kHighlight, 1);
    QVERIFY_NEAR(framed.pixelColor(297, 200), kHighlight, 1);
    // Past the highlight: the wood.
    for (const QPoint &p :
         {QPoint(10, 200), QPoint(20, 150), QPoint(150, 15), QPoint(285, 300), QPoint(150, 390)})
        QVERIFY_NEAR(framed.pixelColor(p), woodAt(p.x() + 0.5, p.y() + 0.5, 300, 400), 4);
    // The opening starts at the border: the picture, untouched.
    QVERIFY_NEAR(framed.pixelColor(150, 200), picture, 0);
    QVERIFY_NEAR(framed.pixelColor(269, 369), picture, 0);
    QVERIFY_NEAR(framed.pixelColor(31, 200), picture, 0);
    // The opening's dark edge line is drawn on x = 29 and darkens column 28 by half; the
    // inner light along the opening's left edge brightens column 30 over the picture.
    const QColor edge = framed.pixelColor(28, 200);
    const QColor wood = woodAt(28.5, 200.5, 300, 400);
    QVERIFY_NEAR(edge, QColor((wood.red() + 92) / 2, (wood.green() + 62) / 2, (wood.blue() + 34) / 2), 4);
    const QColor lit = framed.pixelColor(30, 200);
    QVERIFY2(lit.red() > picture.red() + 20 && lit.blue() > picture.blue() + 10, qPrintable(describe(lit)));
}

void TestFramedPreview::smallFrameBorderAndHighlight()
{
    // 40 x 60: border 4 (shorter side <= 49), highlight 2.
    const QColor picture(20, 20, 220);
    const QImage framed =
        makeFramedPreviewPixmapExact(TestFiles::solidImage(32, 52, picture), QSize(40, 60)).toImage();
    QCOMPARE(framed.size(), QSize(40, 60));
    QVERIFY_NEAR(framed.pixelColor(0, 30), kHighlight, 1);
    QVERIFY_NEAR(framed.pixelColor(1, 30), kHighlight, 1);
    QVERIFY(!near(framed.pixelColor(2, 30), kHighlight, 10));
    QVERIFY_NEAR(framed.pixelColor(20, 30), picture, 0);
    QVERIFY_NEAR(framed.pixelColor(5, 30), picture, 0);
    QVERIFY_NEAR(framed.pixelColor(35, 55), picture, 0);
    QVERIFY(!near(framed.pixelColor(37, 30), picture, 30));
}

void TestFramedPreview::openingMarginsTakeTheCentreColour()
{
    // A wide picture in a portrait opening: the margins above and below take the colour of
    // the picture's centre pixel, not a fixed grey.
    QImage picture = TestFiles::solidImage(200, 100, Qt::white);
    picture.setPixelColor(100, 50, QColor(250, 0, 250));
    const QImage framed = makeFramedPreviewPixmapExact(picture, QSize(300, 400)).toImage();
    QVERIFY_NEAR(framed.pixelColor(150, 40), QColor(250, 0, 250), 0);
    QVERIFY_NEAR(framed.pixelColor(150, 360), QColor(250, 0, 250), 0);
    QVERIFY_NEAR(framed.pixelColor(40, 200), QColor(Qt::white), 0);
}

void TestFramedPreview::tinyRequestsAreScaledToTheExactSize()
{
    const QImage image = TestFiles::solidImage(30, 40, Qt::green);
    QCOMPARE(makeFramedPreviewPixmapExact(image, QSize(5, 5)).size(), QSize(5, 5));
    QCOMPARE(makeFramedPreviewPixmapExact(image, QSize(1, 1)).size(), QSize(1, 1));
    QCOMPARE(makeFramedPreviewPixmapExact(image, QSize(9, 20)).size(), QSize(9, 20));
}

QTEST_MAIN(TestFramedPreview)
#include "tst_FramedPreview.moc"
