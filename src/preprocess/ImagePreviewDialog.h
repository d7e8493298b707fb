#pragma once

#include "images/FaceDetector.h"
#include "preprocess/ImagePreprocess.h"
#include "preprocess/ImagePyramid.h"
#include "preprocess/PanelRenderer.h"

#include <QDateTime>
#include <QDialog>
#include <QImage>
#include <QSize>
#include <QTimer>

#include <optional>
#include <utility>

class CaptionControls;
class FaceSearch;
class FramingSurface;
class PreprocControlPanel;
class ToneControls;
class QCheckBox;
class QLabel;
class QPushButton;
class QScrollArea;
class QSlider;
class QVBoxLayout;

// The large preview of one row: the full-resolution picture rendered as the frame will show
// it, in its wooden frame, with the fill and rotate controls, and the place where the picture
// is framed (dragged to move it, zoomed with the wheel or the slider, nudged with the arrow
// keys, reset, or moved onto the picture's faces) and toned (a preset and three sliders, with a
// before/after toggle), and where its caption is chosen. The faces are the row's, or are
// looked for on a worker thread (FaceSearch) while the dialog is open. Every
// change shows at once at screen size from a reduced copy, so that the dialog keeps up; the
// preview at the panel's resolution, optionally as a six-colour e-paper panel shows it, is
// rendered on a worker thread (PanelRenderer) and replaces it when it is ready. That preview
// can also be seen at actual pixels, one panel pixel on one screen pixel, and panned by
// dragging: the e-paper toggle then compares the plain picture and the dither at the same
// place. Nothing reaches the row unless the user confirms. The view's half of the dialog is in
// ImagePreviewDialogView.cpp.
class ImagePreviewDialog : public QDialog
{
    Q_OBJECT

public:
    ImagePreviewDialog(const QImage &image, const QSize &panel, bool landscape, const PreprocState &state,
                       QWidget *parent = nullptr);

    // Runs the dialog modally. Accepted is true only on OK, and only then is the state the
    // dialog's; a null image returns at once, not accepted.
    static std::pair<bool, PreprocState> openPreview(const QImage &image, const QSize &panel, bool landscape,
                                                     const PreprocState &state, QWidget *parent);

    PreprocState workingState() const { return m_state; }
    PreprocControlPanel *controlPanel() const { return m_controlPanel; }
    QLabel *previewLabel() const;
    FramingSurface *framingSurface() const { return m_surface; }
    QScrollArea *scrollArea() const { return m_scroll; }
    QLabel *infoLabel() const { return m_infoLabel; }
    QSlider *zoomSlider() const { return m_zoomSlider; }
    QPushButton *resetFramingButton() const { return m_resetButton; }
    ToneControls *toneControls() const { return m_toneControls; }
    QPushButton *beforeButton() const { return m_beforeButton; }
    QCheckBox *epaperCheckBox() const { return m_epaperCheck; }
    QPushButton *actualPixelsButton() const { return m_actualPixelsButton; }
    // True while the preview waits for its render at the panel's resolution.
    bool isShowingQuickPreview() const { return m_quick; }

    // The picture's file and date taken, which its caption writes from.
    void setPictureFacts(const QString &path, const QDateTime &dateTaken);
    // The picture's faces (or subject), as the row knows them; or looked for in the file.
    void setSubjects(const PictureSubjects &subjects);
    void findSubjects(const QString &path);
    const std::optional<PictureSubjects> &subjects() const { return m_subjects; }
    // Moves the crop onto the faces, as "Frame faces" does.
    void frameFaces();
    QPushButton *frameFacesButton() const { return m_frameFacesButton; }
    QCheckBox *showFacesCheckBox() const { return m_showFacesCheck; }
    QLabel *facesLabel() const { return m_facesLabel; }
    CaptionControls *captionControls() const { return m_captionControls; }

    // Shows the preview at once at screen size, and asks for it at the panel's resolution.
    void refreshPreview();
    // The preview at screen size only; refreshPreview() follows once the user pauses.
    void refreshQuickPreview();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void buildFramingControls(QVBoxLayout *layout);
    void buildToneControls(QVBoxLayout *layout);
    void buildViewControls(QVBoxLayout *layout);
    void buildFaceControls(QVBoxLayout *layout);
    void buildCaptionControls(QVBoxLayout *layout);
    // How many faces the crop cuts, and the image with the faces outlined where "Show faces"
    // asks for them (kept ones solid, cut ones dashed).
    int cutFaces() const;
    QImage withFaceBoxes(const QImage &image, bool actualPixels) const;
    void rotateBy(int degrees);
    void moveBy(const QPoint &screenDelta);
    void setZoom(double zoom);
    void resetFraming();
    void showZoom();
    void framingChanged();
    void toneChanged(const ToneSettings &tone);
    QSize outerSize() const;
    QSize rotatedPictureSize() const;
    // What the preview shows: the working state, without its tone while "Before" is on.
    PreprocState shownState() const;
    void showInfo();
    void showImage(const QImage &image, bool actualPixels);
    void showRendered(quint64 ticket, const PanelRenderer::Result &result);
    void setActualPixels(bool on);
    void panBy(const QPoint &delta);

    ImagePyramid m_pyramid;
    QSize m_panel;
    bool m_landscape;
    PreprocState m_state;
    PreprocControlPanel *m_controlPanel = nullptr;
    FramingSurface *m_surface = nullptr;
    QScrollArea *m_scroll = nullptr;
    QLabel *m_infoLabel = nullptr;
    QSlider *m_zoomSlider = nullptr;
    QLabel *m_zoomValue = nullptr;
    QPushButton *m_resetButton = nullptr;
    ToneControls *m_toneControls = nullptr;
    QPushButton *m_beforeButton = nullptr;
    QCheckBox *m_epaperCheck = nullptr;
    QPushButton *m_actualPixelsButton = nullptr;
    QPushButton *m_frameFacesButton = nullptr;
    QCheckBox *m_showFacesCheck = nullptr;
    QLabel *m_facesLabel = nullptr;
    CaptionControls *m_captionControls = nullptr;
    std::optional<PictureSubjects> m_subjects;
    FaceSearch *m_faceSearch = nullptr;
    QString m_picturePath;
    QDateTime m_dateTaken;
    QTimer m_settle;
    PanelRenderer m_renderer;
    quint64 m_awaited = 0; // the render the preview waits for
    QImage m_composition;  // the last one at the panel's resolution
    bool m_quick = false;
    bool m_centreOnShow = false; // the actual-pixels view is centred when it next shows
};
