// Texts of captions: what they say, where and how, the row's mark, the batch dialog, lists
// and velora-pack.
#include "ui/AppStrings.h"

#include "preprocess/ImagePreprocess.h"

namespace Str {

QString captionKindName(CaptionKind kind)
{
    switch (kind) {
    case CaptionKind::DateTaken:
        return pick("拍摄日期", "Date taken");
    case CaptionKind::FileName:
        return pick("文件名", "File name");
    case CaptionKind::Custom:
        return pick("自定义文字", "Your own text");
    case CaptionKind::None:
    default:
        return pick("无文字", "No caption");
    }
}

QString captionCornerName(CaptionCorner corner)
{
    return corner == CaptionCorner::BottomLeft ? pick("左下角", "Bottom left")
                                               : pick("右下角", "Bottom right");
}

QString captionStyleName(CaptionStyle style)
{
    return style == CaptionStyle::Outline ? pick("描边白字", "White, outlined")
                                          : pick("黑底白字", "White on a black band");
}

QString captionDescription(const QString &kind, const QString &corner)
{
    return pick("%1，%2", "%1, %2").arg(kind, corner);
}

QString captionLabel() { return pick("文字：", "Caption:"); }
QString captionTextPlaceholder()
{
    return pick("输入要写在图片上的文字", "The text to write on the picture");
}
QString captionTip()
{
    return pick("写在画面一角的文字：拍摄日期、文件名或自定义文字。它按面板分辨率绘制，抖动后仍清晰可读。",
                "A text written in a corner of the frame: the date taken, the file name or your own text. It "
                "is drawn at the panel's resolution and stays legible after dithering.");
}
QString captionNoDateTip()
{
    return pick("这张图片没有拍摄日期（EXIF），不写文字",
                "This picture has no date taken (EXIF): no caption is drawn");
}
QString captionMarkTip(const QString &description, const QString &text)
{
    return pick("文字：%1 —“%2”", "Caption: %1 — \"%2\"").arg(description, text);
}

QString batchCaptionButton() { return pick("文字…", "Caption…"); }
QString batchCaptionTip() { return pick("为选中的图片设置文字", "Set the caption of the checked pictures"); }
QString batchCaptionTitle() { return pick("图片文字", "Caption"); }
QString batchCaptionHint(int count)
{
    return pick("为 %1 张选中的图片设置文字。拍摄日期和文件名按每张图片各自填写。",
                "Set the caption of %1 checked picture(s). The date taken and the file name are each "
                "picture's own.")
        .arg(count);
}
QString batchCaptionApplied(const QString &caption, int count)
{
    return pick("已为 %2 张图片设置文字：%1", "Caption set for %2 picture(s): %1").arg(caption).arg(count);
}

QString listBadCaption(int number, const QString &what)
{
    return pick("列表中第 %1 张图片的文字无效：%2。", "Picture %1 in the list has an invalid caption: %2.")
        .arg(number)
        .arg(what);
}
QString captionUnknownValue(const QString &field, const QString &value)
{
    return pick("未知的 %1“%2”", "unknown %1 \"%2\"").arg(field, value);
}

QString packOptionCaption()
{
    return pick("每张图片的文字：none、date（拍摄日期）或 "
                "name（文件名），写在右下角（默认：列表中各图片自己的文字，否则为 none）。",
                "Caption of every picture: none, date (the date taken) or name (the file name), bottom right "
                "(default: a list's own captions, otherwise none).");
}
QString packBadCaption(const QString &caption)
{
    return pick("未知的文字: %1（可用 none、date、name）", "Unknown caption: %1 (use none, date or name)")
        .arg(caption);
}

} // namespace Str
