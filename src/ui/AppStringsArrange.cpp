// Texts of arranging the table: the Arrange menu, moving rows, and undo.
#include "ui/AppStrings.h"

namespace Str {

QString menuArrange() { return pick("排列(&A)", "Arrange(&A)"); }
QString actionSortByDateTaken() { return pick("按拍摄日期排序", "Sort by Date Taken"); }
QString actionSortByName() { return pick("按文件名排序", "Sort by File Name"); }
QString actionSortByFileDate() { return pick("按文件日期排序", "Sort by File Date"); }
QString actionReverseOrder() { return pick("倒序排列", "Reverse Order"); }
QString actionShuffle() { return pick("随机打乱", "Shuffle"); }
QString actionMoveRowsUp() { return pick("所选上移", "Move Selected Up"); }
QString actionMoveRowsDown() { return pick("所选下移", "Move Selected Down"); }
QString actionRemoveRows() { return pick("移除所选", "Remove Selected"); }
QString menuView() { return pick("视图(&V)", "View(&V)"); }
QString actionViewList() { return pick("列表", "List"); }
QString actionViewGrid() { return pick("网格", "Grid"); }
QString gridTileSize() { return pick("缩略图大小：", "Tile size:"); }
QString gridTileSizeTip()
{
    return pick("网格中每张图片的高度（120 到 400 像素）。",
                "How tall each picture of the grid is (120 to 400 pixels).");
}
QString menuEdit() { return pick("编辑(&E)", "Edit(&E)"); }

QString actionUndo(const QString &what)
{
    return what.isEmpty() ? pick("撤销", "Undo") : pick("撤销“%1”", "Undo %1").arg(what);
}

QString actionRedo(const QString &what)
{
    return what.isEmpty() ? pick("重做", "Redo") : pick("重做“%1”", "Redo %1").arg(what);
}

QString undoAddPictures() { return pick("添加图片", "Add Pictures"); }
QString undoRemovePictures() { return pick("移除图片", "Remove Pictures"); }
QString undoClearAll() { return pick("清空列表", "Clear All"); }
QString undoMovePictures() { return pick("移动图片", "Move Pictures"); }
QString undoChangePicture() { return pick("更改图片", "Change Picture"); }
QString undoAutoFrame() { return pick("自动取景", "Auto-frame"); }
QString undoOpenList() { return pick("打开列表", "Open List"); }

QString actionWarnDuplicates() { return pick("添加时提示重复的图片", "Warn About Duplicates When Adding"); }
QString duplicatesTitle() { return pick("重复的图片", "Duplicate Pictures"); }

QString duplicatesFound(int exact, int near, const QString &list)
{
    QString text;
    if (exact > 0)
        text += pick("%1 张图片与列表中已有的图片完全相同（内容相同，文件不同）。",
                     "%1 picture(s) are exact copies of pictures already listed (the same content in another "
                     "file).")
                    .arg(exact);
    if (near > 0) {
        if (!text.isEmpty())
            text += QLatin1Char(' ');
        text += pick("%1 张图片看起来是已有图片的另一版本（连拍、编辑过、重新压缩或缩放过）。",
                     "%1 picture(s) look like another version of a listed picture (a burst, an edit, "
                     "another quality or size).")
                    .arg(near);
    }
    text += QStringLiteral("\n\n") + list;
    if (exact > 0)
        text += pick("\n\n要跳过完全相同的副本吗？看起来相似的图片会保留。",
                     "\n\nSkip the exact copies? The pictures that only look alike stay.");
    return text;
}

QString duplicateExactLine(const QString &name, const QString &original)
{
    return pick("%1 — 与 %2 完全相同", "%1 — the same as %2").arg(name, original);
}

QString duplicateNearLine(const QString &name, const QString &original)
{
    return pick("%1 — 看起来像 %2", "%1 — looks like %2").arg(name, original);
}

QString skipExactCopies() { return pick("跳过完全相同的副本", "Skip Exact Copies"); }
QString keepAll() { return pick("全部保留", "Keep All"); }

QString exactCopiesSkipped(int count)
{
    return pick("已跳过 %1 个完全相同的副本。", "Exact copies skipped: %1.").arg(count);
}

} // namespace Str
