#include "preprocess/ImagePreprocess.h"
#include "ui/AppStrings.h"
#include "ui/UiLanguage.h"

#include "LanguageGuard.h"

#include <QTest>

#include <functional>

class TestAppStrings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void pickFollowsLanguage();
    void pickHandlesNullAndEmpty();
    void pickQ();
    void plainEntries_data();
    void plainEntries();
    void chineseUsesColonsTheRelabellingMatches();
    void versionAndTitle();
    void listEntries();
    void writerAndConfigurationMessagesFollowTheLanguage();
    void fillModeTexts();
};

void TestAppStrings::init() { UiLanguage::set(UiLanguage::English); }

void TestAppStrings::pickFollowsLanguage()
{
    UiLanguage::set(UiLanguage::Chinese);
    QCOMPARE(Str::pick("中文", "English"), QStringLiteral("中文"));
    UiLanguage::set(UiLanguage::English);
    QCOMPARE(Str::pick("中文", "English"), QStringLiteral("English"));
    // Anything but English counts as Chinese.
    UiLanguage::set(static_cast<UiLanguage::Lang>(5));
    QCOMPARE(Str::pick("中文", "English"), QStringLiteral("中文"));
}

void TestAppStrings::pickHandlesNullAndEmpty()
{
    QCOMPARE(Str::pick("中文", nullptr), QString());
    QCOMPARE(Str::pick("中文", ""), QString());
    UiLanguage::set(UiLanguage::Chinese);
    QCOMPARE(Str::pick(nullptr, "English"), QString());
    QVERIFY(Str::pick(nullptr, "English").isEmpty());
}

void TestAppStrings::pickQ()
{
    const QString zh = QStringLiteral("甲"), en = QStringLiteral("A");
    QCOMPARE(Str::pickQ(zh, en), en);
    UiLanguage::set(UiLanguage::Chinese);
    QCOMPARE(Str::pickQ(zh, en), zh);
}

void TestAppStrings::plainEntries_data()
{
    QTest::addColumn<std::function<QString()>>("entry");
    QTest::addColumn<QString>("english");
    QTest::addColumn<QString>("chinese");
    const auto row = [](const char *name, QString (*entry)(), const char *en, const char *zh) {
        QTest::newRow(name) << std::function<QString()>(entry) << QString::fromUtf8(en)
                            << QString::fromUtf8(zh);
    };
    row("appDisplayName", Str::appDisplayName, "Velora Offline Tool", "Velora 离线工具");
    row("menuHelp", Str::menuHelp, "Help(&H)", "帮助(&H)");
    row("menuFile", Str::menuFile, "File(&F)", "文件(&F)");
    row("actionAbout", Str::actionAbout, "About(&A)", "关于(&A)");
    row("actionViewLog", Str::actionViewLog, "View Log(&L)", "查看日志(&L)");
    row("actionReloadConfig", Str::actionReloadConfig, "Reload Config(&R)", "重新加载配置(&R)");
    row("actionLangEnglish", Str::actionLangEnglish, "English", "English");
    row("actionLangChinese", Str::actionLangChinese, "Chinese", "中文");
    row("aboutTitle", Str::aboutTitle, "About Velora Offline Tool", "关于 Velora 离线工具");
    row("workflowIntro", Str::workflowIntro,
        "Choose your frame and create a dedicated TF card playback package for it",
        "选择您的相框，为它制作专属的 TF 卡播放包");
    row("stepSelectDevice", Str::stepSelectDevice, "Step 1: Select Device", "第 1 步：选择设备");
    row("stepAddImages", Str::stepAddImages, "Step 2: Add Images", "第 2 步：添加图片");
    row("stepCreatePlayback", Str::stepCreatePlayback, "Step 3: Create Playback File",
        "第 3 步：生成播放文件");
    row("logSection", Str::logSection, "Log", "日志");
    row("groupPlaylist", Str::groupPlaylist, "Playlist (vl_play)", "播放列表 (vl_play)");
    row("importKeyButton", Str::importKeyButton, "Import Key...", "导入密钥...");
    row("customSizePlaceholder", Str::customSizePlaceholder, "WxH, e.g. 1200x825", "宽x高, 如 1200x825");
    row("portraitOrientation", Str::portraitOrientation, "Portrait (0)", "竖屏 (0)");
    row("landscapeOrientation", Str::landscapeOrientation, "Landscape (90)", "横屏 (90)");
    row("globalDefaultStrategy", Str::globalDefaultStrategy, "— Global default —", "— 全局默认 —");
    row("spinMinutesSuffix", Str::spinMinutesSuffix, " min", " 分钟");
    row("slideshowIntervalTip", Str::slideshowIntervalTip,
        "Fixed interval slideshow; stored as minutes in playlist.json (3–50000 min)",
        "固定间隔轮播；在 playlist.json 中以分钟保存（3–50000 分钟）");
    row("dragReorderTip", Str::dragReorderTip, "Use the ↑↓ buttons on each row to change playback order",
        "使用每行的 ↑↓ 按钮调整播放顺序");
    row("startProcessing", static_cast<QString (*)()>(Str::startProcessing), "▶  Start Processing",
        "▶  开始处理");
    row("stopProcessing", Str::stopProcessing, "■  Stop", "■  停止");
    row("imageFileFilter", Str::imageFileFilter,
        "Images (*.jpg *.jpeg *.png *.bmp *.tif *.tiff *.webp *.heic *.heif);;All files (*)",
        "图片 (*.jpg *.jpeg *.png *.bmp *.tif *.tiff *.webp *.heic *.heif);;所有文件 (*)");
    row("analysisFileFilter", Str::analysisFileFilter, "CSV (*.csv);;JSON (*.json);;All files (*)",
        "CSV (*.csv);;JSON (*.json);;所有文件 (*)");
    row("confirmQuitWhileProcessing", Str::confirmQuitWhileProcessing,
        "Images are being processed. Exit anyway?", "正在处理图片，仍要退出吗？");
    row("noBinFiles", Str::noBinFiles,
        "No BIN files found. Finish processing first, or disable JPG preview only.",
        "未找到 BIN 文件。请先完成处理，或关闭“仅 JPG 预览”。");
    row("customPanelNoPlaylist", Str::customPanelNoPlaylist,
        "Custom panel type cannot build a TF playlist. Choose 133 / 070 / 100 / 253 / 285.",
        "自定义面板类型无法生成 TF 播放列表。请选择 133 / 070 / 100 / 253 / 285。");
    row("processingStopped", Str::processingStopped, "■ Processing stopped", "■ 处理已停止");
    row("preprocFailedUseOriginal", Str::preprocFailedUseOriginal, "  ⚠ Preprocessing failed; using original",
        "  ⚠ 预处理失败；使用原图");
    row("rowDone", Str::rowDone, "  ✅ Done", "  ✅ 完成");
    row("processingCompleteTitle", Str::processingCompleteTitle, "Ready for Your TF Card", "TF 卡内容已就绪");
    row("processingCompleteOkButton", Str::processingCompleteOkButton, "OK and open the vl_play",
        "确定并打开 vl_play");
    row("processorStartupCheckTitle", Str::processorStartupCheckTitle, "Processor Check Failed",
        "处理器检查失败");
    row("previewDialogTitle", Str::previewDialogTitle, "Image Preview & Edit", "图片预览与编辑");
    row("previewLandscapeFrameHint", Str::previewLandscapeFrameHint,
        " (landscape frame; rotates 90° CW on export)", "（横向相框；导出时顺时针旋转 90°）");
    row("rotateLeftTip", Str::rotateLeftTip, "Rotate 90° counter-clockwise (click to add)",
        "逆时针旋转 90°（可多次点击）");
    row("fillCropCaptionInline", Str::fillCropCaptionInline, "Fill / crop:", "填充/裁剪:");
    row("selectPlaylistSaveDir", Str::selectPlaylistSaveDir,
        "Select save location for vl_play (vl_play folder will be created there)",
        "选择 vl_play 的保存位置（将在该位置创建 vl_play 文件夹）");
    row("playlistPartialMissingTitle", Str::playlistPartialMissingTitle, "Some Files Missing",
        "部分文件缺失");
    row("playlistCannotCreateTitle", Str::playlistCannotCreateTitle, "Cannot Create Playlist",
        "无法创建播放列表");
    row("playlistSaveLocationNotSet", Str::playlistSaveLocationNotSet, "Save location not set.",
        "未设置保存位置。");
    row("cropDialogTitle", Str::cropDialogTitle, "Image Editor", "图片编辑器");
}

void TestAppStrings::plainEntries()
{
    QFETCH(std::function<QString()>, entry);
    QFETCH(QString, english);
    QFETCH(QString, chinese);
    QCOMPARE(entry(), english);
    LanguageGuard zh(UiLanguage::Chinese);
    QCOMPARE(entry(), chinese);
}

void TestAppStrings::chineseUsesColonsTheRelabellingMatches()
{
    // The window's re-labelling pass finds unnamed labels by these exact substrings.
    LanguageGuard zh(UiLanguage::Chinese);
    QVERIFY(Str::orientation().contains(QStringLiteral("方向:")));
    QVERIFY(Str::batchLabel().contains(QStringLiteral("批量:")));
    QVERIFY(Str::processorVariant().contains(QStringLiteral("处理器")));
    QVERIFY(Str::workDir().contains(QStringLiteral("工作目录")));
    QVERIFY(Str::executable().contains(QStringLiteral("可执行")));
    QVERIFY(Str::outputPath().contains(QStringLiteral("输出路径")));
    QVERIFY(Str::lutFile().contains(QStringLiteral("LUT")));
    QVERIFY(Str::frameModel().contains(QStringLiteral("相框型号")));
    QVERIFY(Str::frameOrientation().contains(QStringLiteral("相框方向")));
    QVERIFY(Str::screenOrientation().contains(QStringLiteral("屏幕方向")));
    QVERIFY(Str::enhanceStrategy().contains(QStringLiteral("增强策略")));
    QVERIFY(Str::actionReloadConfig().contains(QStringLiteral("重新加载")));
    QVERIFY(Str::actionCreatePlaylist().contains(QStringLiteral("播放列表")));
    QVERIFY(Str::actionClearList().contains(QStringLiteral("清空")));
    QVERIFY(Str::actionQuit().contains(QStringLiteral("退出")));
}

void TestAppStrings::versionAndTitle()
{
    QCoreApplication::setApplicationVersion(QStringLiteral("1.0.3"));
    QCOMPARE(Str::appVersionString(), QStringLiteral("1.0.3 beta"));
    const QString title = Str::windowTitle();
    QCOMPARE(title, QStringLiteral("Velora Offline Tool  v1.0.3 beta"));
    // An empty version falls back to 1.0.3, so the title is the same.
    QCoreApplication::setApplicationVersion(QString());
    QCOMPARE(Str::appVersionString(), QStringLiteral("1.0.3 beta"));
    QCOMPARE(Str::windowTitle(), title);
    QCoreApplication::setApplicationVersion(QStringLiteral("2.0"));
    QCOMPARE(Str::windowTitle(), QStringLiteral("Velora Offline Tool  v2.0 beta"));
    QVERIFY(Str::aboutHtml().contains(QStringLiteral("<b>Velora Offline Tool v2.0 beta</b>")));
    QCoreApplication::setApplicationVersion(QStringLiteral("1.0.3"));
    LanguageGuard zh(UiLanguage::Chinese);
    QCOMPARE(Str::windowTitle(), QStringLiteral("Velora 离线工具  v1.0.3 beta"));
}

void TestAppStrings::listEntries()
{
    QCOMPARE(Str::tableHeadersLite(), (QStringList{"Sel", "Ord", "Thumb", "Filename", "Status"}));
    QVERIFY(Str::tableHeadersInternal().size() > Str::tableHeadersLite().size());
    QVERIFY(Str::strategyDirect().contains(QStringLiteral("manual-mode")));
    QCOMPARE(Str::strategyWithGlobal().first(), Str::globalDefaultStrategy());
    QCOMPARE(Str::strategyWithGlobal().mid(1), Str::strategyDirect());
    QCOMPARE(Str::modeList().size(), 3);
    LanguageGuard zh(UiLanguage::Chinese);
    QCOMPARE(Str::tableHeadersLite(), (QStringList{"选", "序", "缩略图", "文件名", "状态"}));
    QCOMPARE(Str::tableHeadersInternal().size(), 7);
}

void TestAppStrings::writerAndConfigurationMessagesFollowTheLanguage()
{
    QCOMPARE(Str::configFileNotFound(QStringLiteral("tarngui_lite.json")),
             QStringLiteral("tarngui_lite.json not found"));
    QCOMPARE(Str::configMissingVariants(),
             QStringLiteral("The configuration file has no \"variants\" section"));
    QCOMPARE(Str::configVariantMissingExecutable(QStringLiteral("lite")),
             QStringLiteral("variants.lite has no \"executable\""));
    QCOMPARE(Str::playlistIntervalTooShort(),
             QStringLiteral("The slideshow interval must be at least 3 minutes."));
    QCOMPARE(Str::playlistCannotCreateDir(QStringLiteral("/x")),
             QStringLiteral("Cannot create the folder: /x"));
    LanguageGuard zh(UiLanguage::Chinese);
    QCOMPARE(Str::configFileNotFound(QStringLiteral("tarngui_lite.json")),
             QStringLiteral("未找到 tarngui_lite.json"));
    QCOMPARE(Str::configMissingVariants(), QStringLiteral("配置文件缺少 variants 节点"));
    QCOMPARE(Str::configVariantMissingExecutable(QStringLiteral("lite")),
             QStringLiteral("variants.lite 缺少 executable"));
    QCOMPARE(Str::playlistIntervalTooShort(), QStringLiteral("轮播间隔至少为 3 分钟。"));
    QCOMPARE(Str::playlistCannotCreateDir(QStringLiteral("/x")), QStringLiteral("无法创建目录: /x"));
}

void TestAppStrings::fillModeTexts()
{
    QCOMPARE(Str::fillModeLabel(FillMode::Direct), QStringLiteral("TARN direct"));
    QCOMPARE(Str::fillModeLabel(FillMode::BlurFill), QStringLiteral("Blur fill"));
    QCOMPARE(Str::fillModeLabel(FillMode::WhiteFill), QStringLiteral("White fill"));
    QCOMPARE(Str::fillModeLabel(FillMode::BlackFill), QStringLiteral("Black fill"));
    QCOMPARE(Str::fillModeLabel(FillMode::CenterCrop), QStringLiteral("Center crop"));
    QCOMPARE(Str::fillModeButtonText(FillMode::Direct), QStringLiteral("TARN"));
    QCOMPARE(Str::fillModeButtonText(FillMode::BlurFill), QStringLiteral("Blur"));
    QCOMPARE(Str::fillModeButtonText(FillMode::WhiteFill), QStringLiteral("White"));
    QCOMPARE(Str::fillModeButtonText(FillMode::BlackFill), QStringLiteral("Black"));
    QCOMPARE(Str::fillModeButtonText(FillMode::CenterCrop), QStringLiteral("Crop"));
    QCOMPARE(Str::fillModeToolTip(FillMode::Direct),
             QStringLiteral("No preprocessing; send directly to TARN"));
    QCOMPARE(Str::fillModeToolTip(FillMode::CenterCrop),
             QStringLiteral("Rotate if needed, then scale and center crop"));
    // Out-of-range values: label and button text of blur fill, no tool tip.
    const auto bogus = static_cast<FillMode>(9);
    QCOMPARE(Str::fillModeLabel(bogus), QStringLiteral("Blur fill"));
    QCOMPARE(Str::fillModeButtonText(bogus), QStringLiteral("Blur"));
    QCOMPARE(Str::fillModeToolTip(bogus), QString());
    QCOMPARE(Str::fillModeToolTip(static_cast<FillMode>(-1)), QString());
    // The state label: direct ignores the rotation.
    QCOMPARE(Str::formatPreprocStateLabel(FillMode::BlurFill, 90), QStringLiteral("Blur fill + Rotate 90°"));
    QCOMPARE(Str::formatPreprocStateLabel(FillMode::BlurFill, 0), QStringLiteral("Blur fill"));
    QCOMPARE(Str::formatPreprocStateLabel(FillMode::Direct, 90), QStringLiteral("TARN direct"));
    LanguageGuard zh(UiLanguage::Chinese);
    QCOMPARE(Str::formatPreprocStateLabel(FillMode::BlurFill, 90), QStringLiteral("模糊填充 + 旋转 90°"));
}

QTEST_MAIN(TestAppStrings)
#include "tst_AppStrings.moc"
