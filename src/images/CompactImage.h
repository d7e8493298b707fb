#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

// A small picture kept compactly in memory: its JPEG encoding (ImageLoader::writeJpeg, about
// a tenth of its pixels' size), decoded again when it is needed. For the thumbnail sources of the rows,
// a thousand of which are held at once. Copies share the bytes; both directions are safe on
// any thread. A null image stays null.
class CompactImage
{
public:
    CompactImage() = default;
    explicit CompactImage(const QImage &image);

    bool isNull() const { return m_jpeg.isEmpty(); }
    QSize size() const { return m_size; }
    qsizetype byteCount() const { return m_jpeg.size(); }
    QImage image() const;
    // Whether other holds these very bytes (a copy of this, not an equal picture made anew).
    bool sameAs(const CompactImage &other) const
    {
        return m_jpeg.constData() == other.m_jpeg.constData() && m_size == other.m_size;
    }

private:
    QByteArray m_jpeg;
    QSize m_size;
};
