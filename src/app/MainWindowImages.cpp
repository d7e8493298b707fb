// Adding pictures: file and folder choosers, drops, folder scans, de-duplication, HEIC
// conversion, the row limit, and the rows themselves.
#include "app/MainWindow.h"

#include "images/ImageLoader.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>

#include <algorithm>

namespace {

constexpr int kSmallBatchLimit = 15;
constexpr int kThumbnailSide = 72;
const QColor kMissingThumbnailGrey(180, 180, 180);

struct PendingImage {
    QString path;
    QString baseDir;
};

bool isSupportedFile(const QFileInfo &info)
{
    return ImageLoader::supportedExtensions().contains(info.suffix().toLower());
}

QPixmap thumbnailFor(const QImage &source)
{
    if (source.isNull()) {
        QPixmap grey(kThumbnailSide, kThumbnailSide);
        grey.fill(kMissingThumbnailGrey);
        return grey;
    }
    if (source.width() <= kThumbnailSide && source.height() <= kThumbnailSide)
        return QPixmap::fromImage(source);
    return QPixmap::fromImage(
        source.scaled(kThumbnailSide, kThumbnailSide, Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

} // namespace

void MainWindow::onAddImages()
{
    const QStringList files =
        QFileDialog::getOpenFileNames(this, Str::selectImages(), QString(), Str::imageFileFilter());
    if (!files.isEmpty())
        addImageFiles(files);
}

void MainWindow::onAddFolder()
{
    const QString folder = QFileDialog::getExistingDirectory(this, Str::selectImageFolder(), QString(),
                                                             QFileDialog::ShowDirsOnly);
    if (!folder.isEmpty())
        addImageFiles({folder});
}

void MainWindow::addImageFiles(const QStringList &paths)
{
    QStringList nameFilters;
    for (const QString &extension : ImageLoader::supportedExtensions())
        nameFilters << QStringLiteral("*.") + extension;

    const bool anyFolder = std::any_of(paths.begin(), paths.end(), [](const QString &path) {
        return !path.isEmpty() && QFileInfo(path).isDir();
    });
    const bool showDialog = anyFolder || paths.size() > kSmallBatchLimit;
    QProgressDialog progress(this);
    progress.setWindowTitle(Str::importImagesTitle());
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(0);
    progress.setAutoClose(true);
    progress.setAutoReset(true);
    progress.setCancelButtonText(Str::cancel());
    progress.setMinimumWidth(360);
    if (!showDialog)
        progress.cancel(); // a small batch never shows it (and its show timer is stopped)

    QList<PendingImage> pending;
    pending.reserve(paths.size() * 8);
    const bool recursive = m_includeSubfoldersCheck && m_includeSubfoldersCheck->isChecked();
    for (const QString &input : paths) {
        const QFileInfo info(input);
        if (input.isEmpty() || !info.exists())
            continue;
        if (!info.isDir()) {
            if (isSupportedFile(info))
                pending.append({info.absoluteFilePath(), info.absolutePath()});
            continue;
        }
        const QString folder = info.absoluteFilePath();
        progress.setRange(0, 0);
        progress.setValue(0);
        progress.setLabelText(Str::importScanLabel(QDir::toNativeSeparators(folder), 0));
        progress.show();
        QDirIterator it(folder, nameFilters, QDir::Files,
                        recursive ? QDirIterator::Subdirectories | QDirIterator::FollowSymlinks
                                  : QDirIterator::NoIteratorFlags);
        QStringList found;
        while (it.hasNext()) {
            if (progress.wasCanceled())
                return; // a cancelled scan adds nothing of this call
            found << it.next();
            if (found.size() % 100 == 0) {
                progress.setLabelText(
                    Str::importScanLabel(QDir::toNativeSeparators(folder), int(found.size())));
                QCoreApplication::processEvents();
            }
        }
        std::sort(found.begin(), found.end(),
                  [](const QString &a, const QString &b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
        pending.reserve(pending.size() + found.size());
        for (const QString &file : std::as_const(found))
            pending.append({file, folder});
    }

    if (pending.isEmpty()) {
        updateCount();
        return;
    }

    QSet<QString> seen;
    for (int row = 0; row < m_imageTable->rowCount(); ++row) {
        if (const QTableWidgetItem *item = m_imageTable->item(row, FileColumn))
            seen.insert(item->data(kSourcePathRole).toString());
    }

    const int total = int(pending.size());
    const auto tableIsFull = [this] { return m_imageTable->rowCount() > kPlaylistFrameLimit - 1; };
    int reached = total;
    bool limitStopped = false;
    m_imageTable->setUpdatesEnabled(false);
    if (!showDialog && total <= kSmallBatchLimit) {
        for (int i = 0; i < total; ++i) {
            if (tableIsFull()) {
                reached = i;
                limitStopped = true;
                break;
            }
            addSingleFile(pending.at(i).path, pending.at(i).baseDir, &seen);
        }
    } else {
        progress.reset();
        progress.setRange(0, total);
        progress.setValue(0);
        progress.setLabelText(Str::importAddLabel(0, total));
        progress.show();
        for (int i = 0; i < total; ++i) {
            if (tableIsFull()) {
                reached = i;
                limitStopped = true;
                break;
            }
            if (progress.wasCanceled())
                break;
            progress.setValue(i);
            progress.setLabelText(Str::importAddLabel(i + 1, total));
            addSingleFile(pending.at(i).path, pending.at(i).baseDir, &seen);
            if ((i + 1) % 5 == 0)
                QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        }
        progress.setValue(total);
    }
    m_imageTable->setUpdatesEnabled(true);

    const int skipped = total - reached;
    if (limitStopped && skipped > 0) {
        QMessageBox::warning(this, Str::noticeTitle(),
                             Str::importSkippedPlaylistLimit(skipped, kPlaylistFrameLimit));
    }
    updateCount();
}

void MainWindow::addSingleFile(const QString &path, const QString &baseDir, QSet<QString> *seen)
{
    if (m_imageTable->rowCount() > kPlaylistFrameLimit - 1)
        return;
    const QFileInfo info(path);
    if (!info.exists() || !isSupportedFile(info))
        return;

    // Converted before the duplicate test, so a HEIC file already listed is found in the
    // cache (or converted) again.
    QString heicCache;
    if (ImageLoader::isHeicPath(path)) {
        heicCache = ImageLoader::resolveProcessorInputPath(path);
        if (heicCache.isEmpty()) {
            QMessageBox::warning(this, Str::noticeTitle(),
                                 Str::heicLoadFailed(QDir::toNativeSeparators(path)));
            return;
        }
    }

    const QString absolute = info.absoluteFilePath();
    if (seen) {
        if (seen->contains(absolute))
            return;
        seen->insert(absolute);
    } else {
        for (int row = 0; row < m_imageTable->rowCount(); ++row) {
            const QTableWidgetItem *item = m_imageTable->item(row, FileColumn);
            if (item && item->data(kSourcePathRole).toString() == absolute)
                return;
        }
    }

    const int row = m_imageTable->rowCount();
    m_imageTable->insertRow(row);

    auto *select = new QTableWidgetItem;
    select->setFlags(Qt::ItemIsUserCheckable | Qt::ItemIsEnabled);
    select->setCheckState(Qt::Unchecked);
    select->setTextAlignment(Qt::AlignCenter);
    m_imageTable->setItem(row, SelectColumn, select);

    m_imageTable->setCellWidget(row, OrderColumn, createRowReorderWidget(row));

    auto *file = new QTableWidgetItem(info.fileName());
    file->setData(kSourcePathRole, absolute);
    file->setData(kBaseDirRole, baseDir);
    file->setData(kTempPreprocRole, QString());
    file->setData(kHeicCacheRole, heicCache);
    file->setData(kRowIdRole, m_nextRowId++);
    file->setToolTip(absolute);
    m_imageTable->setItem(row, FileColumn, file);

    auto *widget = new PreprocWidget(absolute);
    // No redraw here: the widget draws its first thumbnail once the row is in place.
    widget->setFrameSettings(panelResolution(), isLandscapeOrientation(), false);
    widget->applyLanguage();
    connect(widget, &PreprocWidget::preprocessingChanged, this,
            [this, widget] { onRowPreprocessingChanged(widget); });
    m_imageTable->setCellWidget(row, FileColumn, widget);

    // The 72-pixel thumbnail comes from the picture the row widget has already decoded.
    auto *thumb = new QLabel;
    thumb->setPixmap(thumbnailFor(widget->thumbnailSource()));
    thumb->setAlignment(Qt::AlignCenter);
    thumb->setToolTip(Str::thumbOriginalTip());
    thumb->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_imageTable->setCellWidget(row, ThumbColumn, thumb);

    auto *status = new QTableWidgetItem;
    Str::applyRowStatus(status, Str::RowStatus::Pending, 0);
    status->setTextAlignment(Qt::AlignCenter);
    const QString subfolder = QFileInfo(QDir(baseDir).relativeFilePath(absolute)).path();
    if (!subfolder.isEmpty() && subfolder != QLatin1String("."))
        status->setToolTip(Str::subdirTooltip(QDir::toNativeSeparators(subfolder)));
    m_imageTable->setItem(row, StatusColumn, status);

    m_imageTable->setRowHeight(row, kRowHeight);
}

void MainWindow::updateCount()
{
    if (m_countLabel)
        m_countLabel->setText(Str::imageCount(m_imageTable ? m_imageTable->rowCount() : 0));
}
