// The row status on its cell: its colours, and how it is stored there.
#include "ui/RowStatusCell.h"

#include "ui/AppStrings.h"
#include "ui/AppTheme.h"

#include <QBrush>
#include <QTableWidgetItem>

namespace Str {

namespace {

struct StatusColours {
    QColor lightBackground;
    QColor darkBackground;
    QColor lightText;
    QColor darkText;
};

StatusColours coloursFor(RowStatus status)
{
    static const StatusColours failed{{255, 150, 150}, {74, 42, 42}, {120, 30, 30}, {240, 160, 160}};
    switch (status) {
    case RowStatus::Processing:
        return {{173, 216, 230}, {42, 74, 90}, {30, 60, 90}, {170, 212, 238}};
    case RowStatus::Done:
        return {{144, 238, 144}, {42, 74, 50}, {30, 90, 30}, {144, 220, 144}};
    case RowStatus::Cancelled:
        return {{255, 200, 100}, {74, 58, 32}, {120, 80, 20}, {224, 176, 96}};
    case RowStatus::Failed:
    case RowStatus::StartFailed:
    case RowStatus::Crashed:
    case RowStatus::ExitCodeFailed:
        return failed;
    case RowStatus::Pending:
        break;
    }
    return {{238, 238, 238}, {58, 58, 58}, {80, 80, 80}, {176, 176, 176}}; // Pending, and unknown values
}

} // namespace

int rowStatusUserRole() { return Qt::UserRole + 20; }

QColor rowStatusColor(RowStatus status)
{
    const StatusColours colours = coloursFor(status);
    return AppTheme::isDarkMode() ? colours.darkBackground : colours.lightBackground;
}

QColor rowStatusTextColor(RowStatus status)
{
    const StatusColours colours = coloursFor(status);
    return AppTheme::isDarkMode() ? colours.darkText : colours.lightText;
}

int rowStatusFromItem(const QTableWidgetItem *item)
{
    if (!item)
        return 0;
    bool ok = false;
    const int value = item->data(rowStatusUserRole()).toInt(&ok);
    return ok ? value : 0;
}

bool rowStatusIsPending(const QTableWidgetItem *item)
{
    if (!item)
        return true;
    bool ok = false;
    const int value = item->data(rowStatusUserRole()).toInt(&ok);
    return !ok || value == static_cast<int>(RowStatus::Pending);
}

void applyRowStatus(QTableWidgetItem *item, RowStatus status, int exitCode)
{
    if (!item)
        return;
    item->setData(rowStatusUserRole(), static_cast<int>(status));
    item->setText(rowStatusText(status, exitCode));
    item->setBackground(QBrush(rowStatusColor(status)));
    item->setForeground(QBrush(rowStatusTextColor(status)));
}

} // namespace Str
