// The processor's command line for a row, the checks made before a run (the settings, the
// key read once, the save location), and the choosers of the processor's paths.
#include "app/MainWindow.h"

#include "images/ImageLoader.h"
#include "images/ImageTableWidget.h"
#include "playlist/PackageWriter.h"
#include "preprocess/PreprocWidget.h"
#include "processor/ProcessorConfig.h"
#include "run/ProcessorCommand.h"
#include "run/ScratchFolders.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QStandardPaths>

namespace {

QString tempLocation() { return QStandardPaths::writableLocation(QStandardPaths::TempLocation); }

} // namespace

QString MainWindow::tempPreprocDir()
{
    static const QString dir = tempLocation() + kTempPreprocDir; // fixed when the program starts
    return dir;
}

QString MainWindow::renderDir() const { return m_scratch->renderDir(); }

QString MainWindow::liteBinStagingDir() const { return m_scratch->stagingDir(); }

QString MainWindow::resolveOutputPathsForRow(int row) const
{
    // Named by the row's id, not its position: the output stays the row's wherever it moves.
    return m_job->outputPath(rowId(row));
}

QString MainWindow::keyArgumentPath() const
{
    // A run passes a copy of the key it read at Start; outside a run, a copy of the file as it
    // is now. Only a file that is no key at all (the processor will say so) goes as it is.
    const KeySnapshot key = m_processing && m_runKey && !m_runKey->isNull()
                                ? *m_runKey
                                : KeySnapshot::read(currentKeyFilePath(), nullptr);
    const QString copy = key.isNull() ? QString() : key.pathForProcessor(m_scratch->keyDir());
    return !copy.isEmpty() ? copy
                           : QDir::fromNativeSeparators(QFileInfo(currentKeyFilePath()).absoluteFilePath());
}

bool MainWindow::takeKeySnapshotForRun()
{
    const QString path = currentKeyFilePath();
    if (!m_keyFileEdit || path.isEmpty()) {
        m_runKey = KeySnapshot(); // no key: unencrypted, as without a run
        return true;
    }
    // A key for another panel than the one the frames would be made for is refused.
    QString error;
    const QString chosenType = m_panelTypeCombo ? m_panelTypeCombo->currentText().trimmed() : QString();
    const KeySnapshot key = KeySnapshot::readForPanel(path, chosenType, &error);
    if (key.isNull()) {
        QMessageBox::warning(this, Str::keyFileProblemTitle(), error);
        return false;
    }
    m_runKey = key;
    return true;
}

bool MainWindow::checkSaveLocationForRun() const
{
    const QString problem =
        PackageWriter::checkTarget(QDir(playlistParentDir()).filePath(QStringLiteral("vl_play")));
    if (problem.isEmpty())
        return true;
    QMessageBox::warning(window(), Str::settingsErrorTitle(), problem);
    return false;
}

QStringList MainWindow::buildArgs(int row)
{
    // The picture is rendered here and now, as a run renders it ahead (ExportRender).
    syncJobItem(row);
    m_job->setFrame(jobFrame());
    m_job->setProcessor(jobProcessor());
    const quint64 id = rowId(row);
    const std::optional<QString> rendered = m_job->renderNow(id);
    if (rendered && rendered->isEmpty())
        appendLog(Str::preprocFailedUseOriginal());
    else if (rendered)
        m_imageTable->item(row, FileColumn)->setData(kTempPreprocRole, *rendered);
    const bool withKey = m_keyFileEdit && !currentKeyFilePath().isEmpty();
    return m_job->arguments(id, rendered, withKey ? keyArgumentPath() : QString());
}

bool MainWindow::validateSettings() const
{
    QWidget *self = window(); // this window, as a parent for the boxes of a const check
    const QString executable = m_exeEdit ? m_exeEdit->text().trimmed() : QString();
    if (executable.isEmpty() || !QFileInfo::exists(executable)) {
        const QString variant = m_variantCombo ? m_variantCombo->currentText() : Str::appDisplayName();
        QMessageBox::warning(self, Str::settingsErrorTitle(),
                             Str::exeNotFound(variant, ProcessorConfig::fileName()));
        return false;
    }
    if (!m_imageTable || m_imageTable->rowCount() == 0) {
        QMessageBox::information(self, Str::noticeTitle(), Str::addImagesFirst());
        return false;
    }
    if (playlistParentDir().isEmpty()) {
        QMessageBox::warning(self, Str::settingsErrorTitle(), Str::setPlaylistSaveLocation());
        return false;
    }
    if (m_imageTable->rowCount() > kPlaylistFrameLimit) {
        QMessageBox::warning(self, Str::settingsErrorTitle(),
                             Str::playlistTooManyFrames(kPlaylistFrameLimit));
        return false;
    }
    return true;
}

void MainWindow::onBrowseOutputDir()
{
    const QString folder = QFileDialog::getExistingDirectory(this, Str::selectOutputPath(),
                                                             m_outputEdit ? m_outputEdit->text() : QString());
    if (!folder.isEmpty() && m_outputEdit)
        m_outputEdit->setText(QDir::toNativeSeparators(folder));
}

void MainWindow::onBrowseLut()
{
    const QString file = QFileDialog::getOpenFileName(
        this, Str::selectLutFile(), m_lutEdit ? m_lutEdit->text() : QString(), Str::lutFileFilter());
    if (!file.isEmpty() && m_lutEdit)
        m_lutEdit->setText(QDir::toNativeSeparators(file));
}

void MainWindow::onBrowseAnalysisOutput()
{
    const QString file = QFileDialog::getSaveFileName(
        this, Str::selectAnalysisOutput(), m_analysisOutputEdit ? m_analysisOutputEdit->text() : QString(),
        Str::analysisFileFilter());
    if (!file.isEmpty() && m_analysisOutputEdit)
        m_analysisOutputEdit->setText(QDir::toNativeSeparators(file));
}
