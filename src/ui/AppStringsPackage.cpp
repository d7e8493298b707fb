// Texts of the package's integrity: the device key read once per run, the save location
// checked before a run, and the package written beside its target and swapped in.
#include "ui/AppStrings.h"

namespace Str {

namespace {
QString num(int value) { return QString::number(value); }
} // namespace

QString keyFileProblemTitle() { return pick("设备密钥文件", "Device Key File"); }

QString keyFileUnreadable(const QString &path, const QString &reason)
{
    return pick("无法读取设备密钥文件:\n%1\n\n%2\n\n请重新导入密钥文件后再开始处理。",
                "The device key file cannot be read:\n%1\n\n%2\n\n"
                "Import the key file again before you start processing.")
        .arg(path, reason);
}

QString keyFileNotAKey(const QString &path, const QString &reason)
{
    return pick("设备密钥文件无效（不是 JSON 对象）:\n%1\n\n%2\n\n请导入相框附带的密钥文件。",
                "The device key file is not a valid key file (not a JSON object):\n%1\n\n%2\n\n"
                "Import the key file that came with your frame.")
        .arg(path, reason);
}

QString keyFilePanelMismatch(const QString &path, const QString &keyType, const QString &chosenType)
{
    return pick("设备密钥文件属于相框型号 %2，但当前选择的是 %3:\n%1\n\n"
                "请选择与密钥相符的相框型号，或导入正确的密钥文件。",
                "The device key file is for frame model %2, but frame model %3 is chosen:\n%1\n\n"
                "Choose the frame model that matches the key, or import the right key file.")
        .arg(path, keyType, chosenType);
}

QString keyCopyFailed(const QString &folder, const QString &reason)
{
    return pick("  ❌ 无法把设备密钥复制到 %1 供处理程序使用：%2",
                "  ❌ The device key could not be copied for the processor into %1: %2")
        .arg(folder, reason);
}

QString packageNeedsRoom(const QString &location, const QString &needed, const QString &free)
{
    return pick(
               "%1 中没有足够的空间写入新的播放包：需要 %2，可用 %3。新的播放包写好之前旧的会保留，"
               "所以两者需要同时放得下。请腾出空间后重试。",
               "There is not enough room in %1 for the new package: it needs %2, and %3 are free. The "
               "previous "
               "package stays until the new one is complete, so both must fit for a moment. Free some space, "
               "then Retry.")
        .arg(location, needed, free);
}

QString saveLocationNotWritable(const QString &path, const QString &reason)
{
    return pick("无法写入保存位置:\n%1\n\n%2\n\n请选择一个可以写入的文件夹。",
                "Cannot write to the save location:\n%1\n\n%2\n\nChoose a folder you can write to.")
        .arg(path, reason);
}

QString packageNotAFolder(const QString &path)
{
    return pick("%1 已存在，但不是文件夹；无法在此写入播放包。",
                "%1 exists but is not a folder; the package cannot be written there.")
        .arg(path);
}

QString packageHoldsForeignFiles(const QString &path, const QStringList &names)
{
    constexpr int kShown = 8;
    QStringList shown = names.mid(0, kShown);
    if (names.size() > kShown)
        shown << QStringLiteral("…");
    return pick("文件夹 %1 中有不属于播放包的文件:\n%2\n\n请先把它们移到别处，再重新创建。没有做任何更改。",
                "The folder %1 holds files that are not part of a playback package:\n%2\n\n"
                "Move them elsewhere, then try again. Nothing was changed.")
        .arg(path, shown.join(QLatin1Char('\n')));
}

QString packageCannotReplace(const QString &path, const QString &reason)
{
    return pick("无法替换原有的播放包 %1: %2\n请关闭正在使用它的程序后重试。",
                "Cannot replace the old package %1: %2\nClose any program that uses it, then try again.")
        .arg(path, reason);
}

QString packageLeftUnchanged(const QString &path)
{
    return pick("%1 中原有的播放包保持不变。", "The previous package in %1 was left as it was.").arg(path);
}

QString packageNothingWritten() { return pick("没有写入任何播放包。", "No package was written."); }

QString withReason(const QString &message, const QString &reason)
{
    return reason.isEmpty() ? message : message + QLatin1Char('\n') + reason;
}

QString packageSummary(int frames, int rows, int failed)
{
    if (failed > 0)
        return pick("播放包包含全部 %2 张图片中的 %1 张；%3 张处理失败。",
                    "The package holds %1 of %2 picture(s); %3 failed.")
            .arg(num(frames), num(rows), num(failed));
    return pick("播放包包含全部 %2 张图片中的 %1 张。", "The package holds %1 of %2 picture(s).")
        .arg(num(frames), num(rows));
}

QString processingCompleteSummaryHtml(int frames, int rows, int failed)
{
    return QStringLiteral("<p>") + packageSummary(frames, rows, failed).toHtmlEscaped() +
           QStringLiteral("</p>") + processingCompleteHtml();
}

QString rowStoppedPending()
{
    return pick("  ■ 已停止；下次开始处理时会重新处理这张图片",
                "  ■ Stopped; this picture is processed again at the next start");
}

QString rowChangedWhileProcessing()
{
    return pick("  ⚠ 处理期间这张图片的设置已更改，将重新处理",
                "  ⚠ The picture's settings changed while it was processed; it is processed again");
}

} // namespace Str
