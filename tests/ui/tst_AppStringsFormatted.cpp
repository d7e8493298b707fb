// Formatted entries of the catalogue: every placeholder filled, in both languages.
#include "preprocess/ImagePreprocess.h"
#include "ui/AppStrings.h"
#include "ui/UiLanguage.h"

#include "LanguageGuard.h"

#include <QRegularExpression>
#include <QTest>

#include <functional>

using Str::RowStatus;

namespace {
const QRegularExpression kOpenPlaceholder(QStringLiteral("%\\d"));

} // namespace

class TestAppStringsFormatted : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void formattedEntriesFillEveryPlaceholder_data();
    void formattedEntriesFillEveryPlaceholder();
    void formattedEntriesInEnglish();
    void pathWithPercentSignsStaysIntact();
    void processCrashedCodes();
};

void TestAppStringsFormatted::init() { UiLanguage::set(UiLanguage::English); }

void TestAppStringsFormatted::formattedEntriesFillEveryPlaceholder_data()
{
    // Each entry is called with distinctive values; every value must show up and no
    // placeholder may stay open, in both languages.
    QTest::addColumn<std::function<QString()>>("entry");
    QTest::addColumn<QStringList>("values");
    const QString a = QStringLiteral("AAA"), b = QStringLiteral("BBB"), c = QStringLiteral("CCC");
    const auto row = [](const char *name, std::function<QString()> entry, QStringList values) {
        QTest::newRow(name) << entry << values;
    };
    row("keyFileComboText", [a, b] { return Str::keyFileComboText(a, b); }, {a, b});
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
    row("importSkippedPlaylistLimit", [] { return Str::importSkippedPlaylistLimit(77, 1000); },
        {"77", "1000"});
    row("rowLogHeader", [a, b] { return Str::rowLogHeader(a, 11, 22, b); }, {a, "11", "22", b});
    row("commandLineLog", [a, b, c] { return Str::commandLineLog(a, {b, c}); }, {a, b, c});
    row("progressFraction", [] { return Str::progressFraction(111, 999); }, {"111", "999"});
    row("processingProgress", [] { return Str::processingProgress(111, 999); }, {"111", "999"});
    row("allDone", [] { return Str::allDone(111, 999); }, {"111", "999"});
    row("startProcessing", [] { return Str::startProcessing(4321); }, {"4321"});
    row("startAnalysis", [a] { return Str::startAnalysis(4321, a); }, {"4321", a});
    row("startProcessingWithPlaylist", [a] { return Str::startProcessingWithPlaylist(4321, a); },
        {"4321", a});
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
    row("processorStartupCheckFailed", [a, b, c] { return Str::processorStartupCheckFailed(a, b, c); },
        {a, b, c});
    row("processorStartupCheckMissingWorkDir", [a] { return Str::processorStartupCheckMissingWorkDir(a); },
        {a});
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
    row("formatPreprocStateLabel", [] { return Str::formatPreprocStateLabel(FillMode::WhiteFill, 270); },
        {"270"});
    row("rotationCurrent", [] { return Str::rotationCurrent(270); }, {"270"});
    row("batchFillApplied", [a] { return Str::batchFillApplied(a, 4321); }, {a, "4321"});
    row("batchRotateApplied", [a] { return Str::batchRotateApplied(a, 4321); }, {a, "4321"});
    row("previewInfo", [a, b, c] { return Str::previewInfo(a, b, c); }, {a, b, c});
    row("previewInfoLine", [a, b] { return Str::previewInfoLine(a, b, true); }, {a, b});
    row("rowStatusText exit code", [] { return Str::rowStatusText(RowStatus::ExitCodeFailed, 4321); },
        {"4321"});
}

void TestAppStringsFormatted::formattedEntriesFillEveryPlaceholder()
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

void TestAppStringsFormatted::formattedEntriesInEnglish()
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
    QCOMPARE(Str::commandLineLog(QStringLiteral("TARN-lite.exe"),
                                 {QStringLiteral("in.jpg"), QStringLiteral("out.bin")}),
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
    QCOMPARE(
        Str::exeNotFound(QStringLiteral("Velora Offline Tool"), QStringLiteral("tarngui_lite.json")),
        QStringLiteral("Processor executable not found (Velora Offline Tool). Check tarngui_lite.json."));
    QCOMPARE(Str::copyFailed(QStringLiteral("a"), QStringLiteral("b")), QStringLiteral("Copy failed: a → b"));
    QCOMPARE(Str::missingBinCount(2, QStringLiteral("a.jpg\nb.jpg")),
             QStringLiteral("2 file(s) missing BIN; will skip:\na.jpg\nb.jpg"));
    QCOMPARE(Str::playlistPartialMissing(QStringLiteral("m")),
             QStringLiteral("m\n\nContinue creating the playlist?"));
    QCOMPARE(Str::playlistDirExists(QStringLiteral("/p/vl_play")),
             QStringLiteral("Target folder already exists:\n/p/vl_play\n\nOverwrite BIN and playlist.json?"));
    QCOMPARE(Str::playlistCreated(QStringLiteral("/p/vl_play"), 4, 30),
             QStringLiteral("Playlist created:\n/p/vl_play\n\n4 BIN file(s) and playlist.json\n"
                            "Copy the vl_play folder to the TF card root."));
    QCOMPARE(Str::playlistCreatedLog(QStringLiteral("/p/vl_play"), 4, 30),
             QStringLiteral("✅ Playlist created: /p/vl_play (4 frames, interval=30 min)"));
    QCOMPARE(Str::playlistCreateFailed(QStringLiteral("e")),
             QStringLiteral("❌ Failed to create playlist: e"));
    QCOMPARE(Str::playlistExportFailed(QStringLiteral("e")), QStringLiteral("⚠ Playlist export failed: e"));
    QCOMPARE(Str::writePlaylistFailed(QStringLiteral("/p")),
             QStringLiteral("Failed to write playlist.json: /p"));
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
    QCOMPARE(Str::processorSelfTestStartFailed(QStringLiteral("x")),
             QStringLiteral("Error: failed to start process: x"));
    QCOMPARE(Str::processorSelfTestTimedOut(), QStringLiteral("Error: processor self-test timed out."));
    QCOMPARE(Str::processorSelfTestCrashed(11),
             QStringLiteral("Error: process crashed (exitCode=0x0000000b)"));
    QCOMPARE(Str::batchFillApplied(QStringLiteral("White fill"), 3),
             QStringLiteral("  Batch fill/crop \"White fill\" applied to 3 image(s)"));
    QCOMPARE(Str::batchRotateApplied(Str::batchRotateLeft(), 2),
             QStringLiteral("  Batch rotate 90° left: 2 image(s)"));
    QCOMPARE(Str::rotationCurrent(0), QStringLiteral("Current 0°"));
    QCOMPARE(Str::subdirTooltip(QStringLiteral("a/b")), QStringLiteral("Subfolder: a/b"));
    QCOMPARE(Str::panelResolutionSize(1800, 3200), QStringLiteral("1800 × 3200"));
    QCOMPARE(Str::keyFileComboText(QStringLiteral("13.3"), QStringLiteral("AA:BB")),
             QStringLiteral("13.3 · AA:BB"));
    QCOMPARE(
        Str::previewInfoLine(QStringLiteral("Blur fill + Rotate 90°"), QStringLiteral("1600×1200"), true),
        QStringLiteral("Current: Blur fill + Rotate 90° — preview 1600×1200 (landscape frame; rotates 90° CW "
                       "on export) (rotate, then fill/crop)"));
    QCOMPARE(Str::previewInfoLine(QStringLiteral("Blur fill"), QStringLiteral("1200×1600"), false),
             QStringLiteral("Current: Blur fill — preview 1200×1600 (rotate, then fill/crop)"));
}

void TestAppStringsFormatted::pathWithPercentSignsStaysIntact()
{
    // A file name may itself hold "%1" or "%2"; filling must not substitute into it.
    const QString odd = QStringLiteral("/tmp/100%2 off %1.jpg");
    QCOMPARE(Str::importScanLabel(odd, 3),
             QStringLiteral("Scanning folder…\n/tmp/100%2 off %1.jpg\nFound: 3"));
    QCOMPARE(Str::copyFailed(odd, QStringLiteral("t")),
             QStringLiteral("Copy failed: /tmp/100%2 off %1.jpg → t"));
    QCOMPARE(Str::playlistCreated(odd, 2, 3).section(QLatin1Char('\n'), 1, 1), odd);
    QCOMPARE(Str::rowLogHeader(QStringLiteral("t"), 1, 2, odd),
             QStringLiteral("[t] (1/2) /tmp/100%2 off %1.jpg"));
}

void TestAppStringsFormatted::processCrashedCodes()
{
    QCOMPARE(Str::processCrashed(static_cast<int>(0xC0000135u)),
             QStringLiteral("  ❌ Process crashed (exitCode=0xc0000135)\n"
                            "  ⚠ Processor folder incomplete; verify all required files are present"));
    QCOMPARE(
        Str::processCrashed(9),
        QStringLiteral(
            "  ❌ Process crashed (exitCode=0x00000009)\n"
            "  ⚠ Ensure the processor executable and its dependencies in the processor folder are intact"));
    LanguageGuard zh(UiLanguage::Chinese);
    QVERIFY(Str::processCrashed(static_cast<int>(0xC0000135u))
                .startsWith(QStringLiteral("  ❌ 进程崩溃 (exitCode=0xc0000135)\n  ⚠ ")));
}

QTEST_MAIN(TestAppStringsFormatted)
#include "tst_AppStringsFormatted.moc"
