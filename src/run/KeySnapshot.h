#pragma once

#include "playlist/PlaylistExporter.h"

#include <QByteArray>
#include <QString>

// The device key file as read once: its bytes and what the tool reads from them (panel,
// device id, account). A run takes one snapshot at Start and makes its frames and its
// playlist from it, whatever happens to the file afterwards: the processor always gets a copy
// of the snapshot, never the user's file, which may be replaced or deleted at any moment. A
// null snapshot stands for "no key file".
class KeySnapshot
{
public:
    KeySnapshot() = default;

    // Reads and parses the file; on failure a null snapshot and the user-facing reason.
    static KeySnapshot read(const QString &path, QString *error);
    // The same for a run that makes frames for panelType (a GUI type, "133"): a key that names
    // another panel is refused too. An empty panelType takes whatever panel the key names.
    static KeySnapshot readForPanel(const QString &path, const QString &panelType, QString *error);

    bool isNull() const { return m_path.isEmpty(); }
    QString path() const { return m_path; } // absolute, native separators
    QByteArray bytes() const { return m_bytes; }
    QByteArray fingerprint() const; // a digest of the bytes; empty for a null snapshot
    QString panelCode() const { return m_panel; }
    QString deviceId() const { return m_deviceId; }
    QString accountUid() const { return m_uid; }

    // The GUI panel type the key names ("133"), empty when it names none that is known.
    QString guiPanelType() const;
    // The panel the key names, not ok when it names none that is known.
    PanelSpec panel() const;
    // The package made with this key: the key's panel (when it names a known one), encryption,
    // its account and its device. A null snapshot leaves the request as it is.
    void applyTo(PlaylistExportRequest *request) const;

    // True while the file on disk holds exactly the snapshot's bytes.
    bool fileStillMatches() const;

    // The key path to give the processor: "device_key.<suffix>" in stagingDir holding the
    // snapshot's bytes (written again unless it still does). Empty, with the reason, when it
    // cannot be written.
    QString pathForProcessor(const QString &stagingDir, QString *error = nullptr) const;

private:
    QString m_path;
    QByteArray m_bytes;
    QString m_panel;
    QString m_deviceId;
    QString m_uid;
};
