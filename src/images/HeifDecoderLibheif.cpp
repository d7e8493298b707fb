// Every platform but Windows: HEIC/HEIF through libheif. libheif applies the file's own
// rotation and mirroring while decoding; no EXIF orientation is applied on top.
#include "images/HeifDecoder.h"

#include "images/ImageLoader.h"

#include <QFile>
#include <QThread>

#include <libheif/heif.h>

#include <memory>

namespace {
struct ContextDeleter {
    void operator()(heif_context *context) const { heif_context_free(context); }
};
struct HandleDeleter {
    void operator()(heif_image_handle *handle) const { heif_image_handle_release(handle); }
};
struct ImageDeleter {
    void operator()(heif_image *image) const { heif_image_release(image); }
};

// The ICC profile the picture carries, else its nclx description, else nothing (sRGB).
ColourProfile colourOf(const heif_image_handle *handle)
{
    const size_t iccSize = heif_image_handle_get_raw_color_profile_size(handle);
    if (iccSize > 0 && iccSize <= size_t(4 * 1024 * 1024)) {
        QByteArray icc(qsizetype(iccSize), '\0');
        if (heif_image_handle_get_raw_color_profile(handle, icc.data()).code == heif_error_Ok)
            return ColourProfile::fromIcc(icc);
    }
    heif_color_profile_nclx *nclx = nullptr;
    if (heif_image_handle_get_nclx_color_profile(handle, &nclx).code != heif_error_Ok || !nclx)
        return ColourProfile();
    ColourProfile::Nclx description;
    description.primaries = int(nclx->color_primaries);
    description.transfer = int(nclx->transfer_characteristics);
    description.redX = nclx->color_primary_red_x;
    description.redY = nclx->color_primary_red_y;
    description.greenX = nclx->color_primary_green_x;
    description.greenY = nclx->color_primary_green_y;
    description.blueX = nclx->color_primary_blue_x;
    description.blueY = nclx->color_primary_blue_y;
    description.whiteX = nclx->color_primary_white_x;
    description.whiteY = nclx->color_primary_white_y;
    heif_nclx_color_profile_free(nclx);
    return ColourProfile::fromNclx(description);
}
} // namespace

QImage decodeHeif(const QString &path, ColourProfile *colour)
{
    std::unique_ptr<heif_context, ContextDeleter> context(heif_context_alloc());
    if (!context)
        return QImage();
    if (heif_context_read_from_file(context.get(), QFile::encodeName(path).constData(), nullptr).code !=
        heif_error_Ok)
        return QImage();
    // Pictures stored as a grid of tiles (as phones store them) decode their tiles in parallel.
    heif_context_set_max_decoding_threads(context.get(), QThread::idealThreadCount());

    heif_image_handle *rawHandle = nullptr;
    if (heif_context_get_primary_image_handle(context.get(), &rawHandle).code != heif_error_Ok)
        return QImage();
    std::unique_ptr<heif_image_handle, HandleDeleter> handle(rawHandle);

    // Refuse what the image readers would refuse: no hostile header exhausts memory here.
    const qint64 width = heif_image_handle_get_width(handle.get());
    const qint64 height = heif_image_handle_get_height(handle.get());
    if (width <= 0 || height <= 0 ||
        width * height * 4 > qint64(ImageLoader::kAllocationLimitMB) * 1024 * 1024)
        return QImage();

    heif_image *rawImage = nullptr;
    if (heif_decode_image(handle.get(), &rawImage, heif_colorspace_RGB, heif_chroma_interleaved_RGB, nullptr)
            .code != heif_error_Ok)
        return QImage();
    std::unique_ptr<heif_image, ImageDeleter> image(rawImage);

    int stride = 0;
    const uint8_t *pixels = heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
    const int decodedWidth = heif_image_get_width(image.get(), heif_channel_interleaved);
    const int decodedHeight = heif_image_get_height(image.get(), heif_channel_interleaved);
    if (!pixels || decodedWidth <= 0 || decodedHeight <= 0 || stride < decodedWidth * 3)
        return QImage();
    if (colour)
        *colour = colourOf(handle.get());
    const QImage view(pixels, decodedWidth, decodedHeight, stride, QImage::Format_RGB888);
    return view.convertToFormat(QImage::Format_RGB32); // deep copy: the view dies with `image`
}
