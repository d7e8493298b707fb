// Texts of the image list, the dialogs and file choosers, and the refusals.
#include "ui/AppStrings.h"

#include "ui/UiLanguage.h"

namespace Str {

// --- Image list ---

QString addImages() { return pick("添加图片", "Add Images"); }
QString addFolder() { return pick("添加文件夹", "Add Folder"); }
QString clearList() { return pick("清空", "Clear"); }
QString removeSelected() { return pick("移除所选", "Remove Selected"); }
QString includeSubfolders() { return pick("包含子文件夹", "Include subfolders"); }
QString includeSubfoldersTip()
{
    return pick("添加文件夹时递归扫描子文件夹", "Recursively scan subfolders when adding a folder");
}
QString importImagesTitle() { return pick("导入图片", "Import Images"); }
QString selectAll() { return pick("全选", "Select All"); }
QString selectAllTip()
{
    return pick("勾选或取消勾选所有行，用于批量操作", "Check or uncheck every row for batch actions");
}
QString batchLabel() { return pick("批量:", "Batch:"); }
QString batchProcessingTitle() { return pick("批量处理", "Batch Processing"); }
QString batchRotateTitle() { return pick("批量旋转", "Batch Rotate"); }
QString frameSettingsProgressTitle() { return pick("相框设置", "Frame Settings"); }
QString dragReorderTip()
{
    return pick("使用每行的 ↑↓ 按钮调整播放顺序", "Use the ↑↓ buttons on each row to change playback order");
}
QString moveRowUpTip() { return pick("上移", "Move up"); }
QString moveRowDownTip() { return pick("下移", "Move down"); }
QString logPlaceholder() { return pick("处理日志将显示在这里...", "Processing log will appear here..."); }
QString startProcessing() { return pick("▶  开始处理", "▶  Start Processing"); }
QString stopProcessing() { return pick("■  停止", "■  Stop"); }
QString thumbOriginalTip()
{
    return pick("原图缩略图（预处理后更新）", "Original thumbnail (updates after preprocessing)");
}
QString thumbPreprocTip() { return pick("预处理后的缩略图", "Preprocessed thumbnail"); }
QString imageCount(int count) { return pick("%1 张图片", "%1 image(s)").arg(count); }
QString importScanLabel(const QString &folder, int found)
{
    return pick("正在扫描文件夹…\n%1\n已找到: %2", "Scanning folder…\n%1\nFound: %2")
        .arg(folder, QString::number(found));
}
QString importAddLabel(int done, int total)
{
    return pick("正在添加图片…\n共: %1\n%2 / %3", "Adding images…\nTotal: %1\n%2 / %3")
        .arg(total)
        .arg(done)
        .arg(total);
}
QString batchApplyProgress(int done, int total)
{
    return pick("正在应用批量修改…\n%1 / %2", "Applying batch changes…\n%1 / %2").arg(done).arg(total);
}
QString frameSettingsProgress(int done, int total)
{
    return pick("正在应用相框设置…\n%1 / %2", "Applying frame settings…\n%1 / %2").arg(done).arg(total);
}
QString subdirTooltip(const QString &subfolder)
{
    return pick("子文件夹: %1", "Subfolder: %1").arg(subfolder);
}
QStringList tableHeadersLite()
{
    if (UiLanguage::isEnglish())
        return {QStringLiteral("Sel"), QStringLiteral("Ord"), QStringLiteral("Thumb"),
                QStringLiteral("Filename"), QStringLiteral("Status")};
    return {QStringLiteral("选"), QStringLiteral("序"), QStringLiteral("缩略图"), QStringLiteral("文件名"),
            QStringLiteral("状态")};
}
QStringList tableHeadersInternal()
{
    if (UiLanguage::isEnglish())
        return {QStringLiteral("Sel"),      QStringLiteral("Ord"),      QStringLiteral("Thumb"),
                QStringLiteral("Filename"), QStringLiteral("Strategy"), QStringLiteral("Enhancement mode"),
                QStringLiteral("Status")};
    return {QStringLiteral("选"),     QStringLiteral("序"),   QStringLiteral("缩略图"),
            QStringLiteral("文件名"), QStringLiteral("策略"), QStringLiteral("增强模式"),
            QStringLiteral("状态")};
}

// --- Dialog titles, choosers and filters ---

QString noticeTitle() { return pick("提示", "Notice"); }
QString confirmTitle() { return pick("确认", "Confirm"); }
QString settingsErrorTitle() { return pick("设置错误", "Settings Error"); }
QString selectProcessorExe() { return pick("选择处理器可执行文件", "Select processor executable"); }
QString selectWorkDir() { return pick("选择工作目录", "Select working directory"); }
QString selectOutputPath() { return pick("选择输出路径", "Select output path"); }
QString selectLutFile() { return pick("选择 LUT 文件", "Select LUT file"); }
QString selectAnalysisOutput() { return pick("设置分析输出文件", "Set analysis output file"); }
QString selectPlaylistSaveDir()
{
    return pick("选择 vl_play 的保存位置（将在该位置创建 vl_play 文件夹）",
                "Select save location for vl_play (vl_play folder will be created there)");
}
QString selectImages() { return pick("选择图片", "Select images"); }
QString selectImageFolder() { return pick("选择图片文件夹", "Select image folder"); }
QString imageFileFilter()
{
    return pick("图片 (*.jpg *.jpeg *.png *.bmp *.tif *.tiff *.webp *.heic *.heif);;所有文件 (*)",
                "Images (*.jpg *.jpeg *.png *.bmp *.tif *.tiff *.webp *.heic *.heif);;All files (*)");
}
QString exeFileFilter()
{
    return pick("可执行文件 (*.exe);;所有文件 (*)", "Executables (*.exe);;All files (*)");
}
QString lutFileFilter() { return pick("LUT 文件 (*.bin);;所有文件 (*)", "LUT files (*.bin);;All files (*)"); }
QString analysisFileFilter()
{
    return pick("CSV (*.csv);;JSON (*.json);;所有文件 (*)", "CSV (*.csv);;JSON (*.json);;All files (*)");
}
QString allFilesFilter() { return pick("所有文件 (*)", "All files (*)"); }

// --- Questions and refusals ---

QString confirmQuitWhileProcessing()
{
    return pick("正在处理图片，仍要退出吗？", "Images are being processed. Exit anyway?");
}
QString confirmReprocessAll()
{
    return pick("所有图片均已处理。要重置状态并重新处理吗？",
                "All images are done. Reset status and process again?");
}
QString addImagesFirst() { return pick("请先添加要处理的图片。", "Add images to process first."); }
QString setAnalysisOutputFirst()
{
    return pick("请先设置分析输出文件。", "Set the analysis output file first.");
}
QString setPlaylistSaveLocation()
{
    return pick("请设置播放列表保存位置。", "Set the playlist save location.");
}
QString setOutputPathFirst() { return pick("请先设置输出路径。", "Set the output path first."); }
QString lutNotFound(const QString &path)
{
    return pick("未找到 LUT 文件: %1", "LUT file not found: %1").arg(path);
}
QString stopBeforeClear()
{
    return pick("请先停止处理，再清空列表。", "Stop processing before clearing the list.");
}
QString stopBeforeRemove()
{
    return pick("请先停止处理，再移除项目。", "Stop processing before removing items.");
}
QString processingPlaylistBusy()
{
    return pick("正在处理中。请在处理完成后再创建播放列表。",
                "Processing in progress. Create the playlist when finished.");
}
QString enablePlaylistFirst() { return pick("请先启用播放列表生成。", "Enable playlist generation first."); }
QString analysisOnlyNoPlaylist()
{
    return pick("仅分析模式下无法创建播放列表。", "Cannot create a playlist in analysis-only mode.");
}
QString jpgOnlyNoBin()
{
    return pick("仅 JPG 预览模式不生成 BIN 文件，无法创建播放列表。",
                "JPG preview only mode produces no BIN files; a playlist cannot be created.");
}
QString noBinFiles()
{
    return pick("未找到 BIN 文件。请先完成处理，或关闭“仅 JPG 预览”。",
                "No BIN files found. Finish processing first, or disable JPG preview only.");
}
QString selectImagesForBatch()
{
    return pick("请先勾选要批量操作的图片。", "Select images to apply batch actions.");
}
QString customPanelSizeInvalid()
{
    return pick("自定义面板尺寸无效。请使用 宽x高 格式，如 1200x1600。",
                "Invalid custom panel size. Use WxH, e.g. 1200x1600.");
}
QString customPanelNoPlaylist()
{
    return pick("自定义面板类型无法生成 TF 播放列表。请选择 133 / 070 / 100 / 253 / 285。",
                "Custom panel type cannot build a TF playlist. Choose 133 / 070 / 100 / 253 / 285.");
}
QString panelInfoInvalid() { return pick("面板信息无效。", "Invalid panel info."); }
QString colourProfileWarning(const QString &name, bool damaged)
{
    return damaged ? pick("⚠ %1：颜色配置文件已损坏，图片按 sRGB 显示。",
                          "⚠ %1: its colour profile is damaged; the picture is shown as sRGB.")
                         .arg(name)
                   : pick("⚠ %1：无法使用其颜色配置文件，图片按 sRGB 显示。",
                          "⚠ %1: its colour profile cannot be used; the picture is shown as sRGB.")
                         .arg(name);
}

QString heicLoadFailed(const QString &path)
{
    return pick("无法读取 HEIC/HEIF 图片:\n%1\n\n请安装 Windows 的 HEIF 图像扩展，或先转换为 JPG/PNG。",
                "Cannot read HEIC/HEIF image:\n%1\n\n"
                "Install the Windows HEIF Image Extensions, or convert to JPG/PNG first.")
        .arg(path);
}
QString playlistTooManyFrames(int limit)
{
    return pick("播放列表最多支持 %1 帧。", "A playlist supports at most %1 frame(s).").arg(limit);
}
QString importSkippedPlaylistLimit(int skipped, int limit)
{
    return pick("已达到播放列表上限（%1 帧）；跳过 %2 张图片。",
                "Playlist limit (%1 frames) reached; skipped %2 image(s).")
        .arg(limit)
        .arg(skipped);
}

} // namespace Str
