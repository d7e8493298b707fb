// Texts of the preprocessing controls, the preview dialog and the image editor.
#include "ui/AppStrings.h"

#include "preprocess/ImagePreprocess.h"

namespace Str {

QString fillModeLabel(FillMode mode)
{
    switch (mode) {
    case FillMode::Direct:
        return pick("TARN 直出", "TARN direct");
    case FillMode::WhiteFill:
        return pick("白色填充", "White fill");
    case FillMode::BlackFill:
        return pick("黑色填充", "Black fill");
    case FillMode::CenterCrop:
        return pick("居中裁剪", "Center crop");
    case FillMode::BlurFill:
        break;
    }
    return pick("模糊填充", "Blur fill"); // also for values outside the enumeration
}

QString fillModeButtonText(FillMode mode)
{
    switch (mode) {
    case FillMode::Direct:
        return QStringLiteral("TARN");
    case FillMode::WhiteFill:
        return pick("白底", "White");
    case FillMode::BlackFill:
        return pick("黑底", "Black");
    case FillMode::CenterCrop:
        return pick("裁剪", "Crop");
    case FillMode::BlurFill:
        break;
    }
    return pick("模糊", "Blur");
}

QString fillModeToolTip(FillMode mode)
{
    switch (mode) {
    case FillMode::Direct:
        return pick("不做预处理，直接发送给 TARN", "No preprocessing; send directly to TARN");
    case FillMode::BlurFill:
        return pick("按需旋转后，模糊背景并居中前景",
                    "Rotate if needed, then blur background with centered foreground");
    case FillMode::WhiteFill:
        return pick("按需旋转后，白色背景并居中前景",
                    "Rotate if needed, then white background with centered foreground");
    case FillMode::BlackFill:
        return pick("按需旋转后，黑色背景并居中前景",
                    "Rotate if needed, then black background with centered foreground");
    case FillMode::CenterCrop:
        return pick("按需旋转后，缩放并居中裁剪", "Rotate if needed, then scale and center crop");
    }
    return QString();
}

QString formatPreprocStateLabel(FillMode mode, int rotationDegrees)
{
    if (mode == FillMode::Direct)
        return Str::fillModeLabel(FillMode::Direct); // direct never rotates, whatever the state says
    QString label = Str::fillModeLabel(mode);
    if (rotationDegrees != 0)
        label += pick(" + 旋转 %1°", " + Rotate %1°").arg(rotationDegrees);
    return label;
}

QString fillCropCaption() { return pick("填充/裁剪", "Fill / crop"); }
QString fillCropCaptionInline() { return pick("填充/裁剪:", "Fill / crop:"); }
QString rotateCaption() { return pick("旋转", "Rotate"); }
QString rotateCaptionInline() { return pick("旋转:", "Rotate:"); }
QString rotateLeft() { return pick("向左旋转", "Rotate left"); }
QString rotateRight() { return pick("向右旋转", "Rotate right"); }
QString rotateLeftTip()
{
    return pick("逆时针旋转 90°（可多次点击）", "Rotate 90° counter-clockwise (click to add)");
}
QString rotateRightTip()
{
    return pick("顺时针旋转 90°（可多次点击）", "Rotate 90° clockwise (click to add)");
}
QString rotationCurrent(int degrees) { return pick("当前 %1°", "Current %1°").arg(degrees); }
QString batchRotateLeft() { return pick("向左", "left"); }
QString batchRotateRight() { return pick("向右", "right"); }
QString batchFillApplied(const QString &modeLabel, int count)
{
    return pick("  批量填充/裁剪 \"%1\" 已应用到 %2 张图片",
                "  Batch fill/crop \"%1\" applied to %2 image(s)")
        .arg(modeLabel, QString::number(count));
}
QString batchRotateApplied(const QString &direction, int count)
{
    return pick("  批量旋转 90° %1：%2 张图片", "  Batch rotate 90° %1: %2 image(s)")
        .arg(direction, QString::number(count));
}
QString clickPreviewTip() { return pick("点击放大 / 切换效果", "Click to zoom / switch effect"); }
QString preprocPreviewTip()
{
    return pick("相框中的显示效果预览", "Preview of the picture as the frame will show it");
}
QString previewDialogTitle() { return pick("图片预览与编辑", "Image Preview & Edit"); }
QString previewDialogHint()
{
    return pick("请先设置旋转，再选择填充/裁剪。确认后应用到当前行。",
                "Set rotation first, then fill/crop. Applied to the current row on confirm.");
}
QString previewCannotLoad() { return pick("无法加载预览", "Cannot load preview"); }
QString previewLandscapeFrameHint()
{
    return pick("（横向相框；导出时顺时针旋转 90°）", " (landscape frame; rotates 90° CW on export)");
}
QString previewInfo(const QString &stateLabel, const QString &resolution, const QString &suffix)
{
    return pick("当前: %1 — 预览 %2%3（先旋转，再填充/裁剪）",
                "Current: %1 — preview %2%3 (rotate, then fill/crop)")
        .arg(stateLabel, resolution, suffix);
}
QString previewInfoLine(const QString &stateLabel, const QString &resolution, bool landscape)
{
    return previewInfo(stateLabel, resolution, landscape ? previewLandscapeFrameHint() : QString());
}
QString cancel() { return pick("取消", "Cancel"); }
QString confirm() { return pick("确定", "OK"); }

QString zoomSuffix(int percent) { return pick(" + 缩放 %1%", " + Zoom %1%").arg(percent); }
QString zoomCaption() { return pick("缩放:", "Zoom:"); }
QString zoomPercent(int percent) { return QStringLiteral("%1%").arg(percent); }
QString resetFraming() { return pick("重置构图", "Reset framing"); }
QString resetFramingTip()
{
    return pick("图片回到居中并恢复 100% 缩放", "Centre the picture and zoom back to 100%");
}
QString framingTip()
{
    return pick("拖动可移动图片，滚轮或滑块可缩放，方向键可微调",
                "Drag to move the picture, scroll or use the slider to zoom, arrow keys to nudge");
}
QString showAsEpaper() { return pick("以电子纸效果显示", "Show as e-paper"); }
QString epaperNote()
{
    return pick("六色墨水屏效果的近似模拟，实际画面由处理程序生成。",
                "An approximation of a six-colour panel; the processor makes the real frames.");
}
QString lowResolutionWarning(const QString &pictureSize, double enlargement)
{
    return pick("此画框分辨率偏低：%1 需放大 %2 倍", "Low resolution for this frame: %1 is enlarged %2×")
        .arg(pictureSize, QString::number(enlargement, 'f', 1));
}

QString cropDialogTitle() { return pick("图片编辑器", "Image Editor"); }
QString cropDialogIntro()
{
    return pick("拖动选框选择要显示的区域，然后点击“应用裁剪”。",
                "Drag the selection to choose the part to show, then click \"Apply crop\".");
}
QString cropLandscapeMode() { return pick("横向裁剪", "Landscape crop"); }
QString cropFillMode() { return pick("填充方式:", "Fill mode:"); }
QString cropStandard() { return pick("标准裁剪", "Standard crop"); }
QString cropBlurFlex() { return pick("灵活模糊", "Flexible blur"); }
QString cropReset() { return pick("重置选区", "Reset selection"); }
QString cropConfirm() { return pick("应用裁剪", "Apply crop"); }
QString cropCannotLoad() { return pick("无法加载图片", "Cannot load image"); }
QString cropMoveBoxToImage() { return pick("请把选框移到图片上", "Move the selection onto the image"); }
QString cropDragPanHint() { return pick("拖动图片可平移", "Drag the picture to pan"); }
QString cropBlurWheelHint()
{
    return pick("滚动鼠标滚轮缩放前景，背景自动模糊填充",
                "Turn the mouse wheel to zoom the foreground; the background is blur-filled");
}
QString cropLandscapeHint()
{
    return pick("横向相框：选区按横向比例，导出时顺时针旋转 90°",
                "Landscape frame: the selection is landscape and turns 90° clockwise on export");
}
QString cropPortraitHint()
{
    return pick("竖向相框：选区按竖向比例", "Portrait frame: the selection is portrait");
}

} // namespace Str
