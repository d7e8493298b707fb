#pragma once

#include <QByteArray>
#include <QColorSpace>

// How a decoder says a picture's colours are meant: by an ICC profile, or by nothing, which
// means sRGB (as untagged pictures are taken everywhere). A description that cannot be used
// says why instead; such a picture is shown as sRGB. A plain value, safe to pass between
// threads.
struct ColourProfile {
    enum class Problem {
        None,
        Damaged,     // a profile that cannot be read
        Unsupported, // readable, but of a kind that is not converted (CMYK, Lab, HDR transfer)
    };

    // An nclx colour description (ITU-T H.273 code points), as HEIF stores it instead of an
    // ICC profile, with the chromaticities its primaries stand for.
    struct Nclx {
        int primaries = 2; // 1: BT.709 (sRGB's), 2: unspecified, 12: P3 with D65, ...
        int transfer = 2;  // 13: sRGB, 2: unspecified, 1/6/14/15: BT.709, 8: linear, ...
        double redX = 0.64, redY = 0.33, greenX = 0.30, greenY = 0.60;
        double blueX = 0.15, blueY = 0.06, whiteX = 0.3127, whiteY = 0.3290;
    };

    QByteArray icc; // empty: sRGB
    Problem problem = Problem::None;

    bool isSrgb() const { return icc.isEmpty() && problem == Problem::None; }

    static ColourProfile fromIcc(const QByteArray &icc);
    // What Qt's readers report: sRGB for no colour space or sRGB itself, else its ICC profile.
    static ColourProfile fromColorSpace(const QColorSpace &space);
    // The ICC equivalent of an nclx description. Unspecified primaries are BT.709's and an
    // unspecified transfer is sRGB's; PQ, HLG and other transfers are Unsupported.
    static ColourProfile fromNclx(const Nclx &nclx);
};
