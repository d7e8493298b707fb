// Adding pictures: file and folder choosers, drops, folder scans, de-duplication, HEIC
// conversion, the row limit, and the rows themselves. The decoding runs on worker threads
// (DecodeQueue); rows are made here, on the GUI thread, in the order of a serial add.
#include "app/MainWindow.h"

#include "images/DecodeQueue.h"
#include "images/ImageLoader.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PictureGrid.h"
#include "preprocess/PreprocWidget.h"
#include "ui/RowStatusCell.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QProgressDialog>
#include <QScopeGuard>
#include <QTimer>

#include <utility>

#include <algorithm>

namespace {

constexpr int kSmallBatchLimit = 15;
constexpr int kRowsPerInsertion = 16; // at most this many rows are made in one go, ...
constexpr int kInsertionDelayMs = 40; // ... or those that came within this time
constexpr int kThumbnailSide = 72;
const QColor kMissingThumbnailGrey(180, 180, 180);

bool isSupportedFile(const QFileInfo &info)
{
    return ImageLoader::supportedExtensions().contains(info.suffix().toLower());
}

QPixmap thumbnailFor(const QImage &thumbnail)
{
    if (!thumbnail.isNull())
        return QPixmap::fromImage(thumbnail);
    QPixmap grey(kThumbnailSide, kThumbnailSide);
    grey.fill(kMissingThumbnailGrey);
    return grey;
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

bool MainWindow::collectPendingImages(const QStringList &paths, QProgressDialog *progress,
                                      QList<PendingImage> *pending)
{
    pending->reserve(paths.size() * 8);
    const bool recursive = m_includeSubfoldersCheck && m_includeSubfoldersCheck->isChecked();
    for (const QString &input : paths) {
        const QFileInfo info(input);
        if (input.isEmpty() || !info.exists())
            continue;
        if (!info.isDir()) {
            if (isSupportedFile(info))
                pending->append({info.absoluteFilePath(), info.absolutePath()});
            continue;
        }
        const QString folder = info.absoluteFilePath();
        progress->setRange(0, 0);
        progress->setValue(0);
        progress->setLabelText(Str::importScanLabel(QDir::toNativeSeparators(folder), 0));
        progress->show();
        // A cancelled scan adds nothing of this call.
        if (progress->wasCanceled())
            return false;
        const std::optional<QStringList> found = ImageLoader::findPictures(folder, recursive, [&](int count) {
            progress->setLabelText(Str::importScanLabel(QDir::toNativeSeparators(folder), count));
            QCoreApplication::processEvents();
            return !progress->wasCanceled();
        });
        if (!found)
            return false;
        pending->reserve(pending->size() + found->size());
        for (const QString &file : *found)
            pending->append({file, folder});
    }
    return true;
}

void MainWindow::stopAdding()
{
    // The rows already added stay; the adding (in its own loop) adds no more.
    if (DecodeQueue *decodes = std::exchange(m_imageDecodes, nullptr))
        decodes->cancel();
}

void MainWindow::addImageFiles(const QStringList &paths)
{
    if (m_imageDecodes)
        return; // an adding is under way (its dialog keeps the user out; this is a program's call)

    const bool anyFolder = std::any_of(paths.begin(), paths.end(), [](const QString &path) {
        return !path.isEmpty() && QFileInfo(path).isDir();
    });
    const bool showDialog = anyFolder || paths.size() > kSmallBatchLimit;
    // On the heap: this window may go while the adding waits for its pictures, and the dialog
    // with it.
    const QPointer<QProgressDialog> progress = new QProgressDialog(this);
    const auto dismiss = qScopeGuard([progress] { delete progress.data(); });
    progress->setWindowTitle(Str::importImagesTitle());
    progress->setWindowModality(Qt::WindowModal);
    progress->setMinimumDuration(0);
    progress->setAutoClose(true);
    progress->setAutoReset(true);
    progress->setCancelButtonText(Str::cancel());
    progress->setMinimumWidth(360);
    if (!showDialog)
        progress->cancel(); // a small batch never shows it (and its show timer is stopped)

    QList<PendingImage> pending;
    if (!collectPendingImages(paths, progress, &pending))
        return;
    if (pending.isEmpty()) {
        updateCount();
        return;
    }

    const int firstAdded = m_imageTable->rowCount();
    QSet<QString> seen;
    for (int row = 0; row < m_imageTable->rowCount(); ++row) {
        if (const QTableWidgetItem *item = m_imageTable->item(row, FileColumn))
            seen.insert(item->data(kSourcePathRole).toString());
    }
    // What each picture needs decoded: a picture already listed none, but a HEIC/HEIF one is
    // converted again all the same (a serial add converts before it looks for duplicates).
    QList<DecodeQueue::Job> jobs;
    jobs.reserve(pending.size());
    const bool framesFaces = m_frameFacesCheck && m_frameFacesCheck->isChecked();
    QSet<QString> listed = seen;
    for (const PendingImage &image : std::as_const(pending)) {
        const bool duplicate = listed.contains(image.path);
        listed.insert(image.path);
        const bool heic = ImageLoader::isHeicPath(image.path);
        jobs.append({image.path,
                     !duplicate ? DecodeQueue::Work::Decode
                     : heic     ? DecodeQueue::Work::ConvertOnly
                                : DecodeQueue::Work::Nothing,
                     framesFaces});
    }

    const int total = int(pending.size());
    int reached = total;
    bool limitStopped = false;
    const bool small = !showDialog && total <= kSmallBatchLimit;
    if (!small) {
        progress->reset();
        progress->setRange(0, total);
        progress->setValue(0);
        progress->setLabelText(Str::importAddLabel(0, total));
        progress->show();
    }

    // Decoded pictures become rows a batch at a time: each insertion makes the table place every
    // row widget it holds again, so one insertion per picture would cost ever more. Not nested:
    // the progress dialog and a warning box run events, which may bring more pictures; those
    // wait in line behind the ones being made into rows.
    QList<QPair<int, DecodedPicture>> delivered;
    QTimer flushTimer;
    flushTimer.setSingleShot(true);
    // The progress dialog is shown the count in an event of its own: a modal QProgressDialog
    // paints the window inside setValue(), and after making a batch of rows that would double
    // the event loop's stand-still.
    int finished = 0;
    QTimer progressTimer;
    progressTimer.setSingleShot(true);
    DecodeQueue decodes;
    bool stopped = false; // by the row limit or by Cancel: what is still waiting is dropped
    bool flushing = false;
    // Events run here and there (dialogs, progress), and the window may go meanwhile: after
    // each, nothing of it is touched unless it is still there.
    const QPointer<MainWindow> guard(this);
    // Clear, Remove or the window's end (stopAdding()) stop the adding from outside, maybe
    // while a box or the progress dialog runs events in the middle of a batch.
    const auto endedFromOutside = [&] { return !guard || m_imageDecodes != &decodes; };
    // The loop runs until every picture is decoded and made a row (or the adding is stopped):
    // each batch in an event of its own, the last ones too.
    QEventLoop loop;
    bool decoding = true;
    const auto quitWhenDone = [&] {
        if (!decoding && (stopped || endedFromOutside() || delivered.isEmpty()))
            loop.quit();
    };
    const auto flush = [&] {
        if (flushing || stopped || endedFromOutside())
            return;
        flushing = true;
        flushTimer.stop();
        QList<QPair<PendingImage, DecodedPicture>> rows;
        int last = -1;
        while (!stopped && !delivered.isEmpty() && rows.size() < kRowsPerInsertion) {
            const auto [index, picture] = delivered.takeFirst();
            if (m_imageTable->rowCount() + rows.size() > kPlaylistFrameLimit - 1) {
                reached = index;
                limitStopped = stopped = true;
                decodes.cancel();
                break;
            }
            if (picture.unconvertible) {
                appendImageRows(rows); // its warning comes in table order, after the rows before it
                rows.clear();
            }
            const bool accepted = acceptDecodedImage(pending.at(index), picture, &seen);
            if (endedFromOutside())
                return;
            if (accepted && !stopped)
                rows.append({pending.at(index), picture});
            last = index;
        }
        appendImageRows(rows);
        if (!small && last >= 0) {
            finished = last + 1; // progress counts finished pictures
            progressTimer.start(0);
        }
        flushing = false;
        if (!stopped && !endedFromOutside() && !delivered.isEmpty())
            flushTimer.start(0); // the rest after what else waits
        else
            quitWhenDone();
    };
    connect(&flushTimer, &QTimer::timeout, this, flush);
    connect(&progressTimer, &QTimer::timeout, this, [&] {
        if (!progress || endedFromOutside())
            return;
        progress->setValue(finished);
        if (guard && progress)
            progress->setLabelText(Str::importAddLabel(finished, total));
    });
    connect(&decodes, &DecodeQueue::decoded, this, [&](int index, const DecodedPicture &picture) {
        if (!guard)
            return;
        delivered.append({index, picture});
        // In an event of its own: the decodes that came together are not all made rows at once.
        if (picture.unconvertible || delivered.size() >= kRowsPerInsertion)
            flushTimer.start(0);
        else if (!flushTimer.isActive())
            flushTimer.start(kInsertionDelayMs);
    });
    connect(&decodes, &DecodeQueue::finished, &loop, [&] {
        decoding = false;
        if (!delivered.isEmpty())
            flushTimer.start(0);
        quitWhenDone();
    });
    if (!small)
        connect(progress, &QProgressDialog::canceled, this, [&] {
            stopped = true;
            decodes.cancel();
        });

    m_imageDecodes = &decodes;
    // The table keeps its updates on: switching them back on after a thousand rows would repaint
    // every row widget at once (a long freeze), while new rows outside the view cost nothing.
    decodes.start(jobs);
    // The event loop runs while the pictures are decoded and made rows. A small batch has no
    // dialog to keep the user out, so it takes no input meanwhile.
    if (decodes.isBusy())
        loop.exec(small ? QEventLoop::ExcludeUserInputEvents : QEventLoop::AllEvents);
    if (!guard)
        return; // the window went meanwhile; its destructor stopped the adding
    while (!stopped && !endedFromOutside() && !delivered.isEmpty())
        flush(); // what is left when the loop did not run (nothing to decode)
    if (!guard)
        return;
    if (m_imageDecodes == &decodes)
        m_imageDecodes = nullptr;
    progressTimer.stop();
    if (progress && !small)
        progress->setValue(total);

    const int skipped = total - reached;
    if (limitStopped && skipped > 0) {
        QMessageBox::warning(this, Str::noticeTitle(),
                             Str::importSkippedPlaylistLimit(skipped, kPlaylistFrameLimit));
    }
    reportDuplicates(firstAdded);
    if (!guard)
        return;
    updateCount();
    recordTableChange(Str::undoAddPictures());
    ImageLoader::releaseFreedMemory();
}

void MainWindow::addSingleFile(const QString &path, const QString &baseDir, QSet<QString> *seen)
{
    if (m_imageTable->rowCount() > kPlaylistFrameLimit - 1)
        return;
    const QFileInfo info(path);
    if (!info.exists() || !isSupportedFile(info))
        return;
    const PendingImage image{info.absoluteFilePath(), baseDir};
    const DecodedPicture picture = DecodeQueue::decode({path, DecodeQueue::Work::Decode});
    if (acceptDecodedImage(image, picture, seen))
        appendImageRows({{image, picture}});
}

bool MainWindow::acceptDecodedImage(const PendingImage &image, const DecodedPicture &picture,
                                    QSet<QString> *seen)
{
    // The conversion comes before the duplicate test, so a HEIC file already listed is found
    // in the cache (or converted) again, and warned about again when it cannot be.
    if (picture.unconvertible) {
        QMessageBox::warning(this, Str::noticeTitle(),
                             Str::heicLoadFailed(QDir::toNativeSeparators(image.path)));
        return false;
    }
    const QString absolute = QFileInfo(image.path).absoluteFilePath();
    if (seen) {
        if (seen->contains(absolute))
            return false;
        seen->insert(absolute);
        return true;
    }
    for (int row = 0; row < m_imageTable->rowCount(); ++row) {
        const QTableWidgetItem *item = m_imageTable->item(row, FileColumn);
        if (item && item->data(kSourcePathRole).toString() == absolute)
            return false;
    }
    return true;
}

void MainWindow::appendImageRows(const QList<QPair<PendingImage, DecodedPicture>> &images)
{
    if (images.isEmpty())
        return;
    int row = m_imageTable->rowCount();
    m_imageTable->setRowCount(row + int(images.size()));
    for (const auto &[image, picture] : images)
        fillImageRow(row++, QFileInfo(image.path).absoluteFilePath(), image.baseDir, picture);
}

void MainWindow::fillImageRow(int row, const QString &absolute, const QString &baseDir,
                              const DecodedPicture &picture)
{
    RowRecord record;
    record.id = m_nextRowId++;
    record.baseDir = baseDir;
    record.heicCache = picture.heicCache;
    record.thumbnail = thumbnailFor(picture.thumbnail);
    record.content.sourcePath = absolute;
    record.content.thumbnailSource = picture.preview;
    record.content.state = PreprocState{defaultFillMode(), 0};
    record.content.pictureSize = picture.pictureSize;
    record.content.dateTaken = picture.dateTaken;
    record.likeness = picture.likeness;
    fillImageRow(row, record);
    if (picture.subjects && picture.subjects->detected)
        preprocWidgetAt(row)->frameAroundSubjects(*picture.subjects);
    if (picture.colourProblem != ColourProfile::Problem::None)
        appendLog(Str::colourProfileWarning(QFileInfo(absolute).fileName(),
                                            picture.colourProblem == ColourProfile::Problem::Damaged));
}

void MainWindow::fillImageRow(int row, const RowRecord &record)
{
    const QString &absolute = record.content.sourcePath;
    const QString &baseDir = record.baseDir;
    auto *select = new OrderedItem;
    select->setFlags(Qt::ItemIsUserCheckable | Qt::ItemIsEnabled);
    select->setCheckState(record.checked ? Qt::Checked : Qt::Unchecked);
    select->setTextAlignment(Qt::AlignCenter);
    m_imageTable->setItem(row, SelectColumn, select);

    m_imageTable->setCellWidget(row, OrderColumn, createRowReorderWidget(row));

    auto *file = new QTableWidgetItem(QFileInfo(absolute).fileName());
    file->setData(kSourcePathRole, absolute);
    file->setData(kBaseDirRole, baseDir);
    file->setData(kTempPreprocRole, QString());
    file->setData(kHeicCacheRole, record.heicCache);
    file->setData(kRowIdRole, record.id);
    file->setData(kLikenessRole, QVariant::fromValue(record.likeness));
    file->setToolTip(absolute);
    m_imageTable->setItem(row, FileColumn, file);

    auto *widget = new PreprocWidget(absolute, record.content.thumbnailSource);
    widget->setPreviewRenderer(m_previewRenderer);
    // No redraw here: the widget draws its first thumbnail once the row is in place.
    widget->setFrameSettings(panelResolution(), isLandscapeOrientation(), false);
    widget->setContent(record.content, false);
    widget->applyLanguage();
    connect(widget, &PreprocWidget::preprocessingChanged, this,
            [this, widget] { onRowPreprocessingChanged(widget); });
    connect(widget, &PreprocWidget::previewRedrawn, m_pictureGrid->viewport(), qOverload<>(&QWidget::update));
    m_imageTable->setCellWidget(row, FileColumn, widget);

    auto *thumb = new QLabel;
    thumb->setPixmap(record.thumbnail);
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
