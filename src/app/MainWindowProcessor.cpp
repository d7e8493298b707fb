// The processor variant, its configuration, and the start-up check of the processor.
#include "app/MainWindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

namespace {
const QString kLiteVariantId = QStringLiteral("lite");
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

void MainWindow::updateVariantFeatures()
{
    // The variant's feature flags switch nothing in this edition.
}

void MainWindow::onVariantChanged(int /*index*/) {}

void MainWindow::onReloadConfig() {}

void MainWindow::onBrowseExe() {}

void MainWindow::onBrowseWorkDir() {}

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

void MainWindow::checkProcessorAtStartup() {}
