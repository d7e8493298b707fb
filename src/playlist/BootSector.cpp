#include "playlist/BootSector.h"

#include <QFile>

namespace BootSector {

namespace {
constexpr int kSectorBytes = 512;

bool hasAt(const QByteArray &sector, int offset, const char *text)
{
    return sector.mid(offset, 8) == QByteArray(text);
}
} // namespace

Kind identify(const QByteArray &sector)
{
    if (sector.size() < kSectorBytes)
        return Kind::Unknown;
    // exFAT and NTFS name themselves where FAT keeps its maker's name.
    if (hasAt(sector, 3, "EXFAT   "))
        return Kind::ExFat;
    if (hasAt(sector, 3, "NTFS    "))
        return Kind::Ntfs;
    const bool signed55AA = quint8(sector.at(510)) == 0x55 && quint8(sector.at(511)) == 0xAA;
    if (!signed55AA)
        return Kind::Unknown;
    if (hasAt(sector, 82, "FAT32   "))
        return Kind::Fat32;
    if (hasAt(sector, 54, "FAT12   ") || hasAt(sector, 54, "FAT16   "))
        return Kind::Fat;
    return Kind::Unknown;
}

QString fileSystemName(Kind kind)
{
    switch (kind) {
    case Kind::Fat:
    case Kind::Fat32:
        return QStringLiteral("vfat");
    case Kind::ExFat:
        return QStringLiteral("exfat");
    case Kind::Ntfs:
        return QStringLiteral("ntfs");
    case Kind::Unknown:
        break;
    }
    return QString();
}

Kind readFrom(const QString &device)
{
    QFile file(device);
    if (device.isEmpty() || !file.open(QIODevice::ReadOnly))
        return Kind::Unknown;
    return identify(file.read(kSectorBytes));
}

} // namespace BootSector
