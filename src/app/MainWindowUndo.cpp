// Undo and redo of the table: every change of its rows (adding, removing, clearing, moving,
// sorting, each row's or a batch's fill, rotation, framing, tone and caption, opening a list)
// is a step on the undo stack, which puts the rows back exactly as they were: their ids,
// states, statuses and kept outputs. Not during a run.
#include "app/MainWindow.h"

#include "app/TableEdit.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"

#include <QAction>
#include <QCoreApplication>
#include <QEventLoop>
#include <QHash>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QScopeGuard>
#include <QUndoStack>

namespace {
constexpr int kRowsBetweenEvents = 24;
} // namespace

void MainWindow::setupEditMenu()
{
    // Texts come from retranslateUi (and updateUndoActions).
    m_undoStack = new QUndoStack(this);
    m_undoStack->setUndoLimit(kUndoSteps);
    m_editMenu = menuBar()->addMenu(QString());
    m_actionUndo = m_editMenu->addAction(QString());
    m_actionRedo = m_editMenu->addAction(QString());
    m_actionUndo->setShortcut(QKeySequence::Undo);
    m_actionRedo->setShortcuts({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence::Redo});
    connect(m_actionUndo, &QAction::triggered, this, [this] {
        if (!m_processing && !m_restoring)
            m_undoStack->undo();
    });
    connect(m_actionRedo, &QAction::triggered, this, [this] {
        if (!m_processing && !m_restoring)
            m_undoStack->redo();
    });
    connect(m_undoStack, &QUndoStack::indexChanged, this, &MainWindow::updateUndoActions);
    updateUndoActions();
}

void MainWindow::updateUndoActions()
{
    if (!m_undoStack)
        return;
    const bool open = !m_processing;
    m_actionUndo->setEnabled(open && m_undoStack->canUndo());
    m_actionRedo->setEnabled(open && m_undoStack->canRedo());
    m_actionUndo->setText(Str::actionUndo(m_undoStack->canUndo() ? m_undoStack->undoText() : QString()));
    m_actionRedo->setText(Str::actionRedo(m_undoStack->canRedo() ? m_undoStack->redoText() : QString()));
}

RowRecord MainWindow::recordRow(int row) const
{
    RowRecord record;
    record.id = rowId(row);
    const QTableWidgetItem *file = m_imageTable->item(row, FileColumn);
    const QTableWidgetItem *select = m_imageTable->item(row, SelectColumn);
    record.baseDir = file ? file->data(kBaseDirRole).toString() : QString();
    record.heicCache = file ? file->data(kHeicCacheRole).toString() : QString();
    if (const auto *thumb = qobject_cast<QLabel *>(m_imageTable->cellWidget(row, ThumbColumn)))
        record.thumbnail = thumb->pixmap();
    if (const PreprocWidget *widget = preprocWidgetAt(row))
        record.content = widget->content();
    record.checked = select && select->checkState() == Qt::Checked;
    record.likeness = rowLikeness(row);
    record.job = m_job->record(record.id);
    return record;
}

TableRecord MainWindow::recordRows() const
{
    TableRecord rows;
    rows.reserve(m_imageTable->rowCount());
    for (int row = 0; row < m_imageTable->rowCount(); ++row)
        rows << recordRow(row);
    return rows;
}

void MainWindow::recordTableChange(const QString &text)
{
    if (!m_undoStack || m_undoPaused > 0)
        return;
    TableRecord after = recordRows();
    if (sameRows(after, m_undoBase)) {
        m_undoBase = after;
        return;
    }
    // During a run the table changes only in its order and statuses: taken in, not a step.
    if (!m_processing)
        m_undoStack->push(new TableEditCommand(text, m_undoBase, after,
                                               [this](const TableRecord &rows) { restoreRows(rows); }));
    m_undoBase = after;
    scheduleSessionSave();
}

void MainWindow::absorbTableChange(bool intoLastStep)
{
    if (!m_undoStack || m_undoPaused > 0)
        return;
    m_undoBase = recordRows();
    scheduleSessionSave();
    // What followed by itself from the last step (faces found after an Auto-frame) is redone
    // with it.
    if (intoLastStep && m_undoStack->index() == m_undoStack->count() && m_undoStack->count() > 0) {
        auto *last = const_cast<QUndoCommand *>(m_undoStack->command(m_undoStack->count() - 1));
        if (auto *edit = dynamic_cast<TableEditCommand *>(last))
            edit->setAfter(m_undoBase);
    }
}

void MainWindow::restoreRows(const TableRecord &rows)
{
    // A thousand rows changed at once would hold the window up while their widgets are laid out
    // again: the events run (no input) every few rows, as a batch's progress lets them.
    const QPointer<MainWindow> alive(this);
    ++m_undoPaused;
    m_restoring = true;
    const auto done = qScopeGuard([alive] {
        if (!alive)
            return;
        --alive->m_undoPaused;
        alive->m_restoring = false;
    });
    int touched = 0;
    const auto breathe = [&] {
        if (++touched % kRowsBetweenEvents == 0)
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        return bool(alive);
    };
    QHash<quint64, int> wanted;
    for (int i = 0; i < rows.size(); ++i)
        wanted.insert(rows.at(i).id, i);
    // The rows that were not there go (their outputs set aside by the engine); those that were
    // come back at the end, then everything takes its place.
    for (int row = m_imageTable->rowCount() - 1; row >= 0; --row) {
        if (wanted.contains(rowId(row)))
            continue;
        cleanupTempFile(row);
        m_job->remove(rowId(row));
        m_imageTable->removeRow(row);
        if (!breathe())
            return;
    }
    QHash<quint64, int> rowOf;
    for (int row = 0; row < m_imageTable->rowCount(); ++row)
        rowOf.insert(rowId(row), row);
    QSet<quint64> fresh;
    for (const RowRecord &record : rows) {
        if (rowOf.contains(record.id))
            continue;
        const int row = m_imageTable->rowCount();
        m_imageTable->setRowCount(row + 1);
        fillImageRow(row, record);
        rowOf.insert(record.id, row);
        fresh.insert(record.id);
        if (!breathe())
            return;
    }
    QList<int> from;
    from.reserve(rows.size());
    for (const RowRecord &record : rows)
        from << rowOf.value(record.id);
    m_imageTable->permuteRows(from);

    m_job->setFrame(jobFrame());
    for (int row = 0; row < rows.size(); ++row) {
        const RowRecord &record = rows.at(row);
        PreprocWidget *widget = preprocWidgetAt(row);
        const bool isFresh = fresh.contains(record.id);
        const bool changed = isFresh || (widget && differs(widget->content(), record.content));
        if (!changed)
            continue; // its status (a run's since) stays
        if (widget && !isFresh)
            widget->setContent(record.content);
        syncJobItem(row);
        if (record.job)
            m_job->restore(record.id, *record.job, row);
        if (!breathe())
            return;
    }
    syncJobOrder();
    revalidateRows(); // an output made from what the picture no longer is is not taken
    keepFaceSearchToRows();
    updateCount();
    m_undoBase = recordRows();
    scheduleSessionSave();
}
