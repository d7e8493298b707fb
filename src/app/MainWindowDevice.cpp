// The target device: panel type and resolution, orientation, the device key file.
#include "app/MainWindow.h"

#include "playlist/PlaylistExporter.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>

namespace {
const QSize kDefaultPanel(1200, 1600);
const QString kDefaultPanelType = QStringLiteral("133");
} // namespace

QSize MainWindow::panelResolution() const
{
    const QString type = m_panelTypeCombo ? m_panelTypeCombo->currentText() : kDefaultPanelType;
    if (type == QLatin1String("custom")) {
        // Only a lower-case "x" separates width and height here (unlike the playlist's rule).
        const QString text = m_customSizeEdit ? m_customSizeEdit->text().trimmed() : QString();
        const int x = int(text.indexOf(QLatin1Char('x')));
        if (x > 0) {
            bool okWidth = false;
            bool okHeight = false;
            const int width = text.left(x).trimmed().toInt(&okWidth);
            const int height = text.mid(x + 1).trimmed().toInt(&okHeight);
            if (okWidth && okHeight && width >= 1 && height >= 1)
                return QSize(width, height);
        }
        return kDefaultPanel;
    }
    const PanelSpec spec = PlaylistExporter::panelFromGuiType(type, QString());
    return spec.ok ? spec.size : kDefaultPanel;
}

QString MainWindow::frameOrientationValue() const
{
    if (!m_orientationCombo)
        return QStringLiteral("0");
    const QString data = m_orientationCombo->currentData().toString();
    return data.isEmpty() ? m_orientationCombo->currentText() : data;
}

bool MainWindow::isLandscapeOrientation() const
{
    return m_orientationCombo && frameOrientationValue() == QLatin1String("90");
}

QString MainWindow::currentKeyFilePath() const
{
    return m_keyFileEdit ? m_keyFileEdit->text().trimmed() : QString();
}

void MainWindow::setLitePanelType(const QString &type)
{
    if (!m_panelTypeCombo)
        return;
    const QSignalBlocker blocker(m_panelTypeCombo);
    const int index = m_panelTypeCombo->findText(type, Qt::MatchFixedString); // case-insensitive
    if (index >= 0)
        m_panelTypeCombo->setCurrentIndex(index);
    else
        m_panelTypeCombo->setCurrentText(kDefaultPanelType);
}

void MainWindow::updatePanelResolutionLabel()
{
    if (!m_panelResolutionLabel)
        return;
    const QSize size = panelResolution();
    m_panelResolutionLabel->setText(Str::panelResolutionSize(size.width(), size.height()));
}

void MainWindow::onBrowseKeyFile()
{
    // The key file chooser and its history come with the device handling of a run.
}

void MainWindow::onKeyHistoryChanged(int /*index*/) {}
