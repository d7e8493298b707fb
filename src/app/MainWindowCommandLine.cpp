// The processor's command line for a row, the checks made before a run, and the choosers of
// the processor's paths.
#include "app/MainWindow.h"

#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"
#include "processor/ProcessorConfig.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QStandardPaths>

#include <algorithm>

namespace {

const QString kDefaultKeyFlag = QStringLiteral("--pubkey");
const QString kStagedKeySuffix = QStringLiteral("json"); // for a key file without suffix

// The last staging of a key file whose own path is not plain ASCII, for the whole process.
QString g_lastKeySource;
QString g_lastStagedKey;

QString tempLocation() { return QStandardPaths::writableLocation(QStandardPaths::TempLocation); }

bool isPlainAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 128; });
}

// A key path that survives the trip to the processor: the path itself when it is plain
// ASCII, else a copy under an ASCII name (reused while it exists), else the path itself.
QString keyPathForProcessor(const QString &keyFile)
{
    const QString absolute = QFileInfo(keyFile).absoluteFilePath();
    if (isPlainAscii(absolute))
        return QDir::fromNativeSeparators(absolute);
    if (absolute == g_lastKeySource && QFileInfo::exists(g_lastStagedKey))
        return g_lastStagedKey;
    const QString stagingDir = tempLocation() + QStringLiteral("/tarngui_pubkey");
    QDir().mkpath(stagingDir);
    const QString suffix = QFileInfo(absolute).suffix();
    const QString copy =
        QDir(stagingDir)
            .filePath(QStringLiteral("device_key.") + (suffix.isEmpty() ? kStagedKeySuffix : suffix));
    if (QFileInfo::exists(copy))
        QFile::remove(copy);
    if (!QFile::copy(absolute, copy))
        return QDir::fromNativeSeparators(absolute);
    g_lastKeySource = absolute;
    g_lastStagedKey = copy;
    return copy;
}

} // namespace

QString MainWindow::tempPreprocDir()
{
    static const QString dir = tempLocation() + kTempPreprocDir; // fixed when the program starts
    return dir;
}

QString MainWindow::liteBinStagingDir() const
{
    return tempLocation() + QStringLiteral("/tarngui_lite_bins");
}

QString MainWindow::resolveOutputPathsForRow(int row) const
{
    return QDir::fromNativeSeparators(
        QDir(liteBinStagingDir()).filePath(QStringLiteral("row_%1.bin").arg(row, 4, 10, QLatin1Char('0'))));
}

QStringList MainWindow::buildArgs(int row)
{
    QStringList args;
    QTableWidgetItem *file = m_imageTable->item(row, FileColumn);

    QString input = file ? QDir::fromNativeSeparators(file->data(kSourcePathRole).toString()) : QString();
    const QString heicCache = file ? file->data(kHeicCacheRole).toString() : QString();
    if (!heicCache.isEmpty())
        input = heicCache;
    PreprocWidget *widget = preprocWidgetAt(row);
    if (widget && widget->state().fillMode != FillMode::Direct) {
        const QString rendered = widget->applyPreprocessing(tempPreprocDir());
        if (!rendered.isEmpty()) {
            if (file)
                file->setData(kTempPreprocRole, rendered);
            input = QDir::fromNativeSeparators(rendered);
        } else {
            appendLog(Str::preprocFailedUseOriginal());
        }
    }
    args << input << resolveOutputPathsForRow(row);

    const QString panelType = m_panelTypeCombo ? m_panelTypeCombo->currentText().trimmed() : QString();
    if (!panelType.isEmpty())
        args << panelType;

    const VariantConfig variant = m_processorConfig.variantIds().contains(currentVariantId())
                                      ? m_processorConfig.variant(currentVariantId())
                                      : VariantConfig();
    const QString keyFile = currentKeyFilePath();
    if (m_keyFileEdit && !keyFile.isEmpty())
        args << (variant.keyFileArg.isEmpty() ? kDefaultKeyFlag : variant.keyFileArg)
             << keyPathForProcessor(keyFile);

    args << variant.extraArgs; // omit_args is read but removes nothing from this list, on purpose
    return args;
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
