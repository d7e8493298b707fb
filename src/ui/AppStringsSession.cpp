// Texts of the session that is kept as the table changes and opened again at the next start.
#include "ui/AppStrings.h"

namespace Str {

QString actionReopenSession() { return pick("启动时打开上次的图片", "Reopen the Last Pictures at Start"); }
QString sessionTitle() { return pick("上次的图片", "Last Pictures"); }

QString sessionRestoreQuestion(int pictures)
{
    return pick("程序上次没有正常结束。\n\n要恢复当时表格中的 %1 "
                "张图片（及其填充、旋转、取景、色调和文字）吗？",
                "The program did not end normally last time.\n\nRestore the %1 picture(s) its table held, "
                "with their fill, rotation, framing, tone and caption?")
        .arg(pictures);
}

QString sessionUnreadable(const QString &reason, const QString &aside)
{
    if (aside.isEmpty())
        return pick("无法读取上次保存的图片表格，程序以空表格启动。\n\n%1",
                    "The table saved last time cannot be read; the program starts with an empty table.\n\n%1")
            .arg(reason);
    return pick("无法读取上次保存的图片表格，已将其移到一旁：\n%2\n\n%1\n\n程序以空表格启动。",
                "The table saved last time cannot be read. It was set aside as:\n%2\n\n%1\n\n"
                "The program starts with an empty table.")
        .arg(reason, aside);
}

QString sessionRestoredLog(int pictures)
{
    return pick("已恢复上次的 %1 张图片。", "The last %1 picture(s) are back in the table.").arg(pictures);
}

QString sessionSaveFailed(const QString &reason)
{
    return pick("⚠ 无法自动保存图片表格：%1", "⚠ The table cannot be saved automatically: %1").arg(reason);
}

QString settingsNotSaved(const QString &file)
{
    return pick("⚠ 无法保存设置：%1。本次更改的设置在下次启动时不会保留。",
                "⚠ The settings could not be saved: %1. Settings changed now will not be kept for the next "
                "start.")
        .arg(file);
}

} // namespace Str
