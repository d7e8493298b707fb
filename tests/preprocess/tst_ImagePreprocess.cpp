#include "preprocess/ImagePreprocess.h"
#include "ui/UiLanguage.h"

#include "TestFiles.h"

#include <QTest>

namespace {

bool isRed(const QColor &c) { return c.red() > 200 && c.blue() < 60 && c.green() < 60; }

const QSize kPanel(1200, 1600);

} // namespace

class TestImagePreprocess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void defaults();
    void nullSourcesGiveNull();
    void rotationIsNormalised();
    void rotationByOtherAngles();
    void fillModeDispatch();
    void directIgnoresRotationInThePipeline();
    void effectiveFrameResolution();
    void directPreviewIsRotatedAndLetterboxedOnGrey();
    void directExportIsTheUntouchedSource();
    void portraitExportIsUnturned();
    void landscapeExportIsTurnedClockwise();
    void landscapePreviewStaysLandscape();
    void invalidPanelKeepsTheRotatedImage();
    void previewFrameOuterSize();
    void scaledResolutionForPreview();
    void panelResolutionText();
};

void TestImagePreprocess::initTestCase() { UiLanguage::set(UiLanguage::English); }

void TestImagePreprocess::defaults()
{
    QCOMPARE(defaultFillMode(), FillMode::BlurFill);
    QCOMPARE(int(FillMode::Direct), 0);
    QCOMPARE(int(FillMode::BlurFill), 1);
    QCOMPARE(int(FillMode::WhiteFill), 2);
    QCOMPARE(int(FillMode::BlackFill), 3);
    QCOMPARE(int(FillMode::CenterCrop), 4);
    const PreprocState state{FillMode::WhiteFill, 90};
    QCOMPARE(state.focusX, 0.5); // a state written as before has untouched framing
    QCOMPARE(state.focusY, 0.5);
    QCOMPARE(state.zoom, 1.0);
    QCOMPARE(fillModeLabel(FillMode::CenterCrop), QStringLiteral("Center crop"));
    QCOMPARE(fillModeButtonText(FillMode::WhiteFill), QStringLiteral("White"));
    QCOMPARE(fillModeToolTip(FillMode::BlackFill),
             QStringLiteral("Rotate if needed, then black background with centered foreground"));
    QCOMPARE(formatPreprocStateLabel({FillMode::BlurFill, 90}), QStringLiteral("Blur fill + Rotate 90°"));
    QCOMPARE(formatPreprocStateLabel({FillMode::Direct, 90}), QStringLiteral("TARN direct"));
}

void TestImagePreprocess::nullSourcesGiveNull()
{
    const QImage null;
    const PreprocState state{FillMode::BlurFill, 90};
    QVERIFY(rotateImageByDegrees(null, 90).isNull());
    QVERIFY(renderFillMode(null, FillMode::WhiteFill, kPanel).isNull());
    QVERIFY(renderPreprocPipeline(null, state, kPanel).isNull());
    QVERIFY(renderPreprocDisplayPreview(null, state, kPanel, true).isNull());
    QVERIFY(renderPreprocExport(null, state, kPanel, true).isNull());
    QVERIFY(renderPreprocExport(null, {FillMode::Direct, 0}, kPanel, false).isNull());
}

void TestImagePreprocess::rotationIsNormalised()
{
    const QImage source = TestFiles::markedImage(40, 20);
    QCOMPARE(rotateImageByDegrees(source, -90), rotateImageByDegrees(source, 270));
    QCOMPARE(rotateImageByDegrees(source, 450), rotateImageByDegrees(source, 90));
    QCOMPARE(rotateImageByDegrees(source, 360), source);
    QCOMPARE(rotateImageByDegrees(source, 0), source);
    QCOMPARE(rotateImageByDegrees(source, -720), source);
    const QImage cw = rotateImageByDegrees(source, 90);
    QCOMPARE(cw.size(), QSize(20, 40));
    QCOMPARE(cw.pixelColor(19, 0), QColor(Qt::red)); // clockwise: top-left to top-right
    const QImage half = rotateImageByDegrees(source, 180);
    QCOMPARE(half.size(), QSize(40, 20));
    QCOMPARE(half.pixelColor(39, 19), QColor(Qt::red));
}

void TestImagePreprocess::rotationByOtherAngles()
{
    const QImage turned = rotateImageByDegrees(TestFiles::solidImage(100, 100, Qt::white), 45);
    QVERIFY(turned.width() > 140 && turned.width() < 143); // the bounding box of the turned square
    QCOMPARE(turned.width(), turned.height());
}

void TestImagePreprocess::fillModeDispatch()
{
    const QImage source = TestFiles::solidImage(400, 200, Qt::green);
    const QSize target(100, 100);
    QCOMPARE(renderFillMode(source, FillMode::Direct, target), source);
    QCOMPARE(renderFillMode(source, FillMode::WhiteFill, QSize(0, 100)), source);
    QCOMPARE(renderFillMode(source, FillMode::BlackFill, QSize(100, -4)), source);
    QCOMPARE(renderFillMode(source, static_cast<FillMode>(9), target), source);
    QCOMPARE(renderFillMode(source, FillMode::WhiteFill, target).pixelColor(50, 10), QColor(Qt::white));
    QCOMPARE(renderFillMode(source, FillMode::BlackFill, target).pixelColor(50, 10), QColor(Qt::black));
    QCOMPARE(renderFillMode(source, FillMode::CenterCrop, target).pixelColor(50, 10), QColor(Qt::green));
    const QImage blur = renderFillMode(source, FillMode::BlurFill, target);
    QCOMPARE(blur.size(), target);
    QVERIFY(blur.pixelColor(50, 10).green() < 230 &&
            blur.pixelColor(50, 10).green() > 180); // darkened background
}

void TestImagePreprocess::directIgnoresRotationInThePipeline()
{
    const QImage source = TestFiles::markedImage(400, 200);
    QCOMPARE(renderPreprocPipeline(source, {FillMode::Direct, 90}, kPanel), source);
    const QImage white = renderPreprocPipeline(source, {FillMode::WhiteFill, 90}, QSize(100, 100));
    QCOMPARE(white.size(), QSize(100, 100));
    QCOMPARE(white.pixelColor(10, 50), QColor(Qt::white)); // turned to 200 x 400, letterboxed left and right
}

void TestImagePreprocess::effectiveFrameResolution()
{
    QCOMPARE(::effectiveFrameResolution(kPanel, false), kPanel);
    QCOMPARE(::effectiveFrameResolution(kPanel, true), QSize(1600, 1200));
    QCOMPARE(::effectiveFrameResolution(QSize(0, 0), true), QSize(0, 0));
    QCOMPARE(::effectiveFrameResolution(QSize(1200, 0), true), QSize(1200, 0));
    QCOMPARE(::effectiveFrameResolution(QSize(-1, 5), true), QSize(-1, 5));
}

void TestImagePreprocess::directPreviewIsRotatedAndLetterboxedOnGrey()
{
    // 400 x 200 turned to 200 x 400 fits 800 x 1600 in the 1200 x 1600 frame, 200 px margins.
    const QImage preview =
        renderPreprocDisplayPreview(TestFiles::markedImage(400, 200), {FillMode::Direct, 90}, kPanel, false);
    QCOMPARE(preview.size(), kPanel);
    QCOMPARE(preview.pixelColor(100, 800), QColor(228, 228, 228));
    QCOMPARE(preview.pixelColor(1100, 800), QColor(228, 228, 228));
    QVERIFY(isRed(preview.pixelColor(990, 10))); // the marker went top-right
    // An invalid panel shows the source itself.
    const QImage source = TestFiles::markedImage(40, 20);
    QCOMPARE(renderPreprocDisplayPreview(source, {FillMode::Direct, 90}, QSize(), false), source);
}

void TestImagePreprocess::directExportIsTheUntouchedSource()
{
    const QImage source = TestFiles::markedImage(400, 200);
    QCOMPARE(renderPreprocExport(source, {FillMode::Direct, 90}, kPanel, false), source);
    QCOMPARE(renderPreprocExport(source, {FillMode::Direct, 270}, kPanel, true), source);
}

void TestImagePreprocess::portraitExportIsUnturned()
{
    const QImage exported =
        renderPreprocExport(TestFiles::markedImage(1200, 1600), {FillMode::BlurFill, 0}, kPanel, false);
    QCOMPARE(exported.size(), kPanel);
    QVERIFY(isRed(exported.pixelColor(10, 10)));
}

void TestImagePreprocess::landscapeExportIsTurnedClockwise()
{
    // A 1600 x 1200 photo fills the landscape composition; its top-left marker must end in
    // the top-right of the exported portrait picture.
    const QImage source = TestFiles::markedImage(1600, 1200);
    for (FillMode mode :
         {FillMode::BlurFill, FillMode::WhiteFill, FillMode::BlackFill, FillMode::CenterCrop}) {
        const QImage exported = renderPreprocExport(source, {mode, 0}, kPanel, true);
        QCOMPARE(exported.size(), kPanel);
        QVERIFY2(isRed(exported.pixelColor(1199 - 10, 10)), qPrintable(fillModeLabel(mode)));
        QVERIFY(!isRed(exported.pixelColor(10, 10)));
    }
    // The same state in portrait composes at 1200 x 1600 and is not turned.
    const QImage portrait = renderPreprocExport(source, {FillMode::CenterCrop, 0}, kPanel, false);
    QCOMPARE(portrait.size(), kPanel);
    QVERIFY(isRed(portrait.pixelColor(10, 10)));
}

void TestImagePreprocess::landscapePreviewStaysLandscape()
{
    const QImage preview = renderPreprocDisplayPreview(TestFiles::markedImage(1600, 1200),
                                                       {FillMode::CenterCrop, 0}, kPanel, true);
    QCOMPARE(preview.size(), QSize(1600, 1200));
    QVERIFY(isRed(preview.pixelColor(10, 10)));
    const QImage scaled =
        renderPreprocDisplayPreview(TestFiles::markedImage(1600, 1200), {FillMode::BlurFill, 0},
                                    ::scaledResolutionForPreview(kPanel, 280), true);
    QCOMPARE(scaled.size(), QSize(280, 210));
}

void TestImagePreprocess::invalidPanelKeepsTheRotatedImage()
{
    const QImage source = TestFiles::markedImage(400, 200);
    for (const QSize &panel : {QSize(0, 0), QSize(-5, -5), QSize(1200, 0)}) {
        for (FillMode mode :
             {FillMode::BlurFill, FillMode::WhiteFill, FillMode::BlackFill, FillMode::CenterCrop}) {
            QCOMPARE(renderPreprocDisplayPreview(source, {mode, 90}, panel, false).size(), QSize(200, 400));
            QCOMPARE(renderPreprocExport(source, {mode, 90}, panel, false).size(), QSize(200, 400));
            // In landscape the export still turns it a further 90 degrees clockwise.
            const QImage turned = renderPreprocExport(source, {mode, 90}, panel, true);
            QCOMPARE(turned.size(), QSize(400, 200));
            QVERIFY(isRed(turned.pixelColor(399 - 5, 199 - 5))); // two clockwise turns: bottom-right
        }
    }
}

void TestImagePreprocess::previewFrameOuterSize()
{
    QCOMPARE(::previewFrameOuterSize(kPanel, 0), QSize());
    QCOMPARE(::previewFrameOuterSize(kPanel, -3), QSize());
    QCOMPARE(::previewFrameOuterSize(kPanel, 88), QSize(66, 88));
    QCOMPARE(::previewFrameOuterSize(QSize(1600, 1200), 88), QSize(88, 66));
    QCOMPARE(::previewFrameOuterSize(QSize(0, 0), 88), QSize(88, 88));
    QCOMPARE(::previewFrameOuterSize(QSize(100, 0), 88), QSize(88, 88));
}

void TestImagePreprocess::scaledResolutionForPreview()
{
    QCOMPARE(::scaledResolutionForPreview(kPanel, 280), QSize(210, 280));
    QCOMPARE(::scaledResolutionForPreview(kPanel, 0), kPanel);
    QCOMPARE(::scaledResolutionForPreview(kPanel, 1600), kPanel);
    QCOMPARE(::scaledResolutionForPreview(kPanel, 5000), kPanel);
    QCOMPARE(::scaledResolutionForPreview(QSize(0, 0), 280), QSize(0, 0));
    QCOMPARE(::scaledResolutionForPreview(QSize(2160, 3060), 280), QSize(197, 280));
}

void TestImagePreprocess::panelResolutionText()
{
    QCOMPARE(formatPanelResolutionText(QSize(1600, 1200)), QStringLiteral("1600×1200"));
    QCOMPARE(formatPanelResolutionText(QSize(0, 1200)), QStringLiteral("Not set"));
    QCOMPARE(formatPanelResolutionText(QSize()), QStringLiteral("Not set"));
}

QTEST_MAIN(TestImagePreprocess)
#include "tst_ImagePreprocess.moc"
