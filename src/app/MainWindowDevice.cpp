// The target device: panel type and resolution, orientation, the device key file.
#include "app/MainWindow.h"

#include "playlist/PlaylistExporter.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
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
    const PanelSpec panelSpec = PlaylistExporter::panelFromGuiType(type, QString());
    return panelSpec.ok ? panelSpec.size : kDefaultPanel;
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

namespace {

constexpr int kKeyHistoryLimit = 30;
const QString kKeyHistoryKey = QStringLiteral("saved_key_files");

// The key file as a JSON object, or an empty object when it cannot be read or parsed.
QJsonObject readKeyFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QJsonObject();
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    return error.error == QJsonParseError::NoError && document.isObject() ? document.object() : QJsonObject();
}

QString nativeAbsolute(const QString &path)
{
    return QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
}

} // namespace

bool MainWindow::applyPubkeyFile(const QString &path)
{
    const QString keyPath = nativeAbsolute(path);
    const auto refresh = [this] {
        updatePanelResolutionLabel();
        updatePreprocPanelSettings();
    };
    if (!QFileInfo::exists(keyPath)) {
        if (m_keyFileEdit)
            m_keyFileEdit->clear();
        setLitePanelType(kDefaultPanelType);
        refresh();
        return false;
    }
    if (m_keyFileEdit)
        m_keyFileEdit->setText(keyPath);
    // Unreadable or malformed files keep the default panel, silently.
    QString type = kDefaultPanelType;
    const QString mapped = PlaylistExporter::pubkeyPanelToGuiType(
        readKeyFile(keyPath).value(QStringLiteral("panel")).toString());
    if (!mapped.isEmpty())
        type = mapped;
    setLitePanelType(type);
    refresh();
    return true;
}

QStringList MainWindow::loadKeyFileHistory() const
{
    return appSettings()->value(kKeyHistoryKey).toStringList();
}

void MainWindow::saveKeyFileHistory(const QStringList &history)
{
    appSettings()->setValue(kKeyHistoryKey, history);
}

void MainWindow::addKeyFileToHistory(const QString &path)
{
    const QString keyPath = path.isEmpty() ? QString() : nativeAbsolute(path);
    if (keyPath.isEmpty() || !QFileInfo::exists(keyPath))
        return;
    QStringList history = loadKeyFileHistory();
    history.removeAll(keyPath);
    history.prepend(keyPath);
    saveKeyFileHistory(history.mid(0, kKeyHistoryLimit));
}

QString MainWindow::keyFileComboLabel(const QString &path) const
{
    const QJsonObject key = readKeyFile(path);
    const QString panel = key.value(QStringLiteral("panel")).toString();
    const QString mac = key.value(QStringLiteral("stamac")).toString();
    const QString deviceId = key.value(QStringLiteral("device_id")).toString();
    if (!panel.isEmpty() && !mac.isEmpty())
        return Str::keyFileComboText(panel, mac);
    if (!panel.isEmpty() && !deviceId.isEmpty())
        return Str::keyFileComboText(panel, deviceId.left(8));
    return QFileInfo(path).fileName();
}

void MainWindow::refreshSavedKeyCombo()
{
    if (!m_keyHistoryCombo)
        return;
    const QSignalBlocker blocker(m_keyHistoryCombo);
    m_keyHistoryCombo->clear();
    // Files that disappeared are not offered, but stay in the stored list.
    for (const QString &entry : loadKeyFileHistory()) {
        if (QFileInfo::exists(entry))
            m_keyHistoryCombo->addItem(keyFileComboLabel(entry), nativeAbsolute(entry));
    }
    const QString current = currentKeyFilePath();
    int index = -1;
    for (int i = 0; !current.isEmpty() && i < m_keyHistoryCombo->count(); ++i) {
        if (m_keyHistoryCombo->itemData(i).toString().compare(current, Qt::CaseInsensitive) == 0) {
            index = i;
            break;
        }
    }
    if (index < 0 && m_keyHistoryCombo->count() > 0)
        index = 0;
    m_keyHistoryCombo->setCurrentIndex(index);
}

void MainWindow::onBrowseKeyFile()
{
    const QString chosen =
        QFileDialog::getOpenFileName(this, Str::selectKeyFile(), currentKeyFilePath(), Str::allFilesFilter());
    if (chosen.isEmpty())
        return;
    addKeyFileToHistory(chosen);
    applyPubkeyFile(chosen);
    refreshSavedKeyCombo();
    if (m_keyHistoryCombo) {
        const QSignalBlocker blocker(m_keyHistoryCombo);
        const int index = m_keyHistoryCombo->findData(nativeAbsolute(chosen));
        if (index >= 0)
            m_keyHistoryCombo->setCurrentIndex(index);
    }
}

void MainWindow::onKeyHistoryChanged(int index)
{
    if (!m_keyHistoryCombo || index < 0 || index >= m_keyHistoryCombo->count())
        return;
    const QString path = m_keyHistoryCombo->itemData(index).toString();
    if (path != currentKeyFilePath())
        applyPubkeyFile(path);
}
