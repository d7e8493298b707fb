// The processing run: the processor over the pending rows, one after another, its output
// streamed into the log and its end turned into the row's status.
#include "app/MainWindow.h"

#include "images/ImageTableWidget.h"
#include "ui/AppBranding.h"

#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTime>

namespace {
constexpr int kProcessStartMs = 5000;
}

void MainWindow::setListEditingEnabled(bool enabled)
{
    for (QPushButton *button : {m_addImagesButton, m_addFolderButton, m_removeButton, m_clearButton}) {
        if (button)
            button->setEnabled(enabled);
    }
}

void MainWindow::onStartProcess()
{
    if (!validateSettings())
        return;

    bool anyPending = false;
    for (int row = 0; row < m_imageTable->rowCount() && !anyPending; ++row)
        anyPending = Str::rowStatusIsPending(m_imageTable->item(row, StatusColumn));
    if (!anyPending) {
        const auto answer = QMessageBox::question(this, Str::confirmTitle(), Str::confirmReprocessAll(),
                                                  QMessageBox::Yes | QMessageBox::No, QMessageBox::NoButton);
        if (answer != QMessageBox::Yes)
            return;
        for (int row = 0; row < m_imageTable->rowCount(); ++row)
            setRowStatus(row, Str::RowStatus::Pending);
    }

    QDir().mkpath(playlistParentDir());
    QDir(liteBinStagingDir()).removeRecursively();
    QDir().mkpath(liteBinStagingDir());

    m_processing = true;
    m_currentRow = -1;
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

void MainWindow::processNext()
{
    if (!m_processing)
        return;

    // Only the status decides: checked or not, every pending row is processed.
    int row = m_currentRow + 1;
    while (row < m_imageTable->rowCount() && !Str::rowStatusIsPending(m_imageTable->item(row, StatusColumn)))
        ++row;
    if (row >= m_imageTable->rowCount()) {
        finishRun();
        return;
    }

    m_currentRow = row;
    setRowStatus(row, Str::RowStatus::Processing);
    m_imageTable->scrollToItem(m_imageTable->item(row, StatusColumn));

    const QString executable = m_exeEdit->text().trimmed();
    const QString workDir = m_workDirEdit->text().trimmed();
    const QStringList args = buildArgs(row);

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

    // The processor's own folder comes first on PATH, so its libraries are found.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PYTHONIOENCODING"), QStringLiteral("utf-8"));
    environment.insert(QStringLiteral("PATH"),
                       QDir::toNativeSeparators(QFileInfo(executable).absolutePath()) +
                           QDir::listSeparator() + environment.value(QStringLiteral("PATH")));
    m_process->setProcessEnvironment(environment);

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
        setRowStatus(row, Str::RowStatus::Failed);
        appendLog(Str::workDirMissing(workDir));
        processNext();
        return;
    }

    m_process->setWorkingDirectory(workDir);
    m_process->start(executable, args, QIODevice::ReadWrite);
    if (!m_process->waitForStarted(kProcessStartMs)) {
        setRowStatus(row, Str::RowStatus::StartFailed);
        appendLog(Str::processStartFailed(m_process->errorString()));
        processNext();
    }
}

void MainWindow::logProcessOutput(const QByteArray &bytes, bool standardError)
{
    if (bytes.isEmpty())
        return;
    // UTF-8 first; bytes that are not UTF-8 are read in the local code page instead.
    QString text = QString::fromUtf8(bytes);
    if (text.contains(QChar::ReplacementCharacter))
        text = QString::fromLocal8Bit(bytes);
    // Lines are logged as the chunks arrive: a line cut across two chunks shows as two.
    const QStringList lines = text.trimmed().split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const QString trimmed = line.trimmed();
        if (!trimmed.isEmpty())
            appendLog(standardError ? Str::stderrLogLine(trimmed) : Str::stdoutLogLine(trimmed));
    }
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
    // This runs after a Stop too: the last word on the row comes from the process's real end.
    onProcessReadyReadStdOut();
    onProcessReadyReadStdErr();
    if (status == QProcess::CrashExit) {
        setRowStatus(m_currentRow, Str::RowStatus::Crashed);
        appendLog(Str::processCrashed(exitCode));
    } else if (exitCode == 0) {
        setRowStatus(m_currentRow, Str::RowStatus::Done);
        ++m_successCount;
        appendLog(Str::rowDone());
    } else {
        setRowStatus(m_currentRow, Str::RowStatus::ExitCodeFailed, exitCode);
        appendLog(Str::processFailed(exitCode));
    }
    cleanupTempFile(m_currentRow);
    m_progressBar->setValue(m_currentRow + 1);
    m_progressBar->setFormat(Str::progressFraction(m_currentRow + 1, m_imageTable->rowCount()));
    processNext();
}

void MainWindow::finishRun()
{
    m_processing = false;
    const int rows = m_imageTable->rowCount();
    m_progressBar->setValue(rows);
    m_progressBar->setFormat(Str::processingProgress(m_successCount, rows));
    appendLog(Str::logSeparator());
    appendLog(Str::allDone(m_successCount, rows));
    if (m_successCount > 0 && runPlaylistExport(false))
        showProcessingCompleteDialog();
    m_startButton->setEnabled(true);
    m_stopButton->setEnabled(false);
    setListEditingEnabled(true);
}

void MainWindow::onStopProcess()
{
    if (!m_processing)
        return;
    m_processing = false;
    if (m_process && m_process->state() != QProcess::NotRunning) {
        m_process->kill();
        appendLog(Str::processingStopped());
        if (m_currentRow >= 0) {
            cleanupTempFile(m_currentRow);
            setRowStatus(m_currentRow, Str::RowStatus::Cancelled);
        }
    }
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
    box.setText(Str::processingCompleteHtml());
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse |
                                Qt::LinksAccessibleByKeyboard);
    QPushButton *open = box.addButton(Str::processingCompleteOkButton(), QMessageBox::AcceptRole);
    box.exec();
    if (box.clickedButton() == open)
        openOutputOrPlaylistDir();
}
