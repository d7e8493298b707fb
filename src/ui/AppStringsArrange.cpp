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

} // namespace Str
