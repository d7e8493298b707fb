// The preview dialog's faces and caption: looking for the picture's faces when the row does not
// know them yet, framing them ("Frame faces"), outlining them on the preview ("Show faces"),
// and the caption's controls.
#include "preprocess/ImagePreviewDialog.h"

#include "images/FaceSearch.h"
#include "preprocess/AutoFrame.h"
#include "preprocess/Caption.h"
#include "preprocess/CaptionControls.h"
#include "preprocess/Framing.h"
#include "preprocess/PreprocControlPanel.h"
#include "ui/AppStrings.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
const QColor kKeptFace(70, 220, 120);
const QColor kCutFace(240, 80, 60);
} // namespace

void ImagePreviewDialog::buildFaceControls(QVBoxLayout *layout)
{
    auto *row = new QHBoxLayout;
    m_frameFacesButton = new QPushButton(Str::frameFacesButton(), this);
    m_frameFacesButton->setToolTip(Str::frameFacesButtonTip());
    m_frameFacesButton->setEnabled(false); // until the faces are known
    row->addWidget(m_frameFacesButton);
    m_showFacesCheck = new QCheckBox(Str::showFaces(), this);
    m_showFacesCheck->setToolTip(Str::showFacesTip());
    row->addWidget(m_showFacesCheck);
    m_facesLabel = new QLabel(this);
    m_facesLabel->setStyleSheet(QStringLiteral("color: #888;"));
    row->addWidget(m_facesLabel, 1);
    layout->addLayout(row);

    connect(m_frameFacesButton, &QPushButton::clicked, this, &ImagePreviewDialog::frameFaces);
    connect(m_showFacesCheck, &QCheckBox::toggled, this, &ImagePreviewDialog::refreshPreview);
}

void ImagePreviewDialog::buildCaptionControls(QVBoxLayout *layout)
{
    m_captionControls = new CaptionControls(this);
    m_captionControls->setCaption(m_state.caption);
    layout->addWidget(m_captionControls);
    connect(m_captionControls, &CaptionControls::captionChanged, this,
            [this](const CaptionSettings &caption) {
                m_state.caption = Caption::resolved(caption, m_picturePath, m_dateTaken);
                framingChanged(); // typing, as a slider, ends with a pause
            });
}

void ImagePreviewDialog::setPictureFacts(const QString &path, const QDateTime &dateTaken)
{
    m_picturePath = path;
    m_dateTaken = dateTaken;
    m_state.caption = Caption::resolved(m_state.caption, path, dateTaken);
    refreshPreview();
}

void ImagePreviewDialog::setSubjects(const PictureSubjects &subjects)
{
    if (m_faceSearch)
        m_faceSearch->cancel();
    m_subjects = subjects;
    m_frameFacesButton->setEnabled(subjects.detected);
    m_facesLabel->setText(!subjects.detected         ? Str::facesUnavailable()
                          : subjects.faces.isEmpty() ? Str::facesNoneFound()
                                                     : Str::facesFound(int(subjects.faces.size())));
    refreshPreview();
}

void ImagePreviewDialog::findSubjects(const QString &path)
{
    if (m_subjects || path.isEmpty())
        return;
    if (!m_faceSearch) {
        m_faceSearch = new FaceSearch(this);
        connect(m_faceSearch, &FaceSearch::found, this,
                [this](quint64, const PictureSubjects &subjects) { setSubjects(subjects); });
    }
    m_facesLabel->setText(Str::facesSearching());
    m_faceSearch->add({{0, path}});
}

void ImagePreviewDialog::frameFaces()
{
    if (!m_subjects || !m_subjects->detected)
        return;
    m_state = AutoFrame::frame(m_state, m_pyramid.full().size(), *m_subjects, m_panel, m_landscape).state;
    m_controlPanel->setState(m_state);
    showZoom();
    refreshPreview();
}

int ImagePreviewDialog::cutFaces() const
{
    if (!m_subjects || m_state.fillMode == FillMode::Direct)
        return 0;
    return AutoFrame::cutFaces(m_pyramid.full().size(), m_state, m_panel, m_landscape, m_subjects->faces);
}

QImage ImagePreviewDialog::withFaceBoxes(const QImage &image, bool actualPixels) const
{
    if (!m_showFacesCheck->isChecked() || !m_subjects || m_state.fillMode == FillMode::Direct ||
        image.isNull())
        return image;
    // The faces as the frame shows them: turned with the picture, placed where it is drawn.
    const QSize frame = effectiveFrameResolution(m_panel, m_landscape);
    const QRectF picture = Framing::pictureRect(rotatedPictureSize(), m_state.fillMode, frame,
                                                QPointF(m_state.focusX, m_state.focusY), m_state.zoom);
    const int border = actualPixels ? 0 : framedPreviewBorder(image.size());
    const QRectF opening = QRectF(image.rect()).adjusted(border, border, -border, -border);
    const double sx = opening.width() / qMax(1, frame.width()),
                 sy = opening.height() / qMax(1, frame.height());
    const QList<QRectF> faces = AutoFrame::turned(m_subjects->faces, m_state.rotationDegrees);
    QImage marked = image.convertToFormat(QImage::Format_RGB32);
    QPainter painter(&marked);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(opening);
    for (int i = 0; i < faces.size(); ++i) {
        const QRectF &face = faces.at(i);
        const QRectF box(opening.left() + (picture.left() + face.left() * picture.width()) * sx,
                         opening.top() + (picture.top() + face.top() * picture.height()) * sy,
                         face.width() * picture.width() * sx, face.height() * picture.height() * sy);
        const bool cut = AutoFrame::cutFaces(m_pyramid.full().size(), m_state, m_panel, m_landscape,
                                             {m_subjects->faces.at(i)}) > 0;
        painter.setPen(QPen(cut ? kCutFace : kKeptFace, qMax(2.0, marked.height() / 300.0),
                            cut ? Qt::DashLine : Qt::SolidLine));
        painter.drawRect(box);
    }
    return marked;
}
