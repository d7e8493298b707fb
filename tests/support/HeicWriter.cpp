#include "HeicWriter.h"

#include <QFile>

#include <libheif/heif.h>

#include <cstring>

namespace HeicWriter {

bool write(const QString &path, const QImage &source, int exifOrientation, bool withAlpha)
{
    const QImage image = source.convertToFormat(withAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    heif_context *context = heif_context_alloc();
    heif_encoder *encoder = nullptr;
    heif_image *picture = nullptr;
    heif_encoding_options *options = nullptr;
    bool ok =
        heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder).code == heif_error_Ok;
    ok = ok && heif_encoder_set_lossy_quality(encoder, 95).code == heif_error_Ok;
    ok = ok &&
         heif_image_create(image.width(), image.height(), heif_colorspace_RGB,
                           withAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, &picture)
                 .code == heif_error_Ok;
    ok = ok &&
         heif_image_add_plane(picture, heif_channel_interleaved, image.width(), image.height(), 8).code ==
             heif_error_Ok;
    if (ok) {
        int stride = 0;
        uint8_t *plane = heif_image_get_plane(picture, heif_channel_interleaved, &stride);
        const int rowBytes = image.width() * (withAlpha ? 4 : 3);
        for (int y = 0; y < image.height(); ++y)
            std::memcpy(plane + qsizetype(y) * stride, image.constScanLine(y), size_t(rowBytes));
        options = heif_encoding_options_alloc();
        options->image_orientation = static_cast<heif_orientation>(exifOrientation);
        ok = heif_context_encode_image(context, picture, encoder, options, nullptr).code == heif_error_Ok;
        ok = ok &&
             heif_context_write_to_file(context, QFile::encodeName(path).constData()).code == heif_error_Ok;
    }
    if (options)
        heif_encoding_options_free(options);
    if (picture)
        heif_image_release(picture);
    if (encoder)
        heif_encoder_release(encoder);
    heif_context_free(context);
    return ok;
}

} // namespace HeicWriter
