// The settings file: read once at construction, written a moment after each change (at most
// once a second) and once more from the destructor, so that a program killed or ended by a
// logout keeps what was chosen. A write that fails is reported once.
#include "app/MainWindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QTimer>

#include <utility>

namespace {
constexpr int kSettingsSaveDelayMs = 1000;
} // namespace

void MainWindow::loadSettings()
{
    const std::unique_ptr<QSettings> settings = appSettings();

    // 1-2. The variant, then this edition's variant applied (it reads the per-variant paths).
    const QString variant = settings->value(QStringLiteral("processor_variant")).toString();
    if (m_variantCombo && !variant.isEmpty()) {
        const int index = m_variantCombo->findData(variant);
        if (index >= 0)
            m_variantCombo->setCurrentIndex(index);
    }
    applyVariant(currentVariantId());

    // 3. An output folder left by an older build is shown, never written back.
    const QString output = settings->value(QStringLiteral("output_dir")).toString();
    if (m_outputEdit) {
        if (output.isEmpty())
            m_outputEdit->clear();
        else
            m_outputEdit->setText(QDir::toNativeSeparators(output));
    }

    // 4. The LUT: the saved one while it exists, else the default next to the processor.
    const QString lut = settings->value(QStringLiteral("lut_path")).toString();
    if (!lut.isEmpty() && QFileInfo::exists(lut)) {
        if (m_lutEdit)
            m_lutEdit->setText(QDir::toNativeSeparators(lut));
    } else if (m_processorConfig.variantIds().contains(currentVariantId())) {
        const QString detected =
            detectDefaultLut(m_processorConfig.resolvedDefaultLut(currentVariantId()),
                             m_workDirEdit ? m_workDirEdit->text().trimmed() : QString());
        if (!detected.isEmpty() && m_lutEdit)
            m_lutEdit->setText(QDir::toNativeSeparators(detected));
    }

    // 5-7. Panel, orientation (only "90" is kept), subfolder scanning.
    if (m_panelTypeCombo)
        m_panelTypeCombo->setCurrentText(
            settings->value(QStringLiteral("panel_type"), QStringLiteral("133")).toString());
    QString orientation = settings->value(QStringLiteral("orientation"), QStringLiteral("0")).toString();
    if (orientation != QLatin1String("90"))
        orientation = QStringLiteral("0");
    if (m_orientationCombo)
        m_orientationCombo->setCurrentIndex(qMax(0, m_orientationCombo->findData(orientation)));
    if (m_includeSubfoldersCheck)
        m_includeSubfoldersCheck->setChecked(
            settings->value(QStringLiteral("recursive_scan"), true).toBool());
    if (m_frameFacesCheck)
        m_frameFacesCheck->setChecked(settings->value(QStringLiteral("frame_faces"), false).toBool());

    // 8. The key file: it decides the panel while it exists; without it the panel is 133.
    QString keyFile;
    if (m_keyFileEdit) {
        m_keyFileEdit->setText(settings->value(QStringLiteral("key_file_path")).toString());
        keyFile = m_keyFileEdit->text().trimmed();
        if (!keyFile.isEmpty() && QFileInfo::exists(keyFile))
            addKeyFileToHistory(keyFile);
    }
    refreshSavedKeyCombo();
    if (!keyFile.isEmpty() && QFileInfo::exists(keyFile))
        applyPubkeyFile(keyFile);
    else
        setLitePanelType(QStringLiteral("133"));
    updatePanelResolutionLabel();

    // 9-13. The package settings; playlist generation is on at every start.
    if (m_playlistEnableCheck)
        m_playlistEnableCheck->setChecked(true);
    setPlaylistIntervalMinutes(
        settings->value(QStringLiteral("playlist_interval_min"), kDefaultIntervalMinutes).toInt());
    if (m_loopCheck)
        m_loopCheck->setChecked(settings->value(QStringLiteral("playlist_loop"), true).toBool());
    if (m_processorsSpin)
        m_processorsSpin->setValue(settings->value(QStringLiteral("processors_at_once"), 1).toInt());
    if (m_playlistDirEdit)
        m_playlistDirEdit->setText(settings->value(QStringLiteral("playlist_parent_dir")).toString());
    updatePlaylistUiState();
}

void MainWindow::watchSettings()
{
    m_settingsTimer = new QTimer(this);
    m_settingsTimer->setSingleShot(true);
    m_settingsTimer->setInterval(kSettingsSaveDelayMs);
    connect(m_settingsTimer, &QTimer::timeout, this, &MainWindow::saveSettings);
    // The first change starts the wait; the ones during it are written with it.
    const auto changed = [this] {
        if (!m_settingsTimer->isActive())
            m_settingsTimer->start();
    };
    for (QComboBox *combo : {m_variantCombo, m_panelTypeCombo, m_orientationCombo}) {
        if (combo)
            connect(combo, &QComboBox::currentIndexChanged, this, changed);
    }
    for (QCheckBox *box : {m_includeSubfoldersCheck, m_frameFacesCheck, m_loopCheck}) {
        if (box)
            connect(box, &QCheckBox::toggled, this, changed);
    }
    for (QLineEdit *edit : {m_keyFileEdit, m_lutEdit, m_playlistDirEdit}) {
        if (edit)
            connect(edit, &QLineEdit::textChanged, this, changed);
    }
    for (QSpinBox *spin : {m_intervalDays, m_intervalHours, m_intervalMinutes, m_processorsSpin}) {
        if (spin)
            connect(spin, &QSpinBox::valueChanged, this, changed);
    }
}

void MainWindow::saveSettings()
{
    const std::unique_ptr<QSettings> settings = appSettings();
    settings->setValue(QStringLiteral("processor_variant"), currentVariantId());
    // The processor's paths are not written here: only a choice by hand is (ProcessorSetup).
    settings->setValue(QStringLiteral("lut_path"), m_lutEdit ? m_lutEdit->text() : QString());
    settings->setValue(QStringLiteral("panel_type"),
                       m_panelTypeCombo ? m_panelTypeCombo->currentText() : QString());
    settings->setValue(QStringLiteral("orientation"), frameOrientationValue());
    settings->setValue(QStringLiteral("recursive_scan"),
                       m_includeSubfoldersCheck && m_includeSubfoldersCheck->isChecked());
    settings->setValue(QStringLiteral("frame_faces"), m_frameFacesCheck && m_frameFacesCheck->isChecked());
    if (m_keyFileEdit)
        settings->setValue(QStringLiteral("key_file_path"), m_keyFileEdit->text());
    settings->setValue(QStringLiteral("playlist_enabled"), true); // generation is always on here
    const bool haveInterval = m_intervalDays && m_intervalHours && m_intervalMinutes;
    settings->setValue(QStringLiteral("playlist_interval_min"),
                       haveInterval ? playlistIntervalMinutes() : kDefaultIntervalMinutes);
    settings->setValue(QStringLiteral("playlist_loop"), m_loopCheck && m_loopCheck->isChecked());
    settings->setValue(QStringLiteral("processors_at_once"), processorsAtOnce());
    settings->setValue(QStringLiteral("playlist_parent_dir"),
                       m_playlistDirEdit ? m_playlistDirEdit->text() : QString());
    settings->sync();
    if (settings->status() == QSettings::NoError || std::exchange(m_settingsFailureTold, true))
        return;
    const QString message = Str::settingsNotSaved(QDir::toNativeSeparators(settings->fileName()));
    appendLog(message);
    statusBar()->showMessage(message);
}
