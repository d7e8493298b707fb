// The preview dialog's view: the preview at screen size at once, the one at the panel's
// resolution from the worker when it is ready, the actual-pixels view and its panning, and
// the info line.
#include "preprocess/ImagePreviewDialog.h"

#include "preprocess/EpaperLook.h"
#include "preprocess/Framing.h"
#include "preprocess/FramingSurface.h"
#include "ui/AppStrings.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>

namespace {
constexpr int kMinimumBox = 480;
const QSize kFittedMinimum(640, 480);
} // namespace

QSize ImagePreviewDialog::outerSize() const
{
    const int box = qMax(kMinimumBox, qMin(width() - 64, height() - 200));
    return previewFrameOuterSize(effectiveFrameResolution(m_panel, m_landscape), box);
}

PreprocState ImagePreviewDialog::shownState() const
{
    PreprocState shown = m_state;
    if (m_beforeButton->isChecked())
        shown.tone = ToneSettings();
    return shown;
}

void ImagePreviewDialog::refreshPreview()
{
    m_settle.stop();
    refreshQuickPreview();
    m_awaited = m_renderer.request(
        {m_pyramid.full(), shownState(), m_panel, m_landscape, m_epaperCheck->isChecked(), outerSize()});
}

void ImagePreviewDialog::refreshQuickPreview()
{
    m_quick = true;
    m_awaited = 0; // a render asked for before this change shows what is no longer there
    showInfo();
    if (m_actualPixelsButton->isChecked())
        return; // the view keeps its last picture at the panel's resolution until the next one
    const QSize outer = outerSize();
    const int border = framedPreviewBorder(outer);
    const QSize panel = scaledResolutionForPreview(m_panel, qMax(outer.width(), outer.height()) - 2 * border);
    // The smallest reduced copy that still gives the picture's pixels at this size.
    const QSizeF shown = Framing::pictureRect(rotatedPictureSize(), m_state.fillMode,
                                              effectiveFrameResolution(panel, m_landscape),
                                              QPointF(m_state.focusX, m_state.focusY), m_state.zoom)
                             .size();
    const QImage source = m_pyramid.levelFor(m_state.rotationDegrees % 180 != 0 ? shown.transposed() : shown);
    QImage preview = renderPreprocDisplayPreview(source, shownState(), panel, m_landscape);
    if (!preview.isNull() && m_epaperCheck->isChecked())
        preview = EpaperLook::render(preview); // the look's colours at once; its dither follows
    showImage(preview.isNull() ? QImage() : makeFramedPreviewImageExact(preview, outer), false);
}

void ImagePreviewDialog::showRendered(quint64 ticket, const PanelRenderer::Result &result)
{
    if (ticket != m_awaited)
        return;
    m_quick = false;
    m_composition = result.composition;
    const bool actual = m_actualPixelsButton->isChecked();
    showImage(actual ? result.composition : result.framed, actual);
}

void ImagePreviewDialog::showImage(const QImage &image, bool actualPixels)
{
    if (image.isNull()) {
        m_surface->setPixmap(QPixmap());
        m_surface->setText(Str::previewCannotLoad());
        return;
    }
    QPixmap pixmap = QPixmap::fromImage(withFaceBoxes(image, actualPixels));
    if (actualPixels)
        pixmap.setDevicePixelRatio(devicePixelRatioF()); // one panel pixel on one device pixel
    m_surface->setText(QString());
    m_surface->setPixmap(pixmap);
    m_surface->setMinimumSize(actualPixels ? pixmap.deviceIndependentSize().toSize() : kFittedMinimum);
    m_surface->resize(actualPixels ? m_surface->minimumSize() : pixmap.size());
    if (actualPixels && m_centreOnShow) {
        m_centreOnShow = false; // the middle of the picture in view, once, as it first shows
        for (QScrollBar *bar : {m_scroll->horizontalScrollBar(), m_scroll->verticalScrollBar()})
            bar->setValue((bar->minimum() + bar->maximum()) / 2);
    }
}

void ImagePreviewDialog::showInfo()
{
    const QSize frame = effectiveFrameResolution(m_panel, m_landscape);
    QString info =
        Str::previewInfoLine(formatPreprocStateLabel(m_state), formatPanelResolutionText(frame), m_landscape);
    const QString warning =
        Framing::lowResolutionText(m_pyramid.full().size(), m_state, m_panel, m_landscape);
    if (!warning.isEmpty())
        info += QStringLiteral("\n⚠ ") + warning;
    if (const int cut = cutFaces())
        info += QStringLiteral("\n⚠ ") + Str::faceCutTip(cut);
    if (m_state.caption.kind == CaptionKind::DateTaken && m_state.caption.shown.isEmpty())
        info += QStringLiteral("\n⚠ ") + Str::captionNoDateTip();
    m_infoLabel->setText(info);
}

void ImagePreviewDialog::setActualPixels(bool on)
{
    m_surface->setCursor(on ? Qt::SizeAllCursor : Qt::OpenHandCursor);
    m_surface->setToolTip(on ? Str::actualPixelsTip() : Str::framingTip());
    if (!on) {
        refreshPreview();
        return;
    }
    m_centreOnShow = true;
    if (m_quick || m_composition.isNull()) {
        m_surface->setPixmap(QPixmap());
        m_surface->setText(Str::previewRendering());
        refreshPreview(); // shown when it arrives
    } else {
        showImage(m_composition, true);
    }
}

void ImagePreviewDialog::panBy(const QPoint &delta)
{
    // The picture follows the mouse.
    m_scroll->horizontalScrollBar()->setValue(m_scroll->horizontalScrollBar()->value() - delta.x());
    m_scroll->verticalScrollBar()->setValue(m_scroll->verticalScrollBar()->value() - delta.y());
}

void ImagePreviewDialog::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    if (!m_actualPixelsButton->isChecked())
        refreshPreview();
}
