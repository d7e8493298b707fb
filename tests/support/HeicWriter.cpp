#include "HeicWriter.h"

#include <QFile>
#include <QFileInfo>

#include <libheif/heif.h>

#include <cstring>

namespace HeicWriter {

namespace {

struct Style {
    int quality = 95;
    const char *preset = nullptr;
    int thumbnailSide = 0;
    QByteArray icc;
    int nclxPrimaries = 0; // 0: no nclx description of our own
    int nclxTransfer = 0;
    QByteArray exif;
};

bool encode(const QString &path, const QImage &source, int exifOrientation, bool withAlpha,
            const Style &style)
{
    const QImage image = source.convertToFormat(withAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    heif_context *context = heif_context_alloc();
    heif_encoder *encoder = nullptr;
    heif_image *picture = nullptr;
    heif_encoding_options *options = nullptr;
    bool ok =
        heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder).code == heif_error_Ok;
    ok = ok && heif_encoder_set_lossy_quality(encoder, style.quality).code == heif_error_Ok;
    if (ok && style.preset)
        ok = heif_encoder_set_parameter(encoder, "preset", style.preset).code == heif_error_Ok;
    ok = ok &&
         heif_image_create(image.width(), image.height(), heif_colorspace_RGB,
                           withAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, &picture)
                 .code == heif_error_Ok;
    ok = ok &&
         heif_image_add_plane(picture, heif_channel_interleaved, image.width(), image.height(), 8).code ==
             heif_error_Ok;
    if (ok && !style.icc.isEmpty())
        ok =
            heif_image_set_raw_color_profile(picture, "prof", style.icc.constData(), size_t(style.icc.size()))
                .code == heif_error_Ok;
    heif_color_profile_nclx *nclx = nullptr;
    if (ok && style.nclxPrimaries > 0) {
        nclx = heif_nclx_color_profile_alloc();
        heif_nclx_color_profile_set_color_primaries(nclx, uint16_t(style.nclxPrimaries));
        heif_nclx_color_profile_set_transfer_characteristics(nclx, uint16_t(style.nclxTransfer));
        heif_nclx_color_profile_set_matrix_coefficients(nclx, 6);
        nclx->full_range_flag = 1;
        ok = heif_image_set_nclx_color_profile(picture, nclx).code == heif_error_Ok;
    }
    if (ok) {
        int stride = 0;
        uint8_t *plane = heif_image_get_plane(picture, heif_channel_interleaved, &stride);
        const int rowBytes = image.width() * (withAlpha ? 4 : 3);
        for (int y = 0; y < image.height(); ++y)
            std::memcpy(plane + qsizetype(y) * stride, image.constScanLine(y), size_t(rowBytes));
        options = heif_encoding_options_alloc();
        options->image_orientation = static_cast<heif_orientation>(exifOrientation);
        options->output_nclx_profile = nclx; // the description written is the one given
        // libheif leaves a picture's nclx box out by default, for an old viewer's sake.
        options->macOS_compatibility_workaround_no_nclx_profile = nclx == nullptr;
        heif_image_handle *handle = nullptr;
        ok = heif_context_encode_image(context, picture, encoder, options, &handle).code == heif_error_Ok;
        if (ok && !style.exif.isEmpty())
            ok = heif_context_add_exif_metadata(context, handle, style.exif.constData(),
                                                int(style.exif.size()))
                     .code == heif_error_Ok;
        if (ok && style.thumbnailSide > 0) {
            heif_image_handle *thumbnail = nullptr;
            ok = heif_context_encode_thumbnail(context, picture, handle, encoder, options,
                                               style.thumbnailSide, &thumbnail)
                     .code == heif_error_Ok;
            if (thumbnail)
                heif_image_handle_release(thumbnail);
        }
        if (handle)
            heif_image_handle_release(handle);
        // libheif reports success even when the file cannot be made (a missing folder): the
        // file itself says whether it was written.
        ok = ok &&
             heif_context_write_to_file(context, QFile::encodeName(path).constData()).code == heif_error_Ok &&
             QFileInfo(path).size() > 0;
    }
    if (options)
        heif_encoding_options_free(options);
    if (nclx)
        heif_nclx_color_profile_free(nclx);
    if (picture)
        heif_image_release(picture);
    if (encoder)
        heif_encoder_release(encoder);
    heif_context_free(context);
    return ok;
}

} // namespace

bool write(const QString &path, const QImage &image, int exifOrientation, bool withAlpha)
{
    return encode(path, image, exifOrientation, withAlpha, Style());
}

bool writePhoneLike(const QString &path, const QImage &image)
{
    Style style;
    style.quality = 90;
    style.preset = "ultrafast";
    style.thumbnailSide = 320;
    return encode(path, image, 1, false, style);
}

bool writeWithProfile(const QString &path, const QImage &image, const QByteArray &icc)
{
    Style style;
    style.icc = icc;
    return encode(path, image, 1, false, style);
}

bool writeWithNclx(const QString &path, const QImage &image, int primaries, int transfer)
{
    Style style;
    style.nclxPrimaries = primaries;
    style.nclxTransfer = transfer;
    return encode(path, image, 1, false, style);
}

bool writeWithExif(const QString &path, const QImage &image, const QByteArray &exif)
{
    Style style;
    style.exif = exif;
    return encode(path, image, 1, false, style);
}

} // namespace HeicWriter
