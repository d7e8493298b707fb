// The row status as a text.
#include "ui/AppStrings.h"

namespace Str {

QString rowStatusText(RowStatus status, int exitCode)
{
    switch (status) {
    case RowStatus::Pending:
        return pick("待处理", "Pending");
    case RowStatus::Processing:
        return pick("处理中...", "Processing...");
    case RowStatus::Done:
        return pick("完成 ✓", "Done ✓");
    case RowStatus::Failed:
        return pick("失败", "Failed");
    case RowStatus::StartFailed:
        return pick("启动失败", "Start failed");
    case RowStatus::Cancelled:
        return pick("已取消", "Cancelled");
    case RowStatus::Crashed:
        return pick("崩溃", "Crashed");
    case RowStatus::ExitCodeFailed:
        return pick("失败(%1)", "Failed (%1)").arg(exitCode);
    }
    return QString();
}

} // namespace Str
