// The package settings: slideshow interval, save location, and opening the package folder.
#include "app/MainWindow.h"

#include <QCheckBox>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QUrl>

namespace {
constexpr int kMinIntervalMinutes = 3;
constexpr int kMaxIntervalMinutes = 50000;
constexpr int kDefaultIntervalMinutes = 30;
const QString kPackageFolder = QStringLiteral("vl_play");
} // namespace

int MainWindow::playlistIntervalMinutes() const
{
    if (!m_intervalDays || !m_intervalHours || !m_intervalMinutes)
        return kDefaultIntervalMinutes;
    const int minutes =
        m_intervalDays->value() * 1440 + m_intervalHours->value() * 60 + m_intervalMinutes->value();
    return qBound(kMinIntervalMinutes, minutes, kMaxIntervalMinutes);
}

void MainWindow::setPlaylistIntervalMinutes(int minutes)
{
    if (!m_intervalDays || !m_intervalHours || !m_intervalMinutes)
        return;
    const int m = qBound(kMinIntervalMinutes, minutes, kMaxIntervalMinutes);
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

void MainWindow::onCreatePlaylist()
{
    // Not connected in this edition: the package is written at the end of every run.
}
