// The processing run: the processor over the pending rows, one after another, its output
// streamed into the log and its end turned into the row's status; then the package of all
// Done rows.
#include "app/MainWindow.h"
#include "ui/RowStatusCell.h"

#include "images/ImageLoader.h"
#include "images/ImageTableWidget.h"
#include "playlist/Volumes.h"
#include "run/ProcessorCommand.h"
#include "run/RenderAheadQueue.h"
#include "ui/AppBranding.h"

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTime>

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
    updateCopyToCardButton();
}

void MainWindow::onStartProcess()
{
    if (!validateSettings())
        return;
    waitForStoppedProcessor();
    // The key is read once, here: the whole run and its package are made from this snapshot.
    if (!takeKeySnapshotForRun() || !checkSaveLocationForRun())
        return;
    // Rows finished with another picture, state, frame or key are to be made again.
    revalidateRows(m_runKey->fingerprint());

    bool anyPending = false;
    for (int row = 0; row < m_imageTable->rowCount() && !anyPending; ++row)
        anyPending = Str::rowStatusIsPending(m_imageTable->item(row, StatusColumn));
    if (!anyPending) {
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

    m_processing = true;
    m_currentRow = -1;
    m_currentRowId = 0;
    m_successCount = 0;

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

int MainWindow::currentRunRow() const
{
    return m_currentRowId != 0 ? rowForId(m_currentRowId) : m_currentRow;
}

int MainWindow::nextPendingRow() const
{
    // Only the status decides: checked or not, every pending row is processed, in table order
    // from the current row down. Then once more from the top, for rows made Pending again
    // during the run (changed, or moved above the current one), so none is left out.
    const int rows = m_imageTable->rowCount();
    for (int row = currentRunRow() + 1; row < rows; ++row) {
        if (Str::rowStatusIsPending(m_imageTable->item(row, StatusColumn)))
            return row;
    }
    for (int row = 0; row < rows; ++row) {
        const QTableWidgetItem *status = m_imageTable->item(row, StatusColumn);
        if (status && rowId(row) != 0 && Str::rowStatusIsPending(status))
            return row;
    }
    return -1;
}

void MainWindow::processNext()
{
    if (!m_processing)
        return;

    const int row = nextPendingRow();
    if (row < 0) {
        finishRun();
        return;
    }

    m_currentRow = row;
    m_currentRowId = rowId(row);
    m_currentRowStamp = rowInputStamp(row, m_runKey->fingerprint());
    setRowStatus(row, Str::RowStatus::Processing);
    m_imageTable->scrollToItem(m_imageTable->item(row, StatusColumn));
    discardOutput(row); // nothing left from an earlier attempt may pass for this one's output
    renderAhead(row);
    startWhenRendered();
}

void MainWindow::startRow(int row, const std::optional<QString> &rendered)
{
    const QString executable = m_exeEdit->text().trimmed();
    const QString workDir = m_workDirEdit->text().trimmed();
    const QStringList args = processorArgs(row, rendered);

    const QTableWidgetItem *file = m_imageTable->item(row, FileColumn);
    appendLog(Str::rowLogHeader(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")), row + 1,
                                m_imageTable->rowCount(), file ? file->text() : QString()));
    appendLog(Str::commandLineLog(QFileInfo(executable).fileName(), args));

    if (!m_process) {
        m_process = new QProcess(this);
        connect(m_process, &QProcess::readyReadStandardOutput, this, &MainWindow::onProcessReadyReadStdOut);
        connect(m_process, &QProcess::readyReadStandardError, this, &MainWindow::onProcessReadyReadStdErr);
        connect(m_process, &QProcess::finished, this, &MainWindow::onProcessFinished);
    }

    if (m_analysisOnlyCheck && m_analysisOnlyCheck->isChecked()) {
        const QString analysisOutput =
            m_analysisOutputEdit ? m_analysisOutputEdit->text().trimmed() : QString();
        if (!analysisOutput.isEmpty())
            QDir().mkpath(QFileInfo(analysisOutput).absolutePath());
    } else if (args.size() >= 2) {
        QDir().mkpath(QFileInfo(args.at(1)).absolutePath());
    }

    appendLog(Str::workDirLog(workDir));
    if (!QFileInfo(workDir).isDir()) {
        finishRow(row, Str::RowStatus::Failed);
        appendLog(Str::workDirMissing(workDir));
        processNext();
        return;
    }

    if (!ProcessorCommand::start(m_process, executable, args, workDir)) {
        finishRow(row, Str::RowStatus::StartFailed);
        appendLog(Str::processStartFailed(m_process->errorString()));
        processNext();
    }
}

void MainWindow::logProcessOutput(const QByteArray &bytes, bool standardError)
{
    for (const QString &line : ProcessorCommand::outputLines(bytes))
        appendLog(standardError ? Str::stderrLogLine(line) : Str::stdoutLogLine(line));
}

void MainWindow::onProcessReadyReadStdOut()
{
    if (m_process)
        logProcessOutput(m_process->readAllStandardOutput(), false);
}

void MainWindow::onProcessReadyReadStdErr()
{
    if (m_process)
        logProcessOutput(m_process->readAllStandardError(), true);
}

void MainWindow::onProcessFinished(int exitCode, QProcess::ExitStatus status)
{
    onProcessReadyReadStdOut();
    onProcessReadyReadStdErr();
    // The row is found by its id: it may have moved while its processor worked.
    const int row = currentRunRow();
    m_currentRow = row;
    if (row < 0)
        return; // its row is gone (the window is being torn down)
    if (m_stopRequested) {
        // Stopped: not a result. The row is Pending again, so the next Start processes it.
        m_stopRequested = false;
        finishRow(row, Str::RowStatus::Pending);
        appendLog(Str::rowStoppedPending());
    } else if (const ProcessorCommand::Outcome outcome = ProcessorCommand::outcome(exitCode, status);
               outcome.status == Str::RowStatus::Done &&
               rowInputStamp(row, m_runKey->fingerprint()) != m_currentRowStamp) {
        // Changed while its processor worked: this output shows what the row no longer is.
        finishRow(row, Str::RowStatus::Pending);
        appendLog(Str::rowChangedWhileProcessing());
    } else {
        finishRow(row, outcome.status, outcome.exitCode);
        if (outcome.status == Str::RowStatus::Done)
            ++m_successCount;
        appendLog(outcome.log);
    }
    cleanupTempFile(row);
    m_progressBar->setValue(row + 1);
    m_progressBar->setFormat(Str::progressFraction(row + 1, m_imageTable->rowCount()));
    processNext();
}

void MainWindow::finishRun()
{
    m_processing = false;
    m_renderAhead->clear();
    ImageLoader::releaseFreedMemory();
    const int rows = m_imageTable->rowCount();
    m_progressBar->setValue(rows);
    m_progressBar->setFormat(Str::processingProgress(m_successCount, rows));
    appendLog(Str::logSeparator());
    appendLog(Str::allDone(m_successCount, rows));
    // The package is made of every Done row, this run's and earlier runs' alike. A failure is
    // shown; the rows keep their outputs, so Retry writes the package once there is room.
    for (bool retry = rowCountWithStatus({Str::RowStatus::Done}) > 0; retry;) {
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
    m_renderAhead->clear(); // renders under way are dropped, their files with them
    if (m_waitingForRender) {
        // Stopped while its picture was still being rendered: no processor ran for it yet.
        m_waitingForRender = false;
        appendLog(Str::processingStopped());
        if (const int row = currentRunRow(); row >= 0)
            setRowStatus(row, Str::RowStatus::Pending);
    } else if (m_process && m_process->state() != QProcess::NotRunning) {
        m_stopRequested = true;
        m_process->kill();
        appendLog(Str::processingStopped());
        const int row = currentRunRow();
        if (row >= 0) {
            cleanupTempFile(row);
            setRowStatus(row, Str::RowStatus::Cancelled); // until the killed process has ended
        }
    }
    m_startButton->setEnabled(true);
    m_stopButton->setEnabled(false);
    setListEditingEnabled(true);
}

void MainWindow::waitForStoppedProcessor()
{
    // A Start right after Stop: the killed processor's end is taken first, so that its row is
    // settled before the new run looks for pending rows.
    if (m_process && m_process->state() != QProcess::NotRunning)
        m_process->waitForFinished(2000);
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
