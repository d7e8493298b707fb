#include "preprocess/Caption.h"

#include "preprocess/CaptionFontFiles.h"
#include "ui/AppStrings.h"

#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace Caption {

namespace {

constexpr double kPadShare = 0.45;     // of the text's height, around it on the band
constexpr double kMarginShare = 0.6;   // of the text's height, from the picture's edges
constexpr double kOutlineShare = 0.16; // of the text's height: the outline's width
constexpr double kMaxWidthShare = 0.9; // of the picture's width; longer texts are cut short

// The family of the first font file that the system has and that loads.
QString loadedFamily()
{
    static const QString family = [] {
        for (const std::string &file : CaptionFontFiles::candidates()) {
            const QString path = QString::fromStdString(file);
            if (!QFile::exists(path))
                continue;
            const int id = QFontDatabase::addApplicationFont(path);
            const QStringList families = id >= 0 ? QFontDatabase::applicationFontFamilies(id) : QStringList();
            if (!families.isEmpty())
                return families.first();
        }
        return QString(); // the default font, which may lack Chinese characters
    }();
    return family;
}

int pixelsFor(int height) { return qMax(kMinPixels, int(std::lround(height * kHeightShare))); }

struct Layout {
    QFont font;
    QString text;
    QRectF box;       // the band, or the text's box with its outline
    QPointF baseline; // where the text starts
};

std::optional<Layout> layoutFor(const QSize &size, const CaptionSettings &caption)
{
    if (caption.kind == CaptionKind::None || caption.shown.trimmed().isEmpty() || size.isEmpty())
        return std::nullopt;
    const int pixels = pixelsFor(size.height());
    Layout layout{font(pixels), QString(), QRectF(), QPointF()};
    const QFontMetricsF metrics(layout.font);
    const double pad = caption.style == CaptionStyle::Band ? pixels * kPadShare : pixels * kOutlineShare;
    const double margin = pixels * kMarginShare;
    layout.text = metrics.elidedText(caption.shown.simplified(), Qt::ElideRight,
                                     size.width() * kMaxWidthShare - 2 * pad);
    const double width = metrics.horizontalAdvance(layout.text) + 2 * pad;
    const double height = metrics.ascent() + metrics.descent() + 2 * pad;
    const double x = caption.corner == CaptionCorner::BottomLeft ? margin : size.width() - margin - width;
    layout.box = QRectF(x, size.height() - margin - height, width, height);
    layout.baseline = QPointF(x + pad, layout.box.top() + pad + metrics.ascent());
    return layout;
}

} // namespace

CaptionSettings resolved(CaptionSettings caption, const QString &path, const QDateTime &dateTaken)
{
    switch (caption.kind) {
    case CaptionKind::DateTaken:
        caption.shown = dateText(dateTaken);
        break;
    case CaptionKind::FileName:
        caption.shown = QFileInfo(path).completeBaseName();
        break;
    case CaptionKind::Custom:
        caption.shown = caption.custom.simplified();
        break;
    case CaptionKind::None:
    default:
        caption.shown.clear();
        break;
    }
    return caption;
}

QString dateText(const QDateTime &dateTaken)
{
    return dateTaken.isValid() ? QLocale::system().toString(dateTaken.date(), QLocale::ShortFormat)
                               : QString();
}

void draw(QImage &image, const CaptionSettings &caption)
{
    const std::optional<Layout> layout = layoutFor(image.size(), caption);
    if (!layout)
        return;
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    QPainterPath text;
    text.addText(layout->baseline, layout->font, layout->text);
    if (caption.style == CaptionStyle::Band) {
        painter.fillRect(layout->box, Qt::black);
    } else {
        const double width = layout->font.pixelSize() * kOutlineShare * 2; // half of it is inside
        painter.strokePath(text, QPen(Qt::black, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
    painter.fillPath(text, Qt::white);
}

QRect area(const QSize &size, const CaptionSettings &caption)
{
    const std::optional<Layout> layout = layoutFor(size, caption);
    return layout ? layout->box.toAlignedRect() & QRect(QPoint(0, 0), size) : QRect();
}

QFont font(int pixelSize)
{
    QFont font;
    const QString family = loadedFamily();
    if (!family.isEmpty())
        font.setFamily(family);
    font.setPixelSize(qMax(1, pixelSize));
    font.setBold(true);
    font.setStyleStrategy(QFont::PreferAntialias);
    return font;
}

QList<CaptionKind> kinds()
{
    return {CaptionKind::None, CaptionKind::DateTaken, CaptionKind::FileName, CaptionKind::Custom};
}

namespace {
template <typename Enum> struct Named {
    Enum value;
    const char *key;
};
constexpr Named<CaptionKind> kKindKeys[] = {{CaptionKind::None, "none"},
                                            {CaptionKind::DateTaken, "date"},
                                            {CaptionKind::FileName, "name"},
                                            {CaptionKind::Custom, "text"}};
constexpr Named<CaptionCorner> kCornerKeys[] = {{CaptionCorner::BottomLeft, "bottom-left"},
                                                {CaptionCorner::BottomRight, "bottom-right"}};
constexpr Named<CaptionStyle> kStyleKeys[] = {{CaptionStyle::Band, "band"},
                                              {CaptionStyle::Outline, "outline"}};

template <typename Enum, size_t N> QString keyOf(const Named<Enum> (&names)[N], Enum value)
{
    for (const Named<Enum> &name : names)
        if (name.value == value)
            return QLatin1String(name.key);
    return QLatin1String(names[0].key);
}

template <typename Enum, size_t N>
std::optional<Enum> fromKey(const Named<Enum> (&names)[N], const QString &key)
{
    for (const Named<Enum> &name : names)
        if (key.trimmed().compare(QLatin1String(name.key), Qt::CaseInsensitive) == 0)
            return name.value;
    return std::nullopt;
}
} // namespace

QString kindKey(CaptionKind kind) { return keyOf(kKindKeys, kind); }
std::optional<CaptionKind> kindFromKey(const QString &key) { return fromKey(kKindKeys, key); }
QString cornerKey(CaptionCorner corner) { return keyOf(kCornerKeys, corner); }
std::optional<CaptionCorner> cornerFromKey(const QString &key) { return fromKey(kCornerKeys, key); }
QString styleKey(CaptionStyle style) { return keyOf(kStyleKeys, style); }
std::optional<CaptionStyle> styleFromKey(const QString &key) { return fromKey(kStyleKeys, key); }

QString description(const CaptionSettings &caption)
{
    if (caption.kind == CaptionKind::None)
        return Str::captionKindName(CaptionKind::None);
    return Str::captionDescription(Str::captionKindName(caption.kind),
                                   Str::captionCornerName(caption.corner));
}

} // namespace Caption
