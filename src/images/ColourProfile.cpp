#include "images/ColourProfile.h"

#include <lcms2.h>

#include <cmath>

namespace {

// lcms2's parametric curve of type 4: Y = (aX + b)^g above d, Y = cX below; {g, a, b, c, d}.
constexpr cmsFloat64Number kSrgbCurve[5] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
// The inverse of the BT.709 camera curve (BT.601 and BT.2020 share it).
constexpr cmsFloat64Number kBt709Curve[5] = {1 / 0.45, 1 / 1.099, 0.099 / 1.099, 1 / 4.5, 0.081};

bool isChromaticity(double x, double y)
{
    return std::isfinite(x) && std::isfinite(y) && x > 0 && y > 0 && x + y <= 1;
}

cmsToneCurve *transferCurve(int transfer)
{
    switch (transfer) {
    case 2:  // unspecified
    case 13: // sRGB
        return cmsBuildParametricToneCurve(nullptr, 4, kSrgbCurve);
    case 1:
    case 6:
    case 14:
    case 15:
        return cmsBuildParametricToneCurve(nullptr, 4, kBt709Curve);
    case 4:
        return cmsBuildGamma(nullptr, 2.2);
    case 5:
        return cmsBuildGamma(nullptr, 2.8);
    case 8:
        return cmsBuildGamma(nullptr, 1.0);
    default: // PQ, HLG and the rest need more than a profile can say
        return nullptr;
    }
}

} // namespace

ColourProfile ColourProfile::fromIcc(const QByteArray &icc) { return ColourProfile{icc, Problem::None}; }

ColourProfile ColourProfile::fromColorSpace(const QColorSpace &space)
{
    if (!space.isValid() || space == QColorSpace(QColorSpace::SRgb))
        return ColourProfile();
    const QByteArray icc = space.iccProfile(); // the file's own profile when it came with one
    return icc.isEmpty() ? ColourProfile{QByteArray(), Problem::Unsupported} : fromIcc(icc);
}

ColourProfile ColourProfile::fromNclx(const Nclx &nclx)
{
    Nclx used = nclx;
    const bool bt709 = nclx.primaries == 1 || nclx.primaries == 2 || !isChromaticity(nclx.redX, nclx.redY) ||
                       !isChromaticity(nclx.greenX, nclx.greenY) || !isChromaticity(nclx.blueX, nclx.blueY) ||
                       !isChromaticity(nclx.whiteX, nclx.whiteY);
    if (bt709) {
        if (nclx.primaries != 1 && nclx.primaries != 2)
            return ColourProfile{QByteArray(), Problem::Damaged};
        used = Nclx(); // BT.709's chromaticities, which are sRGB's
        used.transfer = nclx.transfer;
    }
    if (bt709 && (nclx.transfer == 2 || nclx.transfer == 13))
        return ColourProfile(); // sRGB itself

    cmsToneCurve *curve = transferCurve(used.transfer);
    if (!curve)
        return ColourProfile{QByteArray(), Problem::Unsupported};
    const cmsCIExyY white{used.whiteX, used.whiteY, 1.0};
    const cmsCIExyYTRIPLE primaries{
        {used.redX, used.redY, 1.0}, {used.greenX, used.greenY, 1.0}, {used.blueX, used.blueY, 1.0}};
    cmsToneCurve *curves[3] = {curve, curve, curve};
    cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
    cmsFreeToneCurve(curve);
    QByteArray icc;
    cmsUInt32Number size = 0;
    if (profile && cmsSaveProfileToMem(profile, nullptr, &size) && size > 0) {
        icc.resize(qsizetype(size));
        if (!cmsSaveProfileToMem(profile, icc.data(), &size))
            icc.clear();
    }
    if (profile)
        cmsCloseProfile(profile);
    return icc.isEmpty() ? ColourProfile{QByteArray(), Problem::Damaged} : fromIcc(icc);
}
