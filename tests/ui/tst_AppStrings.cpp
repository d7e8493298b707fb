#include "preprocess/ImagePreprocess.h"
#include "ui/AppStrings.h"
#include "ui/UiLanguage.h"

#include <QApplication>
#include <QPalette>
#include <QRegularExpression>
#include <QTableWidgetItem>
#include <QTest>

#include <functional>

using Str::RowStatus;

namespace {

struct LanguageGuard {
    explicit LanguageGuard(UiLanguage::Lang lang) : previous(UiLanguage::current()) { UiLanguage::set(lang); }
    ~LanguageGuard() { UiLanguage::set(previous); }
    UiLanguage::Lang previous;
};

void setWindowLightness(int lightness)
{
    QPalette palette = QApplication::palette();
    palette.setColor(QPalette::Window, QColor(lightness, lightness, lightness));
    QApplication::setPalette(palette);
}

const QRegularExpression kOpenPlaceholder(QStringLiteral("%\\d"));

} // namespace

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
    void formattedEntriesFillEveryPlaceholder_data();
    void formattedEntriesFillEveryPlaceholder();
    void formattedEntriesInEnglish();
    void pathWithPercentSignsStaysIntact();
    void processCrashedCodes();
    void versionAndTitle();
    void listEntries();
    void chineseOnlyMessagesReadTheSameInEnglish();
    void fillModeTexts();
    void rowStatusTable_data();
    void rowStatusTable();
    void rowStatusOutOfRange();
    void rowStatusItemHelpers();
    void applyRowStatusSetsEverything();
};

void TestAppStrings::init()
{
    UiLanguage::set(UiLanguage::English);
    setWindowLightness(240);
}

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
        QTest::newRow(name) << std::function<QString()>(entry) << QString::fromUtf8(en) << QString::fromUtf8(zh);
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
    row("stepCreatePlayback", Str::stepCreatePlayback, "Step 3: Create Playback File", "第 3 步：生成播放文件");
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
    row("startProcessing", static_cast<QString (*)()>(Str::startProcessing), "▶  Start Processing", "▶  开始处理");
    row("stopProcessing", Str::stopProcessing, "■  Stop", "■  停止");
    row("imageFileFilter", Str::imageFileFilter,
        "Images (*.jpg *.jpeg *.png *.bmp *.tif *.tiff *.webp *.heic *.heif);;All files (*)",
        "图片 (*.jpg *.jpeg *.png *.bmp *.tif *.tiff *.webp *.heic *.heif);;所有文件 (*)");
    row("analysisFileFilter", Str::analysisFileFilter, "CSV (*.csv);;JSON (*.json);;All files (*)",
        "CSV (*.csv);;JSON (*.json);;所有文件 (*)");
    row("confirmQuitWhileProcessing", Str::confirmQuitWhileProcessing,
        "Images are being processed. Exit anyway?", "正在处理图片，仍要退出吗？");
    row("noBinFiles", Str::noBinFiles, "No BIN files found. Finish processing first, or disable JPG preview only.",
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
    row("processorStartupCheckTitle", Str::processorStartupCheckTitle, "Processor Check Failed", "处理器检查失败");
    row("previewDialogTitle", Str::previewDialogTitle, "Image Preview & Edit", "图片预览与编辑");
    row("previewLandscapeFrameHint", Str::previewLandscapeFrameHint,
        " (landscape frame; rotates 90° CW on export)", "（横向相框；导出时顺时针旋转 90°）");
    row("rotateLeftTip", Str::rotateLeftTip, "Rotate 90° counter-clockwise (click to add)", "逆时针旋转 90°（可多次点击）");
    row("fillCropCaptionInline", Str::fillCropCaptionInline, "Fill / crop:", "填充/裁剪:");
    row("selectPlaylistSaveDir", Str::selectPlaylistSaveDir,
        "Select save location for vl_play (vl_play folder will be created there)",
        "选择 vl_play 的保存位置（将在该位置创建 vl_play 文件夹）");
    row("playlistPartialMissingTitle", Str::playlistPartialMissingTitle, "Some Files Missing", "部分文件缺失");
    row("playlistCannotCreateTitle", Str::playlistCannotCreateTitle, "Cannot Create Playlist", "无法创建播放列表");
    row("playlistSaveLocationNotSet", Str::playlistSaveLocationNotSet, "Save location not set.", "未设置保存位置。");
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

void TestAppStrings::formattedEntriesFillEveryPlaceholder_data()
{
    // Each entry is called with distinctive values; every value must show up and no
    // placeholder may stay open, in both languages.
    QTest::addColumn<std::function<QString()>>("entry");
    QTest::addColumn<QStringList>("values");
    const QString a = QStringLiteral("AAA"), b = QStringLiteral("BBB"), c = QStringLiteral("CCC");
    const auto row = [](const char *name, std::function<QString()> entry, QStringList values) {
        QTest::newRow(name) << entry << values;
    };
    row("panelResolutionSize", [] { return Str::panelResolutionSize(1234, 5678); }, {"1234", "5678"});
    row("imageCount", [] { return Str::imageCount(4321); }, {"4321"});
    row("importScanLabel", [a] { return Str::importScanLabel(a, 4321); }, {a, "4321"});
    row("importAddLabel", [] { return Str::importAddLabel(111, 999); }, {"111", "999"});
    row("batchApplyProgress", [] { return Str::batchApplyProgress(111, 999); }, {"111", "999"});
    row("frameSettingsProgress", [] { return Str::frameSettingsProgress(111, 999); }, {"111", "999"});
    row("subdirTooltip", [a] { return Str::subdirTooltip(a); }, {a});
    row("lutNotFound", [a] { return Str::lutNotFound(a); }, {a});
    row("heicLoadFailed", [a] { return Str::heicLoadFailed(a); }, {a});
    row("playlistTooManyFrames", [] { return Str::playlistTooManyFrames(1000); }, {"1000"});
    row("importSkippedPlaylistLimit", [] { return Str::importSkippedPlaylistLimit(77, 1000); }, {"77", "1000"});
    row("rowLogHeader", [a, b] { return Str::rowLogHeader(a, 11, 22, b); }, {a, "11", "22", b});
    row("commandLineLog", [a, b, c] { return Str::commandLineLog(a, {b, c}); }, {a, b, c});
    row("progressFraction", [] { return Str::progressFraction(111, 999); }, {"111", "999"});
    row("processingProgress", [] { return Str::processingProgress(111, 999); }, {"111", "999"});
    row("allDone", [] { return Str::allDone(111, 999); }, {"111", "999"});
    row("startProcessing", [] { return Str::startProcessing(4321); }, {"4321"});
    row("startAnalysis", [a] { return Str::startAnalysis(4321, a); }, {"4321", a});
    row("startProcessingWithPlaylist", [a] { return Str::startProcessingWithPlaylist(4321, a); }, {"4321", a});
    row("startProcessingWithOutput", [a] { return Str::startProcessingWithOutput(4321, a); }, {"4321", a});
    row("processFailed", [] { return Str::processFailed(4321); }, {"4321"});
    row("processCrashed", [] { return Str::processCrashed(0x1234abcd); }, {"1234abcd"});
    row("processStartFailed", [a] { return Str::processStartFailed(a); }, {a});
    row("workDirLog", [a] { return Str::workDirLog(a); }, {a});
    row("workDirMissing", [a] { return Str::workDirMissing(a); }, {a});
    row("configLoaded", [a] { return Str::configLoaded(a); }, {a});
    row("configLoadWarning", [a] { return Str::configLoadWarning(a); }, {a});
    row("unknownPanelType", [a] { return Str::unknownPanelType(a); }, {a});
    row("exeNotFound", [a, b] { return Str::exeNotFound(a, b); }, {a, b});
    row("copyFailed", [a, b] { return Str::copyFailed(a, b); }, {a, b});
    row("missingBinList", [a] { return Str::missingBinList(a); }, {a});
    row("missingBinCount", [a] { return Str::missingBinCount(4321, a); }, {"4321", a});
    row("playlistCreateFailed", [a] { return Str::playlistCreateFailed(a); }, {a});
    row("playlistPartialMissing", [a] { return Str::playlistPartialMissing(a); }, {a});
    row("playlistDirExists", [a] { return Str::playlistDirExists(a); }, {a});
    row("playlistCreated", [a] { return Str::playlistCreated(a, 4321, 30); }, {a, "4321"});
    row("playlistCreatedLog", [a] { return Str::playlistCreatedLog(a, 4321, 8765); }, {a, "4321", "8765"});
    row("writePlaylistFailed", [a] { return Str::writePlaylistFailed(a); }, {a});
    row("playlistExportFailed", [a] { return Str::playlistExportFailed(a); }, {a});
    row("processorStartupCheckFailed", [a, b, c] { return Str::processorStartupCheckFailed(a, b, c); }, {a, b, c});
    row("processorStartupCheckMissingWorkDir", [a] { return Str::processorStartupCheckMissingWorkDir(a); }, {a});
    row("processorDirIncomplete", [a, b] { return Str::processorDirIncomplete(a, b); }, {a, b});
    row("processorSelfTestStartFailed", [a] { return Str::processorSelfTestStartFailed(a); }, {a});
    row("processorSelfTestCrashed", [] { return Str::processorSelfTestCrashed(0x1234abcd); }, {"1234abcd"});
    row("processorSelfTestAbnormalExit", [] { return Str::processorSelfTestAbnormalExit(4321); }, {"4321"});
    row("configFileNotFound", [a] { return Str::configFileNotFound(a); }, {a});
    row("configFileUnreadable", [a] { return Str::configFileUnreadable(a); }, {a});
    row("configJsonParseFailed", [a] { return Str::configJsonParseFailed(a); }, {a});
    row("configVariantMissingExecutable", [a] { return Str::configVariantMissingExecutable(a); }, {a});
    row("playlistCannotCreateDir", [a] { return Str::playlistCannotCreateDir(a); }, {a});
    row("playlistBinMissing", [a] { return Str::playlistBinMissing(a); }, {a});
    row("playlistCannotOpenJson", [a] { return Str::playlistCannotOpenJson(a); }, {a});
    row("formatPreprocStateLabel", [] { return Str::formatPreprocStateLabel(FillMode::WhiteFill, 270); }, {"270"});
    row("rotationCurrent", [] { return Str::rotationCurrent(270); }, {"270"});
    row("batchFillApplied", [a] { return Str::batchFillApplied(a, 4321); }, {a, "4321"});
    row("batchRotateApplied", [a] { return Str::batchRotateApplied(a, 4321); }, {a, "4321"});
    row("previewInfo", [a, b, c] { return Str::previewInfo(a, b, c); }, {a, b, c});
    row("previewInfoLine", [a, b] { return Str::previewInfoLine(a, b, true); }, {a, b});
    row("rowStatusText exit code", [] { return Str::rowStatusText(RowStatus::ExitCodeFailed, 4321); }, {"4321"});
}

void TestAppStrings::formattedEntriesFillEveryPlaceholder()
{
    QFETCH(std::function<QString()>, entry);
    QFETCH(QStringList, values);
    for (UiLanguage::Lang lang : {UiLanguage::English, UiLanguage::Chinese}) {
        LanguageGuard guard(lang);
        const QString text = entry();
        for (const QString &value : values)
            QVERIFY2(text.contains(value), qPrintable(text + " lacks " + value));
        QVERIFY2(!text.contains(kOpenPlaceholder), qPrintable(text));
    }
}

void TestAppStrings::formattedEntriesInEnglish()
{
    QCOMPARE(Str::imageCount(3), QStringLiteral("3 image(s)"));
    QCOMPARE(Str::importScanLabel(QStringLiteral("/p"), 7), QStringLiteral("Scanning folder…\n/p\nFound: 7"));
    QCOMPARE(Str::importAddLabel(2, 9), QStringLiteral("Adding images…\nTotal: 9\n2 / 9"));
    QCOMPARE(Str::batchApplyProgress(2, 9), QStringLiteral("Applying batch changes…\n2 / 9"));
    QCOMPARE(Str::frameSettingsProgress(2, 9), QStringLiteral("Applying frame settings…\n2 / 9"));
    QCOMPARE(Str::importSkippedPlaylistLimit(5, 1000),
             QStringLiteral("Playlist limit (1000 frames) reached; skipped 5 image(s)."));
    QCOMPARE(Str::playlistTooManyFrames(1000), QStringLiteral("A playlist supports at most 1000 frame(s)."));
    QCOMPARE(Str::heicLoadFailed(QStringLiteral("C:\\a.heic")),
             QStringLiteral("Cannot read HEIC/HEIF image:\nC:\\a.heic\n\nInstall the Windows HEIF Image "
                            "Extensions, or convert to JPG/PNG first."));
    QCOMPARE(Str::rowLogHeader(QStringLiteral("09:05:01"), 2, 10, QStringLiteral("a.jpg")),
             QStringLiteral("[09:05:01] (2/10) a.jpg"));
    QCOMPARE(Str::commandLineLog(QStringLiteral("TARN-lite.exe"), {QStringLiteral("in.jpg"), QStringLiteral("out.bin")}),
             QStringLiteral("  $ TARN-lite.exe in.jpg out.bin"));
    QCOMPARE(Str::stdoutLogLine(QStringLiteral("x")), QStringLiteral("  | x"));
    QCOMPARE(Str::stderrLogLine(QStringLiteral("x")), QStringLiteral("  ! x"));
    QCOMPARE(Str::logSeparator(), QString(42, QChar(0x2500)));
    QCOMPARE(Str::progressFraction(4, 10), QStringLiteral("4 / 10"));
    QCOMPARE(Str::processingProgress(3, 4), QStringLiteral("Done 3 / 4"));
    QCOMPARE(Str::allDone(0, 0), QStringLiteral("✅ All done! Success 0 / 0"));
    QCOMPARE(Str::startProcessingWithPlaylist(3, QStringLiteral("/out")),
             QStringLiteral("▶ Starting processing, 3 image(s)\n  Playlist save location: /out"));
    QCOMPARE(Str::startProcessingWithOutput(3, QStringLiteral("/out")),
             QStringLiteral("▶ Starting processing, 3 image(s)\n  Output directory: /out"));
    QCOMPARE(Str::startAnalysis(3, QStringLiteral("/a.csv")),
             QStringLiteral("▶ Starting analysis, 3 image(s) (analysis only)\n  Analysis output: /a.csv"));
    QCOMPARE(Str::processFailed(3), QStringLiteral("  ❌ Failed, exit code: 3"));
    QCOMPARE(Str::processStartFailed(QStringLiteral("No such file")),
             QStringLiteral("  ❌ Failed to start process: No such file"));
    QCOMPARE(Str::workDirLog(QStringLiteral("/w")), QStringLiteral("  Working directory: /w"));
    QCOMPARE(Str::workDirMissing(QStringLiteral("/w")), QStringLiteral("  ❌ Working directory missing: /w"));
    QCOMPARE(Str::configLoaded(QStringLiteral("/c.json")), QStringLiteral("Config loaded: /c.json"));
    QCOMPARE(Str::configLoadWarning(QStringLiteral("未找到 tarngui_lite.json")),
             QStringLiteral("⚠ 未找到 tarngui_lite.json Using default paths from the UI."));
    QCOMPARE(Str::unknownPanelType(QStringLiteral("999")), QStringLiteral("Unknown panel type: 999"));
    QCOMPARE(Str::exeNotFound(QStringLiteral("Velora Offline Tool"), QStringLiteral("tarngui_lite.json")),
             QStringLiteral("Processor executable not found (Velora Offline Tool). Check tarngui_lite.json."));
    QCOMPARE(Str::copyFailed(QStringLiteral("a"), QStringLiteral("b")), QStringLiteral("Copy failed: a → b"));
    QCOMPARE(Str::missingBinCount(2, QStringLiteral("a.jpg\nb.jpg")),
             QStringLiteral("2 file(s) missing BIN; will skip:\na.jpg\nb.jpg"));
    QCOMPARE(Str::playlistPartialMissing(QStringLiteral("m")), QStringLiteral("m\n\nContinue creating the playlist?"));
    QCOMPARE(Str::playlistDirExists(QStringLiteral("/p/vl_play")),
             QStringLiteral("Target folder already exists:\n/p/vl_play\n\nOverwrite BIN and playlist.json?"));
    QCOMPARE(Str::playlistCreated(QStringLiteral("/p/vl_play"), 4, 30),
             QStringLiteral("Playlist created:\n/p/vl_play\n\n4 BIN file(s) and playlist.json\n"
                            "Copy the vl_play folder to the TF card root."));
    QCOMPARE(Str::playlistCreatedLog(QStringLiteral("/p/vl_play"), 4, 30),
             QStringLiteral("✅ Playlist created: /p/vl_play (4 frames, interval=30 min)"));
    QCOMPARE(Str::playlistCreateFailed(QStringLiteral("e")), QStringLiteral("❌ Failed to create playlist: e"));
    QCOMPARE(Str::playlistExportFailed(QStringLiteral("e")), QStringLiteral("⚠ Playlist export failed: e"));
    QCOMPARE(Str::writePlaylistFailed(QStringLiteral("/p")), QStringLiteral("Failed to write playlist.json: /p"));
    QCOMPARE(Str::processorStartupCheckMissingWorkDir(QString()),
             QStringLiteral("Processor working directory missing:\n(not configured)"));
    QCOMPARE(Str::processorStartupCheckMissingWorkDir(QStringLiteral("/w")),
             QStringLiteral("Processor working directory missing:\n/w"));
    QCOMPARE(Str::processorDirIncomplete(QStringLiteral("a.dll, b.dll"), QStringLiteral("/w")),
             QStringLiteral("Processor folder is incomplete. Missing: a.dll, b.dll\nDirectory: /w\n"
                            "Please reinstall or restore the processor folder from the full package."));
    QCOMPARE(Str::processorStartupCheckFailed(QStringLiteral("/w/TARN-lite.exe"), QStringLiteral("/w"),
                                              Str::processorSelfTestAbnormalExit(1)),
             QStringLiteral("The image processor failed the startup self-test (TARN-lite --help).\n\n"
                            "Executable: /w/TARN-lite.exe\nWorking directory: /w\n\n"
                            "Error: abnormal exit (exitCode=1)\n"
                            "Please reinstall or restore the processor folder from the full package."));
    QCOMPARE(Str::processorSelfTestStartFailed(QStringLiteral("x")), QStringLiteral("Error: failed to start process: x"));
    QCOMPARE(Str::processorSelfTestTimedOut(), QStringLiteral("Error: processor self-test timed out."));
    QCOMPARE(Str::processorSelfTestCrashed(11), QStringLiteral("Error: process crashed (exitCode=0x0000000b)"));
    QCOMPARE(Str::batchFillApplied(QStringLiteral("White fill"), 3),
             QStringLiteral("  Batch fill/crop \"White fill\" applied to 3 image(s)"));
    QCOMPARE(Str::batchRotateApplied(Str::batchRotateLeft(), 2), QStringLiteral("  Batch rotate 90° left: 2 image(s)"));
    QCOMPARE(Str::rotationCurrent(0), QStringLiteral("Current 0°"));
    QCOMPARE(Str::subdirTooltip(QStringLiteral("a/b")), QStringLiteral("Subfolder: a/b"));
    QCOMPARE(Str::panelResolutionSize(1800, 3200), QStringLiteral("1800 × 3200"));
    QCOMPARE(Str::previewInfoLine(QStringLiteral("Blur fill + Rotate 90°"), QStringLiteral("1600×1200"), true),
             QStringLiteral("Current: Blur fill + Rotate 90° — preview 1600×1200 (landscape frame; rotates 90° CW "
                            "on export) (rotate, then fill/crop)"));
    QCOMPARE(Str::previewInfoLine(QStringLiteral("Blur fill"), QStringLiteral("1200×1600"), false),
             QStringLiteral("Current: Blur fill — preview 1200×1600 (rotate, then fill/crop)"));
}

void TestAppStrings::pathWithPercentSignsStaysIntact()
{
    // A file name may itself hold "%1" or "%2"; filling must not substitute into it.
    const QString odd = QStringLiteral("/tmp/100%2 off %1.jpg");
    QCOMPARE(Str::importScanLabel(odd, 3), QStringLiteral("Scanning folder…\n/tmp/100%2 off %1.jpg\nFound: 3"));
    QCOMPARE(Str::copyFailed(odd, QStringLiteral("t")), QStringLiteral("Copy failed: /tmp/100%2 off %1.jpg → t"));
    QCOMPARE(Str::playlistCreated(odd, 2, 3).section(QLatin1Char('\n'), 1, 1), odd);
    QCOMPARE(Str::rowLogHeader(QStringLiteral("t"), 1, 2, odd), QStringLiteral("[t] (1/2) /tmp/100%2 off %1.jpg"));
}

void TestAppStrings::processCrashedCodes()
{
    QCOMPARE(Str::processCrashed(static_cast<int>(0xC0000135u)),
             QStringLiteral("  ❌ Process crashed (exitCode=0xc0000135)\n"
                            "  ⚠ Processor folder incomplete; verify all required files are present"));
    QCOMPARE(Str::processCrashed(9),
             QStringLiteral("  ❌ Process crashed (exitCode=0x00000009)\n"
                            "  ⚠ Ensure the processor executable and its dependencies in the processor folder are intact"));
    LanguageGuard zh(UiLanguage::Chinese);
    QVERIFY(Str::processCrashed(static_cast<int>(0xC0000135u)).startsWith(QStringLiteral("  ❌ 进程崩溃 (exitCode=0xc0000135)\n  ⚠ ")));
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

void TestAppStrings::chineseOnlyMessagesReadTheSameInEnglish()
{
    QCOMPARE(Str::configFileNotFound(QStringLiteral("tarngui_lite.json")), QStringLiteral("未找到 tarngui_lite.json"));
    QCOMPARE(Str::configMissingVariants(), QStringLiteral("配置文件缺少 variants 节点"));
    QCOMPARE(Str::configVariantMissingExecutable(QStringLiteral("lite")), QStringLiteral("variants.lite 缺少 executable"));
    QCOMPARE(Str::playlistIntervalTooShort(), QStringLiteral("轮播间隔至少为 3 分钟。"));
    const QString english = Str::playlistNeedsFrame();
    LanguageGuard zh(UiLanguage::Chinese);
    QCOMPARE(Str::playlistNeedsFrame(), english);
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
    QCOMPARE(Str::fillModeToolTip(FillMode::Direct), QStringLiteral("No preprocessing; send directly to TARN"));
    QCOMPARE(Str::fillModeToolTip(FillMode::CenterCrop), QStringLiteral("Rotate if needed, then scale and center crop"));
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

void TestAppStrings::rowStatusTable_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("english");
    QTest::addColumn<QString>("chinese");
    QTest::addColumn<QColor>("lightBackground");
    QTest::addColumn<QColor>("darkBackground");
    QTest::addColumn<QColor>("lightText");
    QTest::addColumn<QColor>("darkText");
    const QColor failBgL(255, 150, 150), failBgD(74, 42, 42), failTxL(120, 30, 30), failTxD(240, 160, 160);
    QTest::newRow("0 Pending") << 0 << "Pending" << "待处理" << QColor(238, 238, 238) << QColor(58, 58, 58)
                               << QColor(80, 80, 80) << QColor(176, 176, 176);
    QTest::newRow("1 Processing") << 1 << "Processing..." << "处理中..." << QColor(173, 216, 230)
                                  << QColor(42, 74, 90) << QColor(30, 60, 90) << QColor(170, 212, 238);
    QTest::newRow("2 Done") << 2 << "Done ✓" << "完成 ✓" << QColor(144, 238, 144) << QColor(42, 74, 50)
                            << QColor(30, 90, 30) << QColor(144, 220, 144);
    QTest::newRow("3 Failed") << 3 << "Failed" << "失败" << failBgL << failBgD << failTxL << failTxD;
    QTest::newRow("4 StartFailed") << 4 << "Start failed" << "启动失败" << failBgL << failBgD << failTxL << failTxD;
    QTest::newRow("5 Cancelled") << 5 << "Cancelled" << "已取消" << QColor(255, 200, 100) << QColor(74, 58, 32)
                                 << QColor(120, 80, 20) << QColor(224, 176, 96);
    QTest::newRow("6 Crashed") << 6 << "Crashed" << "崩溃" << failBgL << failBgD << failTxL << failTxD;
    QTest::newRow("7 ExitCodeFailed") << 7 << "Failed (3)" << "失败(3)" << failBgL << failBgD << failTxL << failTxD;
}

void TestAppStrings::rowStatusTable()
{
    QFETCH(int, value);
    QFETCH(QString, english);
    QFETCH(QString, chinese);
    QFETCH(QColor, lightBackground);
    QFETCH(QColor, darkBackground);
    QFETCH(QColor, lightText);
    QFETCH(QColor, darkText);
    const auto status = static_cast<RowStatus>(value);

    QCOMPARE(Str::rowStatusText(status, 3), english);
    {
        LanguageGuard zh(UiLanguage::Chinese);
        QCOMPARE(Str::rowStatusText(status, 3), chinese);
    }
    setWindowLightness(240);
    QCOMPARE(Str::rowStatusColor(status), lightBackground);
    QCOMPARE(Str::rowStatusTextColor(status), lightText);
    setWindowLightness(30);
    QCOMPARE(Str::rowStatusColor(status), darkBackground);
    QCOMPARE(Str::rowStatusTextColor(status), darkText);
}

void TestAppStrings::rowStatusOutOfRange()
{
    for (int value : {-1, 8, 100}) {
        const auto status = static_cast<RowStatus>(value);
        QCOMPARE(Str::rowStatusText(status, 3), QString());
        QCOMPARE(Str::rowStatusColor(status), Str::rowStatusColor(RowStatus::Pending));
        QCOMPARE(Str::rowStatusTextColor(status), Str::rowStatusTextColor(RowStatus::Pending));
    }
    QCOMPARE(Str::rowStatusText(RowStatus::Failed, 3), QStringLiteral("Failed"));
    QCOMPARE(Str::rowStatusText(RowStatus::ExitCodeFailed, 0), QStringLiteral("Failed (0)"));
    QCOMPARE(Str::rowStatusText(RowStatus::ExitCodeFailed, -5), QStringLiteral("Failed (-5)"));
}

void TestAppStrings::rowStatusItemHelpers()
{
    QCOMPARE(Str::rowStatusUserRole(), 276);
    QCOMPARE(Str::rowStatusFromItem(nullptr), 0);
    QVERIFY(Str::rowStatusIsPending(nullptr));

    QTableWidgetItem item;
    QCOMPARE(Str::rowStatusFromItem(&item), 0);
    QVERIFY(Str::rowStatusIsPending(&item));
    item.setData(276, QStringLiteral("not a number"));
    QCOMPARE(Str::rowStatusFromItem(&item), 0);
    QVERIFY(Str::rowStatusIsPending(&item));
    item.setData(276, 6);
    QCOMPARE(Str::rowStatusFromItem(&item), 6);
    QVERIFY(!Str::rowStatusIsPending(&item));
    item.setData(276, 0);
    QVERIFY(Str::rowStatusIsPending(&item));
    item.setData(276, 42);
    QCOMPARE(Str::rowStatusFromItem(&item), 42);
    QVERIFY(!Str::rowStatusIsPending(&item));
}

void TestAppStrings::applyRowStatusSetsEverything()
{
    Str::applyRowStatus(nullptr, RowStatus::Done, 0); // does nothing, does not crash
    QTableWidgetItem item;
    Str::applyRowStatus(&item, RowStatus::ExitCodeFailed, 3);
    QCOMPARE(item.data(276).toInt(), 7);
    QCOMPARE(item.text(), QStringLiteral("Failed (3)"));
    QCOMPARE(item.background().color(), QColor(255, 150, 150));
    QCOMPARE(item.foreground().color(), QColor(120, 30, 30));
    Str::applyRowStatus(&item, RowStatus::Done, 0);
    QCOMPARE(item.data(276).toInt(), 2);
    QCOMPARE(item.text(), QStringLiteral("Done ✓"));
    QCOMPARE(item.background().color(), QColor(144, 238, 144));
}

QTEST_MAIN(TestAppStrings)
#include "tst_AppStrings.moc"
