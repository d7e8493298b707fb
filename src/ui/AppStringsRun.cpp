// Texts of the processing run and its log, the playlist results and the processor check.
// Where a template takes a text and further values, all are filled in one pass (the
// multi-argument QString::arg), so a path that itself contains "%2" stays as it is.
#include "ui/AppStrings.h"

namespace Str {

namespace {
QString num(int value) { return QString::number(value); }

// 8 lower-case hexadecimal digits of the exit code's 32 bits (0xC0000135 -> "c0000135").
QString hex8(int exitCode)
{
    return QStringLiteral("%1").arg(static_cast<quint32>(exitCode), 8, 16, QLatin1Char('0'));
}
} // namespace

// --- Run and log ---

QString logSeparator() { return QString(42, QChar(0x2500)); }

QString rowLogHeader(const QString &time, int rowNumber, int rowCount, const QString &name)
{
    return QStringLiteral("[%1] (%2/%3) %4").arg(time, num(rowNumber), num(rowCount), name);
}

QString commandLineLog(const QString &program, const QStringList &args)
{
    return QStringLiteral("  $ ") + program + QLatin1Char(' ') + args.join(QLatin1Char(' '));
}

QString stdoutLogLine(const QString &line) { return QStringLiteral("  | ") + line; }
QString stderrLogLine(const QString &line) { return QStringLiteral("  ! ") + line; }
QString progressFraction(int done, int total) { return QStringLiteral("%1 / %2").arg(done).arg(total); }
QString processingProgress(int done, int total)
{
    return pick("完成 %1 / %2", "Done %1 / %2").arg(done).arg(total);
}
QString allDone(int succeeded, int total)
{
    return pick("✅ 全部完成！成功 %1 / %2", "✅ All done! Success %1 / %2").arg(succeeded).arg(total);
}
QString startProcessing(int count)
{
    return pick("▶ 开始处理，共 %1 张图片", "▶ Starting processing, %1 image(s)").arg(count);
}
QString startAnalysis(int count, const QString &analysisOutput)
{
    return pick("▶ 开始分析，共 %1 张图片（仅分析）\n  分析输出: %2",
                "▶ Starting analysis, %1 image(s) (analysis only)\n  Analysis output: %2")
        .arg(num(count), analysisOutput);
}
QString startProcessingWithPlaylist(int count, const QString &playlistDir)
{
    return startProcessing(count) + QLatin1Char('\n') +
           pick("  播放列表保存位置: %1", "  Playlist save location: %1").arg(playlistDir);
}
QString startProcessingWithOutput(int count, const QString &outputDir)
{
    return startProcessing(count) + QLatin1Char('\n') +
           pick("  输出目录: %1", "  Output directory: %1").arg(outputDir);
}
QString processFailed(int exitCode)
{
    return pick("  ❌ 失败，退出码: %1", "  ❌ Failed, exit code: %1").arg(exitCode);
}
QString processCrashed(int exitCode)
{
    // 0xC0000135: the operating system could not find a library the processor needs.
    const bool missingLibrary = static_cast<quint32>(exitCode) == 0xC0000135u;
    const QString hint = missingLibrary
                             ? pick("  ⚠ 处理器文件夹不完整，请确认所需文件齐全",
                                    "  ⚠ Processor folder incomplete; verify all required files are present")
                             : pick("  ⚠ 请确认处理器程序及 processor 文件夹中的依赖文件完好",
                                    "  ⚠ Ensure the processor executable and its dependencies in the "
                                    "processor folder are intact");
    return pick("  ❌ 进程崩溃 (exitCode=0x%1)", "  ❌ Process crashed (exitCode=0x%1)").arg(hex8(exitCode)) +
           QLatin1Char('\n') + hint;
}
QString processStartFailed(const QString &error)
{
    return pick("  ❌ 无法启动进程: %1", "  ❌ Failed to start process: %1").arg(error);
}
QString processingStopped() { return pick("■ 处理已停止", "■ Processing stopped"); }
QString preprocFailedUseOriginal()
{
    return pick("  ⚠ 预处理失败；使用原图", "  ⚠ Preprocessing failed; using original");
}
QString rowDone() { return pick("  ✅ 完成", "  ✅ Done"); }
QString workDirLog(const QString &dir) { return pick("  工作目录: %1", "  Working directory: %1").arg(dir); }
QString workDirMissing(const QString &dir)
{
    return pick("  ❌ 工作目录不存在: %1", "  ❌ Working directory missing: %1").arg(dir);
}
QString configLoaded(const QString &path) { return pick("已加载配置: %1", "Config loaded: %1").arg(path); }
QString configLoadWarning(const QString &error)
{
    return QStringLiteral("⚠ ") + error +
           pick(" 将使用界面中的默认路径。", " Using default paths from the UI.");
}
QString configReloaded() { return pick("配置已重新加载。", "Config reloaded."); }
QString unknownPanelType(const QString &type)
{
    return pick("未知的面板类型: ", "Unknown panel type: ") + type;
}
QString exeNotFound(const QString &variantName, const QString &configName)
{
    return pick("未找到处理器可执行文件（%1）。请检查 %2。", "Processor executable not found (%1). Check %2.")
        .arg(variantName, configName);
}
QString copyFailed(const QString &source, const QString &target)
{
    return pick("复制失败: %1 → %2", "Copy failed: %1 → %2").arg(source, target);
}
QString processingInProgress()
{
    return pick("正在处理中，请稍候。", "Processing in progress. Please wait.");
}
QString processingCompleteTitle() { return pick("TF 卡内容已就绪", "Ready for Your TF Card"); }
QString processingCompleteOkButton() { return pick("确定并打开 vl_play", "OK and open the vl_play"); }
QString processingCompleteHtml()
{
    return pick("<p><b>播放包已生成。</b></p>"
                "<ol>"
                "<li>将 TF 卡连接到电脑。</li>"
                "<li>把整个 <b>vl_play</b> 文件夹复制到 TF 卡的<b>根目录</b>（不要放进子文件夹）。</li>"
                "<li>安全弹出 TF 卡，插入相框，相框会自动开始播放。</li>"
                "</ol>",
                "<p><b>Your playback package is ready.</b></p>"
                "<ol>"
                "<li>Connect the TF card to your computer.</li>"
                "<li>Copy the whole <b>vl_play</b> folder to the <b>root</b> of the TF card "
                "(not into a subfolder).</li>"
                "<li>Eject the card safely and insert it into the frame; playback starts by itself.</li>"
                "</ol>");
}
QString playlistExportSkippedJpgOnly()
{
    return pick("⚠ 仅 JPG 预览模式：跳过播放列表导出", "⚠ JPG preview only: playlist export skipped");
}

// --- Playlist results ---

QString missingBinList(const QString &names)
{
    return pick("缺少 BIN 的文件:\n%1", "Files missing BIN:\n%1").arg(names);
}
QString missingBinCount(int count, const QString &names)
{
    return pick("%1 个文件缺少 BIN，将跳过:\n%2", "%1 file(s) missing BIN; will skip:\n%2")
        .arg(num(count), names);
}
QString playlistCreateFailed(const QString &error)
{
    return pick("❌ 创建播放列表失败: ", "❌ Failed to create playlist: ") + error;
}
QString playlistCreateFailedTitle() { return pick("创建失败", "Create Failed"); }
QString playlistPartialMissing(const QString &message)
{
    return message + pick("\n\n是否继续创建播放列表？", "\n\nContinue creating the playlist?");
}
QString playlistPartialMissingTitle() { return pick("部分文件缺失", "Some Files Missing"); }
QString playlistSaveLocationMissing()
{
    return pick("请先设置播放列表保存位置。", "Set the playlist save location first.");
}
QString playlistSaveLocationNotSet() { return pick("未设置保存位置。", "Save location not set."); }
QString dirNotExistPlaylist()
{
    return pick("播放列表文件夹不存在。请先完成处理。",
                "Playlist folder does not exist. Finish processing first.");
}
QString dirNotExistOutput()
{
    return pick("输出文件夹不存在。请先完成处理。", "Output folder does not exist. Finish processing first.");
}
QString playlistDirExists(const QString &path)
{
    return pick("目标文件夹已存在:\n%1\n\n是否覆盖 BIN 和 playlist.json？",
                "Target folder already exists:\n%1\n\nOverwrite BIN and playlist.json?")
        .arg(path);
}
QString playlistDirExistsTitle() { return pick("文件夹已存在", "Folder Exists"); }
QString playlistCreated(const QString &folder, int frames, int /*intervalMinutes: shown in the log line*/)
{
    return pick("播放列表已创建:\n%1\n\n%2 个 BIN 文件和 playlist.json\n请将 vl_play 文件夹复制到 TF "
                "卡根目录。",
                "Playlist created:\n%1\n\n%2 BIN file(s) and playlist.json\n"
                "Copy the vl_play folder to the TF card root.")
        .arg(folder, num(frames));
}
QString playlistCreatedTitle() { return pick("已创建", "Created"); }
QString playlistCreatedLog(const QString &folder, int frames, int intervalMinutes)
{
    return pick("✅ 播放列表已创建: %1（%2 帧，间隔=%3 分钟）",
                "✅ Playlist created: %1 (%2 frames, interval=%3 min)")
        .arg(folder, num(frames), num(intervalMinutes));
}
QString playlistCannotCreateTitle() { return pick("无法创建播放列表", "Cannot Create Playlist"); }
QString writePlaylistFailed(const QString &path)
{
    return pick("写入 playlist.json 失败: %1", "Failed to write playlist.json: %1").arg(path);
}
QString playlistExportFailed(const QString &error)
{
    return pick("⚠ 播放列表导出失败: ", "⚠ Playlist export failed: ") + error;
}

// --- Processor check ---

QString processorStartupCheckTitle() { return pick("处理器检查失败", "Processor Check Failed"); }
QString processorStartupCheckFailed(const QString &executable, const QString &workDir,
                                    const QString &errorLine)
{
    return pick("图像处理器未通过启动自检（TARN-lite --help）。\n\n"
                "可执行文件: %1\n工作目录: %2\n\n%3\n"
                "请重新安装，或从完整安装包恢复 processor 文件夹。",
                "The image processor failed the startup self-test (TARN-lite --help).\n\n"
                "Executable: %1\nWorking directory: %2\n\n%3\n"
                "Please reinstall or restore the processor folder from the full package.")
        .arg(executable, workDir, errorLine);
}
QString processorStartupCheckMissingWorkDir(const QString &dir)
{
    const QString shown = dir.isEmpty() ? pick("（未配置）", "(not configured)") : dir;
    return pick("处理器工作目录不存在:\n%1", "Processor working directory missing:\n%1").arg(shown);
}
QString processorDirIncomplete(const QString &missing, const QString &dir)
{
    return pick("处理器文件夹不完整。缺少: %1\n目录: %2\n请重新安装，或从完整安装包恢复 processor 文件夹。",
                "Processor folder is incomplete. Missing: %1\nDirectory: %2\n"
                "Please reinstall or restore the processor folder from the full package.")
        .arg(missing, dir);
}
QString processorSelfTestStartFailed(const QString &error)
{
    return pick("错误: 无法启动进程: %1", "Error: failed to start process: %1").arg(error);
}
QString processorSelfTestTimedOut()
{
    return pick("错误: 处理器自检超时。", "Error: processor self-test timed out.");
}
QString processorSelfTestCrashed(int exitCode)
{
    return pick("错误: 进程崩溃 (exitCode=0x%1)", "Error: process crashed (exitCode=0x%1)")
        .arg(hex8(exitCode));
}
QString processorSelfTestAbnormalExit(int exitCode)
{
    return pick("错误: 异常退出 (exitCode=%1)", "Error: abnormal exit (exitCode=%1)").arg(exitCode);
}

// --- Messages of the configuration reader and the package writer ---

QString configFileNotFound(const QString &fileName)
{
    return pick("未找到 %1", "%1 not found").arg(fileName);
}
QString configFileUnreadable(const QString &path)
{
    return pick("无法读取配置文件: %1", "Cannot read the configuration file: %1").arg(path);
}
QString configJsonParseFailed(const QString &error)
{
    return pick("配置文件 JSON 解析失败: %1", "The configuration file is not valid JSON: %1").arg(error);
}
QString configMissingVariants()
{
    return pick("配置文件缺少 variants 节点", "The configuration file has no \"variants\" section");
}
QString configVariantMissingExecutable(const QString &id)
{
    return pick("variants.%1 缺少 executable", "variants.%1 has no \"executable\"").arg(id);
}
QString playlistFrameCountMismatch()
{
    return pick("帧列表与源文件数量不一致。", "The frame list and the source files differ in number.");
}
QString playlistNeedsFrame()
{
    return pick("播放列表至少需要一帧 BIN 文件。", "A playlist needs at least one BIN frame.");
}
QString playlistIntervalTooShort()
{
    return pick("轮播间隔至少为 3 分钟。", "The slideshow interval must be at least 3 minutes.");
}
QString playlistIntervalTooLong()
{
    return pick("轮播间隔不能超过 50000 分钟。", "The slideshow interval cannot exceed 50000 minutes.");
}
QString playlistOutputDirMissing()
{
    return pick("请指定 vl_play 输出目录。", "Specify the vl_play output folder.");
}
QString playlistCannotCreateDir(const QString &path)
{
    return pick("无法创建目录: %1", "Cannot create the folder: %1").arg(path);
}
QString playlistBinMissing(const QString &path)
{
    return pick("BIN 文件不存在: %1", "BIN file does not exist: %1").arg(path);
}
QString playlistCannotOpenJson(const QString &path)
{
    return pick("无法写入 playlist.json: %1", "Cannot write playlist.json: %1").arg(path);
}

} // namespace Str
