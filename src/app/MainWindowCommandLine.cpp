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
    const QString name = QStringLiteral("out_%1.bin").arg(rowId(row), 6, 10, QLatin1Char('0'));
    return QDir::fromNativeSeparators(QDir(liteBinStagingDir()).filePath(name));
}

QString MainWindow::keyArgumentPath() const
{
    // A run passes the key it read at Start; outside a run, the file as it is now.
    if (m_processing && m_runKey && !m_runKey->isNull())
        return m_runKey->pathForProcessor(m_scratch->keyDir());
    const KeySnapshot key = KeySnapshot::read(currentKeyFilePath(), nullptr);
    if (!key.isNull())
        return key.pathForProcessor(m_scratch->keyDir());
    return QDir::fromNativeSeparators(QFileInfo(currentKeyFilePath()).absoluteFilePath());
}

bool MainWindow::takeKeySnapshotForRun()
{
    const QString path = currentKeyFilePath();
    if (!m_keyFileEdit || path.isEmpty()) {
        m_runKey = KeySnapshot(); // no key: unencrypted, as without a run
        return true;
    }
    QString error;
    const KeySnapshot key = KeySnapshot::read(path, &error);
    if (key.isNull()) {
        QMessageBox::warning(this, Str::keyFileProblemTitle(), error);
        return false;
    }
    // A key for another panel than the one the frames would be made for is refused.
    const QString keyType = key.guiPanelType();
    const QString chosenType = m_panelTypeCombo ? m_panelTypeCombo->currentText().trimmed() : QString();
    if (!keyType.isEmpty() && keyType != chosenType) {
        QMessageBox::warning(this, Str::keyFileProblemTitle(),
                             Str::keyFilePanelMismatch(key.path(), keyType, chosenType));
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
    // The picture is rendered here and now; a run has it rendered ahead instead (processorArgs).
    std::optional<QString> rendered;
    PreprocWidget *widget = preprocWidgetAt(row);
    if (widget && widget->state().fillMode != FillMode::Direct)
        rendered = widget->applyPreprocessing(renderDir());
    return processorArgs(row, rendered);
}

QStringList MainWindow::processorArgs(int row, const std::optional<QString> &rendered)
{
    QTableWidgetItem *file = m_imageTable->item(row, FileColumn);

    QString input = file ? QDir::fromNativeSeparators(file->data(kSourcePathRole).toString()) : QString();
    QString heicCache = file ? file->data(kHeicCacheRole).toString() : QString();
    if (!heicCache.isEmpty() && !QFileInfo::exists(heicCache)) {
        // The cache was pruned or cleared since the row was added: convert again.
        heicCache = ImageLoader::resolveProcessorInputPath(file->data(kSourcePathRole).toString());
        file->setData(kHeicCacheRole, heicCache);
    }
    if (!heicCache.isEmpty())
        input = heicCache;
    if (rendered) {
        if (!rendered->isEmpty()) {
            if (file)
                file->setData(kTempPreprocRole, *rendered);
            input = QDir::fromNativeSeparators(*rendered);
        } else {
            appendLog(Str::preprocFailedUseOriginal());
        }
    }
    const QString panelType = m_panelTypeCombo ? m_panelTypeCombo->currentText().trimmed() : QString();
    const VariantConfig variant = m_processorConfig.variantIds().contains(currentVariantId())
                                      ? m_processorConfig.variant(currentVariantId())
                                      : VariantConfig();
    const bool withKey = m_keyFileEdit && !currentKeyFilePath().isEmpty();
    return ProcessorCommand::arguments(input, resolveOutputPathsForRow(row), panelType, variant,
                                       withKey ? keyArgumentPath() : QString());
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
