#include "app/TableEdit.h"

#include <utility>

TableEditCommand::TableEditCommand(const QString &text, TableRecord before, TableRecord after,
                                   Restore restore)
    : QUndoCommand(text)
    , m_before(std::move(before))
    , m_after(std::move(after))
    , m_restore(std::move(restore))
{
}

void TableEditCommand::redo()
{
    if (std::exchange(m_made, true))
        m_restore(m_after);
}

bool differs(const PreprocWidget::Content &a, const PreprocWidget::Content &b)
{
    return a.sourcePath != b.sourcePath || !(a.state == b.state) || a.followsSubjects != b.followsSubjects ||
           a.subjects.has_value() != b.subjects.has_value();
}

bool sameRows(const TableRecord &a, const TableRecord &b)
{
    if (a.size() != b.size())
        return false;
    for (int i = 0; i < a.size(); ++i) {
        if (a.at(i).id != b.at(i).id || differs(a.at(i).content, b.at(i).content))
            return false;
    }
    return true;
}
