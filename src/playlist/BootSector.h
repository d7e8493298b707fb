#pragma once

#include <QByteArray>
#include <QString>

// What a volume's boot sector says its file system is: for a card the system reports only as a
// FUSE mount ("fuseblk": exFAT through exfat-fuse, NTFS through ntfs-3g), read from the device
// itself. The signatures: "EXFAT   " and "NTFS    " as the OEM name at byte 3, "FAT32   " at
// byte 82 and "FAT12   " / "FAT16   " at byte 54 of a sector that ends in 55 AA.
namespace BootSector {

enum class Kind { Unknown, Fat, Fat32, ExFat, Ntfs };

Kind identify(const QByteArray &sector);
// The system's name for kind ("vfat", "exfat", "ntfs"); empty for Unknown.
QString fileSystemName(Kind kind);
// The first sector of device (a block device, or a file holding an image), identified; Unknown
// when it cannot be read.
Kind readFrom(const QString &device);

// The label of an exFAT volume, which it keeps in its root folder (an entry of type 0x83), not
// where a FUSE mount reports it: from the boot sector and the start of the root folder, and
// read from device. Empty for another file system, a volume without a label, or a device that
// cannot be read.
QString exFatLabel(const QByteArray &bootSector, const QByteArray &rootFolder);
QString exFatLabelOf(const QString &device);

} // namespace BootSector
