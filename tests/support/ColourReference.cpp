#include "ColourReference.h"

#include <lcms2.h>

#include <QBuffer>
#include <QColorSpace>
#include <QtEndian>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <vector>

namespace ColourReference {

namespace {

using Matrix = std::array<std::array<double, 3>, 3>;
using Vector = std::array<double, 3>;

const QPointF kD65(0.3127, 0.3290);
const QPointF kD50(0.3457, 0.3585);
constexpr std::array<double, 5> kSrgbCurve = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};

Vector xyz(const QPointF &xy) { return {xy.x() / xy.y(), 1.0, (1 - xy.x() - xy.y()) / xy.y()}; }

Vector applied(const Matrix &m, const Vector &v)
{
    return {m[0][0] * v[0] + m[0][1] * v[1] + m[0][2] * v[2],
            m[1][0] * v[0] + m[1][1] * v[1] + m[1][2] * v[2],
            m[2][0] * v[0] + m[2][1] * v[1] + m[2][2] * v[2]};
}

Matrix times(const Matrix &a, const Matrix &b)
{
    Matrix p{};
    for (size_t r = 0; r < 3; ++r)
        for (size_t c = 0; c < 3; ++c)
            p[r][c] = a[r][0] * b[0][c] + a[r][1] * b[1][c] + a[r][2] * b[2][c];
    return p;
}

Matrix inverse(const Matrix &m)
{
    const double det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                       m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                       m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    Matrix inv{};
    for (size_t r = 0; r < 3; ++r)
        for (size_t c = 0; c < 3; ++c) {
            const size_t r1 = (c + 1) % 3, r2 = (c + 2) % 3, c1 = (r + 1) % 3, c2 = (r + 2) % 3;
            inv[r][c] = (m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1]) / det;
        }
    return inv;
}

// Linear RGB of the space to XYZ (relative to its own white, Y of white = 1).
Matrix rgbToXyz(const Space &space)
{
    const Vector r = xyz(space.red), g = xyz(space.green), b = xyz(space.blue);
    const Matrix primaries = {{{r[0], g[0], b[0]}, {r[1], g[1], b[1]}, {r[2], g[2], b[2]}}};
    const Vector scale = applied(inverse(primaries), xyz(space.white));
    Matrix m = primaries;
    for (size_t row = 0; row < 3; ++row)
        for (size_t c = 0; c < 3; ++c)
            m[row][c] *= scale[c];
    return m;
}

// Bradford chromatic adaptation from one white to another.
Matrix bradford(const QPointF &from, const QPointF &to)
{
    const Matrix cone = {{{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}};
    const Vector source = applied(cone, xyz(from)), target = applied(cone, xyz(to));
    const Matrix gain = {
        {{target[0] / source[0], 0, 0}, {0, target[1] / source[1], 0}, {0, 0, target[2] / source[2]}}};
    return times(inverse(cone), times(gain, cone));
}

double srgbEncoded(double linear)
{
    return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

struct Lab {
    double l, a, b;
};

Lab labOf(QRgb pixel)
{
    static const Matrix toXyz = rgbToXyz(srgb());
    const Space s = srgb();
    const Vector v = applied(toXyz, Vector{s.toLinear(qRed(pixel) / 255.0), s.toLinear(qGreen(pixel) / 255.0),
                                           s.toLinear(qBlue(pixel) / 255.0)});
    const Vector white = xyz(kD65);
    const auto f = [](double t) { return t > 216.0 / 24389 ? std::cbrt(t) : (24389.0 / 27 * t + 16) / 116; };
    const double fx = f(v[0] / white[0]), fy = f(v[1] / white[1]), fz = f(v[2] / white[2]);
    return {116 * fy - 16, 500 * (fx - fy), 200 * (fy - fz)};
}

} // namespace

double Space::toLinear(double code) const
{
    const auto [g, a, b, c, d] = curve;
    return code >= d ? std::pow(std::max(0.0, a * code + b), g) : c * code;
}

Space srgb() { return {QStringLiteral("sRGB"), {0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}, kD65, kSrgbCurve}; }

Space displayP3()
{
    return {QStringLiteral("Display P3"), {0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, kD65, kSrgbCurve};
}

Space adobeRgb()
{
    return {QStringLiteral("Adobe RGB (1998)"), {0.64, 0.33}, {0.21, 0.71}, {0.15, 0.06}, kD65,
            {563.0 / 256, 1, 0, 0, 0}};
}

Space proPhoto()
{
    return {QStringLiteral("ROMM/ProPhoto RGB"), {0.7347, 0.2653}, {0.1596, 0.8404}, {0.0366, 0.0001}, kD50,
            {1.8, 1, 0, 1.0 / 16, 16.0 / 512}};
}

Space gamma18()
{
    return {
        QStringLiteral("gamma 1.8"), {0.630, 0.340}, {0.295, 0.605}, {0.155, 0.077}, kD65, {1.8, 1, 0, 0, 0}};
}

QByteArray savedAndClosed(cmsHPROFILE profile)
{
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    QByteArray bytes(qsizetype(size), '\0');
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

QByteArray iccProfile(const Space &space, double version)
{
    const cmsCIExyY white{space.white.x(), space.white.y(), 1.0};
    const cmsCIExyYTRIPLE primaries{{space.red.x(), space.red.y(), 1.0},
                                    {space.green.x(), space.green.y(), 1.0},
                                    {space.blue.x(), space.blue.y(), 1.0}};
    cmsToneCurve *curve = cmsBuildParametricToneCurve(nullptr, 4, space.curve.data());
    cmsToneCurve *curves[3] = {curve, curve, curve};
    cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
    cmsFreeToneCurve(curve);
    cmsSetProfileVersion(profile, version);
    return savedAndClosed(profile);
}

QImage toSrgb(const QImage &image, const Space &space)
{
    const Matrix toSrgbLinear =
        times(inverse(rgbToXyz(srgb())), times(bradford(space.white, kD65), rgbToXyz(space)));
    QImage source = image.convertToFormat(QImage::Format_RGB32);
    source.setColorSpace(QColorSpace());
    QImage out(source.size(), QImage::Format_RGB32);
    const auto encode = [](double linear) {
        return int(std::lround(255 * srgbEncoded(std::clamp(linear, 0.0, 1.0))));
    };
    for (int y = 0; y < source.height(); ++y) {
        const auto *in = reinterpret_cast<const QRgb *>(source.constScanLine(y));
        auto *line = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < source.width(); ++x) {
            const Vector linear = applied(toSrgbLinear, Vector{space.toLinear(qRed(in[x]) / 255.0),
                                                               space.toLinear(qGreen(in[x]) / 255.0),
                                                               space.toLinear(qBlue(in[x]) / 255.0)});
            line[x] = qRgb(encode(linear[0]), encode(linear[1]), encode(linear[2]));
        }
    }
    return out;
}

double meanDeltaE(const QImage &a, const QImage &b, int block)
{
    const QImage first = a.convertToFormat(QImage::Format_RGB32);
    const QImage second = b.convertToFormat(QImage::Format_RGB32);
    double sum = 0;
    int blocks = 0;
    for (int top = 0; top + block <= first.height(); top += block) {
        for (int left = 0; left + block <= first.width(); left += block) {
            Lab one{0, 0, 0}, two{0, 0, 0};
            for (int y = top; y < top + block; ++y) {
                for (int x = left; x < left + block; ++x) {
                    const Lab p = labOf(first.pixel(x, y)), q = labOf(second.pixel(x, y));
                    one = {one.l + p.l, one.a + p.a, one.b + p.b};
                    two = {two.l + q.l, two.a + q.a, two.b + q.b};
                }
            }
            const double n = double(block) * block;
            sum += std::sqrt(std::pow((one.l - two.l) / n, 2) + std::pow((one.a - two.a) / n, 2) +
                             std::pow((one.b - two.b) / n, 2));
            ++blocks;
        }
    }
    return blocks > 0 ? sum / blocks : 0.0;
}

QImage chart(int block)
{
    std::vector<QRgb> colours;
    for (int r = 0; r < 6; ++r)
        for (int g = 0; g < 6; ++g)
            for (int b = 0; b < 6; ++b)
                colours.push_back(qRgb(r * 51, g * 51, b * 51));
    for (int v = 8; v < 256; v += 16)
        colours.push_back(qRgb(v, v, v));
    const QRgb skin[] = {qRgb(255, 224, 196), qRgb(234, 192, 160), qRgb(198, 150, 116), qRgb(160, 112, 80),
                         qRgb(112, 72, 48),   qRgb(224, 172, 105), qRgb(141, 85, 36),   qRgb(255, 219, 172)};
    for (QRgb colour : skin)
        colours.push_back(colour);
    const int columns = 16;
    const int rows = int((colours.size() + columns - 1) / columns);
    QImage image(columns * block, rows * block, QImage::Format_RGB32);
    image.fill(Qt::gray);
    for (size_t i = 0; i < colours.size(); ++i) {
        const int column = int(i) % columns, row = int(i) / columns;
        for (int y = row * block; y < (row + 1) * block; ++y)
            for (int x = column * block; x < (column + 1) * block; ++x)
                image.setPixel(x, y, colours[i]);
    }
    return image;
}

namespace {

QByteArray encoded(const QImage &image, const char *format, int quality)
{
    QImage untagged = image;
    untagged.setColorSpace(QColorSpace());
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    untagged.save(&buffer, format, quality);
    return bytes;
}

quint32 crc32(const QByteArray &bytes)
{
    quint32 crc = 0xFFFFFFFFu;
    for (char byte : bytes) {
        crc ^= quint32(uchar(byte));
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

} // namespace

QByteArray tableProfile(const Space &space, int gridPoints)
{
    const QByteArray matrixIcc = iccProfile(space);
    cmsHPROFILE matrix = cmsOpenProfileFromMem(matrixIcc.constData(), cmsUInt32Number(matrixIcc.size()));
    cmsHPROFILE lab = cmsCreateLab4Profile(nullptr);
    cmsHTRANSFORM toLab =
        cmsCreateTransform(matrix, TYPE_RGB_16, lab, TYPE_Lab_16, INTENT_RELATIVE_COLORIMETRIC, 0);
    cmsHPROFILE table = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(table, 4.3);
    cmsSetDeviceClass(table, cmsSigDisplayClass);
    cmsSetColorSpace(table, cmsSigRgbData);
    cmsSetPCS(table, cmsSigLabData);
    cmsPipeline *pipeline = cmsPipelineAlloc(nullptr, 3, 3);
    cmsStage *clut = cmsStageAllocCLut16bit(nullptr, cmsUInt32Number(gridPoints), 3, 3, nullptr);
    cmsStageSampleCLut16bit(
        clut,
        [](const cmsUInt16Number in[], cmsUInt16Number out[], void *cargo) -> cmsInt32Number {
            cmsDoTransform(static_cast<cmsHTRANSFORM>(cargo), in, out, 1);
            return TRUE;
        },
        toLab, 0);
    // Saved as "A curves, table, B curves", the shape a version-4 table tag takes.
    cmsPipelineInsertStage(pipeline, cmsAT_BEGIN, cmsStageAllocToneCurves(nullptr, 3, nullptr));
    cmsPipelineInsertStage(pipeline, cmsAT_END, clut);
    cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocToneCurves(nullptr, 3, nullptr));
    cmsWriteTag(table, cmsSigAToB0Tag, pipeline);
    cmsWriteTag(table, cmsSigMediaWhitePointTag, cmsD50_XYZ());
    cmsPipelineFree(pipeline);
    const QByteArray bytes = savedAndClosed(table);
    cmsDeleteTransform(toLab);
    cmsCloseProfile(lab);
    cmsCloseProfile(matrix);
    return bytes;
}

QByteArray labProfile() { return savedAndClosed(cmsCreateLab4Profile(nullptr)); }

QByteArray jpegWithProfile(const QImage &image, const QByteArray &icc, int quality)
{
    const QByteArray jpeg = encoded(image, "JPEG", quality);
    constexpr int kPart = 65519; // a segment's 65535 bytes less its length, tag and numbering
    const int parts = int((icc.size() + kPart - 1) / kPart);
    QByteArray segments;
    for (int i = 0; i < parts; ++i) {
        const QByteArray segment =
            QByteArray("ICC_PROFILE\0", 12) + char(i + 1) + char(parts) + icc.mid(i * kPart, kPart);
        QByteArray length(2, '\0');
        qToBigEndian<quint16>(quint16(segment.size() + 2), length.data());
        segments += QByteArray("\xFF\xE2", 2) + length + segment;
    }
    return jpeg.left(2) + segments + jpeg.mid(2);
}

QByteArray pngWithProfile(const QImage &image, const QByteArray &icc)
{
    const QByteArray png = encoded(image, "PNG", -1);
    // qCompress puts the size before zlib's stream; a PNG chunk holds the stream alone.
    const QByteArray data = QByteArray("test profile\0\0", 14) + qCompress(icc).mid(4);
    const QByteArray typeAndData = QByteArray("iCCP") + data;
    QByteArray chunk(4, '\0');
    qToBigEndian<quint32>(quint32(data.size()), chunk.data());
    chunk += typeAndData;
    QByteArray crc(4, '\0');
    qToBigEndian<quint32>(crc32(typeAndData), crc.data());
    chunk += crc;
    const int afterHeader = 8 + 25; // the signature and the IHDR chunk
    return png.left(afterHeader) + chunk + png.mid(afterHeader);
}

} // namespace ColourReference
