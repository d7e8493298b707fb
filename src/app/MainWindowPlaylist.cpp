// The package settings: slideshow interval, save location, and opening the package folder.
#include "app/MainWindow.h"

#include "images/ImageTableWidget.h"
#include "playlist/CardCopyDialog.h"
#include "playlist/FolderSwap.h"
#include "playlist/PlaylistExporter.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QUrl>

namespace {
const QString kPackageFolder = QStringLiteral("vl_play");
} // namespace

int MainWindow::playlistIntervalMinutes() const
{
    if (!m_intervalDays || !m_intervalHours || !m_intervalMinutes)
        return kDefaultIntervalMinutes;
    const int minutes =
        m_intervalDays->value() * 1440 + m_intervalHours->value() * 60 + m_intervalMinutes->value();
    return qBound(PlaylistExporter::kMinIntervalMinutes, minutes, PlaylistExporter::kMaxIntervalMinutes);
}

void MainWindow::setPlaylistIntervalMinutes(int minutes)
{
    if (!m_intervalDays || !m_intervalHours || !m_intervalMinutes)
        return;
    const int m =
        qBound(PlaylistExporter::kMinIntervalMinutes, minutes, PlaylistExporter::kMaxIntervalMinutes);
    const QSignalBlocker blockDays(m_intervalDays);
    const QSignalBlocker blockHours(m_intervalHours);
    const QSignalBlocker blockMinutes(m_intervalMinutes);
    m_intervalDays->setValue(m / 1440);
    m_intervalHours->setValue((m % 1440) / 60);
    m_intervalMinutes->setValue(m % 60);
}

void MainWindow::onPlaylistIntervalPartChanged()
{
    // 0 d 0 h 0 min snaps to 3 minutes; 34 d 23 h 59 min to 50000 (34 d 17 h 20 min).
    setPlaylistIntervalMinutes(playlistIntervalMinutes());
}

void MainWindow::onPlaylistEnableToggled(bool /*checked: playlist generation is always on here*/)
{
    updatePlaylistUiState();
}

void MainWindow::updatePlaylistUiState()
{
    for (QWidget *widget :
         std::initializer_list<QWidget *>{m_intervalDays, m_intervalHours, m_intervalMinutes, m_loopCheck,
                                          m_playlistDirEdit, m_playlistDirBrowse, m_playlistHintLabel}) {
        if (widget)
            widget->setEnabled(true);
    }
}

bool MainWindow::playlistFrameLimitApplies() const { return true; }

QString MainWindow::playlistParentDir() const
{
    return m_playlistDirEdit ? m_playlistDirEdit->text().trimmed() : QString();
}

void MainWindow::onBrowsePlaylistDir()
{
    const QString folder =
        QFileDialog::getExistingDirectory(this, Str::selectPlaylistSaveDir(), playlistParentDir());
    if (!folder.isEmpty() && m_playlistDirEdit)
        m_playlistDirEdit->setText(QDir::toNativeSeparators(folder));
}

void MainWindow::openOutputOrPlaylistDir()
{
    const QString parent = playlistParentDir();
    if (parent.isEmpty())
        return;
    const QString folder = QDir(parent).filePath(kPackageFolder);
    if (QFileInfo(folder).isDir())
        QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
    else
        QMessageBox::information(this, Str::noticeTitle(), Str::dirNotExistPlaylist());
}

bool MainWindow::buildPlaylistRequest(PlaylistExportRequest *request, QString *message) const
{
    if (!request)
        return false;

    // The device key file: its panel wins over the combo box, and it switches encryption on.
    // After a run the package is made from the key the run read (its frames were made with
    // it); otherwise from the file, and one that cannot be read gives an unencrypted playlist.
    const QString keyFile = currentKeyFilePath();
    const KeySnapshot key =
        m_runKey
            ? *m_runKey
            : (m_keyFileEdit && !keyFile.isEmpty() ? KeySnapshot::read(keyFile, nullptr) : KeySnapshot());
    // The frames are the Done rows' outputs, in table order (PackageJob).
    QStringList missing;
    syncJob();
    *request = m_job->packageRequest(
        PlaylistExporter::panelFromGuiType(m_panelTypeCombo ? m_panelTypeCombo->currentText() : QString(),
                                           m_customSizeEdit ? m_customSizeEdit->text() : QString()),
        playlistIntervalMinutes(), m_loopCheck && m_loopCheck->isChecked(), key, &missing);
    if (!request->panel.ok)
        return false; // the caller shows the panel's own reason
    const QString missingNames = missing.join(QLatin1Char('\n'));
    if (!request->frameNames.isEmpty()) {
        if (message && !missing.isEmpty())
            *message = Str::missingBinCount(int(missing.size()), missingNames);
        return true;
    }
    if (message)
        *message = missing.isEmpty() ? Str::noBinFiles() : missingNames;
    return false;
}

bool MainWindow::runPlaylistExport(bool interactive, QString *failure)
{
    const auto refuse = [&](const QString &title, const QString &text, QMessageBox::Icon icon,
                            bool logWhenSilent) {
        if (interactive) {
            QMessageBox box(icon, title, text, QMessageBox::Ok, this);
            box.exec();
        } else if (logWhenSilent) {
            appendLog(Str::playlistExportFailed(text));
            if (failure)
                *failure = text;
        }
        return false;
    };
    const int rows = m_imageTable ? m_imageTable->rowCount() : 0;
    if (rows == 0)
        return refuse(Str::noticeTitle(), Str::addImagesFirst(), QMessageBox::Information, false);
    if (rows > kPlaylistFrameLimit)
        return refuse(Str::settingsErrorTitle(), Str::playlistTooManyFrames(kPlaylistFrameLimit),
                      QMessageBox::Warning, true);
    if (m_analysisOnlyCheck && m_analysisOnlyCheck->isChecked())
        return refuse(Str::noticeTitle(), Str::analysisOnlyNoPlaylist(), QMessageBox::Warning, false);

    PlaylistExportRequest request;
    QString message;
    if (!buildPlaylistRequest(&request, &message)) {
        const QString text = message.isEmpty() ? request.panel.error : message;
        return refuse(Str::playlistCannotCreateTitle(), text, QMessageBox::Warning, true);
    }

    if (!message.isEmpty()) {
        if (interactive) {
            const auto answer = QMessageBox::question(this, Str::playlistPartialMissingTitle(),
                                                      Str::playlistPartialMissing(message),
                                                      QMessageBox::Yes | QMessageBox::No);
            if (answer != QMessageBox::Yes)
                return false;
        } else {
            appendLog(QStringLiteral("⚠ ") + message);
        }
    }
    const QString parent = playlistParentDir();
    if (parent.isEmpty()) {
        if (interactive)
            QMessageBox::warning(this, Str::settingsErrorTitle(), Str::playlistSaveLocationMissing());
        else
            refuse(QString(), Str::playlistSaveLocationNotSet(), QMessageBox::Warning, true);
        return false;
    }
    request.outputDir = QDir(parent).filePath(kPackageFolder);
    const QString shownFolder = QDir::toNativeSeparators(request.outputDir);
    // What an interrupted export left is put right before anything else: the last good package
    // back in place, unfinished folders gone.
    for (const QString &line : FolderSwap::recover(request.outputDir, false))
        appendLog(line);
    if (interactive && QFileInfo::exists(request.outputDir)) {
        const auto answer =
            QMessageBox::question(this, Str::playlistDirExistsTitle(), Str::playlistDirExists(shownFolder),
                                  QMessageBox::Yes | QMessageBox::No);
        if (answer != QMessageBox::Yes)
            return false;
    }

    const QString error = PlaylistExporter::exportPlaylist(request);
    if (!error.isEmpty()) {
        if (interactive)
            QMessageBox::critical(this, Str::playlistCreateFailedTitle(), error);
        else if (failure)
            *failure = error;
        appendLog(Str::playlistCreateFailed(error));
        return false;
    }
    m_packageFrames = int(request.frameNames.size());
    updateCopyToCardButton();
    appendLog(Str::playlistCreatedLog(shownFolder, int(request.frameNames.size()), request.intervalMinutes));
    if (interactive) {
        QMessageBox::information(
            this, Str::playlistCreatedTitle(),
            Str::playlistCreated(shownFolder, int(request.frameNames.size()), request.intervalMinutes));
    }
    return true;
}

void MainWindow::onCreatePlaylist()
{
    // Not connected in this edition, where the package is written at the end of every run.
    if (m_processing) {
        QMessageBox::warning(this, Str::noticeTitle(), Str::processingPlaylistBusy());
        return;
    }
    runPlaylistExport(true);
}

QString MainWindow::writtenPackageDir() const
{
    const QString parent = playlistParentDir();
    const QString folder = parent.isEmpty() ? QString() : QDir(parent).filePath(kPackageFolder);
    return !folder.isEmpty() && QFileInfo(QDir(folder).filePath(QStringLiteral("playlist.json"))).isFile()
               ? folder
               : QString();
}

void MainWindow::updateCopyToCardButton()
{
    if (m_copyToCardButton)
        m_copyToCardButton->setEnabled(!m_processing && !writtenPackageDir().isEmpty());
}

void MainWindow::onCopyToCard()
{
    const QString package = writtenPackageDir();
    if (m_processing || package.isEmpty()) {
        QMessageBox::information(this, Str::copyToCardTitle(),
                                 m_processing ? Str::cardBusy() : Str::noPackageToCopy());
        return;
    }
    CardCopyDialog dialog(package, this);
    dialog.exec();
}
