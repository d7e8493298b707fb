// The batch bar's Auto-frame: the checked rows framed around their faces, which are looked for
// first (FaceSearch, on worker threads) where adding did not find them. Rows are known by id
// while their faces are looked for, so that moving or removing rows meanwhile is safe.
#include "app/MainWindow.h"

#include "images/FaceSearch.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"
#include "ui/AppStrings.h"

#include <QMessageBox>
#include <QPushButton>

int MainWindow::autoFrameCheckedRows()
{
    const QList<int> rows = checkedRows();
    if (rows.isEmpty()) {
        QMessageBox::information(this, Str::batchAutoFrameButton(), Str::selectImagesForBatch());
        return 0;
    }
    QList<FaceSearch::Picture> unknown;
    int framed = 0;
    ++m_undoPaused; // the rows framed now are one step, with those framed as their faces come
    for (int row : rows) {
        PreprocWidget *widget = preprocWidgetAt(row);
        if (!widget)
            continue;
        if (widget->subjects()) {
            widget->frameAroundSubjects(*widget->subjects(), true);
            ++framed;
        } else {
            unknown.append({rowId(row), widget->sourcePath()});
        }
    }
    --m_undoPaused;
    recordTableChange(Str::undoAutoFrame());
    if (framed > 0)
        appendLog(Str::batchAutoFrameApplied(framed));
    if (!unknown.isEmpty()) {
        if (!m_faceSearch) {
            m_faceSearch = new FaceSearch(this);
            connect(m_faceSearch, &FaceSearch::found, this, &MainWindow::onFacesFound);
            connect(m_faceSearch, &FaceSearch::finished, this, &MainWindow::onFaceSearchFinished);
        }
        m_faceSearch->add(unknown);
        showFaceSearchProgress();
    }
    return framed + int(unknown.size());
}

void MainWindow::onFacesFound(quint64 id, const PictureSubjects &subjects)
{
    const int row = rowForId(id);
    if (PreprocWidget *widget = row >= 0 ? preprocWidgetAt(row) : nullptr) {
        ++m_undoPaused; // part of the Auto-frame step (taken in when the search ends)
        widget->frameAroundSubjects(subjects, true);
        --m_undoPaused;
        ++m_faceSearchFramed;
    }
    showFaceSearchProgress();
}

void MainWindow::onFaceSearchFinished()
{
    if (m_faceSearchFramed > 0)
        appendLog(Str::batchAutoFrameApplied(m_faceSearchFramed));
    absorbTableChange(true); // redoing the Auto-frame frames these rows too
    m_faceSearchFramed = 0;
    showFaceSearchProgress();
}

void MainWindow::showFaceSearchProgress()
{
    if (!m_batchAutoFrameButton)
        return;
    const bool busy = m_faceSearch && m_faceSearch->isBusy();
    m_batchAutoFrameButton->setText(
        busy ? Str::batchAutoFrameSearching(m_faceSearch->done(), m_faceSearch->total())
             : Str::batchAutoFrameButton());
}

void MainWindow::keepFaceSearchToRows()
{
    if (!m_faceSearch || !m_faceSearch->isBusy())
        return;
    QList<quint64> ids;
    for (int row = 0; m_imageTable && row < m_imageTable->rowCount(); ++row)
        ids << rowId(row);
    m_faceSearch->keepOnly(ids);
    showFaceSearchProgress();
}
