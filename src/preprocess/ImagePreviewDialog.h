#pragma once

#include "preprocess/ImagePreprocess.h"

#include <QDialog>
#include <QImage>
#include <QSize>

#include <utility>

class PreprocControlPanel;
class QLabel;

// The large preview of one row: the full-resolution picture rendered as the frame will show
// it, in its wooden frame, with the fill and rotate controls. Nothing reaches the row unless
// the user confirms.
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
    QLabel *previewLabel() const { return m_previewLabel; }
    QLabel *infoLabel() const { return m_infoLabel; }

    void refreshPreview();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void rotateBy(int degrees);

    QImage m_image;
    QSize m_panel;
    bool m_landscape;
    PreprocState m_state;
    PreprocControlPanel *m_controlPanel = nullptr;
    QLabel *m_previewLabel = nullptr;
    QLabel *m_infoLabel = nullptr;
};
