#pragma once

#include "run/RowStatus.h"

#include <QColor>

class QTableWidgetItem;

// A row's status as the table shows and keeps it: on the row's status cell, with its text and
// the colours of the light or dark look.
namespace Str {

int rowStatusUserRole();
QColor rowStatusColor(RowStatus status);
QColor rowStatusTextColor(RowStatus status);
int rowStatusFromItem(const QTableWidgetItem *item);
bool rowStatusIsPending(const QTableWidgetItem *item);
void applyRowStatus(QTableWidgetItem *item, RowStatus status, int exitCode = 0);

} // namespace Str
