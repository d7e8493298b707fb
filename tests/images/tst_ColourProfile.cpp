// The colour descriptions decoders find, as profiles: what Qt's readers report, and HEIF's nclx
// code points.
#include "images/ColourProfile.h"
#include "images/SrgbConversion.h"

#include "ColourReference.h"

#include <QTest>

namespace {

ColourProfile::Nclx nclx(int primaries, int transfer)
{
    ColourProfile::Nclx description;
    description.primaries = primaries;
    description.transfer = transfer;
    if (primaries == 12) { // P3 with D65, as libheif fills the chromaticities in
        description.redX = 0.680;
        description.redY = 0.320;
        description.greenX = 0.265;
        description.greenY = 0.690;
    }
    return description;
}

} // namespace

class TestColourProfile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatQtReports();
    void nclxThatIsSrgbNeedsNothing();
    void nclxBecomesAProfile();
    void nclxTransfers();
    void nclxItCannotDescribe();
};

void TestColourProfile::whatQtReports()
{
    QVERIFY(ColourProfile::fromColorSpace(QColorSpace()).isSrgb());
    QVERIFY(ColourProfile::fromColorSpace(QColorSpace(QColorSpace::SRgb)).isSrgb());
    const QColorSpace p3(QColorSpace::DisplayP3);
    QCOMPARE(ColourProfile::fromColorSpace(p3).icc, p3.iccProfile());
    const QByteArray adobe = ColourReference::iccProfile(ColourReference::adobeRgb(), 2.1);
    QCOMPARE(ColourProfile::fromColorSpace(QColorSpace::fromIccProfile(adobe)).icc, adobe); // the file's own
    QVERIFY(ColourProfile::fromIcc(QByteArray()).isSrgb());
}

void TestColourProfile::nclxThatIsSrgbNeedsNothing()
{
    for (int primaries : {1, 2})
        for (int transfer : {2, 13})
            QVERIFY(ColourProfile::fromNclx(nclx(primaries, transfer)).isSrgb());
    QVERIFY(ColourProfile::fromNclx(ColourProfile::Nclx()).isSrgb());
}

void TestColourProfile::nclxBecomesAProfile()
{
    const ColourProfile profile = ColourProfile::fromNclx(nclx(12, 13));
    QCOMPARE(profile.problem, ColourProfile::Problem::None);
    const QImage chart = ColourReference::chart();
    const double error = ColourReference::meanDeltaE(
        SrgbConversion::toSrgb(chart, profile), ColourReference::toSrgb(chart, ColourReference::displayP3()));
    QVERIFY2(error <= 1.5, qPrintable(QString::number(error)));
}

void TestColourProfile::nclxTransfers()
{
    // Linear light on sRGB's primaries: a mid grey code is a far lighter sRGB grey.
    QImage grey(1, 1, QImage::Format_RGB32);
    grey.fill(qRgb(50, 50, 50));
    const QImage linear = SrgbConversion::toSrgb(grey, ColourProfile::fromNclx(nclx(1, 8)));
    QVERIFY(qAbs(qRed(linear.pixel(0, 0)) - 122) <= 1); // 50/255 linear is sRGB 122
    // BT.709's camera curve, undone: lighter in the shadows than sRGB's, equal at the ends.
    QImage ramp(3, 1, QImage::Format_RGB32);
    ramp.setPixel(0, 0, qRgb(0, 0, 0));
    ramp.setPixel(1, 0, qRgb(60, 60, 60));
    ramp.setPixel(2, 0, qRgb(255, 255, 255));
    const QImage bt709 = SrgbConversion::toSrgb(ramp, ColourProfile::fromNclx(nclx(1, 1)));
    QCOMPARE(bt709.pixel(0, 0), qRgb(0, 0, 0));
    QVERIFY(qAbs(qRed(bt709.pixel(1, 0)) - 75) <= 1); // 60 is 0.071 linear, sRGB's 75
    QCOMPARE(bt709.pixel(2, 0), qRgb(255, 255, 255));
}

void TestColourProfile::nclxItCannotDescribe()
{
    // PQ (16) and HLG (18) need tone mapping, not a profile.
    QCOMPARE(ColourProfile::fromNclx(nclx(9, 16)).problem, ColourProfile::Problem::Unsupported);
    QCOMPARE(ColourProfile::fromNclx(nclx(9, 18)).problem, ColourProfile::Problem::Unsupported);
    // Primaries named but without chromaticities.
    ColourProfile::Nclx broken = nclx(12, 13);
    broken.redX = 0;
    QCOMPARE(ColourProfile::fromNclx(broken).problem, ColourProfile::Problem::Damaged);
}

QTEST_MAIN(TestColourProfile)
#include "tst_ColourProfile.moc"
