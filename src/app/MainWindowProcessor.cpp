// The processor variant and its configuration.
#include "app/MainWindow.h"

#include "ui/AppStrings.h"

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
