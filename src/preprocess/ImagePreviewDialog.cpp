#include "preprocess/ImagePreviewDialog.h"

#include "preprocess/PreprocControlPanel.h"
#include "ui/AppBranding.h"
#include "ui/AppStrings.h"
#include "ui/AppTheme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {
constexpr int kMinimumBox = 480;
}

ImagePreviewDialog::ImagePreviewDialog(const QImage &image, const QSize &panel, bool landscape,
                                       const PreprocState &state, QWidget *parent)
    : QDialog(parent)
    , m_image(image)
    , m_panel(panel)
    , m_landscape(landscape)
    , m_state(state)
{
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

    m_infoLabel = new QLabel(this);
    m_infoLabel->setWordWrap(true);
    layout->addWidget(m_infoLabel);

    auto *scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    m_previewLabel = new QLabel;
    m_previewLabel->setAlignment(Qt::AlignCenter);
    m_previewLabel->setMinimumSize(640, 480);
    m_previewLabel->setStyleSheet(
        QStringLiteral("background: #707070; border: 1px solid #999; border-radius: 4px;"));
    scroll->setWidget(m_previewLabel);
    layout->addWidget(scroll, 1);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    auto *cancel = new QPushButton(Str::cancel(), this);
    auto *ok = new QPushButton(Str::confirm(), this);
    ok->setDefault(true);
    ok->setStyleSheet(AppTheme::primaryButtonStyleSheet());
    buttons->addWidget(cancel);
    buttons->addWidget(ok);
    layout->addLayout(buttons);

    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_controlPanel, &PreprocControlPanel::fillModeSelected, this, [this](FillMode mode) {
        m_state.fillMode = mode;
        m_controlPanel->setState(m_state);
        refreshPreview();
    });
    connect(m_controlPanel, &PreprocControlPanel::rotateLeftRequested, this, [this] { rotateBy(-90); });
    connect(m_controlPanel, &PreprocControlPanel::rotateRightRequested, this, [this] { rotateBy(90); });

    refreshPreview();
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

void ImagePreviewDialog::rotateBy(int degrees)
{
    // Unlike a row, the dialog keeps a direct state when rotating; the row converts it when
    // it takes the result.
    m_state.rotationDegrees = (((m_state.rotationDegrees + degrees) % 360) + 360) % 360;
    m_controlPanel->setState(m_state);
    refreshPreview();
}

void ImagePreviewDialog::refreshPreview()
{
    const QImage preview = renderPreprocDisplayPreview(m_image, m_state, m_panel, m_landscape);
    if (preview.isNull()) {
        m_previewLabel->setPixmap(QPixmap());
        m_previewLabel->setText(Str::previewCannotLoad());
        return;
    }
    const int box = qMax(kMinimumBox, qMin(width() - 64, height() - 200));
    const QSize frame = effectiveFrameResolution(m_panel, m_landscape);
    const QPixmap framed = makeFramedPreviewPixmapExact(preview, previewFrameOuterSize(frame, box));
    m_previewLabel->setText(QString());
    m_previewLabel->setPixmap(framed);
    m_previewLabel->resize(framed.size());
    m_infoLabel->setText(Str::previewInfoLine(formatPreprocStateLabel(m_state),
                                              formatPanelResolutionText(frame), m_landscape));
}

void ImagePreviewDialog::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    refreshPreview();
}
