// Texts of the picture lists: the File menu and its recent lists, and what reading or
// writing a list can meet.
#include "ui/AppStrings.h"

namespace Str {

QString actionOpenList() { return pick("打开列表…", "Open List…"); }
QString actionSaveList() { return pick("保存列表…", "Save List…"); }
QString actionSaveListAs() { return pick("列表另存为…", "Save List As…"); }
QString menuRecentLists() { return pick("最近的列表", "Recent Lists"); }
QString recentListsEmpty() { return pick("（没有最近的列表）", "(No Recent Lists)"); }
QString clearRecentLists() { return pick("清除最近的列表", "Clear Recent Lists"); }
QString openListTitle() { return pick("打开列表", "Open List"); }
QString saveListTitle() { return pick("保存列表", "Save List"); }
QString listFileFilter() { return pick("图片列表 (*.json)", "Picture lists (*.json)"); }

QString listNotJson(const QString &reason, int offset)
{
    return pick("文件不是有效的 JSON（第 %2 字节：%1）。", "The file is not valid JSON (%1 at byte %2).")
        .arg(reason, QString::number(offset));
}

QString listNotAList()
{
    return pick("该文件不是本程序的图片列表。", "The file is not a picture list of this program.");
}

QString listWrongVersion(const QString &found, int oldest, int newest)
{
    return pick("该列表的格式版本为 %1，本程序只能读取版本 %2 至 %3。",
                "The list has format version %1; this program reads versions %2 to %3.")
        .arg(found.isEmpty() ? QStringLiteral("?") : found, QString::number(oldest), QString::number(newest));
}

QString listBadSettings()
{
    return pick("列表中的设置缺失或无效。", "The list's settings are missing or invalid.");
}

QString listBadPicture(int number)
{
    if (number <= 0)
        return pick("列表中没有图片条目。", "The list has no picture entries.");
    return pick("列表中的第 %1 张图片缺失或无效。", "Picture %1 of the list is missing or invalid.")
        .arg(number);
}

QString listTooLarge()
{
    return pick("文件太大，不是图片列表。", "The file is too large to be a picture list.");
}

QString listCannotRead(const QString &path, const QString &reason)
{
    return pick("无法打开图片列表:\n%1\n\n%2\n\n图片表格未作任何更改。",
                "The picture list cannot be opened:\n%1\n\n%2\n\nThe table was not changed.")
        .arg(path, reason);
}

QString listCannotWrite(const QString &path, const QString &reason)
{
    return pick("无法保存图片列表:\n%1\n\n%2\n\n原有文件保持不变。",
                "The picture list cannot be saved:\n%1\n\n%2\n\nAn existing file there was left as it was.")
        .arg(path, reason);
}

QString listReplaceQuestion(int rows)
{
    return pick("用列表中的图片替换表格中现有的 %1 张图片？",
                "Replace the %1 picture(s) in the table with the list's pictures?")
        .arg(rows);
}

QString listMissingPictures(int count, const QString &names)
{
    return pick("列表中有 %1 个文件已不存在，未添加:\n%2",
                "%1 file(s) of the list no longer exist and were left out:\n%2")
        .arg(QString::number(count), names);
}

QString andMore(int count) { return pick("……另有 %1 个", "… and %1 more").arg(count); }

QString listBusy()
{
    return pick("正在处理图片，请先停止处理再打开或保存列表。",
                "Images are being processed. Stop processing before you open or save a list.");
}

QString listSavedLog(const QString &path, int pictures)
{
    return pick("💾 图片列表已保存（%2 张）: %1", "💾 Picture list saved (%2 picture(s)): %1")
        .arg(path, QString::number(pictures));
}

QString listOpenedLog(const QString &path, int pictures)
{
    return pick("📂 已打开图片列表（%2 张）: %1", "📂 Picture list opened (%2 picture(s)): %1")
        .arg(path, QString::number(pictures));
}

} // namespace Str
