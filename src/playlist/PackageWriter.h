#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// Puts a package in place whole or not at all. The frames and playlist.json are written into
// a new folder beside the target ("<target>.partial-<random>", so on the same volume), each
// file written in full and checked; only then is the old package moved aside and the new one
// renamed into its place. On any failure the old package is left exactly as it was and the
// new folder is removed, and the message says so. A target that is not a folder, or a folder
// that holds anything but package files, is never touched. Stateless; failures come back as
// a text in the UI language, empty on success.
namespace PackageWriter {

struct Frame {
    QString name;   // the file name in the package, "frame_000.bin"
    QString source; // the processor's output it is copied from
};

QString write(const QString &targetDir, const QList<Frame> &frames, const QByteArray &playlistJson);

// What replacing a package folder must refuse: a target that is not a folder, or one that holds
// files that are not a package's. Empty when it may be replaced, or does not exist.
QString checkReplaceable(const QString &targetDir);

// What write() would refuse before anything is copied: a target that is not a folder, one that
// holds files that are not a package's, a save location that cannot be created or written to.
// Leaves nothing behind but the parent folders it created.
QString checkTarget(const QString &targetDir);

// True for the files a package folder may hold and a replacement may remove: frame files,
// playlist.json, and what file managers leave behind (Thumbs.db, .DS_Store, ...).
bool isPackageFile(const QString &fileName);

} // namespace PackageWriter
