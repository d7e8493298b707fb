// The Qt side of the WIC decode. imageFromWicBgra builds everywhere; decodeHeif only on
// Windows, where it is this platform's HEIC/HEIF decoder.
#include "images/HeifDecoder.h"

#include "images/WicDecode.h"

QImage imageFromWicBgra(const WicImage &image)
{
    const qint64 bytes = qint64(image.width) * image.height * 4;
    if (image.width <= 0 || image.height <= 0 || qint64(image.bgra.size()) < bytes)
        return QImage();
    // 32-bit BGRA in memory is Format_ARGB32 on a little-endian machine. The conversion makes
    // a deep copy and drops the alpha on purpose.
    const QImage view(image.bgra.data(), image.width, image.height, image.width * 4, QImage::Format_ARGB32);
    return view.convertToFormat(QImage::Format_RGB32);
}

ColourProfile colourFromWic(const WicImage &image)
{
    constexpr unsigned kExifAdobeRgb = 2;
    if (!image.icc.empty())
        return ColourProfile::fromIcc(
            QByteArray(reinterpret_cast<const char *>(image.icc.data()), qsizetype(image.icc.size())));
    if (image.exifColorSpace == kExifAdobeRgb)
        return ColourProfile::fromColorSpace(QColorSpace(QColorSpace::AdobeRgb));
    return ColourProfile();
}

#ifdef Q_OS_WIN
QImage decodeHeif(const QString &path, ColourProfile *colour)
{
    WicImage image;
    const std::wstring widePath = path.toStdWString();
    if (!wicDecodeFile(widePath.c_str(), &image).ok())
        return QImage();
    if (colour)
        *colour = colourFromWic(image);
    return imageFromWicBgra(image);
}
#endif
