#include "preprocess/ToneControls.h"

#include "preprocess/Tone.h"
#include "ui/AppStrings.h"
#include "ui/AppTheme.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

#include <cmath>

namespace {
constexpr int kExposureSteps = 10; // slider steps per EV
constexpr int kPercent = 100;
} // namespace

ToneControls::ToneControls(QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);

    auto *presetRow = new QHBoxLayout;
    m_caption = new QLabel(this);
    m_presetBox = new QComboBox(this);
    for (TonePreset preset : Tone::presets())
        m_presetBox->addItem(QString(), int(preset));
    m_reset = new QPushButton(this);
    presetRow->addWidget(m_caption);
    presetRow->addWidget(m_presetBox);
    presetRow->addStretch(1);
    presetRow->addWidget(m_reset);
    layout->addLayout(presetRow);

    auto *sliderRow = new QHBoxLayout;
    m_exposure =
        addSlider(sliderRow, &m_exposureCaption, &m_exposureValue, int(Tone::kMinExposure * kExposureSteps),
                  int(Tone::kMaxExposure * kExposureSteps));
    m_contrast = addSlider(sliderRow, &m_contrastCaption, &m_contrastValue,
                           int(Tone::kMinContrast * kPercent), int(Tone::kMaxContrast * kPercent));
    m_saturation = addSlider(sliderRow, &m_saturationCaption, &m_saturationValue,
                             int(Tone::kMinSaturation * kPercent), int(Tone::kMaxSaturation * kPercent));
    layout->addLayout(sliderRow);

    applyLanguage();
    showTone();

    connect(m_presetBox, qOverload<int>(&QComboBox::currentIndexChanged), this, [this](int index) {
        ToneSettings tone = m_tone;
        tone.preset = static_cast<TonePreset>(m_presetBox->itemData(index).toInt());
        change(tone);
    });
    connect(m_exposure, &QSlider::valueChanged, this, [this](int value) {
        ToneSettings tone = m_tone;
        tone.exposure = double(value) / kExposureSteps;
        change(tone);
    });
    connect(m_contrast, &QSlider::valueChanged, this, [this](int value) {
        ToneSettings tone = m_tone;
        tone.contrast = double(value) / kPercent;
        change(tone);
    });
    connect(m_saturation, &QSlider::valueChanged, this, [this](int value) {
        ToneSettings tone = m_tone;
        tone.saturation = double(value) / kPercent;
        change(tone);
    });
    connect(m_reset, &QPushButton::clicked, this, [this] { change(ToneSettings()); });
}

QSlider *ToneControls::addSlider(QHBoxLayout *row, QLabel **caption, QLabel **value, int minimum, int maximum)
{
    *caption = new QLabel(this);
    (*caption)->setStyleSheet(AppTheme::mutedLabelStyleSheet("font-size:11px;"));
    auto *slider = new QSlider(Qt::Horizontal, this);
    slider->setRange(minimum, maximum);
    slider->setPageStep((maximum - minimum) / 8);
    *value = new QLabel(this);
    (*value)->setMinimumWidth(52);
    row->addWidget(*caption);
    row->addWidget(slider, 1);
    row->addWidget(*value);
    return slider;
}

void ToneControls::applyLanguage()
{
    m_caption->setText(Str::toneCaption());
    for (int i = 0; i < m_presetBox->count(); ++i) {
        const auto preset = static_cast<TonePreset>(m_presetBox->itemData(i).toInt());
        m_presetBox->setItemText(i, Tone::presetName(preset));
        m_presetBox->setItemData(i, Str::tonePresetTip(preset), Qt::ToolTipRole);
    }
    m_reset->setText(Str::resetTone());
    m_reset->setToolTip(Str::resetToneTip());
    m_exposureCaption->setText(Str::exposureCaption());
    m_contrastCaption->setText(Str::contrastCaption());
    m_saturationCaption->setText(Str::saturationCaption());
    m_exposure->setToolTip(Str::exposureTip());
    m_contrast->setToolTip(Str::contrastTip());
    m_saturation->setToolTip(Str::saturationTip());
    showTone();
}

void ToneControls::setTone(const ToneSettings &tone)
{
    m_tone = Tone::clamped(tone);
    showTone();
}

void ToneControls::change(const ToneSettings &tone)
{
    m_tone = Tone::clamped(tone);
    showTone();
    Q_EMIT toneChanged(m_tone);
}

void ToneControls::showTone()
{
    // The controls show the tone; only the user's moves report a change.
    const QSignalBlocker presetBlocker(m_presetBox);
    const QSignalBlocker exposureBlocker(m_exposure);
    const QSignalBlocker contrastBlocker(m_contrast);
    const QSignalBlocker saturationBlocker(m_saturation);
    m_presetBox->setCurrentIndex(m_presetBox->findData(int(m_tone.preset)));
    m_presetBox->setToolTip(Str::tonePresetTip(m_tone.preset));
    m_exposure->setValue(int(std::lround(m_tone.exposure * kExposureSteps)));
    m_contrast->setValue(int(std::lround(m_tone.contrast * kPercent)));
    m_saturation->setValue(int(std::lround(m_tone.saturation * kPercent)));
    m_exposureValue->setText(Str::exposureValue(m_tone.exposure));
    m_contrastValue->setText(Str::contrastValue(int(std::lround(m_tone.contrast * kPercent))));
    m_saturationValue->setText(Str::saturationValue(int(std::lround(m_tone.saturation * kPercent))));
    m_reset->setEnabled(!Tone::isNeutral(m_tone));
}
