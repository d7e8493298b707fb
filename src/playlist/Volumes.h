#pragma once

#include <QList>
#include <QString>

#include <optional>

// A mounted volume a package can be copied to.
struct Volume {
    QString rootPath;
    QString name;       // its label, or its root when it has none
    QString fileSystem; // as the system names it: "vfat", "exfat", "FAT32", "NTFS", …
    qint64 bytesFree = 0;
    // False when the system names only how it is mounted ("fuseblk") and the device's boot
    // sector could not tell either.
    bool fileSystemKnown = true;
};

// The volumes a TF card can be: mounted, ready, writable, and not the system's own (not the
// root, nor the volume of the home folder or the program, nor a pseudo file system; on Linux
// only what is mounted below /media, /run/media or /mnt). A seam over the operating system:
// tests set the list, the rest of the copy is the same as for a real card.
namespace Volumes {

QList<Volume> cards();
// Replaces what the system reports (tests); nullopt goes back to the system.
void setOverride(const std::optional<QList<Volume>> &volumes);
// FAT32 and exFAT, the file systems a frame reads.
bool isCardFileSystem(const QString &fileSystem);
// The file system of a volume the system reports as type on device: a FUSE type ("fuseblk",
// "fuse.*") is read from the device's boot sector; known is false when that cannot be done.
QString fileSystemOf(const QString &type, const QString &device, bool *known);

} // namespace Volumes
