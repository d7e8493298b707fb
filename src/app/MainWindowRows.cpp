// Row identity: each row's id, the output the processor made for it, and the stamp of what
// that output (or its failure) was made from. A row whose input changes is Pending again.
#include "app/MainWindow.h"
#include "ui/RowStatusCell.h"

#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"
#include "run/KeySnapshot.h"

#include <QComboBox>
#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>

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

QByteArray MainWindow::rowInputStamp(int row, const QByteArray &keyFingerprint) const
{
    const QTableWidgetItem *file = m_imageTable ? m_imageTable->item(row, FileColumn) : nullptr;
    if (!file)
        return QByteArray();
    // Everything the row's frame is made from: the picture as it is on disk, its state, the
    // frame settings and the key.
    const QFileInfo source(file->data(kSourcePathRole).toString());
    QByteArray text = source.absoluteFilePath().toUtf8();
    text += '|' + QByteArray::number(source.lastModified().toMSecsSinceEpoch());
    text += '|' + QByteArray::number(source.size());
    if (const PreprocWidget *widget = preprocWidgetAt(row)) {
        text += '|' + QByteArray::number(qint32(widget->state().fillMode));
        text += '|' + QByteArray::number(widget->state().rotationDegrees);
        // The framing, exactly (a change of a pixel's worth makes another frame).
        text += '|' + QByteArray::number(widget->state().focusX, 'g', 17);
        text += '|' + QByteArray::number(widget->state().focusY, 'g', 17);
        text += '|' + QByteArray::number(widget->state().zoom, 'g', 17);
        const ToneSettings &tone = widget->state().tone;
        text += '|' + QByteArray::number(qint32(tone.preset));
        text += '|' + QByteArray::number(tone.exposure, 'g', 17);
        text += '|' + QByteArray::number(tone.contrast, 'g', 17);
        text += '|' + QByteArray::number(tone.saturation, 'g', 17);
        const CaptionSettings &caption = widget->state().caption;
        text += '|' + QByteArray::number(qint32(caption.kind)) + ',' +
                QByteArray::number(qint32(caption.corner)) + ',' + QByteArray::number(qint32(caption.style)) +
                ',' + caption.shown.toUtf8().toHex();
    }
    const QSize panel = panelResolution();
    text += '|' + QByteArray::number(panel.width()) + 'x' + QByteArray::number(panel.height());
    text += '|' + frameOrientationValue().toUtf8();
    text += '|' + (m_panelTypeCombo ? m_panelTypeCombo->currentText().toUtf8() : QByteArray());
    text += '|' + keyFingerprint;
    return QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex();
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
    if (rowId(row) != 0)
        QFile::remove(resolveOutputPathsForRow(row));
}

void MainWindow::finishRow(int row, Str::RowStatus status, int exitCode)
{
    if (status != Str::RowStatus::Done)
        discardOutput(row); // a failed or stopped row's output, if any, is not a frame
    if (QTableWidgetItem *file = m_imageTable->item(row, FileColumn))
        file->setData(kOutputStampRole, status == Str::RowStatus::Pending ? QByteArray() : m_currentRowStamp);
    setRowStatus(row, status, exitCode);
}

void MainWindow::markRowChanged(int row)
{
    const QTableWidgetItem *status = m_imageTable ? m_imageTable->item(row, StatusColumn) : nullptr;
    if (!status)
        return;
    // The row being processed is judged when its processor ends (its stamp is compared then).
    if (m_processing && rowId(row) == m_currentRowId)
        return;
    discardOutput(row);
    if (QTableWidgetItem *file = m_imageTable->item(row, FileColumn))
        file->setData(kOutputStampRole, QByteArray());
    if (!Str::rowStatusIsPending(status))
        setRowStatus(row, Str::RowStatus::Pending);
}

void MainWindow::revalidateRows() { revalidateRows(currentKeyFingerprint()); }

void MainWindow::revalidateRows(const QByteArray &keyFingerprint)
{
    for (int row = 0; m_imageTable && row < m_imageTable->rowCount(); ++row) {
        const QTableWidgetItem *file = m_imageTable->item(row, FileColumn);
        const QByteArray stamp = file ? file->data(kOutputStampRole).toByteArray() : QByteArray();
        if (stamp.isEmpty())
            continue;
        const bool outputLost =
            Str::rowStatusFromItem(m_imageTable->item(row, StatusColumn)) == int(Str::RowStatus::Done) &&
            !QFileInfo::exists(resolveOutputPathsForRow(row));
        if (outputLost || stamp != rowInputStamp(row, keyFingerprint))
            markRowChanged(row);
    }
}

void MainWindow::onRowPreprocessingChanged(PreprocWidget *widget)
{
    for (int row = 0; m_imageTable && row < m_imageTable->rowCount(); ++row) {
        if (preprocWidgetAt(row) == widget) {
            markRowChanged(row);
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
