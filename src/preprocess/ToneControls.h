#pragma once

#include "preprocess/ImagePreprocess.h"

#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;
class QSlider;

// The controls of a picture's tone: the preset, the exposure, contrast and saturation sliders
// on top of it with their values, and a reset. Used by the preview dialog and the batch bar's
// tone dialog. toneChanged() reports the user's changes only; setTone() takes a tone as it is
// (a value between two slider steps stays exact until that slider is moved).
class ToneControls : public QWidget
{
    Q_OBJECT

public:
    explicit ToneControls(QWidget *parent = nullptr);

    ToneSettings tone() const { return m_tone; }
    void setTone(const ToneSettings &tone);
    void applyLanguage();

    QComboBox *presetBox() const { return m_presetBox; }
    QSlider *exposureSlider() const { return m_exposure; }
    QSlider *contrastSlider() const { return m_contrast; }
    QSlider *saturationSlider() const { return m_saturation; }
    QPushButton *resetButton() const { return m_reset; }

Q_SIGNALS:
    void toneChanged(const ToneSettings &tone);

private:
    QSlider *addSlider(class QHBoxLayout *row, QLabel **caption, QLabel **value, int minimum, int maximum);
    void showTone();
    void change(const ToneSettings &tone);

    ToneSettings m_tone;
    QLabel *m_caption = nullptr;
    QComboBox *m_presetBox = nullptr;
    QPushButton *m_reset = nullptr;
    QSlider *m_exposure = nullptr;
    QSlider *m_contrast = nullptr;
    QSlider *m_saturation = nullptr;
    QLabel *m_exposureCaption = nullptr;
    QLabel *m_contrastCaption = nullptr;
    QLabel *m_saturationCaption = nullptr;
    QLabel *m_exposureValue = nullptr;
    QLabel *m_contrastValue = nullptr;
    QLabel *m_saturationValue = nullptr;
};
