#pragma once

#include "preprocess/ImagePreprocess.h"

#include <QWidget>

class QComboBox;
class QLineEdit;

// The controls of a caption: what it says (none, the date taken, the file name, or a text typed
// in the box beside), its corner and its style. Shared by the preview dialog and the batch
// bar's caption dialog. caption() leaves the text to write empty: the picture makes it
// (Caption::resolved()). captionChanged() reports the user's changes, not setCaption()'s.
class CaptionControls : public QWidget
{
    Q_OBJECT

public:
    explicit CaptionControls(QWidget *parent = nullptr);

    CaptionSettings caption() const;
    void setCaption(const CaptionSettings &caption);

    QComboBox *kindBox() const { return m_kind; }
    QLineEdit *textEdit() const { return m_text; }
    QComboBox *cornerBox() const { return m_corner; }
    QComboBox *styleBox() const { return m_style; }

Q_SIGNALS:
    void captionChanged(const CaptionSettings &caption);

private:
    void showKind();

    QComboBox *m_kind = nullptr;
    QLineEdit *m_text = nullptr;
    QComboBox *m_corner = nullptr;
    QComboBox *m_style = nullptr;
};
