// The catalogue's core (pick) and the texts of the window frame: application, menus, the
// three steps, the device fields and the playlist settings.
#include "ui/AppStrings.h"

#include "ui/UiLanguage.h"
#include "ui/UserGuide.h"

#include <QCoreApplication>

namespace Str {

QString pick(const char *zh, const char *en)
{
    const char *chosen = UiLanguage::isEnglish() ? en : zh;
    return chosen ? QString::fromUtf8(chosen) : QString();
}

QString pickQ(const QString &zh, const QString &en) { return UiLanguage::isEnglish() ? en : zh; }

// --- Application and menus ---

QString appDisplayName() { return pick("Velora 离线工具", "Velora Offline Tool"); }

QString appVersionString()
{
    QString version = QCoreApplication::applicationVersion();
    if (version.isEmpty())
        version = QStringLiteral("1.0.3");
    return version + QStringLiteral(" beta");
}

QString windowTitle() { return QStringLiteral("%1  v%2").arg(appDisplayName(), appVersionString()); }

QString menuFile() { return pick("文件(&F)", "File(&F)"); }
QString menuHelp() { return pick("帮助(&H)", "Help(&H)"); }
QString menuLanguage() { return pick("语言(&L)", "Language(&L)"); }
QString actionOpenImages() { return pick("打开图片(&O)...", "Open Images(&O)..."); }
QString actionOpenFolder() { return pick("打开文件夹(&D)...", "Open Folder(&D)..."); }
QString actionReloadConfig() { return pick("重新加载配置(&R)", "Reload Config(&R)"); }
QString actionCreatePlaylist() { return pick("生成播放列表(&P)...", "Create Playlist(&P)..."); }
QString actionClearList() { return pick("清空列表(&C)", "Clear List(&C)"); }
QString actionQuit() { return pick("退出(&Q)", "Exit(&Q)"); }
QString actionAbout() { return pick("关于(&A)", "About(&A)"); }
QString actionViewLog() { return pick("查看日志(&L)", "View Log(&L)"); }
QString actionLangChinese() { return pick("中文", "Chinese"); }
QString actionLangEnglish() { return QStringLiteral("English"); }
QString aboutTitle() { return pick("关于 ", "About ") + appDisplayName(); }

QString offlineGuideLinkHtml()
{
    // The guide installed with the program, opened as a local file: it works offline, too.
    return QStringLiteral("<a href=\"%1\">%2</a>")
        .arg(UserGuide::url().toString(QUrl::FullyEncoded).toHtmlEscaped(),
             userGuideLinkText().toHtmlEscaped());
}

QString aboutHtml()
{
    const QString heading =
        QStringLiteral("<p><b>%1 v%2</b></p>").arg(appDisplayName().toHtmlEscaped(), appVersionString());
    const QString body =
        pick("<p>为您的相框制作专属的 TF 卡离线播放内容。<b>全程离线工作。</b> %1</p>"
             "<p><b>使用方法：</b></p>"
             "<ol>"
             "<li>导入设备密钥文件，并设置竖屏或横屏方向</li>"
             "<li>添加要展示的图片，并按需调整</li>"
             "<li>设置 TF 卡播放参数和输出文件夹位置</li>"
             "<li>点击<b>“开始处理”</b></li>"
             "</ol>"
             "<p>处理完成后，将 vl_play 文件夹复制到 TF 卡根目录，再把卡插入相框即可播放。</p>",
             "<p>Creates dedicated offline TF card playback content for your frame. "
             "<b>Works fully offline.</b> %1</p>"
             "<p><b>How to use:</b></p>"
             "<ol>"
             "<li>Import the device key file and set portrait or landscape orientation</li>"
             "<li>Add the images you want to display and adjust them as needed</li>"
             "<li>Configure TF card playback settings and the output folder location</li>"
             "<li>Click <b>\"Start Processing\"</b></li>"
             "</ol>"
             "<p>When processing is done, copy the vl_play folder to the root of the TF card "
             "and insert the card into the frame to play.</p>");
    return heading + body.arg(offlineGuideLinkHtml());
}

// --- Steps and groups ---

QString workflowIntro()
{
    return pick("选择您的相框，为它制作专属的 TF 卡播放包",
                "Choose your frame and create a dedicated TF card playback package for it");
}
QString stepSelectDevice() { return pick("第 1 步：选择设备", "Step 1: Select Device"); }
QString stepAddImages() { return pick("第 2 步：添加图片", "Step 2: Add Images"); }
QString stepCreatePlayback() { return pick("第 3 步：生成播放文件", "Step 3: Create Playback File"); }
QString logSection() { return pick("日志", "Log"); }
QString groupProcessingSettings() { return pick("处理设置", "Processing Settings"); }
QString groupDeviceSettings() { return pick("设备设置", "Device Settings"); }
QString groupGlobalSettings() { return pick("全局设置", "Global Settings"); }
QString groupPlaylist() { return pick("播放列表 (vl_play)", "Playlist (vl_play)"); }

// --- Device and processor fields ---
// Chinese labels end in an ASCII colon: the re-labelling pass matches "方向:" and "批量:".

QString browseButton() { return pick("浏览...", "Browse..."); }
QString keyFileLabel() { return pick("密钥文件:", "Key file:"); }
QString importKeyButton() { return pick("导入密钥...", "Import Key..."); }
QString selectKeyFile() { return pick("选择密钥文件", "Select key file"); }
QString keyFileComboText(const QString &panelCode, const QString &detail)
{
    return QStringLiteral("%1 · %2").arg(panelCode, detail);
}
QString processorVariant() { return pick("处理器版本:", "Processor variant:"); }
QString processorVariantTip()
{
    return pick("在 tarngui_internal.json 中配置处理器路径和参数",
                "Configure processor paths and parameters in tarngui_internal.json");
}
QString workDir() { return pick("工作目录:", "Working directory:"); }
QString executable() { return pick("可执行文件:", "Executable:"); }
QString outputPath() { return pick("输出路径:", "Output path:"); }
QString lutFile() { return pick("LUT 文件:", "LUT file:"); }
QString panelType() { return pick("面板类型:", "Panel type:"); }
QString frameModel() { return pick("相框型号:", "Frame model:"); }
QString frameOrientation() { return pick("相框方向:", "Frame orientation:"); }
QString screenOrientation() { return pick("屏幕方向:", "Screen orientation:"); }
QString orientation() { return pick("方向:", "Orientation:"); }
QString customSize() { return pick("自定义尺寸:", "Custom size:"); }
QString customSizePlaceholder() { return pick("宽x高, 如 1200x825", "WxH, e.g. 1200x825"); }
QString portraitOrientation() { return pick("竖屏 (0)", "Portrait (0)"); }
QString landscapeOrientation() { return pick("横屏 (90)", "Landscape (90)"); }
QString enhanceStrategy() { return pick("增强策略:", "Enhancement strategy:"); }
QString enhanceMode() { return pick("增强模式:", "Enhancement mode:"); }
QString jpgOnly() { return pick("仅 JPG 预览", "JPG preview only"); }
QString jpgOnlyTip()
{
    return pick("只输出预处理后的 JPG 预览，不生成 BIN 文件",
                "Write only the preprocessed JPG previews; no BIN files are produced");
}
QString disableAnalysis() { return pick("禁用分析", "Disable analysis"); }
QString disableAnalysisTip()
{
    return pick("跳过图像分析，使用固定参数处理",
                "Skip the image analysis and process with fixed parameters");
}
QString disableCrop() { return pick("禁用裁剪", "Disable crop"); }
QString disableCropTip()
{
    return pick("保留整张图片，处理器不做裁剪", "Keep the whole picture; the processor does not crop");
}
QString analysisOnly() { return pick("仅分析", "Analysis only"); }
QString analysisOnlyTip()
{
    return pick("只分析图片并写出分析结果，不生成 BIN 文件",
                "Only analyse the images and write the results; no BIN files are produced");
}
QString analysisOutputFile() { return pick("分析输出:", "Analysis output:"); }
QString formatLabel() { return pick("格式:", "Format:"); }
QString variantDefault() { return pick("默认", "Default"); }
QString panelResolutionUnset() { return pick("未设置", "Not set"); }
QString panelResolutionSize(int width, int height)
{
    return QStringLiteral("%1 × %2").arg(width).arg(height);
}
QString globalDefaultStrategy() { return pick("— 全局默认 —", "— Global default —"); }

QStringList strategyDirect()
{
    // Strategy identifiers are the processor's own words and are not translated.
    return {QStringLiteral("auto"), QStringLiteral("photo"), QStringLiteral("illustration"),
            QStringLiteral("manual-mode")};
}

QStringList strategyWithGlobal() { return QStringList{globalDefaultStrategy()} + strategyDirect(); }

QStringList modeList()
{
    if (UiLanguage::isEnglish())
        return {QStringLiteral("Soft"), QStringLiteral("Standard"), QStringLiteral("Vivid")};
    return {QStringLiteral("柔和"), QStringLiteral("标准"), QStringLiteral("鲜艳")};
}

// --- Playlist settings ---

QString playlistAutoHint()
{
    return pick("处理完成后自动生成播放列表", "The playlist is created automatically after processing");
}
QString playlistEnable() { return pick("生成播放列表", "Generate playlist"); }
QString playlistEnableTip()
{
    return pick("处理完成后，把帧文件和 playlist.json 写入 vl_play 文件夹",
                "After processing, write the frame files and playlist.json into the vl_play folder");
}
QString slideshowInterval() { return pick("轮播间隔:", "Slideshow interval:"); }
QString spinMinutesSuffix() { return pick(" 分钟", " min"); }
QString slideshowIntervalTip()
{
    return pick("固定间隔轮播；在 playlist.json 中以分钟保存（3–50000 分钟）",
                "Fixed interval slideshow; stored as minutes in playlist.json (3–50000 min)");
}
QString intervalUnitDays() { return pick("天", "d"); }
QString intervalUnitHours() { return pick("小时", "h"); }
QString intervalUnitMinutes() { return pick("分钟", "min"); }
QString loopPlayback() { return pick("循环播放", "Loop playback"); }
QString loopPlaybackTip()
{
    return pick("对应 playlist.json 中的 play.loop", "Maps to play.loop in playlist.json");
}
QString processorsAtOnce() { return pick("同时运行的处理器:", "Processors at once:"); }
QString processorsAtOnceTip()
{
    return pick("同时处理几张图片，每张由各自的处理器处理；多核电脑上更快。\n"
                "若设为大于 1 后有图片处理失败，请改回 1。",
                "How many pictures are processed side by side, each by a processor of its own; faster on a "
                "computer with several cores.\nIf pictures fail with more than 1, go back to 1.");
}
QString saveLocation() { return pick("保存位置:", "Save location:"); }
QString playlistDirPlaceholderLite()
{
    return pick("必填：选择保存位置，将在该位置创建 vl_play 文件夹",
                "Required: choose save location; vl_play folder will be created there");
}
QString playlistDirPlaceholderInternal()
{
    return pick("留空则使用输出路径；将在该位置创建 vl_play 文件夹",
                "Leave empty to use Output path; vl_play folder will be created there");
}
QString playlistHintLite()
{
    return pick("处理完成后，将 vl_play 文件夹复制到 TF 卡根目录即可播放",
                "When processing is done, copy the vl_play folder to the root of the TF card");
}
QString playlistHintInternal()
{
    return pick("vl_play 创建在保存位置下；保存位置为空时创建在输出路径下",
                "vl_play is created under the save location, or under the output path when it is empty");
}
QString openPlaylist() { return pick("打开播放列表", "Open Playlist"); }
QString openOutputDir() { return pick("打开输出目录", "Open Output Folder"); }
QString createPlaylist() { return pick("创建播放列表", "Create Playlist"); }
QString createPlaylistTip()
{
    return pick("用上次处理得到的 BIN 文件创建 vl_play", "Create vl_play from the BIN files of the last run");
}

} // namespace Str
