#include "images/CellWidgetDelegate.h"

#include <QWidget>

void CellWidgetDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                              const QModelIndex &index) const
{
    if (!editor)
        return;
    if (index.data(Qt::CheckStateRole).isValid() || index.data(Qt::DecorationRole).isValid()) {
        QStyledItemDelegate::updateEditorGeometry(editor, option, index);
        return;
    }
    editor->setGeometry(option.rect);
}
