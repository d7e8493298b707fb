// The image table: row order, selection, removal, row statuses and per-row temporary files.
#include "app/MainWindow.h"

#include "images/DecodeQueue.h"
#include "images/FaceSearch.h"
#include "images/ImageLoader.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PictureGrid.h"
#include "preprocess/PreprocWidget.h"
#include "ui/RowStatusCell.h"

#include <QCheckBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

PreprocWidget *MainWindow::preprocWidgetAt(int row) const
{
    return m_imageTable ? qobject_cast<PreprocWidget *>(m_imageTable->cellWidget(row, FileColumn)) : nullptr;
}

QList<int> MainWindow::checkedRows() const
{
    return isGridShown() ? m_pictureGrid->selectedRowNumbers() : checkedRowsInTable();
}

QList<int> MainWindow::checkedRowsInTable() const
{
    QList<int> rows;
    for (int row = 0; m_imageTable && row < m_imageTable->rowCount(); ++row) {
        const QTableWidgetItem *item = m_imageTable->item(row, SelectColumn);
        if (item && item->checkState() == Qt::Checked)
            rows << row;
    }
    return rows;
}

QWidget *MainWindow::createRowReorderWidget(int /*row: not kept, each click finds its row anew*/)
{
    auto *widget = new QWidget;
    auto *layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 2, 0, 2);
    layout->setSpacing(2);
    const auto makeButton = [widget, layout](const QString &text, const QString &tip) {
        auto *button = new QPushButton(text, widget);
        button->setFixedSize(24, 22);
        button->setToolTip(tip);
        button->setObjectName(QStringLiteral("tarnRowReorderBtn"));
        layout->addWidget(button, 0, Qt::AlignHCenter);
        return button;
    };
    QPushButton *up = makeButton(QStringLiteral("↑"), Str::moveRowUpTip());
    QPushButton *down = makeButton(QStringLiteral("↓"), Str::moveRowDownTip());
    connect(up, &QPushButton::clicked, this, [this, up] { moveTableRowUp(findRowForReorderButton(up)); });
    connect(down, &QPushButton::clicked, this,
            [this, down] { moveTableRowDown(findRowForReorderButton(down)); });
    return widget;
}

int MainWindow::findRowForReorderButton(QWidget *button) const
{
    if (!m_imageTable || !button)
        return -1;
    for (int row = 0; row < m_imageTable->rowCount(); ++row) {
        QWidget *cell = m_imageTable->cellWidget(row, OrderColumn);
        if (cell && (cell == button || cell->isAncestorOf(button)))
            return row;
    }
    return -1;
}

void MainWindow::moveTableRowUp(int row)
{
    if (!m_imageTable || row <= 0 || row >= m_imageTable->rowCount())
        return;
    m_imageTable->moveRow(row, row - 1);
    m_imageTable->selectRow(row - 1);
    syncJobOrder(); // a run goes on in the new order
    recordTableChange(Str::undoMovePictures());
}

void MainWindow::moveTableRowDown(int row)
{
    if (!m_imageTable || row < 0 || row >= m_imageTable->rowCount() - 1)
        return;
    m_imageTable->moveRow(row, row + 1);
    m_imageTable->selectRow(row + 1);
    syncJobOrder(); // a run goes on in the new order
    recordTableChange(Str::undoMovePictures());
}

void MainWindow::swapRowContent(int a, int b)
{
    // The reorder widgets stay: they find their row anew on each click.
    auto *thumbA = qobject_cast<QLabel *>(m_imageTable->cellWidget(a, ThumbColumn));
    auto *thumbB = qobject_cast<QLabel *>(m_imageTable->cellWidget(b, ThumbColumn));
    if (thumbA && thumbB) {
        const QPixmap pixmap = thumbA->pixmap();
        thumbA->setPixmap(thumbB->pixmap());
        thumbB->setPixmap(pixmap);
    }
    PreprocWidget *widgetA = preprocWidgetAt(a);
    PreprocWidget *widgetB = preprocWidgetAt(b);
    if (widgetA && widgetB)
        widgetA->swapContentWith(widgetB);
}

void MainWindow::onSelectAllToggled(bool checked)
{
    for (int row = 0; row < m_imageTable->rowCount(); ++row) {
        if (QTableWidgetItem *item = m_imageTable->item(row, SelectColumn))
            item->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    }
    syncGridSelection(); // the grid's tiles at once
}

void MainWindow::onRemoveSelected()
{
    if (m_processing) {
        QMessageBox::warning(this, Str::noticeTitle(), Str::stopBeforeRemove());
        return;
    }
    stopAdding(); // an adding under way adds no more (and its rows keep their places)
    QList<int> rows = checkedRows();
    if (rows.isEmpty()) {
        for (const QTableWidgetItem *item : m_imageTable->selectedItems()) {
            if (!rows.contains(item->row()))
                rows << item->row();
        }
    }
    removeRows(rows);
    keepFaceSearchToRows(); // the faces of removed rows are not looked for
    if (m_selectAllCheck)
        m_selectAllCheck->setChecked(false);
    updateCount();
    recordTableChange(Str::undoRemovePictures());
}

void MainWindow::removeRows(QList<int> rows)
{
    // Highest first, so that removing never shifts a row still to be removed.
    std::sort(rows.begin(), rows.end(), std::greater<int>());
    for (int row : std::as_const(rows)) {
        cleanupTempFile(row);
        cleanupHeicCache(row);
        discardOutput(row);
        m_imageTable->removeRow(row);
    }
}

void MainWindow::onClearAll()
{
    if (m_processing) {
        QMessageBox::warning(this, Str::noticeTitle(), Str::stopBeforeClear());
        return;
    }
    stopAdding(); // an adding under way adds no more
    if (m_faceSearch)
        m_faceSearch->cancel(); // and the faces Auto-frame looks for are not looked for
    for (int row = 0; row < m_imageTable->rowCount(); ++row) {
        cleanupTempFile(row);
        cleanupHeicCache(row);
        discardOutput(row);
    }
    m_imageTable->setRowCount(0);
    updateCount(); // the select-all box is left as it is, unlike a removal
    recordTableChange(Str::undoClearAll());
}

void MainWindow::cleanupTempFile(int row)
{
    QTableWidgetItem *item = m_imageTable ? m_imageTable->item(row, FileColumn) : nullptr;
    if (!item)
        return;
    const QString path = item->data(kTempPreprocRole).toString();
    if (!path.isEmpty()) {
        PackageJob::removeRender(path, renderDir());
        item->setData(kTempPreprocRole, QString());
    }
}

void MainWindow::cleanupHeicCache(int row)
{
    QTableWidgetItem *item = m_imageTable ? m_imageTable->item(row, FileColumn) : nullptr;
    if (!item)
        return;
    const QString path = item->data(kHeicCacheRole).toString();
    if (!path.isEmpty()) {
        ImageLoader::removeCachedConversion(path);
        item->setData(kHeicCacheRole, QString());
    }
}

void MainWindow::setRowStatus(int row, Str::RowStatus status, int exitCode)
{
    if (!m_imageTable)
        return;
    const quint64 id = rowId(row);
    if (id == 0) {
        Str::applyRowStatus(m_imageTable->item(row, StatusColumn), status, exitCode);
        return;
    }
    syncJobItem(row);
    m_job->setStatus(id, status, exitCode); // comes back through onJobStatusChanged
}

void MainWindow::refreshAllRowStatusText()
{
    for (int row = 0; m_imageTable && row < m_imageTable->rowCount(); ++row) {
        QTableWidgetItem *item = m_imageTable->item(row, StatusColumn);
        if (!item)
            continue;
        const auto status = static_cast<Str::RowStatus>(Str::rowStatusFromItem(item));
        int exitCode = 0;
        if (status == Str::RowStatus::ExitCodeFailed) {
            // The exit code lives only in the text: "Failed (3)" / "失败(3)".
            const QString text = item->text();
            const int open = text.indexOf(QLatin1Char('('));
            const int close = open < 0 ? -1 : text.indexOf(QLatin1Char(')'), open + 1);
            if (close > open)
                exitCode = text.mid(open + 1, close - open - 1).toInt();
        }
        Str::applyRowStatus(item, status, exitCode);
    }
}
