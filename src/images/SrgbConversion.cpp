#include "images/SrgbConversion.h"

#include "images/RowBands.h"

#include <QHash>
#include <QMutex>
#include <QMutexLocker>

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

namespace SrgbConversion {

namespace {

using Problem = ColourProfile::Problem;
using Matrix = std::array<std::array<double, 3>, 3>;

// Linear light is looked up in this many steps on its way back to 8 bits: fine enough that
// the darkest sRGB levels, where the curve is steepest, are 10 steps apart, so that the three
// rounded terms of a sum are off by less than a fifth of a level.
constexpr int kLinearSteps = 1 << 15;
constexpr int kCachedConversions = 32;
// Pictures of at least this many rows a core are converted on every core.
constexpr int kRowsPerBand = 256;

#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
constexpr cmsUInt32Number kRgb32Type = TYPE_BGRA_8; // QImage's 32-bit pixels as bytes in memory
#else
constexpr cmsUInt32Number kRgb32Type = TYPE_ARGB_8;
#endif

double srgbEncoded(double linear)
{
    return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

struct ProfileHandle {
    cmsHPROFILE profile;
    explicit ProfileHandle(cmsHPROFILE p)
        : profile(p)
    {
    }
    ~ProfileHandle()
    {
        if (profile)
            cmsCloseProfile(profile);
    }
    ProfileHandle(const ProfileHandle &) = delete;
    ProfileHandle &operator=(const ProfileHandle &) = delete;
};

// The colorants of an RGB matrix-and-curves profile as columns (XYZ relative to D50).
bool colorants(cmsHPROFILE profile, Matrix *matrix)
{
    const cmsTagSignature tags[3] = {cmsSigRedColorantTag, cmsSigGreenColorantTag, cmsSigBlueColorantTag};
    for (int column = 0; column < 3; ++column) {
        const auto *xyz = static_cast<const cmsCIEXYZ *>(cmsReadTag(profile, tags[column]));
        if (!xyz)
            return false;
        (*matrix)[0][size_t(column)] = xyz->X;
        (*matrix)[1][size_t(column)] = xyz->Y;
        (*matrix)[2][size_t(column)] = xyz->Z;
    }
    return true;
}

bool inverted(const Matrix &m, Matrix *inverse)
{
    const double det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                       m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                       m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    if (!std::isfinite(det) || std::abs(det) < 1e-12)
        return false;
    for (size_t r = 0; r < 3; ++r) {
        for (size_t c = 0; c < 3; ++c) {
            // The cofactor of (c, r), divided by the determinant.
            const size_t r1 = (c + 1) % 3, r2 = (c + 2) % 3, c1 = (r + 1) % 3, c2 = (r + 2) % 3;
            (*inverse)[r][c] = (m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1]) / det;
        }
    }
    return true;
}

Matrix product(const Matrix &a, const Matrix &b)
{
    Matrix p{};
    for (size_t r = 0; r < 3; ++r)
        for (size_t c = 0; c < 3; ++c)
            p[r][c] = a[r][0] * b[0][c] + a[r][1] * b[1][c] + a[r][2] * b[2][c];
    return p;
}

// From D50 XYZ to linear sRGB.
const Matrix *srgbFromXyz()
{
    static const std::unique_ptr<Matrix> matrix = [] {
        const ProfileHandle srgb(cmsCreate_sRGBProfile());
        Matrix toXyz{};
        auto inverse = std::make_unique<Matrix>();
        if (!srgb.profile || !colorants(srgb.profile, &toXyz) || !inverted(toXyz, inverse.get()))
            inverse.reset();
        return inverse;
    }();
    return matrix.get();
}

// Grey levels on sRGB's curve: where a grey picture's levels go, so that it stays grey.
cmsHPROFILE srgbGreyProfile()
{
    const ProfileHandle srgb(cmsCreate_sRGBProfile());
    const auto *curve =
        srgb.profile ? static_cast<const cmsToneCurve *>(cmsReadTag(srgb.profile, cmsSigRedTRCTag)) : nullptr;
    return curve ? cmsCreateGrayProfile(cmsD50_xyY(), curve) : nullptr;
}

bool isGrey(const QImage &image)
{
    return image.format() == QImage::Format_Grayscale8 || image.format() == QImage::Format_Grayscale16;
}

// One profile's way to sRGB.
class Converter
{
public:
    explicit Converter(const QByteArray &icc);
    ~Converter()
    {
        if (m_transform)
            cmsDeleteTransform(m_transform);
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    Problem problem() const { return m_problem; }
    bool isIdentity() const { return m_identity; }
    bool isGrey() const { return m_grey; }
    QImage apply(QImage image) const;

private:
    bool buildTables(cmsHPROFILE profile);
    QImage applyTables(QImage image) const;
    QImage applyTransform(QImage image) const;
    bool changesNothing() const;

    Problem m_problem = Problem::None;
    bool m_grey = false;
    bool m_identity = false;
    // m_tables[c][v][k]: what input channel c at value v adds to output channel k, in linear
    // light in kLinearSteps steps (integers, which add up fast); the red table is offset so that
    // every sum the three can give is an index of m_encode, which holds its 8-bit sRGB value
    // (0 below black, 255 above white), so that no sum needs clamping.
    std::vector<std::array<std::array<qint32, 3>, 256>> m_tables;
    std::vector<uchar> m_encode;
    cmsHTRANSFORM m_transform = nullptr;
};

Converter::Converter(const QByteArray &icc)
{
    const ProfileHandle profile(cmsOpenProfileFromMem(icc.constData(), cmsUInt32Number(icc.size())));
    if (!profile.profile) {
        m_problem = Problem::Damaged;
        return;
    }
    const cmsProfileClassSignature kind = cmsGetDeviceClass(profile.profile);
    const cmsColorSpaceSignature space = cmsGetColorSpace(profile.profile);
    m_grey = space == cmsSigGrayData;
    if ((space != cmsSigRgbData && !m_grey) || kind == cmsSigLinkClass || kind == cmsSigAbstractClass ||
        kind == cmsSigNamedColorClass) {
        m_problem = Problem::Unsupported;
        return;
    }
    if (m_grey || !buildTables(profile.profile)) {
        const ProfileHandle target(m_grey ? srgbGreyProfile() : cmsCreate_sRGBProfile());
        const cmsUInt32Number type = m_grey ? TYPE_GRAY_8 : kRgb32Type;
        m_transform = target.profile
                          ? cmsCreateTransform(profile.profile, type, target.profile, type, INTENT_PERCEPTUAL,
                                               cmsFLAGS_NOCACHE | cmsFLAGS_COPY_ALPHA)
                          : nullptr;
        if (!m_transform) {
            m_problem = Problem::Damaged;
            return;
        }
    }
    m_identity = changesNothing();
}

bool Converter::buildTables(cmsHPROFILE profile)
{
    const Matrix *toSrgb = srgbFromXyz();
    Matrix toXyz{};
    if (!toSrgb || !cmsIsMatrixShaper(profile) || !colorants(profile, &toXyz))
        return false;
    const cmsTagSignature curveTags[3] = {cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag};
    const cmsToneCurve *curves[3];
    for (int c = 0; c < 3; ++c) {
        curves[c] = static_cast<const cmsToneCurve *>(cmsReadTag(profile, curveTags[c]));
        if (!curves[c])
            return false;
    }
    const Matrix mix = product(*toSrgb, toXyz);
    m_tables.resize(3);
    qint32 lowest = 0, highest = 0; // of the sums
    for (size_t c = 0; c < 3; ++c) {
        qint32 low = 0, high = 0;
        for (int v = 0; v < 256; ++v) {
            const double linear =
                std::clamp(double(cmsEvalToneCurveFloat(curves[c], float(v / 255.0))), 0.0, 1.0);
            for (size_t k = 0; k < 3; ++k) {
                const auto term = qint32(std::lround(mix[k][c] * linear * (kLinearSteps - 1)));
                m_tables[c][size_t(v)][k] = term;
                low = std::min(low, term);
                high = std::max(high, term);
            }
        }
        lowest += low;
        highest += high;
    }
    for (auto &red : m_tables[0])
        for (qint32 &term : red)
            term -= lowest;
    m_encode.resize(size_t(highest - lowest) + 1);
    for (size_t i = 0; i < m_encode.size(); ++i) {
        const double linear = std::clamp(double(qint32(i) + lowest) / (kLinearSteps - 1), 0.0, 1.0);
        m_encode[i] = uchar(std::lround(255 * srgbEncoded(linear)));
    }
    return true;
}

QImage Converter::applyTables(QImage image) const
{
    const uchar *encode = m_encode.data();
    const auto *red = m_tables[0].data(), *green = m_tables[1].data(), *blue = m_tables[2].data();
    const auto encoded = [encode](qint32 sum) { return int(encode[sum]); };
    const int width = image.width();
    uchar *const pixels = image.bits(); // in place, unless the pixels are shared
    const qsizetype stride = image.bytesPerLine();
    RowBands::run(image.height(), kRowsPerBand, [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            auto *line = reinterpret_cast<QRgb *>(pixels + y * stride);
            for (int x = 0; x < width; ++x) {
                const QRgb pixel = line[x];
                const auto &r = red[qRed(pixel)], &g = green[qGreen(pixel)], &b = blue[qBlue(pixel)];
                line[x] = qRgba(encoded(r[0] + g[0] + b[0]), encoded(r[1] + g[1] + b[1]),
                                encoded(r[2] + g[2] + b[2]), qAlpha(pixel));
            }
        }
    });
    return image;
}

QImage Converter::applyTransform(QImage image) const
{
    for (int y = 0; y < image.height(); ++y) {
        uchar *line = image.scanLine(y); // converted in place
        cmsDoTransform(m_transform, line, line, cmsUInt32Number(image.width()));
    }
    return image;
}

QImage Converter::apply(QImage image) const
{
    if (m_grey) // on grey pictures only
        return applyTransform(std::move(image).convertToFormat(QImage::Format_Grayscale8));
    // Straight alpha, so that colours are converted as they are, not darkened by it.
    const QImage::Format format = image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32;
    QImage pixels = std::move(image).convertToFormat(format);
    return m_tables.empty() ? applyTransform(std::move(pixels)) : applyTables(std::move(pixels));
}

// True when the conversion leaves every colour of a dense grid (and every grey) as it is: a
// profile that is sRGB in all but its bytes, whose pictures are then left untouched.
bool Converter::changesNothing() const
{
    constexpr int kLevels = 18; // 0, 15, 30, ..., 255
    QImage grid(kLevels * kLevels * kLevels + 256, 1,
                m_grey ? QImage::Format_Grayscale8 : QImage::Format_RGB32);
    int at = 0;
    if (m_grey) {
        for (int v = 0; v < grid.width(); ++v)
            grid.scanLine(0)[v] = uchar(v % 256);
    } else {
        auto *line = reinterpret_cast<QRgb *>(grid.scanLine(0));
        for (int r = 0; r < kLevels; ++r)
            for (int g = 0; g < kLevels; ++g)
                for (int b = 0; b < kLevels; ++b)
                    line[at++] = qRgb(r * 15, g * 15, b * 15);
        for (int v = 0; v < 256; ++v)
            line[at++] = qRgb(v, v, v);
    }
    return apply(grid) == grid;
}

std::shared_ptr<const Converter> converterFor(const QByteArray &icc)
{
    static QMutex mutex;
    static QHash<QByteArray, std::shared_ptr<const Converter>> converters;
    const QMutexLocker lock(&mutex);
    auto found = converters.constFind(icc);
    if (found != converters.constEnd())
        return *found;
    if (converters.size() >= kCachedConversions)
        converters.clear(); // pictures in use keep theirs
    auto converter = std::make_shared<const Converter>(icc);
    converters.insert(icc, converter);
    return converter;
}

} // namespace

QImage toSrgb(QImage image, const ColourProfile &profile, Problem *problem)
{
    if (problem)
        *problem = profile.problem;
    if (image.isNull() || profile.icc.isEmpty())
        return image;
    const std::shared_ptr<const Converter> converter = converterFor(profile.icc);
    if (converter->problem() != Problem::None || converter->isIdentity()) {
        if (problem)
            *problem = converter->problem();
        return image;
    }
    if (converter->isGrey() && !isGrey(image)) {
        if (problem)
            *problem = Problem::Unsupported; // a grey profile on a colour picture
        return image;
    }
    QImage converted = converter->apply(std::move(image));
    converted.setColorSpace(QColorSpace(QColorSpace::SRgb));
    return converted;
}

} // namespace SrgbConversion
