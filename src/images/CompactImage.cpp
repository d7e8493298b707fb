#include "images/CompactImage.h"

#include <QBuffer>

namespace {
constexpr int kQuality = 92;
}

CompactImage::CompactImage(const QImage &image)
{
    if (image.isNull())
        return;
    QBuffer buffer(&m_jpeg);
    buffer.open(QIODevice::WriteOnly);
    if (image.save(&buffer, "JPEG", kQuality))
        m_size = image.size();
    else
        m_jpeg.clear();
}

QImage CompactImage::image() const { return isNull() ? QImage() : QImage::fromData(m_jpeg, "JPEG"); }
