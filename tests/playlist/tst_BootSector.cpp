// A card's file system told from its boot sector when the system names only its FUSE mount:
// FAT32, FAT16, exFAT and NTFS samples, sectors that are none of them, and a device that cannot
// be read.
#include "playlist/BootSector.h"
#include "playlist/Volumes.h"

#include "TestFiles.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

// A boot sector as its formatter writes it: the jump, the OEM name, and text at offset.
QByteArray sector(const QByteArray &jump, const QByteArray &oem, int offset = -1, const QByteArray &text = {},
                  bool signature = true)
{
    QByteArray bytes(512, '\0');
    bytes.replace(0, 3, jump);
    bytes.replace(3, 8, oem);
    bytes[11] = 0x00; // 512 bytes a sector
    bytes[12] = 0x02;
    if (offset >= 0)
        bytes.replace(offset, text.size(), text);
    if (signature) {
        bytes[510] = char(0x55);
        bytes[511] = char(0xAA);
    }
    return bytes;
}

const QByteArray kFat32 = sector("\xEB\x58\x90", "MSDOS5.0", 82, "FAT32   ");
const QByteArray kFat16 = sector("\xEB\x3C\x90", "MSWIN4.1", 54, "FAT16   ");
const QByteArray kExFat = sector("\xEB\x76\x90", "EXFAT   ");
const QByteArray kNtfs = sector("\xEB\x52\x90", "NTFS    ");

// An exFAT volume of 512-byte sectors and 4-KiB clusters whose cluster heap starts at sector 32
// and whose root folder is cluster 4 (sector 48), holding entries.
QByteArray exFatVolume(const QList<QByteArray> &entries)
{
    QByteArray boot = kExFat;
    boot[88] = 32; // the cluster heap, in sectors
    boot[96] = 4;  // the root folder's first cluster
    boot[108] = 9; // 2^9 bytes a sector
    boot[109] = 3; // 2^3 sectors a cluster
    QByteArray volume = boot + QByteArray(47 * 512, '\0');
    for (const QByteArray &entry : entries)
        volume += entry.leftJustified(32, '\0');
    return volume + QByteArray(4096, '\0');
}

QByteArray labelEntry(const QString &label)
{
    QByteArray entry(2, '\0');
    entry[0] = char(0x83);
    entry[1] = char(label.size());
    for (const QChar c : label)
        entry += char(c.unicode() & 0xff) + QByteArray(1, char(c.unicode() >> 8));
    return entry;
}

} // namespace

class TestBootSector : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachKindIsTold();
    void otherSectorsAreUnknown();
    void aFuseMountIsReadFromItsDevice();
    void anUnreadableDeviceIsNotTold();
    void otherTypesAreTakenAsTheSystemNamesThem();
    void anExFatLabelIsReadFromItsRootFolder();
};

void TestBootSector::eachKindIsTold()
{
    QCOMPARE(BootSector::identify(kFat32), BootSector::Kind::Fat32);
    QCOMPARE(BootSector::identify(kFat16), BootSector::Kind::Fat);
    QCOMPARE(BootSector::identify(kExFat), BootSector::Kind::ExFat);
    QCOMPARE(BootSector::identify(kNtfs), BootSector::Kind::Ntfs);
    QCOMPARE(BootSector::fileSystemName(BootSector::Kind::Fat32), QStringLiteral("vfat"));
    QCOMPARE(BootSector::fileSystemName(BootSector::Kind::ExFat), QStringLiteral("exfat"));
    QCOMPARE(BootSector::fileSystemName(BootSector::Kind::Ntfs), QStringLiteral("ntfs"));
    QVERIFY(Volumes::isCardFileSystem(BootSector::fileSystemName(BootSector::Kind::Fat32)));
    QVERIFY(Volumes::isCardFileSystem(BootSector::fileSystemName(BootSector::Kind::ExFat)));
    QVERIFY(!Volumes::isCardFileSystem(BootSector::fileSystemName(BootSector::Kind::Ntfs)));
}

void TestBootSector::otherSectorsAreUnknown()
{
    QCOMPARE(BootSector::identify(QByteArray(512, '\0')), BootSector::Kind::Unknown); // ext4 keeps it empty
    QCOMPARE(BootSector::identify(kFat32.left(200)), BootSector::Kind::Unknown);      // too short
    QCOMPARE(BootSector::identify(sector("\xEB\x58\x90", "MSDOS5.0", 82, "FAT32   ", false)),
             BootSector::Kind::Unknown); // no boot signature
    QCOMPARE(BootSector::identify(sector("\xEB\x58\x90", "MSDOS5.0", 82, "XFS     ")),
             BootSector::Kind::Unknown);
    QCOMPARE(BootSector::fileSystemName(BootSector::Kind::Unknown), QString());
}

void TestBootSector::aFuseMountIsReadFromItsDevice()
{
    QTemporaryDir dir;
    // An image file stands for the block device.
    const QString exfat = dir.filePath("exfat.img");
    QVERIFY(TestFiles::write(exfat, kExFat + QByteArray(4096, '\x11')));
    bool known = false;
    QCOMPARE(Volumes::fileSystemOf("fuseblk", exfat, &known), QStringLiteral("exfat"));
    QVERIFY(known);
    const QString ntfs = dir.filePath("ntfs.img");
    QVERIFY(TestFiles::write(ntfs, kNtfs));
    QCOMPARE(Volumes::fileSystemOf("fuseblk", ntfs, &known), QStringLiteral("ntfs"));
    QVERIFY(known);
    const QString fat = dir.filePath("fat32.img");
    QVERIFY(TestFiles::write(fat, kFat32));
    QCOMPARE(Volumes::fileSystemOf("fuse.somefs", fat, &known), QStringLiteral("vfat"));
    QVERIFY(known);
    // A device that holds none of them is not told either.
    const QString other = dir.filePath("other.img");
    QVERIFY(TestFiles::write(other, QByteArray(512, '\0')));
    QCOMPARE(Volumes::fileSystemOf("fuseblk", other, &known), QStringLiteral("fuseblk"));
    QVERIFY(!known);
}

void TestBootSector::anUnreadableDeviceIsNotTold()
{
    bool known = true;
    QCOMPARE(BootSector::readFrom("/nonexistent/device"), BootSector::Kind::Unknown);
    QCOMPARE(Volumes::fileSystemOf("fuseblk", "/nonexistent/device", &known), QStringLiteral("fuseblk"));
    QVERIFY(!known);
    QCOMPARE(Volumes::fileSystemOf("fuseblk", QString(), &known), QStringLiteral("fuseblk"));
    QVERIFY(!known);
}

void TestBootSector::otherTypesAreTakenAsTheSystemNamesThem()
{
    bool known = false;
    // Not read: the system's word is taken (a device that would say otherwise is not asked).
    QTemporaryDir dir;
    const QString ntfs = dir.filePath("ntfs.img");
    QVERIFY(TestFiles::write(ntfs, kNtfs));
    QCOMPARE(Volumes::fileSystemOf("exfat", ntfs, &known), QStringLiteral("exfat"));
    QVERIFY(known);
    QCOMPARE(Volumes::fileSystemOf("ntfs3", QString(), &known), QStringLiteral("ntfs3"));
    QVERIFY(known);
}

void TestBootSector::anExFatLabelIsReadFromItsRootFolder()
{
    QTemporaryDir dir;
    const QByteArray bitmap("\x81"), upcase("\x82");
    const auto labelOf = [&](const QByteArray &volume) {
        const QString image = dir.filePath("volume.img");
        return TestFiles::write(image, volume) ? BootSector::exFatLabelOf(image)
                                               : QStringLiteral("(not written)");
    };
    QCOMPARE(labelOf(exFatVolume({bitmap, upcase, labelEntry(QStringLiteral("VELORA"))})),
             QStringLiteral("VELORA"));
    QCOMPARE(labelOf(exFatVolume({labelEntry(QStringLiteral("相框卡"))})), QStringLiteral("相框卡"));
    // None before the folder's end, or no exFAT volume at all.
    QCOMPARE(labelOf(exFatVolume({bitmap, upcase})), QString());
    QCOMPARE(labelOf(exFatVolume({bitmap, QByteArray(1, '\0'), labelEntry(QStringLiteral("LATE"))})),
             QString());
    QCOMPARE(labelOf(kFat32 + QByteArray(65536, '\0')), QString());
    QCOMPARE(BootSector::exFatLabelOf("/nonexistent/device"), QString());
}

QTEST_MAIN(TestBootSector)
#include "tst_BootSector.moc"
