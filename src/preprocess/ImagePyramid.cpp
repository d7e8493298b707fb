#include "preprocess/ImagePyramid.h"

#include "images/ImageLoader.h"

namespace {
constexpr int kSmallestSide = 128;
}

ImagePyramid::ImagePyramid(const QImage &image)
    : m_full(image)
{
}

QImage ImagePyramid::levelFor(const QSizeF &wanted)
{
    if (!m_built) {
        m_built = true;
        QImage level = m_full;
        while (!level.isNull() && qMin(level.width(), level.height()) >= 2 * kSmallestSide) {
            level = ImageLoader::halved(level);
            m_halvings.append(level);
        }
    }
    for (auto it = m_halvings.crbegin(); it != m_halvings.crend(); ++it) {
        if (it->width() >= wanted.width() && it->height() >= wanted.height())
            return *it;
    }
    return m_full;
}
