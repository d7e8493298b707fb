#include "playlist/PackageWriter.h"

#include "playlist/CrashSteps.h"
#include "playlist/FileWriter.h"
#include "playlist/FolderSwap.h"
#include "ui/AppStrings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QStorageInfo>

namespace PackageWriter {

namespace {

QString native(const QString &path) { return QDir::toNativeSeparators(path); }

// Why a folder cannot be made here: the system's reason for a file that cannot be created
// beside it (QDir::mkdir gives none).
QString whyNotWritable(const QString &folder)
{
    QFile probe(folder + QStringLiteral(".probe"));
    if (probe.open(QIODevice::WriteOnly)) {
        probe.remove();
        return QString();
    }
    return probe.errorString();
}

// The names in an existing package folder that a replacement must not remove.
QStringList foreignEntries(const QString &targetDir)
{
    QStringList foreign;
    const QFileInfoList entries = QDir(targetDir).entryInfoList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &entry : entries) {
        if (!entry.isFile() || entry.isSymLink() || !isPackageFile(entry.fileName()))
            foreign << entry.fileName();
    }
    return foreign;
}

QString targetProblem(const QString &targetDir)
{
    if (const QString problem = PackageWriter::checkReplaceable(targetDir); !problem.isEmpty())
        return problem;
    const QString parent = QFileInfo(targetDir).absolutePath();
    if (!QDir().mkpath(parent))
        return Str::saveLocationNotWritable(native(parent), whyNotWritable(targetDir));
    return QString();
}

// A failure after the new folder was made: it goes, the old package stays, and the message
// says which of the two the user now has.
QString abandon(FolderSwap *swap, const QString &message)
{
    swap->abandon();
    const QString outcome = QFileInfo(swap->target()).isDir()
                                ? Str::packageLeftUnchanged(native(swap->target()))
                                : Str::packageNothingWritten();
    return message + QStringLiteral("\n\n") + outcome;
}

// Room for the new package beside the old one, which stays until the swap: each file takes
// whole blocks. Empty when there is room (or the free space cannot be told).
QString roomProblem(const QString &target, const QList<Frame> &frames, qint64 playlistBytes)
{
    const QStorageInfo volume(QFileInfo(target).absolutePath());
    if (!volume.isValid() || volume.bytesAvailable() < 0)
        return QString();
    const qint64 block = volume.blockSize() > 0 ? volume.blockSize() : 4096;
    const auto blocks = [block](qint64 bytes) { return (bytes + block - 1) / block * block; };
    qint64 needed = block + blocks(playlistBytes); // the folder, and playlist.json
    for (const Frame &frame : frames)
        needed += blocks(QFileInfo(QDir::fromNativeSeparators(frame.source)).size());
    const qint64 free = volume.bytesAvailable();
    if (free >= needed)
        return QString();
    const QLocale locale;
    return Str::packageNeedsRoom(native(QFileInfo(target).absolutePath()),
                                 locale.formattedDataSize(needed, 1), locale.formattedDataSize(free, 1));
}

} // namespace

bool isPackageFile(const QString &fileName)
{
    static const QRegularExpression frame(QStringLiteral("^frame_\\d{3,}\\.bin$"));
    static const QStringList litter = {QStringLiteral("Thumbs.db"), QStringLiteral("desktop.ini"),
                                       QStringLiteral(".DS_Store")};
    return fileName == QLatin1String("playlist.json") || frame.match(fileName).hasMatch() ||
           litter.contains(fileName) || fileName.startsWith(QLatin1String("._"));
}

QString checkReplaceable(const QString &targetDir)
{
    const QFileInfo target(targetDir);
    if (target.exists() && (!target.isDir() || target.isSymLink()))
        return Str::packageNotAFolder(native(targetDir));
    if (target.isDir()) {
        const QStringList foreign = foreignEntries(targetDir);
        if (!foreign.isEmpty())
            return Str::packageHoldsForeignFiles(native(targetDir), foreign);
    }
    return QString();
}

QString checkTarget(const QString &targetDir)
{
    const QString target = QDir::cleanPath(QDir::fromNativeSeparators(targetDir));
    const QString problem = targetProblem(target);
    if (!problem.isEmpty())
        return problem;
    FolderSwap probe(target, false); // the folder a package would be written into, made and removed
    if (!probe.create()) {
        const QString parent = QFileInfo(target).absolutePath();
        return Str::saveLocationNotWritable(native(parent), whyNotWritable(probe.partial()));
    }
    // A file can be made in it (an empty one: whether there is room is the export's to find).
    QFile file(QDir(probe.partial()).filePath(QStringLiteral("probe")));
    const bool writable = file.open(QIODevice::WriteOnly);
    const QString reason = file.errorString();
    file.close();
    probe.abandon();
    if (!writable)
        return Str::saveLocationNotWritable(native(QFileInfo(target).absolutePath()), reason);
    return QString();
}

QString write(const QString &targetDir, const QList<Frame> &frames, const QByteArray &playlistJson)
{
    const QString target = QDir::cleanPath(QDir::fromNativeSeparators(targetDir));
    const QString problem = targetProblem(target);
    if (!problem.isEmpty())
        return problem;

    if (const QString room = roomProblem(target, frames, playlistJson.size()); !room.isEmpty())
        return room + QStringLiteral("\n\n") +
               (QFileInfo(target).isDir() ? Str::packageLeftUnchanged(native(target))
                                          : Str::packageNothingWritten());

    FolderSwap swap(target, false);
    if (!swap.create())
        return abandon(&swap, Str::withReason(Str::playlistCannotCreateDir(native(target)),
                                              whyNotWritable(swap.partial())));

    // Messages name the files where they were being written: in the new folder beside the package.
    const QDir in(swap.partial());
    QString reason;
    for (const Frame &frame : frames) {
        const QString source = QDir::fromNativeSeparators(frame.source);
        if (!QFileInfo::exists(source))
            return abandon(&swap, Str::playlistBinMissing(source));
        if (!FileWriter::copyAll(source, in.filePath(frame.name), &reason))
            return abandon(&swap, Str::withReason(Str::copyFailed(source, in.filePath(frame.name)), reason));
        CrashSteps::step();
    }
    const QString json = QStringLiteral("playlist.json");
    if (!FileWriter::writeAll(in.filePath(json), playlistJson, &reason)) {
        // One that could not even be made, or one made but not written in full.
        const QString written = in.filePath(json);
        const QString message = QFileInfo::exists(written) ? Str::writePlaylistFailed(written)
                                                           : Str::playlistCannotOpenJson(written);
        return abandon(&swap, Str::withReason(message, reason));
    }

    CrashSteps::step();
    // The swap: the old package aside, the new one in, the old one gone.
    QString why;
    switch (swap.commit(&why)) {
    case FolderSwap::Result::Done:
        return QString();
    case FolderSwap::Result::OldNotMovedAside:
        return abandon(&swap, Str::packageCannotReplace(native(target), why));
    case FolderSwap::Result::NewNotRenamed:
        break;
    }
    return abandon(&swap, Str::withReason(Str::playlistCannotCreateDir(native(target)), why));
}

} // namespace PackageWriter
