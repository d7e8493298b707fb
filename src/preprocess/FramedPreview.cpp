// The framed thumbnail: the display preview inside an imitation wooden picture frame.
#include "preprocess/ImagePreprocess.h"

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>

QPixmap makeFramedPreviewPixmap(const QImage &image, const QSize &box)
{
    if (image.isNull() || box.width() < 0 || box.height() < 0)
        return QPixmap();
    const int m = std::max(box.width(), box.height());
    QSize outer;
    if (m > 0)
        outer = image.size().isValid() ? image.size().scaled(m, m, Qt::KeepAspectRatio) : QSize(m, m);
    return makeFramedPreviewPixmapExact(image, outer);
}

QPixmap makeFramedPreviewPixmapExact(const QImage &image, const QSize &outer)
{
    const QImage framed = makeFramedPreviewImageExact(image, outer);
    return framed.isNull() ? QPixmap() : QPixmap::fromImage(framed);
}

int framedPreviewBorder(const QSize &outer)
{
    const int shorter = std::min(outer.width(), outer.height());
    return shorter <= 49 ? 4 : shorter / 10;
}

QImage makeFramedPreviewImageExact(const QImage &image, const QSize &outer)
{
    if (image.isNull() || outer.width() <= 0 || outer.height() <= 0)
        return QImage();

    const int border = framedPreviewBorder(outer);

    // The opening: the picture fitted in, its margins in the colour of the picture's centre.
    const int innerWidth = std::max(1, outer.width() - 2 * border);
    const int innerHeight = std::max(1, outer.height() - 2 * border);
    const QImage fitted =
        image.scaled(innerWidth, innerHeight, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QImage opening(innerWidth, innerHeight, QImage::Format_RGB32);
    opening.fill(image.pixelColor(std::clamp(image.width() / 2, 0, image.width() - 1),
                                  std::clamp(image.height() / 2, 0, image.height() - 1)));
    {
        QPainter painter(&opening);
        painter.drawImage(QPoint((innerWidth - fitted.width()) / 2, (innerHeight - fitted.height()) / 2),
                          fitted);
    }

    const int outerWidth = innerWidth + 2 * border;
    const int outerHeight = innerHeight + 2 * border;
    QImage framed(outerWidth, outerHeight, QImage::Format_RGB32);
    framed.fill(QColor(90, 90, 90));
    {
        QPainter painter(&framed);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);

        QLinearGradient wood(0, 0, outerWidth, outerHeight);
        wood.setColorAt(0.0, QColor(210, 168, 102));
        wood.setColorAt(0.25, QColor(176, 126, 72));
        wood.setColorAt(0.55, QColor(148, 98, 52));
        wood.setColorAt(0.8, QColor(186, 140, 82));
        wood.setColorAt(1.0, QColor(118, 78, 42));
        painter.fillRect(framed.rect(), wood);

        const int highlight = border > 11 ? border / 4 : 2;
        painter.setPen(QPen(QColor(236, 204, 122), highlight, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(
            QRectF(highlight / 2.0, highlight / 2.0, outerWidth - highlight, outerHeight - highlight));

        painter.setPen(QPen(QColor(92, 62, 34), 1));
        painter.drawRect(QRect(border - 1, border - 1, innerWidth + 2, innerHeight + 2));

        painter.drawImage(QPoint(border, border), opening);

        painter.setPen(QPen(QColor(255, 230, 160, 90), 1));
        painter.drawLine(QPoint(border, border), QPoint(outerWidth - border, border));
        painter.drawLine(QPoint(border, border), QPoint(border, outerHeight - border));
    }

    if (framed.size() != outer)
        framed = framed.scaled(outer, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return framed;
}
