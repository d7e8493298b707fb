#pragma once

#include <QImage>
#include <QList>
#include <QSize>

// A picture with its halvings (2 x 2 averages) down to a few hundred pixels, for renders at
// screen size that must keep up with the mouse: the level for a wanted size is the smallest
// one still at least that large, so a render never scales down by more than half. The
// halvings are made the first time one is asked for.
class ImagePyramid
{
public:
    ImagePyramid() = default;
    explicit ImagePyramid(const QImage &image);

    const QImage &full() const { return m_full; }
    // The smallest level at least wanted wide and high (the full picture when no level is).
    QImage levelFor(const QSizeF &wanted);

private:
    QImage m_full;
    QList<QImage> m_halvings; // largest first
    bool m_built = false;
};
