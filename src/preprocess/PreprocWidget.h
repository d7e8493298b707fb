#pragma once

#include "images/CompactImage.h"
#include "images/FaceDetector.h"
#include "preprocess/ImagePreprocess.h"
#include "preprocess/PreviewRenderer.h"

#include <QDateTime>
#include <QImage>
#include <QPointer>
#include <QSize>
#include <QWidget>

#include <optional>

class PreprocControlPanel;
class QLabel;

// The cell widget of an image row: the row's picture and its preprocessing state, with the
// file name, a compact fill/rotate panel and a framed thumbnail that opens the preview dialog.
// Its state never holds FillMode::Direct (a row always sends a prepared picture), its
// rotation stays within 0..359 and its framing and tone within their limits and its caption's text is this
// picture's; fill changes keep the framing and rotations turn it with the picture. Setters take a refresh
// flag: with false nothing is redrawn and nothing emitted, so batch code can refresh each row itself. Given a
// PreviewRenderer, the framed thumbnail is drawn on worker threads and shown when it arrives; without one it
// is drawn at once.
class PreprocWidget : public QWidget
{
    Q_OBJECT

public:
    explicit PreprocWidget(const QString &path, QWidget *parent = nullptr);
    // With its thumbnail source already decoded (the picture fitted into 280 x 280), kept
    // compactly: a row widget holds it for as long as its row lives.
    PreprocWidget(const QString &path, const CompactImage &thumbnailSource, QWidget *parent = nullptr);
    ~PreprocWidget() override;

    void setPreviewRenderer(PreviewRenderer *renderer);
    // The size of the picture as viewed, for the low-resolution mark (invalid: no mark).
    void setPictureSize(const QSize &size);
    QSize pictureSize() const { return m_pictureSize; }
    // Shown while the picture must be enlarged too much to fill the frame, its tool tip saying
    // by how much.
    QLabel *lowResolutionMark() const { return m_lowResolutionMark; }
    // Shown while the picture has a tone other than Neutral, its tool tip naming it.
    QLabel *toneMark() const { return m_toneMark; }
    // When the picture was taken (invalid: unknown), for a caption of the date taken. No redraw.
    void setDateTaken(const QDateTime &taken);
    QDateTime dateTaken() const { return m_dateTaken; }
    // Shown while the picture has a caption, its tool tip saying what it writes (or that the
    // picture has no date taken to write).
    QLabel *captionMark() const { return m_captionMark; }
    // The faces found in the picture (or its subject), and the picture framed around them
    // (AutoFrame) from now on: as its fill, rotation or frame change, until it is framed by
    // hand (commitState()). With refresh, a change is drawn and reported.
    void frameAroundSubjects(const PictureSubjects &subjects, bool refresh = false);
    bool followsSubjects() const { return m_followsSubjects; }
    const std::optional<PictureSubjects> &subjects() const { return m_subjects; }
    // Shown while the crop window cuts one of those faces, its tool tip saying so.
    QLabel *faceMark() const { return m_faceMark; }
    // A framed thumbnail the renderer made for this widget's current content.
    void showFramedPreview(const QImage &framed);
    // What the framed thumbnail is drawn from.
    PreviewRenderer::Request previewRequest() const;

    QString sourcePath() const { return m_sourcePath; }
    QImage thumbnailSource() const { return m_thumbnailSource.image(); }
    PreprocState state() const { return m_state; }
    QSize panelResolution() const { return m_panelResolution; }
    bool isLandscape() const { return m_landscape; }
    PreprocControlPanel *controlPanel() const { return m_controlPanel; }
    QLabel *previewLabel() const { return m_previewLabel; }

    void updatePreviewFrameSize();
    void refreshPreviewPixmap();
    void updatePreview();
    void refreshPreviewDisplay();
    QImage displayPreviewImage() const;
    QImage processedPreview() const;
    QImage loadFullSourceImage() const;

    void setFillMode(FillMode mode, bool refresh);
    // The tone alone: fill, rotation and framing stay.
    void setTone(const ToneSettings &tone, bool refresh);
    // The caption alone, its text made for this picture.
    void setCaption(const CaptionSettings &caption, bool refresh);
    void stepRotate(int deltaDegrees, bool refresh);
    void commitState(const PreprocState &state, bool refresh);
    void applyState(const PreprocState &state);
    void setFrameSettings(const QSize &panel, bool landscape, bool refresh);
    void swapContentWith(PreprocWidget *other);

    // What the widget keeps of its picture, to be taken and given back whole (undo): all but
    // the frame settings, which every row shares.
    struct Content {
        QString sourcePath;
        CompactImage thumbnailSource;
        PreprocState state;
        QSize pictureSize;
        QDateTime dateTaken;
        std::optional<PictureSubjects> subjects;
        bool followsSubjects = false;
    };
    Content content() const;
    // Shows content (and with redraw, draws it again); nothing is emitted.
    void setContent(const Content &content, bool redraw = true);
    void applyLanguage();

    // Renders the export picture into outputDir as "<base name>_preproc.jpg" and returns its
    // path; empty when there is nothing to write or writing failed.
    QString applyPreprocessing(const QString &outputDir) const;

public Q_SLOTS:
    void onFillModeSelected(FillMode mode);
    void onRotateLeft();
    void onRotateRight();
    void openPreviewDialog();

Q_SIGNALS:
    void preprocessingChanged();
    // The thumbnail is drawn again (its content or the frame changed), whether or not by the user.
    void previewRedrawn();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setupUI();
    void finishChange(bool refresh);
    void showSourceName();
    void updateLowResolutionMark();
    void updateToneMark();
    void updateFaceMark();
    void updateCaptionMark();
    // The state framed around the picture's faces while it follows them.
    void followSubjects();
    void updateMarks();
    static PreprocState withoutDirect(PreprocState state);

    QString m_sourcePath;
    CompactImage m_thumbnailSource;
    PreprocState m_state;
    QSize m_panelResolution;
    bool m_landscape = false;
    QSize m_pictureSize;
    QLabel *m_nameLabel = nullptr;
    QLabel *m_lowResolutionMark = nullptr;
    QLabel *m_toneMark = nullptr;
    QLabel *m_faceMark = nullptr;
    QLabel *m_captionMark = nullptr;
    QDateTime m_dateTaken;
    std::optional<PictureSubjects> m_subjects;
    bool m_followsSubjects = false;
    PreprocControlPanel *m_controlPanel = nullptr;
    QLabel *m_previewLabel = nullptr;
    QPointer<PreviewRenderer> m_renderer;
};
