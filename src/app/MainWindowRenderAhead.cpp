// The run's pictures rendered ahead: while the processor works on a row, the next rows'
// pictures are rendered on worker threads (RenderAheadQueue), and a row starts as soon as its
// picture is there.
#include "app/MainWindow.h"
#include "ui/RowStatusCell.h"

#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"
#include "run/RenderAheadQueue.h"

#include <QFileInfo>

namespace {
constexpr int kRowsAhead = 2;
}

bool MainWindow::requestRender(int row)
{
    const PreprocWidget *widget = preprocWidgetAt(row);
    const QTableWidgetItem *file = m_imageTable->item(row, FileColumn);
    if (!widget || !file || widget->state().fillMode == FillMode::Direct)
        return false;
    // A HEIC/HEIF row renders from its converted copy while that is there.
    const QString heicCache = file->data(kHeicCacheRole).toString();
    const QString source =
        !heicCache.isEmpty() && QFileInfo::exists(heicCache) ? heicCache : widget->sourcePath();
    const RenderRequest request{source, widget->state(), widget->panelResolution(), widget->isLandscape(),
                                QFileInfo(widget->sourcePath()).completeBaseName() +
                                    QStringLiteral("_preproc.jpg")};
    m_renderAhead->request(rowId(row), rowInputStamp(row, m_runKey->fingerprint()), request);
    return true;
}

void MainWindow::renderAhead(int row)
{
    requestRender(row);
    int ahead = 0;
    for (int next = row + 1; next < m_imageTable->rowCount() && ahead < kRowsAhead; ++next) {
        const QTableWidgetItem *status = m_imageTable->item(next, StatusColumn);
        if (status && rowId(next) != 0 && Str::rowStatusIsPending(status) && requestRender(next))
            ++ahead;
    }
}

void MainWindow::startWhenRendered()
{
    const int row = currentRunRow();
    const PreprocWidget *widget = preprocWidgetAt(row);
    if (!widget || widget->state().fillMode == FillMode::Direct) {
        startRow(row, std::nullopt); // sent as it is
        return;
    }
    if (const std::optional<QString> file = m_renderAhead->take(m_currentRowId, m_currentRowStamp)) {
        m_waitingForRender = false;
        startRow(row, *file);
        return;
    }
    if (!m_renderAhead->has(m_currentRowId))
        requestRender(row);
    m_waitingForRender = true; // onRenderReady goes on
}

void MainWindow::onRenderReady(quint64 rowId)
{
    if (m_processing && m_waitingForRender && rowId == m_currentRowId)
        startWhenRendered();
}
