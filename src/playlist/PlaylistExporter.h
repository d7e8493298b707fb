#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>
#include <QStringList>

// A resolved panel: its code (the diagonal as text, e.g. "13.3"), its portrait resolution,
// and, when it cannot be used for a playlist, the reason.
struct PanelSpec {
    QString panel;
    QSize size;
    bool ok = false;
    QString error;
};

// Everything the package writer needs; filled by the window.
struct PlaylistExportRequest {
    QString outputDir;
    int intervalMinutes = 30;
    bool loop = true;
    PanelSpec panel;
    QStringList frameNames;
    QStringList sourcePaths;
    bool encrypt = false;
    QString accountUid;
    QStringList deviceIds;
};

// Writes the package the frame plays from its card: the frame files copied under their
// playlist names and "playlist.json", put in place whole or not at all (PackageWriter).
// Stateless; the first problem comes back as a text in the UI language, empty on success.
namespace PlaylistExporter {

// The package's rules: the slideshow interval in minutes and the number of frames.
constexpr int kMinIntervalMinutes = 3;
constexpr int kMaxIntervalMinutes = 50000;
constexpr int kMaxFrames = 1000;

QByteArray buildPlaylistJson(const PlaylistExportRequest &request);
// The name of the index-th frame of a package: "frame_000.bin", ….
QString frameName(int index);
QString exportPlaylist(const PlaylistExportRequest &request);

// Key-file panel code ("13.3") to GUI panel type ("133"); empty for anything unknown.
QString pubkeyPanelToGuiType(const QString &panel);
PanelSpec panelFromGuiType(const QString &guiType, const QString &customText);

} // namespace PlaylistExporter
