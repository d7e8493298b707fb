#pragma once

#include <QByteArray>
#include <QImage>
#include <QMetaType>
#include <QPointF>
#include <QString>

#include <array>

// Colour spaces as their definitions give them (chromaticities of the primaries and the white,
// and the transfer curve), and the conversion of their pixels to sRGB worked out from those
// definitions in double precision, independently of the program's own conversion: the
// reference the tests hold it to. Also CIE Lab and the colour difference ΔE76.
namespace ColourReference {

struct Space {
    QString name;
    QPointF red, green, blue, white;
    // The curve from code value X (0..1) to linear light: (aX + b)^g from d on, cX below;
    // {g, a, b, c, d}, as ICC's parametric curves write it.
    std::array<double, 5> curve;
    double toLinear(double code) const;
};

Space srgb();
Space displayP3();
Space adobeRgb();
Space proPhoto();
// Gamma 1.8 on the primaries of a classic desktop display, as older camera and Mac software
// tag their pictures.
Space gamma18();

// An ICC profile of the space (matrix and curves): built by lcms2 as version 2 or 4.
QByteArray iccProfile(const Space &space, double version = 4.3);

// The same space described by a table (an A2B0 lookup table to Lab) instead of a matrix and
// curves, as some scanners and editors write profiles: one Qt's readers do not take.
// gridPoints per side (17: about 30 KB, 33: about 210 KB).
QByteArray tableProfile(const Space &space, int gridPoints = 33);
// A profile of another kind than RGB or grey: CIE Lab.
QByteArray labProfile();
// The bytes of an lcms2 profile (a cmsHPROFILE), which is then closed.
QByteArray savedAndClosed(void *profile);

// The image (its stored code values, whatever it is tagged) taken as the space and converted
// to sRGB from the definitions: linear light, XYZ, Bradford to D65 where the white differs,
// linear sRGB clipped, sRGB's curve, rounded. RGB32.
QImage toSrgb(const QImage &image, const Space &space);

// The mean ΔE76 of two sRGB images of one size, over the means of blocks of block x block
// pixels taken in CIE Lab (D65).
double meanDeltaE(const QImage &a, const QImage &b, int block = 12);

// A chart of block x block patches: a 6 x 6 x 6 grid of the colour cube, greys and skin tones.
QImage chart(int block = 12);

// The image's file with any ICC profile embedded as such files carry one (JPEG: one APP2
// segment after the start, in numbered parts of at most 64 KB; PNG: an iCCP chunk before the
// data), whether or not Qt could read that profile. For profiles Qt does not write: damaged
// or table-based ones.
QByteArray jpegWithProfile(const QImage &image, const QByteArray &icc, int quality = 95);
QByteArray pngWithProfile(const QImage &image, const QByteArray &icc);

} // namespace ColourReference

Q_DECLARE_METATYPE(ColourReference::Space)
