#pragma once

#include <QStyledItemDelegate>

// The item delegate of a table whose rows carry widgets: it places a cell's widget on the
// whole cell, as the standard delegate does for a cell without a check mark or an icon, but
// without laying out the cell's text first (which the standard one does for every widget of
// the table whenever the view places them again: for a thousand rows, most of the time an
// adding takes). Cells with a check mark or an icon are placed by the standard rule.
class CellWidgetDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;
};
