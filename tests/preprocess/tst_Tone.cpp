// The tone function: Neutral is the identity, each adjustment moves the picture the right way
// and stays within its clamps, and the thumbnail, preview and export all go through it.
#include "preprocess/ImagePreprocess.h"
#include "preprocess/Tone.h"
#include "ui/UiLanguage.h"

#include "TestFiles.h"

#include <QTest>

#include <cmath>
#include <limits>

namespace {

const QSize kPanel(1200, 1600);

// A picture with every grey and a range of colours: greys across the top half, a hue sweep
// below.
QImage chart()
{
    QImage image(256, 64, QImage::Format_RGB32);
    for (int x = 0; x < 256; ++x) {
        for (int y = 0; y < 32; ++y)
            image.setPixel(x, y, qRgb(x, x, x));
        for (int y = 32; y < 64; ++y)
            image.setPixel(x, y, QColor::fromHsv(x * 359 / 255, 160, 60 + y * 2).rgb());
    }
    return image;
}

ToneSettings tone(TonePreset preset, double exposure = 0, double contrast = 0, double saturation = 1)
{
    return {preset, exposure, contrast, saturation};
}

int grey(const QImage &image, int level) { return qRed(image.pixel(level, 0)); }

double chroma(const QImage &image)
{
    double sum = 0;
    for (int x = 0; x < image.width(); ++x) {
        const QColor c = image.pixelColor(x, 48);
        sum += qMax(c.red(), qMax(c.green(), c.blue())) - qMin(c.red(), qMin(c.green(), c.blue()));
    }
    return sum / image.width();
}

} // namespace

class TestTone : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void neutralIsTheIdentity();
    void exposureBrightensAndDarkensWithinTheClamps();
    void contrastSpreadsAroundMidGrey();
    void saturationMovesFromGrey();
    void presetsEachDoTheirOwn();
    void applyWithinTonesOnlyTheArea();
    void alphaIsKept();
    void valuesOutsideTheRangesAreClamped();
    void keysAndNames();
    void everyRenderAgrees();
    void theFillAroundThePictureIsNotToned();
    void directIgnoresTheTone();

private:
    QImage m_chart = chart();
};

void TestTone::initTestCase() { UiLanguage::set(UiLanguage::English); }

void TestTone::neutralIsTheIdentity()
{
    QVERIFY(Tone::isNeutral(ToneSettings()));
    QVERIFY(!Tone::isNeutral(tone(TonePreset::Neutral, 0.1)));
    QVERIFY(!Tone::isNeutral(tone(TonePreset::Soft)));
    const QImage toned = Tone::apply(m_chart, ToneSettings());
    QCOMPARE(toned.cacheKey(), m_chart.cacheKey()); // the very same image, not a copy
    QVERIFY(Tone::apply(QImage(), tone(TonePreset::Vivid)).isNull());
}

void TestTone::exposureBrightensAndDarkensWithinTheClamps()
{
    const QImage brighter = Tone::apply(m_chart, tone(TonePreset::Neutral, 1.0));
    const QImage darker = Tone::apply(m_chart, tone(TonePreset::Neutral, -1.0));
    for (int level = 1; level < 255; ++level) {
        QVERIFY2(grey(brighter, level) >= grey(m_chart, level), qPrintable(QString::number(level)));
        QVERIFY2(grey(darker, level) <= grey(m_chart, level), qPrintable(QString::number(level)));
    }
    // +1 EV doubles the light: sRGB 100 (12.7 % light) becomes 25.4 %, sRGB 137.
    QVERIFY(qAbs(grey(brighter, 100) - 137) <= 2);
    QVERIFY(qAbs(grey(darker, 137) - 100) <= 2);
    // Black stays black, and white stays white: what would go past it is clipped, not wrapped.
    QCOMPARE(grey(brighter, 0), 0);
    QCOMPARE(grey(brighter, 255), 255);
    QCOMPARE(grey(brighter, 250), 255);
    QCOMPARE(grey(darker, 0), 0);
    QVERIFY(grey(Tone::apply(m_chart, tone(TonePreset::Neutral, 2.0)), 200) == 255);
}

void TestTone::contrastSpreadsAroundMidGrey()
{
    const QImage more = Tone::apply(m_chart, tone(TonePreset::Neutral, 0, 1.0));
    const QImage less = Tone::apply(m_chart, tone(TonePreset::Neutral, 0, -1.0));
    QVERIFY(grey(more, 64) < grey(m_chart, 64));
    QVERIFY(grey(more, 192) > grey(m_chart, 192));
    QVERIFY(grey(less, 64) > grey(m_chart, 64));
    QVERIFY(grey(less, 192) < grey(m_chart, 192));
    for (const QImage &image : {more, less}) {
        QCOMPARE(grey(image, 0), 0);
        QCOMPARE(grey(image, 255), 255);
        QVERIFY(qAbs(grey(image, 128) - 128) <= 1);
        for (int level = 1; level < 256; ++level) // a curve that never turns back
            QVERIFY(grey(image, level) >= grey(image, level - 1));
    }
}

void TestTone::saturationMovesFromGrey()
{
    const QImage none = Tone::apply(m_chart, tone(TonePreset::Neutral, 0, 0, 0.0));
    for (int x = 0; x < none.width(); ++x) {
        const QColor c = none.pixelColor(x, 48);
        QVERIFY(c.red() == c.green() && c.green() == c.blue());
    }
    const QImage doubled = Tone::apply(m_chart, tone(TonePreset::Neutral, 0, 0, 2.0));
    QVERIFY(chroma(doubled) > chroma(m_chart) * 1.5);
    QVERIFY(chroma(Tone::apply(m_chart, tone(TonePreset::Neutral, 0, 0, 0.5))) < chroma(m_chart) * 0.6);
    // Greys are not coloured by saturation.
    for (int level = 0; level < 256; level += 5)
        QCOMPARE(doubled.pixel(level, 0), m_chart.pixel(level, 0));
}

void TestTone::presetsEachDoTheirOwn()
{
    QCOMPARE(Tone::presets().size(), 5);
    QCOMPARE(Tone::presets().first(), TonePreset::Neutral);
    QList<QImage> seen{m_chart};
    for (TonePreset preset : Tone::presets().mid(1)) {
        const QImage toned = Tone::apply(m_chart, tone(preset));
        QVERIFY(!seen.contains(toned));
        seen << toned;
    }
    QVERIFY(chroma(Tone::apply(m_chart, tone(TonePreset::Vivid))) > chroma(m_chart));
    QVERIFY(chroma(Tone::apply(m_chart, tone(TonePreset::Soft))) < chroma(m_chart));
    QCOMPARE(chroma(Tone::apply(m_chart, tone(TonePreset::Monochrome))), 0.0);
    // The sliders go on top of the preset.
    const Tone::Adjustment vivid = Tone::presetAdjustment(TonePreset::Vivid);
    const Tone::Adjustment adjusted = Tone::adjustmentOf(tone(TonePreset::Vivid, 0.5, 0.1, 0.5));
    QCOMPARE(adjusted.exposure, vivid.exposure + 0.5);
    QCOMPARE(adjusted.contrast, vivid.contrast + 0.1);
    QCOMPARE(adjusted.saturation, vivid.saturation * 0.5);
}

void TestTone::applyWithinTonesOnlyTheArea()
{
    QImage image = m_chart.copy();
    const QRect area(10, 5, 100, 40);
    Tone::applyWithin(image, area, tone(TonePreset::Monochrome));
    const QImage toned = Tone::apply(m_chart, tone(TonePreset::Monochrome));
    QCOMPARE(image.copy(area), toned.copy(area));
    QCOMPARE(image.copy(120, 0, 136, 64), m_chart.copy(120, 0, 136, 64));
    QCOMPARE(image.copy(0, 45, 256, 19), m_chart.copy(0, 45, 256, 19));
    const qint64 key = m_chart.cacheKey();
    QImage shared = m_chart;
    Tone::applyWithin(shared, QRect(-50, -50, 500, 500), tone(TonePreset::Vivid)); // clipped to the image
    QCOMPARE(shared, Tone::apply(m_chart, tone(TonePreset::Vivid)));
    QCOMPARE(m_chart.cacheKey(), key); // the picture it shared its pixels with is untouched
    QCOMPARE(m_chart, chart());
}

void TestTone::alphaIsKept()
{
    QImage translucent(4, 1, QImage::Format_ARGB32);
    for (int x = 0; x < 4; ++x)
        translucent.setPixel(x, 0, qRgba(200, 100, 50, x * 80));
    const QImage toned = Tone::apply(translucent, tone(TonePreset::Vivid));
    QVERIFY(toned.hasAlphaChannel());
    for (int x = 0; x < 4; ++x)
        QCOMPARE(qAlpha(toned.pixel(x, 0)), x * 80);
}

void TestTone::valuesOutsideTheRangesAreClamped()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const ToneSettings wild{TonePreset(42), 9.0, -5.0, nan};
    const ToneSettings clamped = Tone::clamped(wild);
    QCOMPARE(clamped.preset, TonePreset::Neutral);
    QCOMPARE(clamped.exposure, Tone::kMaxExposure);
    QCOMPARE(clamped.contrast, Tone::kMinContrast);
    QCOMPARE(clamped.saturation, 1.0);
    QCOMPARE(Tone::apply(m_chart, wild), Tone::apply(m_chart, clamped));
}

void TestTone::keysAndNames()
{
    for (TonePreset preset : Tone::presets())
        QCOMPARE(Tone::presetFromKey(Tone::presetKey(preset)), std::optional<TonePreset>(preset));
    QCOMPARE(Tone::presetKey(TonePreset::Balanced), QStringLiteral("balanced"));
    QCOMPARE(Tone::presetFromKey(QStringLiteral("VIVID")), std::optional<TonePreset>(TonePreset::Vivid));
    QVERIFY(!Tone::presetFromKey(QStringLiteral("sepia")));
    QCOMPARE(Tone::presetName(TonePreset::Monochrome), QStringLiteral("Monochrome"));
    QCOMPARE(Tone::description(ToneSettings()), QStringLiteral("Neutral"));
    QVERIFY(
        Tone::description(tone(TonePreset::Vivid, 0.5)).startsWith(QStringLiteral("Vivid, exposure +0.5")));
    QVERIFY(formatPreprocStateLabel({FillMode::BlurFill, 0, 0.5, 0.5, 1.0, tone(TonePreset::Soft)})
                .contains(QStringLiteral("Soft")));
    QVERIFY(!formatPreprocStateLabel({FillMode::BlurFill, 0}).contains(QStringLiteral("Neutral")));
}

void TestTone::everyRenderAgrees()
{
    const QImage photo = TestFiles::positionImage(1600, 1200);
    PreprocState state{FillMode::CenterCrop, 90, 0.4, 0.5, 1.2, tone(TonePreset::Vivid, 0.3, 0.2, 1.3)};
    const QImage exported = renderPreprocExport(photo, state, kPanel, false);
    QCOMPARE(renderPreprocDisplayPreview(photo, state, kPanel, false), exported);
    // The render tones the frame's pixels: a cropped frame toned as a whole.
    PreprocState untoned = state;
    untoned.tone = ToneSettings();
    const QImage plain = renderPreprocExport(photo, untoned, kPanel, false);
    QVERIFY(exported != plain);
    QCOMPARE(exported, Tone::apply(plain, state.tone));
    // Landscape frames turn the same toned composition.
    const QImage landscape = renderPreprocExport(photo, state, kPanel, true);
    QCOMPARE(landscape.transformed(QTransform().rotate(-90)),
             renderPreprocDisplayPreview(photo, state, kPanel, true));
}

void TestTone::theFillAroundThePictureIsNotToned()
{
    const QImage wide = TestFiles::solidImage(1600, 400, QColor(90, 120, 200));
    for (const auto &[mode, colour] : {std::pair{FillMode::WhiteFill, QColor(Qt::white)},
                                       std::pair{FillMode::BlackFill, QColor(Qt::black)}}) {
        const ToneSettings toned = tone(TonePreset::Vivid, -1.0, 0.5);
        const QImage framed = renderPreprocExport(wide, {mode, 0, 0.5, 0.5, 1.0, toned}, kPanel, false);
        QCOMPARE(framed.pixelColor(600, 10), colour);
        QCOMPARE(framed.pixelColor(600, 1590), colour);
        // The picture itself (1200 x 300 across the middle) is toned as a whole.
        const QImage plain = renderPreprocExport(wide, {mode, 0}, kPanel, false);
        QCOMPARE(framed.copy(0, 650, 1200, 300), Tone::apply(plain.copy(0, 650, 1200, 300), toned));
    }
}

void TestTone::directIgnoresTheTone()
{
    const QImage photo = TestFiles::positionImage(800, 600);
    const PreprocState direct{FillMode::Direct, 0, 0.5, 0.5, 1.0, tone(TonePreset::Monochrome)};
    QCOMPARE(renderPreprocExport(photo, direct, kPanel, false), photo);
    QVERIFY(!formatPreprocStateLabel(direct).contains(QStringLiteral("Monochrome")));
}

QTEST_MAIN(TestTone)
#include "tst_Tone.moc"
