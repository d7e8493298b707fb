// The conversion of decoded pixels to sRGB, held to the conversion worked out from each colour
// space's own definition.
#include "images/SrgbConversion.h"

#include "ColourReference.h"

#include <QColorSpace>
#include <QTest>

#include <lcms2.h>

#include <cmath>

namespace {

using ColourReference::Space;

QImage untagged(QImage image)
{
    image.setColorSpace(QColorSpace());
    return image;
}

} // namespace

class TestSrgbConversion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matchesTheDefinition_data();
    void matchesTheDefinition();
    void tableProfileGoesThroughLcms();
    void untaggedAndSrgbStayTheSameImage();
    void srgbInOtherBytesChangesNothing();
    void damagedProfileLeavesThePixels();
    void profileOfAnotherKindIsUnsupported();
    void alphaIsKept();
    void greyStaysGrey();
    void convertedImageIsMarkedSrgb();

private:
    QImage m_chart = ColourReference::chart();
};

void TestSrgbConversion::matchesTheDefinition_data()
{
    QTest::addColumn<QByteArray>("icc");
    QTest::addColumn<Space>("space");
    const auto row = [](const Space &space, double version) {
        QTest::newRow(qPrintable(QStringLiteral("%1 v%2").arg(space.name).arg(int(version))))
            << ColourReference::iccProfile(space, version) << space;
    };
    row(ColourReference::displayP3(), 4.3);
    row(ColourReference::displayP3(), 2.1);
    row(ColourReference::adobeRgb(), 2.1);
    row(ColourReference::proPhoto(), 4.3);
    row(ColourReference::gamma18(), 2.1);
    // Profiles as Qt itself writes them.
    QTest::newRow("Qt's Display P3") << QColorSpace(QColorSpace::DisplayP3).iccProfile()
                                     << ColourReference::displayP3();
    QTest::newRow("Qt's ProPhoto") << QColorSpace(QColorSpace::ProPhotoRgb).iccProfile()
                                   << ColourReference::proPhoto();
}

void TestSrgbConversion::matchesTheDefinition()
{
    QFETCH(QByteArray, icc);
    QFETCH(Space, space);
    ColourProfile::Problem problem = ColourProfile::Problem::Damaged;
    const QImage converted = SrgbConversion::toSrgb(m_chart, ColourProfile::fromIcc(icc), &problem);
    QCOMPARE(problem, ColourProfile::Problem::None);
    const QImage expected = ColourReference::toSrgb(m_chart, space);
    const double error = ColourReference::meanDeltaE(converted, expected);
    QVERIFY2(error <= 1.5, qPrintable(QStringLiteral("mean ΔE %1").arg(error)));
    // The picture needed it: taken as sRGB, it would be far off.
    QVERIFY(ColourReference::meanDeltaE(m_chart, expected) > 2.5);
}

void TestSrgbConversion::tableProfileGoesThroughLcms()
{
    const QByteArray icc = ColourReference::tableProfile(ColourReference::displayP3());
    QVERIFY(!QColorSpace::fromIccProfile(icc).isValid()); // Qt cannot take it
    ColourProfile::Problem problem = ColourProfile::Problem::Damaged;
    const QImage converted = SrgbConversion::toSrgb(m_chart, ColourProfile::fromIcc(icc), &problem);
    QCOMPARE(problem, ColourProfile::Problem::None);
    const double error = ColourReference::meanDeltaE(
        converted, ColourReference::toSrgb(m_chart, ColourReference::displayP3()));
    QVERIFY2(error <= 1.5, qPrintable(QStringLiteral("mean ΔE %1").arg(error)));
}

void TestSrgbConversion::untaggedAndSrgbStayTheSameImage()
{
    const QImage converted = SrgbConversion::toSrgb(m_chart, ColourProfile());
    QCOMPARE(converted.cacheKey(), m_chart.cacheKey()); // not even a copy
    QImage tagged = m_chart;
    tagged.setColorSpace(QColorSpace(QColorSpace::SRgb));
    QVERIFY(ColourProfile::fromColorSpace(tagged.colorSpace()).isSrgb());
}

void TestSrgbConversion::srgbInOtherBytesChangesNothing()
{
    // sRGB as another program writes it (version 2, lcms2's own), and from the definition.
    cmsHPROFILE srgb = cmsCreate_sRGBProfile();
    cmsSetProfileVersion(srgb, 2.1);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(srgb, nullptr, &size);
    QByteArray lcmsSrgb(qsizetype(size), '\0');
    cmsSaveProfileToMem(srgb, lcmsSrgb.data(), &size);
    cmsCloseProfile(srgb);
    for (const QByteArray &icc : {lcmsSrgb, ColourReference::iccProfile(ColourReference::srgb(), 2.1)}) {
        ColourProfile::Problem problem = ColourProfile::Problem::Damaged;
        const QImage converted = SrgbConversion::toSrgb(m_chart, ColourProfile::fromIcc(icc), &problem);
        QCOMPARE(problem, ColourProfile::Problem::None);
        QCOMPARE(converted.cacheKey(), m_chart.cacheKey());
    }
}

void TestSrgbConversion::damagedProfileLeavesThePixels()
{
    QByteArray damaged = ColourReference::iccProfile(ColourReference::displayP3());
    damaged.truncate(damaged.size() / 2);
    for (const QByteArray &icc : {damaged, QByteArray("not a profile at all"), QByteArray(300, '\xff')}) {
        ColourProfile::Problem problem = ColourProfile::Problem::None;
        const QImage converted = SrgbConversion::toSrgb(m_chart, ColourProfile::fromIcc(icc), &problem);
        QCOMPARE(problem, ColourProfile::Problem::Damaged);
        QCOMPARE(converted, m_chart);
    }
}

void TestSrgbConversion::profileOfAnotherKindIsUnsupported()
{
    ColourProfile::Problem problem = ColourProfile::Problem::None;
    QCOMPARE(SrgbConversion::toSrgb(m_chart, ColourProfile::fromIcc(ColourReference::labProfile()), &problem),
             m_chart);
    QCOMPARE(problem, ColourProfile::Problem::Unsupported);
    // A description found but not usable is passed on as it is.
    const ColourProfile unusable{QByteArray(), ColourProfile::Problem::Unsupported};
    QCOMPARE(SrgbConversion::toSrgb(m_chart, unusable, &problem), m_chart);
    QCOMPARE(problem, ColourProfile::Problem::Unsupported);
}

void TestSrgbConversion::alphaIsKept()
{
    QImage picture(4, 1, QImage::Format_ARGB32);
    const QRgb colours[] = {qRgba(255, 0, 0, 255), qRgba(255, 0, 0, 128), qRgba(0, 200, 90, 10),
                            qRgba(120, 120, 120, 0)};
    for (int x = 0; x < 4; ++x)
        picture.setPixel(x, 0, colours[x]);
    const Space p3 = ColourReference::displayP3();
    const QImage converted =
        SrgbConversion::toSrgb(picture, ColourProfile::fromIcc(ColourReference::iccProfile(p3)));
    QCOMPARE(converted.format(), QImage::Format_ARGB32);
    const QImage expected = ColourReference::toSrgb(picture, p3);
    for (int x = 0; x < 4; ++x) {
        QCOMPARE(qAlpha(converted.pixel(x, 0)), qAlpha(colours[x]));
        // Straight alpha: the colour is converted as it is, whatever its opacity.
        QVERIFY(qAbs(qRed(converted.pixel(x, 0)) - qRed(expected.pixel(x, 0))) <= 1);
        QVERIFY(qAbs(qGreen(converted.pixel(x, 0)) - qGreen(expected.pixel(x, 0))) <= 1);
    }
}

void TestSrgbConversion::greyStaysGrey()
{
    cmsToneCurve *gamma = cmsBuildGamma(nullptr, 2.2);
    const QByteArray icc = ColourReference::savedAndClosed(cmsCreateGrayProfile(cmsD50_xyY(), gamma));
    cmsFreeToneCurve(gamma);

    QImage ramp(256, 1, QImage::Format_Grayscale8);
    for (int x = 0; x < 256; ++x)
        ramp.scanLine(0)[x] = uchar(x);
    const QImage converted = SrgbConversion::toSrgb(ramp, ColourProfile::fromIcc(icc));
    QCOMPARE(converted.format(), QImage::Format_Grayscale8);
    for (int level : {0, 32, 64, 128, 200, 255}) {
        // Gamma 2.2 to linear light, then sRGB's curve.
        const double linear = std::pow(level / 255.0, 2.2);
        const double srgb = linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
        QVERIFY2(qAbs(converted.scanLine(0)[level] - srgb * 255) <= 1.0, qPrintable(QString::number(level)));
    }
    // A grey profile on a colour picture cannot be used.
    ColourProfile::Problem problem = ColourProfile::Problem::None;
    QCOMPARE(SrgbConversion::toSrgb(m_chart, ColourProfile::fromIcc(icc), &problem), m_chart);
    QCOMPARE(problem, ColourProfile::Problem::Unsupported);
}

void TestSrgbConversion::convertedImageIsMarkedSrgb()
{
    QImage picture = m_chart;
    picture.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    const QImage converted =
        SrgbConversion::toSrgb(picture, ColourProfile::fromColorSpace(picture.colorSpace()));
    QCOMPARE(converted.colorSpace(), QColorSpace(QColorSpace::SRgb));
    QVERIFY(untagged(converted) != untagged(picture));
}

QTEST_MAIN(TestSrgbConversion)
#include "tst_SrgbConversion.moc"
