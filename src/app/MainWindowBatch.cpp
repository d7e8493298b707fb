// Batch preprocessing of the checked rows, and the frame settings of every row.
#include "app/MainWindow.h"

#include "images/ImageTableWidget.h"
#include "preprocess/Caption.h"
#include "preprocess/CaptionDialog.h"
#include "preprocess/PreprocControlPanel.h"
#include "preprocess/PictureGrid.h"
#include "preprocess/PreprocWidget.h"
#include "preprocess/Tone.h"
#include "preprocess/ToneDialog.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>

namespace {
constexpr int kRowsWithoutProgress = 10;
}

int MainWindow::applyToRowWidgets(const QList<int> &rows, const QString &title,
                                  QString (*progressLabel)(int, int),
                                  const std::function<void(PreprocWidget *)> &action)
{
    int changed = 0;
    const auto applyTo = [&](int row) {
        PreprocWidget *widget = preprocWidgetAt(row);
        if (!widget)
            return false; // not a row widget: skipped and not counted
        const PreprocState before = widget->state();
        action(widget);
        if (widget->state() != before)
            markRowChanged(row);
        widget->refreshPreviewDisplay();
        ++changed;
        return true;
    };
    if (rows.size() <= kRowsWithoutProgress) {
        for (int row : rows)
            applyTo(row);
        return changed;
    }

    const int total = int(rows.size());
    QProgressDialog progress(this);
    progress.setWindowTitle(title);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(0);
    progress.setAutoClose(true);
    progress.setAutoReset(true);
    progress.setCancelButtonText(Str::cancel());
    progress.setMinimumWidth(320);
    progress.setRange(0, total);
    progress.setValue(0);
    progress.setLabelText(progressLabel(0, total));
    progress.show();
    // The table keeps its updates on (switching them back on would repaint every row at once).
    int done = 0;
    for (int row : rows) {
        if (progress.wasCanceled())
            break; // rows already changed stay changed
        if (!applyTo(row))
            continue;
        ++done;
        progress.setValue(done);
        progress.setLabelText(progressLabel(done, total));
        if (done % 3 == 0)
            QCoreApplication::processEvents();
    }
    if (progress.isVisible())
        progress.setValue(total); // closes the dialog unless reaching the total already did
    return changed;
}

int MainWindow::runBatchPreprocOnCheckedRows(const QString &title,
                                             const std::function<void(PreprocWidget *)> &action)
{
    const QList<int> rows = checkedRows();
    if (rows.isEmpty()) {
        QMessageBox::information(this, title, Str::selectImagesForBatch());
        return 0;
    }
    const int changed = applyToRowWidgets(rows, title, &Str::batchApplyProgress, action);
    recordTableChange(title);
    return changed;
}

int MainWindow::applyFillToCheckedRows(FillMode mode)
{
    const int changed = runBatchPreprocOnCheckedRows(
        Str::batchProcessingTitle(), [mode](PreprocWidget *widget) { widget->setFillMode(mode, false); });
    if (changed > 0)
        appendLog(Str::batchFillApplied(fillModeLabel(mode), changed));
    return changed;
}

int MainWindow::applyRotateStepToCheckedRows(int step)
{
    const int changed = runBatchPreprocOnCheckedRows(
        Str::batchRotateTitle(), [step](PreprocWidget *widget) { widget->stepRotate(step, false); });
    if (changed > 0)
        appendLog(
            Str::batchRotateApplied(step < 0 ? Str::batchRotateLeft() : Str::batchRotateRight(), changed));
    return changed;
}

int MainWindow::applyToneToCheckedRows(const ToneSettings &tone)
{
    const int changed = runBatchPreprocOnCheckedRows(
        Str::batchToneTitle(), [tone](PreprocWidget *widget) { widget->setTone(tone, false); });
    if (changed > 0)
        appendLog(Str::batchToneApplied(Tone::description(tone), changed));
    return changed;
}

int MainWindow::applyCaptionToCheckedRows(const CaptionSettings &caption)
{
    const int changed = runBatchPreprocOnCheckedRows(
        Str::batchCaptionTitle(), [caption](PreprocWidget *widget) { widget->setCaption(caption, false); });
    if (changed > 0)
        appendLog(Str::batchCaptionApplied(Caption::description(caption), changed));
    return changed;
}

void MainWindow::onBatchCaption()
{
    int count = 0;
    if (const std::optional<PreprocState> first = firstCheckedState(Str::batchCaptionTitle(), &count))
        if (const std::optional<CaptionSettings> caption = CaptionDialog::ask(first->caption, count, this))
            applyCaptionToCheckedRows(*caption);
}

void MainWindow::onBatchTone()
{
    int count = 0;
    if (const std::optional<PreprocState> first = firstCheckedState(Str::batchToneTitle(), &count))
        if (const std::optional<ToneSettings> tone = ToneDialog::ask(first->tone, count, this))
            applyToneToCheckedRows(*tone);
}

std::optional<PreprocState> MainWindow::firstCheckedState(const QString &title, int *count)
{
    const QList<int> rows = checkedRows();
    *count = int(rows.size());
    if (rows.isEmpty()) {
        QMessageBox::information(this, title, Str::selectImagesForBatch());
        return std::nullopt;
    }
    const PreprocWidget *first = preprocWidgetAt(rows.first());
    return first ? first->state() : PreprocState{defaultFillMode(), 0};
}

void MainWindow::onBatchFillMode(FillMode mode) { applyFillToCheckedRows(mode); }

void MainWindow::onBatchRotateLeft() { applyRotateStepToCheckedRows(-90); }

void MainWindow::onBatchRotateRight() { applyRotateStepToCheckedRows(90); }

void MainWindow::updatePreprocPanelSettings()
{
    if (!m_imageTable)
        return;
    const QSize panel = panelResolution();
    const bool landscape = isLandscapeOrientation();
    if (m_pictureGrid)
        m_pictureGrid->setFrame(panel, landscape);
    QList<int> rows;
    for (int row = 0; row < m_imageTable->rowCount(); ++row) {
        if (preprocWidgetAt(row))
            rows << row;
    }
    if (rows.isEmpty())
        return;
    applyToRowWidgets(
        rows, Str::frameSettingsProgressTitle(), &Str::frameSettingsProgress,
        [panel, landscape](PreprocWidget *widget) { widget->setFrameSettings(panel, landscape, false); });
    revalidateRows();    // frames made for other settings, or with another key, are made again
    absorbTableChange(); // framings that follow faces moved with the frame: not a step
}

void MainWindow::refreshPreprocLanguage()
{
    if (m_batchPanel)
        m_batchPanel->applyLanguage();
    if (m_batchToneButton) {
        m_batchToneButton->setText(Str::batchToneButton());
        m_batchToneButton->setToolTip(Str::batchToneTip());
    }
    if (m_batchCaptionButton) {
        m_batchCaptionButton->setText(Str::batchCaptionButton());
        m_batchCaptionButton->setToolTip(Str::batchCaptionTip());
    }
    if (m_batchAutoFrameButton)
        m_batchAutoFrameButton->setToolTip(Str::batchAutoFrameTip());
    showFaceSearchProgress();
    for (int row = 0; m_imageTable && row < m_imageTable->rowCount(); ++row) {
        if (PreprocWidget *widget = preprocWidgetAt(row))
            widget->applyLanguage();
    }
}
