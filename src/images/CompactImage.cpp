#include "images/CompactImage.h"

#include "images/ImageLoader.h"

#include <QBuffer>

CompactImage::CompactImage(const QImage &image)
{
    if (image.isNull())
        return;
    QBuffer buffer(&m_jpeg);
    buffer.open(QIODevice::WriteOnly);
    if (ImageLoader::writeJpeg(image, &buffer))
        m_size = image.size();
    else
        m_jpeg.clear();
}

QImage CompactImage::image() const { return isNull() ? QImage() : QImage::fromData(m_jpeg, "JPEG"); }
