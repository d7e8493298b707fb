#pragma once

#include "preprocess/ImagePreprocess.h"
#include "preprocess/ImagePyramid.h"

#include <QDialog>
#include <QImage>
#include <QSize>
#include <QTimer>

#include <utility>

class FramingSurface;
class PreprocControlPanel;
class QCheckBox;
class QLabel;
class QPushButton;
class QSlider;

// The large preview of one row: the full-resolution picture rendered as the frame will show
// it, in its wooden frame, with the fill and rotate controls, and the place where the picture
// is framed: dragged to move it, zoomed with the wheel or the slider, nudged with the arrow
// keys, reset. While the user frames, the preview is rendered at screen size from a reduced
// copy so that it keeps up; once the user pauses it is rendered again at the panel's
// resolution, optionally as a six-colour e-paper panel would show it. Nothing reaches the row
// unless the user confirms.
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
    QLabel *infoLabel() const { return m_infoLabel; }
    QSlider *zoomSlider() const { return m_zoomSlider; }
    QPushButton *resetFramingButton() const { return m_resetButton; }
    QCheckBox *epaperCheckBox() const { return m_epaperCheck; }
    // True while the preview shows a screen-size render that a full one will replace.
    bool isShowingQuickPreview() const { return m_quick; }

    // The preview at the panel's resolution.
    void refreshPreview();
    // The preview at screen size, replaced by refreshPreview() once the user pauses.
    void refreshQuickPreview();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void buildFramingControls(class QVBoxLayout *layout);
    void rotateBy(int degrees);
    void moveBy(const QPoint &screenDelta);
    void setZoom(double zoom);
    void resetFraming();
    void showZoom();
    void framingChanged();
    QSize outerSize() const;
    QSize rotatedPictureSize() const;
    void showPreview(const QImage &preview);

    ImagePyramid m_pyramid;
    QSize m_panel;
    bool m_landscape;
    PreprocState m_state;
    PreprocControlPanel *m_controlPanel = nullptr;
    FramingSurface *m_surface = nullptr;
    QLabel *m_infoLabel = nullptr;
    QSlider *m_zoomSlider = nullptr;
    QLabel *m_zoomValue = nullptr;
    QPushButton *m_resetButton = nullptr;
    QCheckBox *m_epaperCheck = nullptr;
    QTimer m_settle;
    bool m_quick = false;
};
