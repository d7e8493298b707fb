// The processor variant, its configuration, and the start-up check of the processor.
#include "app/MainWindow.h"

#include "processor/ProcessorManifest.h"
#include "processor/ProcessorSelfTest.h"
#include "processor/ProcessorSetup.h"

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
} // namespace

bool MainWindow::isReservedVariant(const QString &id)
{
    // "default" is never looked up in the configuration and never gets settings of its own.
    return id == QLatin1String("default");
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
    // The configuration decides; a processor chosen by hand counts while it is there, as for
    // velora-pack (ProcessorSetup).
    const ProcessorSetup setup = ProcessorSetup::resolve(m_processorConfig, id, *appSettings());
    if (m_exeEdit)
        m_exeEdit->setText(QDir::toNativeSeparators(setup.executable));
    if (m_workDirEdit)
        m_workDirEdit->setText(QDir::toNativeSeparators(setup.workDir));
    if (!setup.lut.isEmpty() && m_lutEdit)
        m_lutEdit->setText(QDir::toNativeSeparators(setup.lut));
}

QString MainWindow::detectDefaultLut(const QString &configuredLut, const QString &workDir) const
{
    return ProcessorSetup::detectLut(configuredLut, workDir);
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
        ProcessorSetup::rememberChoice(appSettings().get(), currentVariantId(), "exe", m_exeEdit->text());
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
    ProcessorSetup::rememberChoice(appSettings().get(), currentVariantId(), "work_dir",
                                   m_workDirEdit->text());
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
