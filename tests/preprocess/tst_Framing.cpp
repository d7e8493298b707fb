// Moving and zooming a picture in its frame: where the crop window and the zoomed foreground
// go, how the focus turns with the picture, how much a picture is enlarged, and that a state
// whose framing is untouched renders exactly as the fill modes always have.
#include "preprocess/Framing.h"
#include "preprocess/ImageOps.h"
#include "preprocess/ImagePreprocess.h"
#include "preprocess/PreviewRenderer.h"
#include "ui/UiLanguage.h"

#include "FramedState.h"
#include "TestFiles.h"

#include <QTest>

#include <cmath>

namespace {

bool near(const QPointF &a, const QPointF &b, double tolerance = 0.015)
{
    return std::abs(a.x() - b.x()) <= tolerance && std::abs(a.y() - b.y()) <= tolerance;
}

QString describe(const QPointF &p) { return QStringLiteral("(%1, %2)").arg(p.x()).arg(p.y()); }

} // namespace

#define QVERIFY_SHOWS(render, x, y, expected)                                                                \
    QVERIFY2(near(TestFiles::shownPosition(render, x, y), expected),                                         \
             qPrintable(describe(TestFiles::shownPosition(render, x, y)) + " vs " + describe(expected)))

class TestFraming : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void untouchedFramingRendersAsBefore_data();
    void untouchedFramingRendersAsBefore();
    void fillsAtZoomOneIgnoreTheFocus();
    void focusTopLeftTakesTheTopLeftRegion();
    void zoomTwoTakesTheMiddleHalf();
    void rotatingTurnsTheFocusPoint();
    void rotatedFocusKeepsTheSameSubjectFramed();
    void zoomedFillThatOverflowsClampsWithoutAGap();
    void zoomedFillStaysCentredWhereItFits();
    void zoomedBlurFillKeepsItsBackground();
    void shownFocusIsWhereTheEdgesAllow();
    void directIgnoresTheFraming();
    void clampedKeepsTheLimits();
    void enlargement();
    void lowResolutionText();
    void stateLabelNamesTheZoom();

private:
    QImage m_picture = TestFiles::positionImage(1600, 1200);
};

void TestFraming::initTestCase() { UiLanguage::set(UiLanguage::English); }

void TestFraming::untouchedFramingRendersAsBefore_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("rotation");
    QTest::addColumn<bool>("landscape");
    for (FillMode mode :
         {FillMode::BlurFill, FillMode::WhiteFill, FillMode::BlackFill, FillMode::CenterCrop}) {
        for (int rotation : {0, 90, 270}) {
            for (bool landscape : {false, true}) {
                QTest::addRow("%s %d %s", qPrintable(fillModeLabel(mode)), rotation,
                              landscape ? "landscape" : "portrait")
                    << int(mode) << rotation << landscape;
            }
        }
    }
}

void TestFraming::untouchedFramingRendersAsBefore()
{
    // Without framing every product is the rotation followed by the fill mode's building
    // block, to the pixel: the export, the display preview and the framed thumbnail.
    QFETCH(int, mode);
    QFETCH(int, rotation);
    QFETCH(bool, landscape);
    const QImage photo = TestFiles::photoLikeImage(900, 640, 7);
    const PreprocState state{FillMode(mode), rotation};
    QVERIFY(Framing::isUntouched(state));
    const QSize panel(600, 800);
    const QSize composition = landscape ? panel.transposed() : panel;
    const QImage rotated = rotateImageByDegrees(photo, rotation);

    const QImage expectedPreview = renderFillMode(rotated, FillMode(mode), composition);
    QCOMPARE(renderPreprocDisplayPreview(photo, state, panel, landscape), expectedPreview);

    const QImage expectedExport =
        landscape ? expectedPreview.transformed(QTransform().rotate(90), Qt::SmoothTransformation)
                  : expectedPreview;
    QCOMPARE(renderPreprocExport(photo, state, panel, landscape), expectedExport);

    const CompactImage thumbnailSource(photo.scaled(280, 280, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    const QSize thumbnailPanel = scaledResolutionForPreview(panel, 280);
    const QImage expectedThumbnail = makeFramedPreviewImageExact(
        renderFillMode(rotateImageByDegrees(thumbnailSource.image(), rotation), FillMode(mode),
                       landscape ? thumbnailPanel.transposed() : thumbnailPanel),
        previewFrameOuterSize(composition, 88));
    QCOMPARE(PreviewRenderer::render({thumbnailSource, state, panel, landscape}), expectedThumbnail);
}

void TestFraming::fillsAtZoomOneIgnoreTheFocus()
{
    // At zoom 1 a fitted foreground never overflows, so a moved focus changes nothing.
    for (FillMode mode : {FillMode::BlurFill, FillMode::WhiteFill, FillMode::BlackFill}) {
        const QImage plain = renderPreprocPipeline(m_picture, {mode, 0}, QSize(300, 400));
        QCOMPARE(renderPreprocPipeline(m_picture, framedState(mode, 0.1, 0.9, 1.0), QSize(300, 400)), plain);
    }
}

void TestFraming::focusTopLeftTakesTheTopLeftRegion()
{
    // 1600 x 1200 cropped for a 300 x 400 frame: the window is 900 x 1200, here at the left edge.
    const QImage crop =
        renderPreprocPipeline(m_picture, framedState(FillMode::CenterCrop, 0.0, 0.0, 1.0), QSize(300, 400));
    QCOMPARE(crop.size(), QSize(300, 400));
    QVERIFY_SHOWS(crop, 0, 0, QPointF(0, 0));
    QVERIFY_SHOWS(crop, 299, 399, QPointF(900.0 / 1600, 1.0));
    // The centred crop takes the middle.
    const QImage centred = renderPreprocPipeline(m_picture, {FillMode::CenterCrop, 0}, QSize(300, 400));
    QVERIFY_SHOWS(centred, 0, 0, QPointF(350.0 / 1600, 0));
    // Zoomed in, the top-left region alone: a 450 x 600 window at the corner.
    const QImage zoomed =
        renderPreprocPipeline(m_picture, framedState(FillMode::CenterCrop, 0.0, 0.0, 2.0), QSize(300, 400));
    QVERIFY_SHOWS(zoomed, 0, 0, QPointF(0, 0));
    QVERIFY_SHOWS(zoomed, 299, 399, QPointF(450.0 / 1600, 0.5));
}

void TestFraming::zoomTwoTakesTheMiddleHalf()
{
    const QImage crop =
        renderPreprocPipeline(m_picture, framedState(FillMode::CenterCrop, 0.5, 0.5, 2.0), QSize(400, 300));
    QCOMPARE(crop.size(), QSize(400, 300));
    QVERIFY_SHOWS(crop, 0, 0, QPointF(0.25, 0.25));
    QVERIFY_SHOWS(crop, 200, 150, QPointF(0.5, 0.5));
    QVERIFY_SHOWS(crop, 399, 299, QPointF(0.75, 0.75));
}

void TestFraming::rotatingTurnsTheFocusPoint()
{
    const PreprocState start = framedState(FillMode::CenterCrop, 0.2, 0.1, 2.0);
    const PreprocState right = Framing::turned(start, 90);
    QCOMPARE(right.rotationDegrees, 90);
    QCOMPARE(QPointF(right.focusX, right.focusY), QPointF(0.9, 0.2));
    QCOMPARE(right.zoom, 2.0);
    const PreprocState left = Framing::turned(start, -90);
    QCOMPARE(left.rotationDegrees, 270);
    QCOMPARE(QPointF(left.focusX, left.focusY), QPointF(0.1, 0.8));
    const PreprocState half = Framing::turned(start, 180);
    QCOMPARE(QPointF(half.focusX, half.focusY), QPointF(0.8, 0.9));
    // Four quarter turns come back to the start.
    PreprocState round = start;
    for (int i = 0; i < 4; ++i)
        round = Framing::turned(round, 90);
    QVERIFY(qFuzzyCompare(round.focusX, start.focusX) && qFuzzyCompare(round.focusY, start.focusY));
    QCOMPARE(round.rotationDegrees, 0);
}

void TestFraming::rotatedFocusKeepsTheSameSubjectFramed()
{
    // A red dot on white, framed at the centre of a zoomed crop; after a quarter turn of the
    // picture (and of the frame) the dot is still at the centre.
    QImage picture(1600, 1200, QImage::Format_RGB32);
    picture.fill(Qt::white);
    for (int y = 530; y < 550; ++y)
        for (int x = 630; x < 650; ++x)
            picture.setPixel(x, y, qRgb(255, 0, 0));
    const PreprocState state = framedState(FillMode::CenterCrop, 640.0 / 1600, 540.0 / 1200, 4.0);
    const QImage before = renderPreprocPipeline(picture, state, QSize(400, 300));
    QCOMPARE(QColor(before.pixel(200, 150)), QColor(Qt::red));
    const QImage after = renderPreprocPipeline(picture, Framing::turned(state, 90), QSize(300, 400));
    QCOMPARE(QColor(after.pixel(150, 200)), QColor(Qt::red));
    QVERIFY(QColor(after.pixel(20, 20)) == QColor(Qt::white));
}

void TestFraming::zoomedFillThatOverflowsClampsWithoutAGap()
{
    // 1600 x 1200 white-filled into 400 x 400: fitted at 400 x 300, zoomed 2x to 800 x 600, it
    // overflows on both axes. A focus at a corner holds that corner at the frame's: no white gap.
    const QImage topLeft =
        renderPreprocPipeline(m_picture, framedState(FillMode::WhiteFill, 0.0, 0.0, 2.0), QSize(400, 400));
    QVERIFY_SHOWS(topLeft, 0, 0, QPointF(0, 0));
    QVERIFY_SHOWS(topLeft, 399, 399, QPointF(0.5, 400.0 / 600));
    const QImage bottomRight =
        renderPreprocPipeline(m_picture, framedState(FillMode::WhiteFill, 1.0, 1.0, 2.0), QSize(400, 400));
    QVERIFY_SHOWS(bottomRight, 399, 399, QPointF(1, 1));
    QVERIFY_SHOWS(bottomRight, 0, 0, QPointF(0.5, 200.0 / 600));
    for (const QImage &render : {topLeft, bottomRight}) {
        for (int i = 0; i < 400; i += 7) {
            for (const QPoint &p : {QPoint(i, 0), QPoint(i, 399), QPoint(0, i), QPoint(399, i)})
                QVERIFY2(render.pixel(p) != qRgb(255, 255, 255), "a gap opened at the frame's edge");
        }
    }
}

void TestFraming::zoomedFillStaysCentredWhereItFits()
{
    // Zoomed 1.2x the foreground is 480 x 360: it overflows across, not down, so it keeps
    // equal white bars of 20 pixels above and below, whatever the focus says.
    const QImage render =
        renderPreprocPipeline(m_picture, framedState(FillMode::WhiteFill, 0.0, 0.0, 1.2), QSize(400, 400));
    QCOMPARE(render.pixel(200, 10), qRgb(255, 255, 255));
    QCOMPARE(render.pixel(200, 389), qRgb(255, 255, 255));
    QVERIFY(render.pixel(200, 22) != qRgb(255, 255, 255));
    QVERIFY(render.pixel(200, 377) != qRgb(255, 255, 255));
    QVERIFY_SHOWS(render, 0, 200, QPointF(0, 0.5));
}

void TestFraming::zoomedBlurFillKeepsItsBackground()
{
    // The foreground of a blur fill grows; the blurred background is the one of the plain fill.
    const QImage plain = renderPreprocPipeline(m_picture, {FillMode::BlurFill, 0}, QSize(300, 400));
    const QImage zoomed =
        renderPreprocPipeline(m_picture, framedState(FillMode::BlurFill, 0.5, 0.5, 1.2), QSize(300, 400));
    // Fitted the foreground is 300 x 225 (rows 87..312); zoomed it is 270 high (rows 65..335).
    QCOMPARE(zoomed.pixel(150, 10), plain.pixel(150, 10));
    QCOMPARE(zoomed.pixel(150, 390), plain.pixel(150, 390));
    QVERIFY(zoomed.pixel(150, 75) != plain.pixel(150, 75));
    QVERIFY_SHOWS(zoomed, 150, 200, QPointF(0.5, 0.5));
}

void TestFraming::shownFocusIsWhereTheEdgesAllow()
{
    const QSize picture(1600, 1200);
    const QSize frame(300, 400);
    // Cropped at zoom 1 the picture overflows only across: down, the focus is the centre.
    QCOMPARE(Framing::shownFocus(picture, FillMode::CenterCrop, frame, QPointF(0.0, 0.1), 1.0),
             QPointF(450.0 / 1600, 0.5));
    QCOMPARE(Framing::shownFocus(picture, FillMode::CenterCrop, frame, QPointF(0.6, 0.5), 1.0),
             QPointF(0.6, 0.5));
    QCOMPARE(Framing::pictureRect(picture, FillMode::CenterCrop, frame, QPointF(0.0, 0.5), 1.0),
             QRectF(0, 0, 400 * 4 / 3.0, 400));
    // A fitted fill shows all of itself: centred.
    QCOMPARE(Framing::shownFocus(picture, FillMode::BlurFill, frame, QPointF(0.0, 1.0), 1.0),
             QPointF(0.5, 0.5));
    QCOMPARE(Framing::pictureRect(picture, FillMode::BlurFill, frame, QPointF(0.0, 1.0), 1.0),
             QRectF(0, 87.5, 300, 225));
    QVERIFY(Framing::pictureRect(QSize(), FillMode::BlurFill, frame, QPointF(0.5, 0.5), 1.0).isNull());
}

void TestFraming::directIgnoresTheFraming()
{
    const PreprocState plain{FillMode::Direct, 90};
    const PreprocState moved = framedState(FillMode::Direct, 0.0, 1.0, 3.0, 90);
    QCOMPARE(renderPreprocExport(m_picture, moved, QSize(600, 800), true), m_picture);
    QCOMPARE(renderPreprocDisplayPreview(m_picture, moved, QSize(600, 800), false),
             renderPreprocDisplayPreview(m_picture, plain, QSize(600, 800), false));
    QCOMPARE(Framing::enlargement(QSize(100, 100), moved, QSize(600, 800), false), 0.0);
}

void TestFraming::clampedKeepsTheLimits()
{
    const PreprocState wild = Framing::clamped(framedState(FillMode::BlurFill, -3.0, 7.0, 9.0));
    QCOMPARE(QPointF(wild.focusX, wild.focusY), QPointF(0.0, 1.0));
    QCOMPARE(wild.zoom, Framing::kMaxZoom);
    const PreprocState small = Framing::clamped(framedState(FillMode::BlurFill, 0.3, 0.4, 0.2));
    QCOMPARE(small.zoom, Framing::kMinZoom);
    const PreprocState broken =
        Framing::clamped(framedState(FillMode::BlurFill, std::nan(""), 0.2, std::nan("")));
    QCOMPARE(QPointF(broken.focusX, broken.focusY), QPointF(0.5, 0.2));
    QCOMPARE(broken.zoom, 1.0);
    QVERIFY(Framing::isUntouched(Framing::withoutFraming(wild)));
    // A render never reads beyond the picture, whatever the state says.
    QCOMPARE(
        renderPreprocPipeline(m_picture, framedState(FillMode::CenterCrop, 5.0, -5.0, 50.0), QSize(40, 30))
            .size(),
        QSize(40, 30));
}

void TestFraming::enlargement()
{
    const QSize panel(1200, 1600);
    // Fitted into a portrait 1200 x 1600 frame, 640 x 480 grows 1.875x; 4000 x 3000 shrinks.
    QCOMPARE(Framing::enlargement(QSize(640, 480), {FillMode::BlurFill, 0}, panel, false), 1.875);
    QVERIFY(Framing::isLowResolution(1.875));
    QCOMPARE(Framing::enlargement(QSize(4000, 3000), {FillMode::BlurFill, 0}, panel, false), 0.3);
    QVERIFY(!Framing::isLowResolution(0.3));
    // A crop covers the frame; a zoom enlarges further; a turn or a landscape frame changes it.
    QCOMPARE(Framing::enlargement(QSize(640, 480), {FillMode::CenterCrop, 0}, panel, false), 1600.0 / 480);
    QCOMPARE(Framing::enlargement(QSize(4000, 3000), framedState(FillMode::CenterCrop, 0.5, 0.5, 4.0), panel,
                                  false),
             1600.0 / 3000 * 4);
    QCOMPARE(Framing::enlargement(QSize(640, 480), {FillMode::BlurFill, 90}, panel, false), 2.5);
    QCOMPARE(Framing::enlargement(QSize(640, 480), {FillMode::BlurFill, 0}, panel, true), 2.5);
    QVERIFY(!Framing::isLowResolution(1.5)); // more than 1.5x, not 1.5x itself
    QCOMPARE(Framing::enlargement(QSize(), {FillMode::BlurFill, 0}, panel, false), 0.0);
    QCOMPARE(Framing::enlargement(QSize(640, 480), {FillMode::BlurFill, 0}, QSize(), false), 0.0);
}

void TestFraming::lowResolutionText()
{
    const QSize panel(1200, 1600);
    QCOMPARE(Framing::lowResolutionText(QSize(640, 480), {FillMode::BlurFill, 0}, panel, false),
             QStringLiteral("Low resolution for this frame: 640×480 is enlarged 1.9×"));
    QCOMPARE(Framing::lowResolutionText(QSize(640, 480), {FillMode::BlurFill, 0}, panel, true),
             QStringLiteral("Low resolution for this frame: 640×480 is enlarged 2.5×"));
    QVERIFY(Framing::lowResolutionText(QSize(4000, 3000), {FillMode::BlurFill, 0}, panel, false).isEmpty());
    UiLanguage::set(UiLanguage::Chinese);
    QCOMPARE(Framing::lowResolutionText(QSize(640, 480), {FillMode::BlurFill, 0}, panel, false),
             QStringLiteral("此画框分辨率偏低：640×480 需放大 1.9 倍"));
    UiLanguage::set(UiLanguage::English);
}

void TestFraming::stateLabelNamesTheZoom()
{
    QCOMPARE(formatPreprocStateLabel(framedState(FillMode::CenterCrop, 0.2, 0.3, 1.0, 90)),
             QStringLiteral("Center crop + Rotate 90°"));
    QCOMPARE(formatPreprocStateLabel(framedState(FillMode::CenterCrop, 0.2, 0.3, 2.5, 90)),
             QStringLiteral("Center crop + Rotate 90° + Zoom 250%"));
    QCOMPARE(formatPreprocStateLabel(framedState(FillMode::Direct, 0.2, 0.3, 2.5, 90)),
             QStringLiteral("TARN direct"));
    UiLanguage::set(UiLanguage::Chinese);
    QCOMPARE(formatPreprocStateLabel(framedState(FillMode::BlurFill, 0.5, 0.5, 1.5)),
             QStringLiteral("模糊填充 + 缩放 150%"));
    UiLanguage::set(UiLanguage::English);
}

QTEST_MAIN(TestFraming)
#include "tst_Framing.moc"
