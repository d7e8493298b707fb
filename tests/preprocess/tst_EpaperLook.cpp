// The e-paper look: only the panel's six inks, and tones kept on average by the dithering.
#include "preprocess/EpaperLook.h"

#include "TestFiles.h"

#include <QSet>
#include <QTest>

namespace {

QSet<QRgb> coloursOf(const QImage &image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            colours.insert(line[x] | 0xff000000u);
    }
    return colours;
}

double meanGrey(const QImage &image, const QRect &area)
{
    double sum = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            sum += qGray(image.pixel(x, y));
    return sum / (double(area.width()) * area.height());
}

} // namespace

class TestEpaperLook : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void inksAreMutedNotPure();
    void onlyTheSixInks();
    void greyRampKeepsItsMeanLightness();
    void flatColourIsDitheredEvenly();
    void nullStaysNull();
};

void TestEpaperLook::inksAreMutedNotPure()
{
    const auto &inks = EpaperLook::inks();
    QCOMPARE(inks.size(), size_t(6));
    QSet<QRgb> distinct(inks.begin(), inks.end());
    QCOMPARE(distinct.size(), 6);
    for (QRgb pure : {qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(255, 255, 0), qRgb(255, 0, 0), qRgb(0, 0, 255),
                      qRgb(0, 255, 0)})
        QVERIFY(!distinct.contains(pure));
    // The white is the lightest ink and the black the darkest.
    for (QRgb ink : inks) {
        QVERIFY(qGray(ink) <= qGray(inks[1]));
        QVERIFY(qGray(ink) >= qGray(inks[0]));
    }
}

void TestEpaperLook::onlyTheSixInks()
{
    const QImage photo = TestFiles::photoLikeImage(600, 800, 3);
    const QImage look = EpaperLook::render(photo);
    QCOMPARE(look.size(), photo.size());
    const QSet<QRgb> inks(EpaperLook::inks().begin(), EpaperLook::inks().end());
    const QSet<QRgb> used = coloursOf(look);
    QVERIFY(used.size() > 2); // a photo uses more than black and white
    QVERIFY2(inks.contains(used), "a colour outside the six inks");
}

void TestEpaperLook::greyRampKeepsItsMeanLightness()
{
    // A ramp across the panel's range of greys, from its black to its white: every band of it
    // keeps its mean lightness within 8 levels.
    const int black = qGray(EpaperLook::inks()[0]);
    const int white = qGray(EpaperLook::inks()[1]);
    QImage ramp(512, 256, QImage::Format_RGB32);
    for (int x = 0; x < ramp.width(); ++x) {
        const int grey = black + (white - black) * x / (ramp.width() - 1);
        for (int y = 0; y < ramp.height(); ++y)
            ramp.setPixel(x, y, qRgb(grey, grey, grey));
    }
    const QImage look = EpaperLook::render(ramp);
    constexpr int kBands = 16;
    const int band = ramp.width() / kBands;
    for (int i = 0; i < kBands; ++i) {
        const QRect area(i * band, 0, band, ramp.height());
        const double wanted = meanGrey(ramp, area);
        const double shown = meanGrey(look, area);
        QVERIFY2(qAbs(shown - wanted) <= 8.0,
                 qPrintable(QStringLiteral("band %1: %2 instead of %3").arg(i).arg(shown).arg(wanted)));
    }
    QVERIFY(qAbs(meanGrey(look, look.rect()) - meanGrey(ramp, ramp.rect())) <= 2.0);
}

void TestEpaperLook::flatColourIsDitheredEvenly()
{
    // A flat mid grey becomes a fine mixture, the same on the left and on the right (the rows
    // alternate their direction, so no side gathers the error).
    const QImage look = EpaperLook::render(TestFiles::solidImage(400, 200, QColor(128, 128, 128)));
    QVERIFY(coloursOf(look).size() >= 2);
    const double left = meanGrey(look, QRect(0, 0, 40, 200));
    const double right = meanGrey(look, QRect(360, 0, 40, 200));
    QVERIFY2(qAbs(left - right) <= 8.0, qPrintable(QStringLiteral("%1 vs %2").arg(left).arg(right)));
    QVERIFY(qAbs(meanGrey(look, look.rect()) - 128) <= 4.0);
}

void TestEpaperLook::nullStaysNull() { QVERIFY(EpaperLook::render(QImage()).isNull()); }

QTEST_MAIN(TestEpaperLook)
#include "tst_EpaperLook.moc"
