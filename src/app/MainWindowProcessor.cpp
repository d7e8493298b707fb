// The processor variant, its configuration, and the start-up check of the processor.
#include "app/MainWindow.h"

#include "processor/ProcessorManifest.h"
#include "processor/ProcessorSelfTest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace {
const QString kLiteVariantId = QStringLiteral("lite");
const QStringList kDefaultLutNames = {QStringLiteral("lut_128_36_16_uni_260215.bin"),
                                      QStringLiteral("lut_128_36_16_uni_251208.bin")};
} // namespace

bool MainWindow::isReservedVariant(const QString &id)
{
    // "default" is never looked up in the configuration and never gets settings of its own.
    return id == QLatin1String("default");
}

QString MainWindow::variantSettingsKey(const QString &id, const char *field)
{
    return QStringLiteral("variant/%1/%2").arg(id, QLatin1String(field));
}

QString MainWindow::currentVariantId() const { return kLiteVariantId; }

void MainWindow::loadProcessorConfig()
{
    if (m_processorConfig.load())
        appendLog(Str::configLoaded(m_processorConfig.configPath()));
    else
        appendLog(Str::configLoadWarning(m_processorConfig.lastError()));
    m_variantId = currentVariantId();
}

void MainWindow::applyVariant(const QString &id)
{
    m_variantId = id;
    if (isReservedVariant(id) || !m_processorConfig.variantIds().contains(id))
        return; // the fields keep what they hold
    m_processorConfig.setActiveVariant(id);
    const std::unique_ptr<QSettings> settings = appSettings();
    const QString executable = QDir::toNativeSeparators(m_processorConfig.resolvedExecutable(id));
    const QString workDir = QDir::toNativeSeparators(m_processorConfig.resolvedWorkDir(id));
    // A path chosen by hand wins over the configuration; an empty one counts as none.
    const auto saved = [&settings](const QString &key, const QString &fallback) {
        const QString value = settings->value(key).toString();
        return value.isEmpty() ? fallback : value;
    };
    if (m_exeEdit)
        m_exeEdit->setText(saved(variantSettingsKey(id, "exe"), executable));
    if (m_workDirEdit)
        m_workDirEdit->setText(saved(variantSettingsKey(id, "work_dir"), workDir));
    const QString lut =
        detectDefaultLut(m_processorConfig.resolvedDefaultLut(id), m_processorConfig.resolvedWorkDir(id));
    if (!lut.isEmpty() && m_lutEdit)
        m_lutEdit->setText(QDir::toNativeSeparators(lut));
}

QString MainWindow::detectDefaultLut(const QString &configuredLut, const QString &workDir) const
{
    if (!configuredLut.isEmpty() && QFileInfo::exists(configuredLut))
        return QFileInfo(configuredLut).absoluteFilePath();
    if (workDir.isEmpty())
        return QString();
    // The first name wins wherever it is; within a name, test/ comes before the folder itself.
    const QDir dir(workDir);
    for (const QString &name : kDefaultLutNames) {
        for (const QString &candidate : {dir.filePath(QStringLiteral("test/") + name), dir.filePath(name)}) {
            if (QFileInfo::exists(candidate))
                return QFileInfo(candidate).absoluteFilePath();
        }
    }
    return QString();
}

void MainWindow::updateVariantFeatures()
{
    // The variant's feature flags switch nothing in this edition.
}

void MainWindow::onVariantChanged(int index)
{
    if (m_variantCombo && index >= 0)
        applyVariant(m_variantCombo->itemData(index).toString());
}

void MainWindow::onReloadConfig()
{
    loadProcessorConfig();
    const QString id = appSettings()->value(QStringLiteral("processor_variant"), kLiteVariantId).toString();
    applyVariant(id);
    appendLog(Str::configReloaded());
    if (m_variantCombo) {
        const int index = m_variantCombo->findData(id);
        if (index >= 0)
            m_variantCombo->setCurrentIndex(index);
    }
}

void MainWindow::onBrowseExe()
{
    const QString chosen = QFileDialog::getOpenFileName(
        this, Str::selectProcessorExe(), m_exeEdit ? m_exeEdit->text() : QString(), Str::exeFileFilter());
    if (chosen.isEmpty() || !m_exeEdit)
        return;
    m_exeEdit->setText(QDir::toNativeSeparators(chosen));
    if (!isReservedVariant(m_variantId))
        appSettings()->setValue(variantSettingsKey(currentVariantId(), "exe"), m_exeEdit->text());
    // The processor's folder is its working directory.
    if (m_workDirEdit && m_workDirEdit->text().trimmed().isEmpty())
        m_workDirEdit->setText(QDir::toNativeSeparators(QFileInfo(chosen).absolutePath()));
    if (m_lutEdit &&
        (m_lutEdit->text().trimmed().isEmpty() || !QFileInfo::exists(m_lutEdit->text().trimmed()))) {
        const QString lut = detectDefaultLut(m_lutEdit->text().trimmed(),
                                             m_workDirEdit ? m_workDirEdit->text().trimmed() : QString());
        if (!lut.isEmpty())
            m_lutEdit->setText(QDir::toNativeSeparators(lut));
    }
}

void MainWindow::onBrowseWorkDir()
{
    const QString chosen = QFileDialog::getExistingDirectory(
        this, Str::selectWorkDir(), m_workDirEdit ? m_workDirEdit->text() : QString());
    if (chosen.isEmpty() || !m_workDirEdit)
        return;
    m_workDirEdit->setText(QDir::toNativeSeparators(chosen));
    appSettings()->setValue(variantSettingsKey(currentVariantId(), "work_dir"), m_workDirEdit->text());
}

void MainWindow::onGlobalStrategyChanged(int /*index*/)
{
    if (m_strategyCombo && m_modeCombo)
        m_modeCombo->setEnabled(m_strategyCombo->currentText() == QLatin1String("manual-mode"));
}

void MainWindow::onAnalysisModeToggled(bool /*checked: the group is enabled either way*/)
{
    for (QWidget *widget : std::initializer_list<QWidget *>{m_analysisOutputEdit, m_analysisOutputBrowse,
                                                            m_analysisFormatCombo}) {
        if (widget)
            widget->setEnabled(true);
    }
}

void MainWindow::checkProcessorAtStartup()
{
    const auto fail = [this](const QString &message) {
        QMessageBox::critical(this, Str::processorStartupCheckTitle(), message, QMessageBox::Ok);
    };
    QString dir = m_workDirEdit ? m_workDirEdit->text().trimmed() : QString();
    if (dir.isEmpty())
        dir = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("processor"));
    if (!QFileInfo(dir).isDir()) {
        fail(Str::processorStartupCheckMissingWorkDir(QDir::toNativeSeparators(dir)));
        return;
    }
    const ProcessorManifest::Validation validation = ProcessorManifest::validate(dir);
    if (!validation.ok) {
        fail(Str::processorDirIncomplete(validation.missing.join(QStringLiteral(", ")),
                                         QDir::toNativeSeparators(validation.processorDir)));
        return;
    }
    runStartupSelfTest(dir);
}

void MainWindow::runStartupSelfTest(const QString &dir)
{
    const ProcessorManifest::SmokeTest smoke = ProcessorManifest::smokeTest(dir);
    const QString executable = QDir(dir).filePath(smoke.executable);
    delete m_selfTest;
    m_selfTest = new ProcessorSelfTest(this); // not the run's process
    connect(
        m_selfTest, &ProcessorSelfTest::finished, this,
        [this, executable, dir](const QString &errorLine) {
            if (errorLine.isEmpty())
                return; // passed, silently
            QMessageBox::critical(this, Str::processorStartupCheckTitle(),
                                  Str::processorStartupCheckFailed(QDir::toNativeSeparators(executable),
                                                                   QDir::toNativeSeparators(dir), errorLine),
                                  QMessageBox::Ok);
        },
        Qt::QueuedConnection); // the box opens after the process's own signals are done
    m_selfTest->start(executable, smoke.args, dir, smoke.expectExitCode);
}
