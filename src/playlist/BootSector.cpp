#include "playlist/BootSector.h"

#include <QFile>
#include <QtEndian>

namespace BootSector {

namespace {
constexpr int kSectorBytes = 512;

constexpr int kEntryBytes = 32;
constexpr qint64 kRootBytesRead = 64 * 1024; // the label comes among the first entries

bool hasAt(const QByteArray &sector, int offset, const char *text)
{
    return sector.mid(offset, 8) == QByteArray(text);
}

quint32 number32(const QByteArray &bytes, int offset)
{
    return qFromLittleEndian<quint32>(bytes.constData() + offset);
}

// Where the root folder of an exFAT volume starts, in bytes from the volume's start.
qint64 exFatRootOffset(const QByteArray &boot)
{
    const int sectorShift = quint8(boot.at(108));
    const int clusterShift = quint8(boot.at(109));
    const qint64 heap = number32(boot, 88);    // in sectors
    const qint64 cluster = number32(boot, 96); // the first cluster is number 2
    // Sectors of 512 to 4096 bytes, clusters of 32 MiB at most.
    if (sectorShift < 9 || sectorShift > 12 || sectorShift + clusterShift > 25 || cluster < 2)
        return -1;
    return (heap + ((cluster - 2) << clusterShift)) << sectorShift;
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

QString exFatLabel(const QByteArray &bootSector, const QByteArray &rootFolder)
{
    if (identify(bootSector) != Kind::ExFat)
        return {};
    for (int at = 0; at + kEntryBytes <= rootFolder.size(); at += kEntryBytes) {
        const quint8 type = quint8(rootFolder.at(at));
        if (type == 0x00)
            break; // the end of the folder
        if (type != 0x83)
            continue;
        const int characters = qMin(int(quint8(rootFolder.at(at + 1))), 11);
        QString label;
        for (int i = 0; i < characters; ++i)
            label += QChar(qFromLittleEndian<quint16>(rootFolder.constData() + at + 2 + 2 * i));
        return label;
    }
    return {};
}

QString exFatLabelOf(const QString &device)
{
    QFile file(device);
    if (device.isEmpty() || !file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray boot = file.read(kSectorBytes);
    if (identify(boot) != Kind::ExFat)
        return {};
    const qint64 root = exFatRootOffset(boot);
    if (root < 0 || !file.seek(root))
        return {};
    return exFatLabel(boot, file.read(kRootBytesRead));
}

} // namespace BootSector
