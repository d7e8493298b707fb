#include "preprocess/ImagePreviewDialog.h"

#include "preprocess/Framing.h"
#include "preprocess/FramingSurface.h"
#include "preprocess/PreprocControlPanel.h"
#include "preprocess/Tone.h"
#include "preprocess/ToneControls.h"
#include "ui/AppBranding.h"
#include "ui/AppStrings.h"
#include "ui/AppTheme.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

#include <cmath>

namespace {
constexpr int kSettleMs = 180;    // a pause this long ends a wheel, slider or key gesture
constexpr double kZoomStep = 0.1; // per wheel notch
constexpr int kPercent = 100;
} // namespace

ImagePreviewDialog::ImagePreviewDialog(const QImage &image, const QSize &panel, bool landscape,
                                       const PreprocState &state, QWidget *parent)
    : QDialog(parent)
    , m_pyramid(image)
    , m_panel(panel)
    , m_landscape(landscape)
    , m_state(Framing::clamped(state))
{
    m_state.tone = Tone::clamped(m_state.tone);
    setWindowTitle(Str::previewDialogTitle());
    resize(900, 720);
    AppBranding::applyWindowIcon(this);

    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    AppBranding::insertDialogHeader(layout, Str::previewDialogTitle());

    auto *hint = new QLabel(Str::previewDialogHint(), this);
    hint->setWordWrap(true);
    layout->addWidget(hint);

    m_controlPanel = new PreprocControlPanel(PreprocControlPanel::LayoutStyle::SingleRow, false, true, this);
    m_controlPanel->setState(m_state);
    layout->addWidget(m_controlPanel);

    buildFramingControls(layout);
    buildFaceControls(layout);
    buildToneControls(layout);
    buildCaptionControls(layout);
    buildViewControls(layout);

    m_infoLabel = new QLabel(this);
    m_infoLabel->setWordWrap(true);
    layout->addWidget(m_infoLabel);

    m_scroll = new QScrollArea(this);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setAlignment(Qt::AlignCenter);
    m_surface = new FramingSurface;
    m_surface->setAlignment(Qt::AlignCenter);
    m_surface->setMinimumSize(640, 480);
    m_surface->setStyleSheet(
        QStringLiteral("background: #707070; border: 1px solid #999; border-radius: 4px;"));
    m_surface->setToolTip(Str::framingTip());
    m_scroll->setWidget(m_surface);
    layout->addWidget(m_scroll, 1);

    AppTheme::addConfirmButtons(this, layout);

    m_settle.setSingleShot(true);
    m_settle.setInterval(kSettleMs);
    connect(&m_settle, &QTimer::timeout, this, &ImagePreviewDialog::refreshPreview);
    connect(&m_renderer, &PanelRenderer::ready, this, &ImagePreviewDialog::showRendered);
    connect(m_controlPanel, &PreprocControlPanel::fillModeSelected, this, [this](FillMode mode) {
        m_state.fillMode = mode;
        m_controlPanel->setState(m_state);
        refreshPreview();
    });
    connect(m_controlPanel, &PreprocControlPanel::rotateLeftRequested, this, [this] { rotateBy(-90); });
    connect(m_controlPanel, &PreprocControlPanel::rotateRightRequested, this, [this] { rotateBy(90); });
    // At actual pixels the surface pans the view; otherwise it frames the picture.
    connect(m_surface, &FramingSurface::moved, this, [this](const QPoint &delta) {
        m_actualPixelsButton->isChecked() ? panBy(delta) : moveBy(delta);
    });
    connect(m_surface, &FramingSurface::nudged, this, [this](const QPoint &delta) {
        m_actualPixelsButton->isChecked() ? panBy(-delta) : moveBy(delta);
    });
    connect(m_surface, &FramingSurface::released, this, [this] {
        if (m_quick && !m_actualPixelsButton->isChecked())
            refreshPreview();
    });
    connect(m_surface, &FramingSurface::zoomed, this, [this](int steps) {
        if (!m_actualPixelsButton->isChecked())
            setZoom(m_state.zoom + steps * kZoomStep);
    });

    m_surface->setFocus(Qt::OtherFocusReason);
    refreshPreview();
}

void ImagePreviewDialog::buildFramingControls(QVBoxLayout *layout)
{
    auto *zoomRow = new QHBoxLayout;
    zoomRow->addWidget(new QLabel(Str::zoomCaption(), this));
    m_zoomSlider = new QSlider(Qt::Horizontal, this);
    m_zoomSlider->setRange(qRound(Framing::kMinZoom * kPercent), qRound(Framing::kMaxZoom * kPercent));
    m_zoomSlider->setSingleStep(qRound(kZoomStep * kPercent));
    m_zoomSlider->setPageStep(50);
    m_zoomSlider->setToolTip(Str::framingTip());
    zoomRow->addWidget(m_zoomSlider, 1);
    m_zoomValue = new QLabel(this);
    m_zoomValue->setMinimumWidth(48);
    zoomRow->addWidget(m_zoomValue);
    m_resetButton = new QPushButton(Str::resetFraming(), this);
    m_resetButton->setToolTip(Str::resetFramingTip());
    zoomRow->addWidget(m_resetButton);
    layout->addLayout(zoomRow);

    showZoom();
    connect(m_zoomSlider, &QSlider::valueChanged, this,
            [this](int percent) { setZoom(percent / double(kPercent)); });
    connect(m_resetButton, &QPushButton::clicked, this, &ImagePreviewDialog::resetFraming);
}

void ImagePreviewDialog::buildToneControls(QVBoxLayout *layout)
{
    auto *toneRow = new QHBoxLayout;
    m_toneControls = new ToneControls(this);
    m_toneControls->setTone(m_state.tone);
    toneRow->addWidget(m_toneControls, 1);
    m_beforeButton = new QPushButton(Str::toneBefore(), this);
    m_beforeButton->setCheckable(true);
    m_beforeButton->setToolTip(Str::toneBeforeTip());
    toneRow->addWidget(m_beforeButton, 0, Qt::AlignTop);
    layout->addLayout(toneRow);

    connect(m_toneControls, &ToneControls::toneChanged, this, &ImagePreviewDialog::toneChanged);
    connect(m_beforeButton, &QPushButton::toggled, this, &ImagePreviewDialog::refreshPreview);
    connect(new QShortcut(QKeySequence(Qt::Key_Backslash), this), &QShortcut::activated, m_beforeButton,
            &QPushButton::toggle);
}

void ImagePreviewDialog::buildViewControls(QVBoxLayout *layout)
{
    auto *viewRow = new QHBoxLayout;
    m_epaperCheck = new QCheckBox(Str::showAsEpaper(), this);
    m_epaperCheck->setToolTip(Str::showAsEpaperTip());
    viewRow->addWidget(m_epaperCheck);
    m_actualPixelsButton = new QPushButton(Str::actualPixels(), this);
    m_actualPixelsButton->setCheckable(true);
    m_actualPixelsButton->setToolTip(Str::actualPixelsTip());
    viewRow->addWidget(m_actualPixelsButton);
    auto *note = new QLabel(Str::epaperNote(), this);
    note->setStyleSheet(AppTheme::mutedLabelStyleSheet("font-size:11px;"));
    note->setWordWrap(true);
    viewRow->addWidget(note, 1);
    layout->addLayout(viewRow);

    connect(m_epaperCheck, &QCheckBox::toggled, this, &ImagePreviewDialog::refreshPreview);
    connect(m_actualPixelsButton, &QPushButton::toggled, this, &ImagePreviewDialog::setActualPixels);
    connect(new QShortcut(QKeySequence(Qt::Key_E), this), &QShortcut::activated, m_epaperCheck,
            &QCheckBox::toggle);
    connect(new QShortcut(QKeySequence(Qt::Key_Z), this), &QShortcut::activated, m_actualPixelsButton,
            &QPushButton::toggle);
}

std::pair<bool, PreprocState> ImagePreviewDialog::openPreview(const QImage &image, const QSize &panel,
                                                              bool landscape, const PreprocState &state,
                                                              QWidget *parent)
{
    if (image.isNull())
        return {false, state};
    ImagePreviewDialog dialog(image, panel, landscape, state, parent);
    const bool accepted = dialog.exec() == QDialog::Accepted;
    return {accepted, accepted ? dialog.workingState() : state};
}

QLabel *ImagePreviewDialog::previewLabel() const { return m_surface; }

void ImagePreviewDialog::rotateBy(int degrees)
{
    // Unlike a row, the dialog keeps a direct state when rotating; the row converts it when
    // it takes the result. The focus turns with the picture.
    m_state = Framing::turned(m_state, degrees);
    m_controlPanel->setState(m_state);
    refreshPreview();
}

QSize ImagePreviewDialog::rotatedPictureSize() const
{
    const QSize size = m_pyramid.full().size();
    return m_state.rotationDegrees % 180 != 0 ? size.transposed() : size;
}

void ImagePreviewDialog::moveBy(const QPoint &screenDelta)
{
    if (m_state.fillMode == FillMode::Direct)
        return; // a picture sent as it is has no framing
    const QSize frame = effectiveFrameResolution(m_panel, m_landscape);
    const QSize outer = outerSize();
    const int border = framedPreviewBorder(outer);
    // Screen pixels per frame pixel: the frame's composition fitted into the opening.
    const double shown = qMin(double(outer.width() - 2 * border) / qMax(1, frame.width()),
                              double(outer.height() - 2 * border) / qMax(1, frame.height()));
    const QPointF focus(m_state.focusX, m_state.focusY);
    const QRectF picture =
        Framing::pictureRect(rotatedPictureSize(), m_state.fillMode, frame, focus, m_state.zoom);
    if (picture.isEmpty() || shown <= 0)
        return;
    // The picture follows the mouse: its focus moves the other way, by the share of the
    // picture that the mouse went across; it never goes beyond what the edges allow, so a
    // move back responds at once.
    const QPointF moved(qBound(0.0, focus.x() - screenDelta.x() / shown / picture.width(), 1.0),
                        qBound(0.0, focus.y() - screenDelta.y() / shown / picture.height(), 1.0));
    const QPointF settled =
        Framing::shownFocus(rotatedPictureSize(), m_state.fillMode, frame, moved, m_state.zoom);
    if (settled == focus)
        return;
    m_state.focusX = settled.x();
    m_state.focusY = settled.y();
    framingChanged();
}

void ImagePreviewDialog::setZoom(double zoom)
{
    const double wanted =
        qBound(Framing::kMinZoom, std::round(zoom * kPercent) / kPercent, Framing::kMaxZoom);
    if (wanted == m_state.zoom)
        return;
    m_state.zoom = wanted;
    showZoom();
    framingChanged();
}

void ImagePreviewDialog::resetFraming()
{
    m_state = Framing::withoutFraming(m_state);
    showZoom();
    refreshPreview();
}

void ImagePreviewDialog::showZoom()
{
    const int percent = qRound(m_state.zoom * kPercent);
    const QSignalBlocker blocker(m_zoomSlider); // the slider reports the user's moves only
    m_zoomSlider->setValue(percent);
    m_zoomValue->setText(Str::zoomPercent(percent));
}

void ImagePreviewDialog::framingChanged()
{
    refreshQuickPreview();
    // A drag ends with its release; wheel, slider and keys end with a pause.
    if (!m_surface->isDragging())
        m_settle.start();
}

void ImagePreviewDialog::toneChanged(const ToneSettings &tone)
{
    m_state.tone = tone;
    if (m_beforeButton->isChecked()) {
        const QSignalBlocker blocker(m_beforeButton); // a change is seen: "after" again
        m_beforeButton->setChecked(false);
    }
    framingChanged(); // a slider's gesture ends, as the zoom slider's, with a pause
}

void ImagePreviewDialog::keyPressEvent(QKeyEvent *event)
{
    // Arrow keys that the control with the focus leaves unused nudge the picture, or at actual
    // pixels move the view.
    const QPoint nudge = FramingSurface::nudgeFor(event->key());
    if (nudge.isNull()) {
        QDialog::keyPressEvent(event);
        return;
    }
    m_actualPixelsButton->isChecked() ? panBy(-nudge) : moveBy(nudge);
    event->accept();
}
