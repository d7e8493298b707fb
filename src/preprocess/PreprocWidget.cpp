#include "preprocess/PreprocWidget.h"

#include "images/DateTaken.h"
#include "images/ImageLoader.h"
#include "preprocess/AutoFrame.h"
#include "preprocess/Caption.h"
#include "preprocess/Framing.h"
#include "preprocess/ImagePreviewDialog.h"
#include "preprocess/PreprocControlPanel.h"
#include "preprocess/PreviewRenderer.h"
#include "preprocess/Tone.h"
#include "run/ExportRender.h"
#include "ui/AppStrings.h"

#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

namespace {
constexpr int kThumbnailSourceSide = 280;
constexpr int kPreviewBox = 88;
} // namespace

PreprocWidget::PreprocWidget(const QString &path, QWidget *parent)
    : PreprocWidget(path, CompactImage(ImageLoader::load(path, kThumbnailSourceSide)), parent)
{
    setPictureSize(ImageLoader::pictureSize(path));
    setDateTaken(DateTaken::read(path));
}

PreprocWidget::PreprocWidget(const QString &path, const CompactImage &thumbnailSource, QWidget *parent)
    : QWidget(parent)
    , m_sourcePath(path)
    , m_thumbnailSource(thumbnailSource)
    , m_state{defaultFillMode(), 0}
    , m_panelResolution(1200, 1600)
{
    setupUI();
    // The first thumbnail is drawn once the row is in place.
    QTimer::singleShot(0, this, &PreprocWidget::updatePreview);
}

PreprocWidget::~PreprocWidget()
{
    if (m_renderer)
        m_renderer->forget(this);
}

PreprocState PreprocWidget::withoutDirect(PreprocState state)
{
    if (state.fillMode == FillMode::Direct)
        state.fillMode = FillMode::BlurFill;
    state.rotationDegrees = ((state.rotationDegrees % 360) + 360) % 360;
    state.tone = Tone::clamped(state.tone);
    return Framing::clamped(state);
}

void PreprocWidget::setupUI()
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 3, 4, 3);
    layout->setSpacing(6);

    auto *left = new QVBoxLayout;
    left->setContentsMargins(0, 0, 0, 0);
    left->setSpacing(3);
    auto *nameRow = new QHBoxLayout;
    nameRow->setContentsMargins(0, 0, 0, 0);
    nameRow->setSpacing(4);
    m_nameLabel = new QLabel(this);
    m_nameLabel->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    showSourceName();
    // Before the name, where the eye starts reading the row.
    m_lowResolutionMark = new QLabel(QStringLiteral("⚠"), this);
    m_lowResolutionMark->setObjectName(QStringLiteral("tarnLowResMark"));
    m_lowResolutionMark->hide();
    m_faceMark = new QLabel(QStringLiteral("⚠"), this);
    m_faceMark->setObjectName(QStringLiteral("tarnFaceMark"));
    m_faceMark->hide();
    m_toneMark = new QLabel(QStringLiteral("◐"), this);
    m_toneMark->setObjectName(QStringLiteral("tarnToneMark"));
    m_toneMark->hide();
    m_captionMark = new QLabel(QStringLiteral("Aa"), this);
    m_captionMark->setObjectName(QStringLiteral("tarnCaptionMark"));
    m_captionMark->hide();
    nameRow->addWidget(m_lowResolutionMark);
    nameRow->addWidget(m_faceMark);
    nameRow->addWidget(m_nameLabel);
    nameRow->addWidget(m_toneMark); // beside the name, as notes on the picture
    nameRow->addWidget(m_captionMark);
    left->addLayout(nameRow);
    m_controlPanel = new PreprocControlPanel(PreprocControlPanel::LayoutStyle::Stacked, false, true, this);
    m_controlPanel->setState(m_state);
    m_controlPanel->applyLanguage();
    left->addWidget(m_controlPanel);
    layout->addLayout(left, 1);

    m_previewLabel = new QLabel(this);
    m_previewLabel->setAlignment(Qt::AlignCenter);
    m_previewLabel->setCursor(Qt::PointingHandCursor);
    m_previewLabel->setObjectName(
        QStringLiteral("tarnRowPreview")); // transparent, by the application's sheet
    m_previewLabel->setToolTip(Str::clickPreviewTip());
    m_previewLabel->installEventFilter(this);
    updatePreviewFrameSize();
    layout->addWidget(m_previewLabel);

    connect(m_controlPanel, &PreprocControlPanel::fillModeSelected, this, &PreprocWidget::onFillModeSelected);
    connect(m_controlPanel, &PreprocControlPanel::rotateLeftRequested, this, &PreprocWidget::onRotateLeft);
    connect(m_controlPanel, &PreprocControlPanel::rotateRightRequested, this, &PreprocWidget::onRotateRight);
}

void PreprocWidget::showSourceName()
{
    m_nameLabel->setText(QFileInfo(m_sourcePath).fileName());
    m_nameLabel->setToolTip(m_sourcePath);
}

void PreprocWidget::updatePreviewFrameSize()
{
    m_previewLabel->setFixedSize(
        previewFrameOuterSize(effectiveFrameResolution(m_panelResolution, m_landscape), kPreviewBox));
}

QImage PreprocWidget::displayPreviewImage() const
{
    if (m_thumbnailSource.isNull())
        return QImage();
    return renderPreprocDisplayPreview(m_thumbnailSource.image(), m_state,
                                       scaledResolutionForPreview(m_panelResolution, kThumbnailSourceSide),
                                       m_landscape);
}

QImage PreprocWidget::processedPreview() const
{
    return m_state.fillMode == FillMode::Direct ? QImage() : displayPreviewImage();
}

void PreprocWidget::refreshPreviewPixmap()
{
    if (m_renderer) {
        if (!m_thumbnailSource.isNull())
            m_renderer->request(this, previewRequest());
        return;
    }
    const QImage preview = displayPreviewImage();
    if (preview.isNull())
        return;
    m_previewLabel->setPixmap(makeFramedPreviewPixmapExact(
        preview,
        previewFrameOuterSize(effectiveFrameResolution(m_panelResolution, m_landscape), kPreviewBox)));
}

void PreprocWidget::setPreviewRenderer(PreviewRenderer *renderer) { m_renderer = renderer; }

void PreprocWidget::setPictureSize(const QSize &size)
{
    m_pictureSize = size;
    updateMarks();
}

void PreprocWidget::updateLowResolutionMark()
{
    const QString warning =
        Framing::lowResolutionText(m_pictureSize, m_state, m_panelResolution, m_landscape);
    m_lowResolutionMark->setToolTip(warning);
    m_lowResolutionMark->setVisible(!warning.isEmpty());
}

void PreprocWidget::updateFaceMark()
{
    const int cut = m_subjects ? AutoFrame::cutFaces(m_pictureSize, m_state, m_panelResolution, m_landscape,
                                                     m_subjects->faces)
                               : 0;
    m_faceMark->setToolTip(cut > 0 ? Str::faceCutTip(cut) : QString());
    m_faceMark->setVisible(cut > 0);
}

void PreprocWidget::updateMarks()
{
    updateLowResolutionMark();
    updateFaceMark();
    updateToneMark();
    updateCaptionMark();
}

void PreprocWidget::updateCaptionMark()
{
    const CaptionSettings &caption = m_state.caption;
    const bool captioned = caption.kind != CaptionKind::None;
    m_captionMark->setToolTip(!captioned ? QString()
                              : caption.shown.isEmpty() && caption.kind == CaptionKind::DateTaken
                                  ? Str::captionNoDateTip()
                                  : Str::captionMarkTip(Caption::description(caption), caption.shown));
    m_captionMark->setVisible(captioned);
}

void PreprocWidget::setDateTaken(const QDateTime &taken)
{
    m_dateTaken = taken;
    m_state.caption = Caption::resolved(m_state.caption, m_sourcePath, m_dateTaken);
    updateCaptionMark();
}

void PreprocWidget::updateToneMark()
{
    const bool toned = !Tone::isNeutral(m_state.tone);
    m_toneMark->setToolTip(toned ? Str::toneMarkTip(Tone::description(m_state.tone)) : QString());
    m_toneMark->setVisible(toned);
}

void PreprocWidget::showFramedPreview(const QImage &framed)
{
    if (!framed.isNull())
        m_previewLabel->setPixmap(QPixmap::fromImage(framed));
}

void PreprocWidget::updatePreview()
{
    if (m_thumbnailSource.isNull()) {
        m_previewLabel->hide();
        return;
    }
    refreshPreviewPixmap();
    m_previewLabel->show();
    Q_EMIT previewRedrawn();
}

PreviewRenderer::Request PreprocWidget::previewRequest() const
{
    return {m_thumbnailSource, m_state, m_panelResolution, m_landscape};
}

void PreprocWidget::refreshPreviewDisplay() { updatePreview(); }

QImage PreprocWidget::loadFullSourceImage() const { return ImageLoader::load(m_sourcePath, 0); }

void PreprocWidget::followSubjects()
{
    if (!m_followsSubjects || !m_subjects)
        return;
    const AutoFrame::Result framed =
        AutoFrame::frame(m_state, m_pictureSize, *m_subjects, m_panelResolution, m_landscape);
    m_state = withoutDirect(framed.state);
}

void PreprocWidget::finishChange(bool refresh)
{
    followSubjects();
    m_state.caption = Caption::resolved(m_state.caption, m_sourcePath, m_dateTaken);
    m_controlPanel->setState(m_state);
    updateMarks();
    if (!refresh)
        return;
    refreshPreviewDisplay();
    Q_EMIT preprocessingChanged();
}

void PreprocWidget::setFillMode(FillMode mode, bool refresh)
{
    PreprocState next = m_state; // the framing stays
    next.fillMode = mode;
    m_state = withoutDirect(next);
    finishChange(refresh);
}

void PreprocWidget::onFillModeSelected(FillMode mode) { setFillMode(mode, true); }

void PreprocWidget::setTone(const ToneSettings &tone, bool refresh)
{
    PreprocState next = m_state;
    next.tone = tone;
    m_state = withoutDirect(next);
    finishChange(refresh);
}

void PreprocWidget::setCaption(const CaptionSettings &caption, bool refresh)
{
    m_state.caption = caption;
    finishChange(refresh);
}

void PreprocWidget::stepRotate(int deltaDegrees, bool refresh)
{
    m_state = withoutDirect(Framing::turned(m_state, deltaDegrees));
    finishChange(refresh);
}

void PreprocWidget::onRotateLeft() { stepRotate(-90, true); }

void PreprocWidget::onRotateRight() { stepRotate(90, true); }

void PreprocWidget::commitState(const PreprocState &state, bool refresh)
{
    m_followsSubjects = false; // framed by hand (or as a list keeps it) from now on
    m_state = withoutDirect(state);
    finishChange(refresh);
}

void PreprocWidget::frameAroundSubjects(const PictureSubjects &subjects, bool refresh)
{
    const PreprocState before = m_state;
    m_subjects = subjects;
    m_followsSubjects = true;
    followSubjects();
    const bool changed = m_state != before;
    finishChange(refresh && changed);
}

void PreprocWidget::applyState(const PreprocState &state) { commitState(state, true); }

void PreprocWidget::setFrameSettings(const QSize &panel, bool landscape, bool refresh)
{
    if (panel == m_panelResolution && landscape == m_landscape)
        return;
    m_panelResolution = panel;
    m_landscape = landscape;
    updatePreviewFrameSize();
    followSubjects();
    updateMarks();
    if (refresh) {
        refreshPreviewDisplay();
        Q_EMIT preprocessingChanged();
    }
}

void PreprocWidget::swapContentWith(PreprocWidget *other)
{
    if (!other || other == this)
        return;
    std::swap(m_sourcePath, other->m_sourcePath);
    std::swap(m_thumbnailSource, other->m_thumbnailSource);
    std::swap(m_state, other->m_state);
    std::swap(m_pictureSize, other->m_pictureSize);
    std::swap(m_dateTaken, other->m_dateTaken);
    std::swap(m_subjects, other->m_subjects);
    std::swap(m_followsSubjects, other->m_followsSubjects);
    if (m_renderer) {
        // Both rows share the frame settings: each thumbnail is right for the other row at once
        // (and is drawn again, in case one was still on its way).
        const QPixmap mine = m_previewLabel->pixmap();
        m_previewLabel->setPixmap(other->m_previewLabel->pixmap());
        other->m_previewLabel->setPixmap(mine);
    }
    for (PreprocWidget *widget : {this, other}) {
        widget->showSourceName();
        widget->m_controlPanel->setState(widget->m_state);
        widget->updateMarks();
        widget->updatePreview();
    }
}

PreprocWidget::Content PreprocWidget::content() const
{
    return Content{m_sourcePath, m_thumbnailSource, m_state,          m_pictureSize,
                   m_dateTaken,  m_subjects,        m_followsSubjects};
}

void PreprocWidget::setContent(const Content &content, bool redraw)
{
    const bool samePicture = content.sourcePath == m_sourcePath;
    m_sourcePath = content.sourcePath;
    m_thumbnailSource = content.thumbnailSource;
    m_state = content.state;
    m_pictureSize = content.pictureSize;
    m_dateTaken = content.dateTaken;
    m_subjects = content.subjects;
    m_followsSubjects = content.followsSubjects;
    if (!samePicture)
        showSourceName();
    m_controlPanel->setState(m_state);
    updateMarks();
    if (redraw)
        updatePreview();
}

void PreprocWidget::applyLanguage()
{
    m_controlPanel->applyLanguage();
    m_previewLabel->setToolTip(Str::clickPreviewTip());
    updateMarks();
}

void PreprocWidget::openPreviewDialog()
{
    const QImage full = loadFullSourceImage();
    if (full.isNull())
        return;
    ImagePreviewDialog dialog(full, m_panelResolution, m_landscape, m_state, window());
    dialog.setPictureFacts(m_sourcePath, m_dateTaken);
    if (m_subjects)
        dialog.setSubjects(*m_subjects);
    else
        dialog.findSubjects(m_sourcePath);
    const bool accepted = dialog.exec() == QDialog::Accepted;
    if (!m_subjects && dialog.subjects()) {
        m_subjects = dialog.subjects(); // found while the dialog was open: kept for the mark
        updateMarks();
    }
    if (accepted)
        commitState(dialog.workingState(), true);
}

bool PreprocWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_previewLabel && event->type() == QEvent::MouseButtonRelease) {
        openPreviewDialog();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

QString PreprocWidget::applyPreprocessing(const QString &outputDir) const
{
    if (m_state.fillMode == FillMode::Direct)
        return QString();
    const RenderRequest request{m_sourcePath, m_state, m_panelResolution, m_landscape,
                                QFileInfo(m_sourcePath).completeBaseName() + QStringLiteral("_preproc.jpg")};
    return ExportRender::write(request, QDir(outputDir).filePath(request.fileName));
}
