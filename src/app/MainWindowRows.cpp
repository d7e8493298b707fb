// Row identity: each row's id, and the run engine's items that follow the rows (their
// pictures, states and order). A row whose input changes is Pending again (PackageJob).
#include "app/MainWindow.h"

#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"
#include "run/KeySnapshot.h"
#include "ui/RowStatusCell.h"

#include <QComboBox>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>

quint64 MainWindow::rowId(int row) const
{
    const QTableWidgetItem *file = m_imageTable ? m_imageTable->item(row, FileColumn) : nullptr;
    return file ? file->data(kRowIdRole).toULongLong() : 0;
}

int MainWindow::rowForId(quint64 id) const
{
    for (int row = 0; id != 0 && m_imageTable && row < m_imageTable->rowCount(); ++row) {
        if (rowId(row) == id)
            return row;
    }
    return -1;
}

JobFrame MainWindow::jobFrame() const
{
    return JobFrame{m_panelTypeCombo ? m_panelTypeCombo->currentText().trimmed() : QString(),
                    panelResolution(), isLandscapeOrientation(), frameOrientationValue()};
}

ProcessorSetup MainWindow::jobProcessor() const
{
    // The processor as Step 1 shows it (resolved by ProcessorSetup when the variant was applied).
    const QString id = currentVariantId();
    return ProcessorSetup{
        id, m_processorConfig.variantIds().contains(id) ? m_processorConfig.variant(id) : VariantConfig(),
        m_exeEdit ? m_exeEdit->text().trimmed() : QString(),
        m_workDirEdit ? m_workDirEdit->text().trimmed() : QString(),
        m_lutEdit ? m_lutEdit->text().trimmed() : QString()};
}

JobPicture MainWindow::jobPicture(int row) const
{
    const QTableWidgetItem *file = m_imageTable->item(row, FileColumn);
    const PreprocWidget *widget = preprocWidgetAt(row);
    return JobPicture{file ? file->data(kSourcePathRole).toString() : QString(),
                      file ? file->data(kHeicCacheRole).toString() : QString(),
                      file ? file->text() : QString(), widget ? widget->state() : PreprocState()};
}

void MainWindow::syncJobItem(int row) const
{
    const quint64 id = rowId(row);
    if (id == 0 || !m_job) // no engine any more: the window is being torn down
        return;
    if (m_job->contains(id))
        m_job->update(id, jobPicture(row));
    else
        m_job->insert(id, jobPicture(row));
}

void MainWindow::syncJobOrder() const
{
    QList<quint64> ids;
    ids.reserve(m_imageTable ? m_imageTable->rowCount() : 0);
    for (int row = 0; m_imageTable && row < m_imageTable->rowCount(); ++row)
        ids << rowId(row);
    m_job->setOrder(ids);
}

void MainWindow::syncJob() const
{
    m_job->setFrame(jobFrame());
    QSet<quint64> listed;
    for (int row = 0; m_imageTable && row < m_imageTable->rowCount(); ++row) {
        syncJobItem(row);
        listed.insert(rowId(row));
    }
    for (const quint64 id : m_job->order()) {
        if (!listed.contains(id))
            m_job->remove(id);
    }
    syncJobOrder();
}

QByteArray MainWindow::rowInputStamp(int row, const QByteArray &keyFingerprint) const
{
    // Everything the row's frame is made from: the picture as it is on disk, its state, the
    // frame settings and the key (PackageJob::inputStamp), as the table holds them now.
    syncJobItem(row);
    m_job->setFrame(jobFrame());
    return m_job->inputStamp(rowId(row), keyFingerprint);
}

QByteArray MainWindow::currentKeyFingerprint() const
{
    if (m_processing && m_runKey)
        return m_runKey->fingerprint();
    const QString path = currentKeyFilePath();
    if (path.isEmpty())
        return QByteArray();
    // A key that cannot be read is not the same key as any that could.
    const KeySnapshot key = KeySnapshot::read(path, nullptr);
    return key.isNull() ? QByteArrayLiteral("unreadable") : key.fingerprint();
}

void MainWindow::discardOutput(int row)
{
    // Set aside by the engine, in case the row is put back (undo).
    if (m_job && rowId(row) != 0)
        m_job->remove(rowId(row));
}

void MainWindow::markRowChanged(int row)
{
    const quint64 id = rowId(row);
    if (id == 0 || !m_job)
        return;
    // The row being processed is judged when its processor ends (its stamp is compared then).
    syncJobItem(row);
    m_job->setFrame(jobFrame());
    m_job->markChanged(id);
}

void MainWindow::revalidateRows() { revalidateRows(currentKeyFingerprint()); }

void MainWindow::revalidateRows(const QByteArray &keyFingerprint)
{
    syncJob();
    m_job->revalidate(keyFingerprint);
}

void MainWindow::onRowPreprocessingChanged(PreprocWidget *widget)
{
    for (int row = 0; m_imageTable && row < m_imageTable->rowCount(); ++row) {
        if (preprocWidgetAt(row) == widget) {
            markRowChanged(row);
            recordTableChange(Str::undoChangePicture());
            return;
        }
    }
}

int MainWindow::rowCountWithStatus(const QList<Str::RowStatus> &statuses) const
{
    int count = 0;
    for (int row = 0; m_imageTable && row < m_imageTable->rowCount(); ++row) {
        const int status = Str::rowStatusFromItem(m_imageTable->item(row, StatusColumn));
        count += std::any_of(statuses.begin(), statuses.end(),
                             [status](Str::RowStatus s) { return int(s) == status; });
    }
    return count;
}
