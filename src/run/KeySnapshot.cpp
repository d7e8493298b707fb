#include "run/KeySnapshot.h"

#include "playlist/FileWriter.h"
#include "ui/AppStrings.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {
const QString kStagedKeySuffix = QStringLiteral("json"); // for a key file without suffix

QByteArray readAll(const QString &path, bool *ok)
{
    QFile file(path);
    *ok = file.open(QIODevice::ReadOnly);
    return *ok ? file.readAll() : QByteArray();
}

} // namespace

KeySnapshot KeySnapshot::read(const QString &path, QString *error)
{
    const QString absolute = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = Str::keyFileUnreadable(absolute, file.errorString());
        return KeySnapshot();
    }
    const QByteArray bytes = file.readAll();
    QJsonParseError parse{};
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parse);
    if (parse.error != QJsonParseError::NoError || !document.isObject()) {
        if (error)
            *error = Str::keyFileNotAKey(absolute, parse.error != QJsonParseError::NoError
                                                       ? parse.errorString()
                                                       : QStringLiteral("not a JSON object"));
        return KeySnapshot();
    }
    const QJsonObject key = document.object();
    KeySnapshot snapshot;
    snapshot.m_path = absolute;
    snapshot.m_bytes = bytes;
    snapshot.m_panel = key.value(QStringLiteral("panel")).toString();
    snapshot.m_deviceId = key.value(QStringLiteral("device_id")).toString();
    snapshot.m_uid = key.value(QStringLiteral("uid")).toString();
    return snapshot;
}

QByteArray KeySnapshot::fingerprint() const
{
    return isNull() ? QByteArray() : QCryptographicHash::hash(m_bytes, QCryptographicHash::Sha256).toHex();
}

QString KeySnapshot::guiPanelType() const
{
    // The key names the panel by its code ("28.5"); a GUI type there ("285") is taken too.
    const PanelSpec spec = panel();
    return spec.ok ? PlaylistExporter::pubkeyPanelToGuiType(spec.panel) : QString();
}

PanelSpec KeySnapshot::panel() const
{
    if (m_panel.isEmpty())
        return PanelSpec();
    const PanelSpec direct = PlaylistExporter::panelFromGuiType(m_panel, QString());
    return direct.ok ? direct
                     : PlaylistExporter::panelFromGuiType(PlaylistExporter::pubkeyPanelToGuiType(m_panel),
                                                          QString());
}

bool KeySnapshot::fileStillMatches() const
{
    bool ok = false;
    const QByteArray now = readAll(m_path, &ok);
    return ok && now == m_bytes;
}

QString KeySnapshot::pathForProcessor(const QString &stagingDir, QString *error) const
{
    const QString suffix = QFileInfo(m_path).suffix();
    const QString copy =
        QDir(stagingDir)
            .filePath(QStringLiteral("device_key.") + (suffix.isEmpty() ? kStagedKeySuffix : suffix));
    bool ok = false;
    if (readAll(copy, &ok) == m_bytes && ok)
        return copy; // staged before and still this key
    QDir().mkpath(stagingDir);
    QFile::remove(copy);
    QString reason;
    if (!FileWriter::writeAll(copy, m_bytes, &reason)) {
        if (error)
            *error = reason;
        return QString();
    }
    return copy;
}

KeySnapshot KeySnapshot::readForPanel(const QString &path, const QString &panelType, QString *error)
{
    const KeySnapshot key = read(path, error);
    const QString keyType = key.guiPanelType();
    if (key.isNull() || panelType.isEmpty() || keyType.isEmpty() || keyType == panelType)
        return key;
    if (error)
        *error = Str::keyFilePanelMismatch(key.path(), keyType, panelType);
    return KeySnapshot();
}

void KeySnapshot::applyTo(PlaylistExportRequest *request) const
{
    if (isNull())
        return;
    if (panel().ok)
        request->panel = panel();
    request->encrypt = true;
    request->accountUid = m_uid;
    if (!m_deviceId.isEmpty())
        request->deviceIds << m_deviceId;
}
