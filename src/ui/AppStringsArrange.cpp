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

} // namespace Str
