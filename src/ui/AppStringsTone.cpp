// Texts of a picture's tone (the preview dialog, the batch bar, the row's mark, picture lists,
// velora-pack) and of the e-paper view at actual pixels.
#include "ui/AppStrings.h"

#include "preprocess/ImagePreprocess.h"

namespace Str {

QString tonePresetName(TonePreset preset)
{
    switch (preset) {
    case TonePreset::Balanced:
        return pick("均衡", "Balanced");
    case TonePreset::Vivid:
        return pick("鲜艳", "Vivid");
    case TonePreset::Soft:
        return pick("柔和", "Soft");
    case TonePreset::Monochrome:
        return pick("黑白", "Monochrome");
    case TonePreset::Neutral:
        break;
    }
    return pick("原色", "Neutral");
}

QString tonePresetTip(TonePreset preset)
{
    switch (preset) {
    case TonePreset::Balanced:
        return pick(
            "略微提亮，增加对比度和色彩：适合六色墨水屏上的大多数照片",
            "A little brighter, with more contrast and colour: suits most photos on a six-colour panel");
    case TonePreset::Vivid:
        return pick("浓郁的色彩和对比度，适合在墨水屏上显得平淡的图片",
                    "Strong colour and contrast, for pictures that look flat on the panel");
    case TonePreset::Soft:
        return pick("更亮更柔和，对比度较低：适合人像和明亮的场景",
                    "Brighter and gentler, with less contrast: for portraits and light scenes");
    case TonePreset::Monochrome:
        return pick("黑白，对比度略高", "Black and white, with a little more contrast");
    case TonePreset::Neutral:
        break;
    }
    return pick("图片本来的颜色", "The picture's own colours");
}

QString toneExposurePart(double ev) { return pick("曝光 %1", "exposure %1").arg(exposureValue(ev)); }
QString toneContrastPart(int percent) { return pick("对比度 %1", "contrast %1").arg(contrastValue(percent)); }
QString toneSaturationPart(int percent)
{
    return pick("饱和度 %1", "saturation %1").arg(saturationValue(percent));
}
QString listSeparator() { return pick("，", ", "); }
QString toneAdjustedName(const QString &preset) { return pick("%1（已调整）", "%1, adjusted").arg(preset); }
QString toneSuffix(const QString &name) { return pick(" + 色调%1", " + %1 tone").arg(name); }
QString toneMarkTip(const QString &description) { return pick("色调：%1", "Tone: %1").arg(description); }

QString toneCaption() { return pick("色调:", "Tone:"); }
QString exposureCaption() { return pick("曝光", "Exposure"); }
QString contrastCaption() { return pick("对比度", "Contrast"); }
QString saturationCaption() { return pick("饱和度", "Saturation"); }
QString exposureValue(double ev) { return QString::asprintf("%+.1f EV", ev); }
QString contrastValue(int percent) { return QString::asprintf("%+d", percent); }
QString saturationValue(int percent) { return QStringLiteral("%1%").arg(percent); }
QString exposureTip()
{
    return pick("在预设之上提亮或压暗，单位为档（EV），超出白色的部分被截断",
                "Brighter or darker than the preset, in stops (EV); what goes past white is clipped");
}
QString contrastTip()
{
    return pick("S 形曲线的强度：向右更强，向左更平；黑、中灰和白保持不变",
                "The strength of an S-curve: stronger to the right, flatter to the left; black, mid grey and "
                "white stay");
}
QString saturationTip()
{
    return pick("在预设之上的色彩浓度：0% 为灰度，200% 为两倍",
                "Colour on top of the preset: 0% is grey, 200% double");
}
QString resetTone() { return pick("重置色调", "Reset tone"); }
QString resetToneTip() { return pick("恢复原色，不做任何调整", "Back to Neutral, with nothing adjusted"); }
QString toneBefore() { return pick("调整前", "Before"); }
QString toneBeforeTip()
{
    return pick("显示未调整色调的图片以便对比（快捷键 \\）",
                "Show the picture without its tone, to compare (shortcut \\)");
}

QString batchToneButton() { return pick("色调…", "Tone…"); }
QString batchToneTip()
{
    return pick("为勾选的图片设置色调；构图和填充方式保持不变",
                "Set the tone of the checked pictures; their framing and fill stay as they are");
}
QString batchToneTitle() { return pick("批量色调", "Batch Tone"); }
QString batchToneHint(int count)
{
    return pick("此色调将用于勾选的 %1 张图片。", "This tone goes to the %1 checked picture(s).").arg(count);
}
QString batchToneApplied(const QString &tone, int count)
{
    return pick("  已对 %2 张图片应用批量色调“%1”", "  Batch tone \"%1\" applied to %2 image(s)")
        .arg(tone)
        .arg(count);
}

QString actualPixels() { return pick("实际像素", "Actual pixels"); }
QString actualPixelsTip()
{
    return pick("一个面板像素对应一个屏幕像素，以便看清抖动；拖动可平移（快捷键 Z）",
                "One panel pixel on one screen pixel, to see the dither; drag to pan (shortcut Z)");
}
QString showAsEpaperTip()
{
    return pick("在同一位置对比普通画面与电子纸效果（快捷键 E）",
                "Compare the plain picture and the e-paper look at the same place (shortcut E)");
}
QString previewRendering() { return pick("正在渲染…", "Rendering…"); }

QString listBadTone(int number, const QString &what)
{
    return pick("列表中第 %1 张图片的色调无效：%2。", "Picture %1 in the list has an invalid tone: %2.")
        .arg(number)
        .arg(what);
}
QString toneUnknownPreset(const QString &key)
{
    return pick("未知的预设“%1”", "unknown preset \"%1\"").arg(key);
}
QString toneOutOfRange(const QString &field, const QString &value, double low, double high)
{
    return pick("%1 为 %2，超出 %3 … %4", "%1 %2 is outside %3 … %4")
        .arg(field, value.isEmpty() ? QStringLiteral("?") : value, QString::number(low),
             QString::number(high));
}

QString packOptionTone()
{
    return pick("每张图片的色调预设（默认：列表中各图片自己的色调，否则为 neutral）。",
                "Tone preset of every picture (default: a list's own tones, otherwise neutral).");
}
QString packBadTone(const QString &tone)
{
    return pick("未知的色调: %1（可用 neutral、balanced、vivid、soft、monochrome）",
                "Unknown tone: %1 (use neutral, balanced, vivid, soft or monochrome)")
        .arg(tone);
}

} // namespace Str
