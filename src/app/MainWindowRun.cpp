// The processing run, as the window shows it: the run engine (PackageJob) processes the
// pending rows and reports; the window shows their statuses, the log and the progress, then
// writes the package of all Done rows and shows how it went.
#include "app/MainWindow.h"

#include "images/ImageTableWidget.h"
#include "playlist/Volumes.h"
#include "ui/AppBranding.h"
#include "ui/RowStatusCell.h"

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>

void MainWindow::setListEditingEnabled(bool enabled)
{
    for (QPushButton *button : {m_addImagesButton, m_addFolderButton, m_removeButton, m_clearButton}) {
        if (button)
            button->setEnabled(enabled);
    }
    for (QAction *action : {m_actionOpenList, m_actionSaveList, m_actionSaveListAs}) {
        if (action)
            action->setEnabled(enabled);
    }
    if (m_recentListsMenu)
        m_recentListsMenu->setEnabled(enabled);
    if (enabled)
        absorbTableChange(); // what the run did to the rows is where the next step starts from
    updateUndoActions();
    updateCopyToCardButton();
}

void MainWindow::onStartProcess()
{
    if (!validateSettings())
        return;
    // The key is read once, here: the whole run and its package are made from this snapshot.
    if (!takeKeySnapshotForRun() || !checkSaveLocationForRun())
        return;
    // Every row is the run's, one without a picture too (it fails as the processor finds it).
    for (int row = 0; row < m_imageTable->rowCount(); ++row) {
        if (rowId(row) == 0) {
            if (!m_imageTable->item(row, FileColumn))
                m_imageTable->setItem(row, FileColumn, new QTableWidgetItem);
            m_imageTable->item(row, FileColumn)->setData(kRowIdRole, m_nextRowId++);
        }
    }
    // Rows finished with another picture, state, frame or key are to be made again.
    revalidateRows(m_runKey->fingerprint());

    if (m_job->countWithStatus({RowStatus::Pending}) == 0) {
        const auto answer = QMessageBox::question(this, Str::confirmTitle(), Str::confirmReprocessAll(),
                                                  QMessageBox::Yes | QMessageBox::No, QMessageBox::NoButton);
        if (answer != QMessageBox::Yes)
            return;
        for (int row = 0; row < m_imageTable->rowCount(); ++row)
            markRowChanged(row);
    }

    // Outputs of finished rows stay: the run adds to them.
    QDir().mkpath(playlistParentDir());
    QDir().mkpath(liteBinStagingDir());
    m_job->setProcessor(jobProcessor());
    m_job->setProcessorsAtOnce(processorsAtOnce());

    m_processing = true;
    const int rows = m_imageTable->rowCount();
    m_progressBar->setRange(0, rows);
    m_progressBar->setValue(0);
    m_progressBar->setFormat(Str::progressFraction(0, rows));
    m_progressBar->show();

    m_startButton->setEnabled(false);
    m_stopButton->setEnabled(true);
    setListEditingEnabled(false);

    m_logView->clear();
    if (m_analysisOnlyCheck && m_analysisOnlyCheck->isChecked())
        appendLog(Str::startAnalysis(rows, m_analysisOutputEdit ? m_analysisOutputEdit->text().trimmed()
                                                                : QString()));
    else
        appendLog(Str::startProcessingWithPlaylist(rows, QDir::toNativeSeparators(playlistParentDir())));
    appendLog(Str::logSeparator());
    processNext();
}

int MainWindow::processorsAtOnce() const { return m_processorsSpin ? m_processorsSpin->value() : 1; }

void MainWindow::processNext()
{
    // Every pending row is processed, in table order, checked or not (PackageJob).
    if (!m_processing)
        return;
    if (m_job->isRunning())
        m_job->startNext();
    else if (!m_job->start(*m_runKey))
        finishRun();
}

void MainWindow::onJobStatusChanged(quint64 id, RowStatus status, int exitCode)
{
    const int row = rowForId(id);
    if (row < 0)
        return;
    QTableWidgetItem *item = m_imageTable->item(row, StatusColumn);
    Str::applyRowStatus(item, status, exitCode);
    if (status == RowStatus::Processing)
        m_imageTable->scrollToItem(item);
}

void MainWindow::onJobItemLogged(quint64 id, int number)
{
    Q_UNUSED(id)
    if (!m_processing)
        return; // a processor killed by Stop ends after it: the bar keeps what is done
    m_progressBar->setValue(number);
    m_progressBar->setFormat(Str::progressFraction(number, m_imageTable->rowCount()));
}

void MainWindow::finishRun()
{
    m_processing = false;
    // The frames the table holds now: earlier runs' count as this run's do.
    const int rows = m_imageTable->rowCount();
    const int done = int(m_job->frames().size());
    m_progressBar->setValue(rows);
    m_progressBar->setFormat(Str::processingProgress(done, rows));
    appendLog(Str::logSeparator());
    appendLog(Str::allDone(done, rows));
    // The package is made of every Done row, this run's and earlier runs' alike. A failure is
    // shown; the rows keep their outputs, so Retry writes the package once there is room.
    for (bool retry = rowCountWithStatus({RowStatus::Done}) > 0; retry;) {
        QString failure;
        retry = false;
        if (runPlaylistExport(false, &failure))
            showProcessingCompleteDialog();
        else if (!failure.isEmpty())
            retry = QMessageBox::critical(this, Str::playlistCreateFailedTitle(), failure,
                                          QMessageBox::Retry | QMessageBox::Close,
                                          QMessageBox::Close) == QMessageBox::Retry;
    }
    m_startButton->setEnabled(true);
    m_stopButton->setEnabled(false);
    setListEditingEnabled(true);
}

void MainWindow::onStopProcess()
{
    if (!m_processing)
        return;
    m_processing = false;
    m_job->stop(); // every processor is killed; its row is Pending again once it has ended
    const int rows = m_imageTable->rowCount();
    const int done = int(m_job->frames().size());
    m_progressBar->setValue(done);
    m_progressBar->setFormat(Str::processingProgress(done, rows)); // what is done, not what was begun
    m_startButton->setEnabled(true);
    m_stopButton->setEnabled(false);
    setListEditingEnabled(true);
}

void MainWindow::showProcessingCompleteDialog()
{
    QMessageBox box(this);
    AppBranding::applyWindowIcon(&box);
    box.setIcon(QMessageBox::Information);
    box.setWindowTitle(Str::processingCompleteTitle());
    box.setTextFormat(Qt::RichText);
    box.setText(Str::processingCompleteSummaryHtml(
        m_packageFrames, m_imageTable->rowCount(),
        rowCountWithStatus({Str::RowStatus::Failed, Str::RowStatus::StartFailed, Str::RowStatus::Cancelled,
                            Str::RowStatus::Crashed, Str::RowStatus::ExitCodeFailed})));
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse |
                                Qt::LinksAccessibleByKeyboard);
    QPushButton *open = box.addButton(Str::processingCompleteOkButton(), QMessageBox::AcceptRole);
    // With a card in the computer, the box offers to copy the package onto it.
    QPushButton *copy = Volumes::cards().isEmpty()
                            ? nullptr
                            : box.addButton(Str::copyToCardMainButton(), QMessageBox::ActionRole);
    box.exec();
    if (box.clickedButton() == open)
        openOutputOrPlaylistDir();
    else if (copy && box.clickedButton() == copy)
        onCopyToCard();
}
