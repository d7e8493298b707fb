// Texts of the command lines: the program's own (--help), and velora-pack's help, refusals and
// progress.
#include "ui/AppStrings.h"

namespace Str {

QString launchDescription()
{
    return pick("为 Velora 电子纸相框制作 TF 卡播放包。",
                "Prepares the TF card playback package of a Velora e-paper photo frame.");
}

QString launchPositional()
{
    return pick("启动时添加的图片或文件夹（与拖放到窗口相同）。",
                "Pictures or folders to add at start, as if dropped on the window.");
}

QString userGuideLinkText() { return pick("使用指南", "User guide"); }

QString packDescription()
{
    return pick("为 Velora 相框制作播放包（vl_play 文件夹），与窗口程序的做法相同。",
                "Makes the playback package (the vl_play folder) for a Velora Frame, as the window does.");
}

QString packPositional()
{
    return pick("要加入的图片，或其中的图片要加入的文件夹。",
                "Pictures to add, or folders whose pictures to add.");
}
QString packOptionOut()
{
    return pick("播放包 vl_play 写入此文件夹（必需，除非列表给出保存位置）。",
                "Write the package vl_play into DIR (required unless the list gives a save location).");
}
QString packOptionKey() { return pick("相框的设备密钥文件。", "The frame's device key file."); }
QString packOptionPanel()
{
    return pick("相框型号：133、070、100、253 或 285（默认 133，或密钥中的型号）。",
                "Frame model: 133, 070, 100, 253 or 285 (default 133, or the key's).");
}
QString packOptionLandscape() { return pick("相框横向放置。", "The frame hangs in landscape."); }
QString packOptionFill()
{
    return pick("所有图片的填充方式：模糊、白色、黑色或居中裁剪。",
                "Fill mode of every picture: blur, white, black or crop (centre crop).");
}
QString packOptionInterval()
{
    return pick("轮播间隔（分钟，3–50000，默认 30）。",
                "Slideshow interval in minutes (3–50000, default 30).");
}
QString packOptionJobs()
{
    return pick("同时运行的处理器数（1 到本机核心数，默认 1）。若有图片处理失败，请改回 1。",
                "Processors at once (1 to the number of cores, default 1). If pictures fail, go back to 1.");
}
QString packBadJobs(const QString &value, int most)
{
    return pick("处理器数必须是 1 到 %2 之间的整数: %1", "The processors at once must be 1 to %2: %1")
        .arg(value)
        .arg(most);
}
QString packOptionNoLoop() { return pick("不循环播放。", "Do not loop playback."); }
QString packOptionList()
{
    return pick("从图片列表读取图片、各自的设置和播放设置。",
                "Take the pictures, their states and the settings from a picture list.");
}
QString packOptionVerbose() { return pick("同时显示处理器的输出。", "Also show the processor's output."); }
QString packOptionHelp() { return pick("显示此帮助。", "Show this help."); }
QString packOptionVersion() { return pick("显示版本。", "Show the version."); }

QString packExitCodes()
{
    return pick("退出码:\n"
                "  0  已写入播放包\n"
                "  1  未写入播放包（没有图片处理成功，或无法写入）\n"
                "  2  命令行有误\n"
                "  3  找不到处理器或其配置\n"
                "  4  设备密钥文件无法读取或与型号不符\n",
                "Exit codes:\n"
                "  0  the package was written\n"
                "  1  no package was written (no picture was made, or it could not be written)\n"
                "  2  the command line is wrong\n"
                "  3  the processor or its configuration was not found\n"
                "  4  the device key file cannot be read or is for another frame model\n");
}

QString packSeeHelp() { return pick("用 --help 查看用法。", "See --help for the usage."); }
QString packPictureMissing(const QString &path)
{
    return pick("找不到图片或文件夹: %1", "No such picture or folder: %1").arg(path);
}
QString packBadPanel(const QString &panel)
{
    return pick("未知的相框型号: %1", "Unknown frame model: %1").arg(panel);
}
QString packBadFill(const QString &fill)
{
    return pick("未知的填充方式: %1（可用 blur、white、black、crop）",
                "Unknown fill mode: %1 (use blur, white, black or crop)")
        .arg(fill);
}
QString packBadInterval(const QString &value)
{
    return pick("轮播间隔必须是 3 到 50000 之间的分钟数: %1", "The interval must be 3 to 50000 minutes: %1")
        .arg(value);
}
QString packNoOutput()
{
    return pick("请用 --out 指定播放包的保存位置。", "Name the package's save location with --out.");
}
QString packNoPictures() { return pick("没有要处理的图片。", "There are no pictures to process."); }

QString packProgressLine(int number, int total, const QString &path, const QString &status)
{
    return QStringLiteral("[%1/%2] %3: %4")
        .arg(QString::number(number), QString::number(total), path, status);
}

QString packNothingMade(int total)
{
    return pick("❌ 没有一张图片处理成功（共 %1 张），未写入播放包。",
                "❌ No picture was made (of %1); no package was written.")
        .arg(total);
}

QString packNothingMadeHint()
{
    return pick("每张图片的失败原因见上方；加 --verbose 可查看处理程序的输出。",
                "Each picture's reason is above; add --verbose to see the processor's output.");
}

} // namespace Str
