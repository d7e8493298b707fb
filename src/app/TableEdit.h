#pragma once

#include "images/Likeness.h"
#include "preprocess/PreprocWidget.h"
#include "run/PackageJob.h"

#include <QList>
#include <QPixmap>
#include <QUndoCommand>

#include <functional>
#include <optional>

// One row of the table as it is, whole: enough to put it back exactly as it was.
struct RowRecord {
    quint64 id = 0;
    QString baseDir;   // the folder it was added from
    QString heicCache; // for a HEIC/HEIF picture, its converted copy
    QPixmap thumbnail; // of the picture as it is
    Likeness likeness; // what it looks like, for finding it twice
    PreprocWidget::Content content;
    bool checked = false;
    std::optional<PackageJob::Record> job; // its status, and the stamp of its kept output
};
using TableRecord = QList<RowRecord>;

// A change of the table on the undo stack: undone by putting back the rows as they were before
// it, redone by putting back the rows as they were after it. The change is made before the
// command is pushed, so its first redo does nothing. What follows by itself from the change
// (faces found for an Auto-frame) may be added to its after.
class TableEditCommand : public QUndoCommand
{
public:
    using Restore = std::function<void(const TableRecord &)>;

    TableEditCommand(const QString &text, TableRecord before, TableRecord after, Restore restore);

    void undo() override { m_restore(m_before); }
    void redo() override;
    void setAfter(const TableRecord &after) { m_after = after; }

private:
    TableRecord m_before;
    TableRecord m_after;
    Restore m_restore;
    bool m_made = false;
};

// Whether two records show the same rows in the same order, with the same states (statuses and
// check boxes aside).
bool sameRows(const TableRecord &a, const TableRecord &b);
// Whether a row's widget content differs from what a record keeps.
bool differs(const PreprocWidget::Content &a, const PreprocWidget::Content &b);
