// The package put in place whole or not at all: an older package replaced exactly, and a full
// disk, a folder in the way or a read-only save location at every point leaving the previous
// package as it was.
#include "playlist/FileWriter.h"
#include "playlist/PackageWriter.h"
#include "ui/UiLanguage.h"

#include "ReadOnlyFolder.h"
#include "SmallVolume.h"
#include "TestFiles.h"

#include <QDir>
#include <QLocale>
#include <QMap>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr qint64 kFrameBytes = 16 * SmallVolume::kPage;

using Files = QMap<QString, QByteArray>;

} // namespace

class TestPackageWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void writesANewPackage();
    void replacesALargerPackageExactly();
    void fullDiskAtEachPointLeavesTheOldPackage_data();
    void fullDiskAtEachPointLeavesTheOldPackage();
    void fullDiskWithoutAnOldPackageLeavesNone();
    void aWriteThatFillsARealDiskGivesItsReason();
    void realSmallVolume_data();
    void realSmallVolume();
    void folderWithOtherFilesIsNeverTouched();
    void targetThatIsAFileIsNeverTouched();
    void fileManagerLitterIsReplaced();
    void checkTargetBeforeARun();
    void readOnlySaveLocation();
    void packageFileNames();

private:
    // count frames of kFrameBytes, each filled with its own letter starting at `first`.
    QList<PackageWriter::Frame> frames(int count, char first);
    QString target() const { return m_dir.filePath(QStringLiteral("card/vl_play")); }
    QStringList parentEntries() const;

    QTemporaryDir m_dir;
};

void TestPackageWriter::initTestCase() { UiLanguage::set(UiLanguage::English); }

void TestPackageWriter::init()
{
    QVERIFY(m_dir.isValid());
    QDir(m_dir.filePath(QStringLiteral("card"))).removeRecursively();
    QDir(m_dir.filePath(QStringLiteral("bins"))).removeRecursively();
}

void TestPackageWriter::cleanup() { FileWriter::simulateFreeSpace(-1); }

QList<PackageWriter::Frame> TestPackageWriter::frames(int count, char first)
{
    QList<PackageWriter::Frame> list;
    for (int i = 0; i < count; ++i) {
        const QString source = m_dir.filePath(QStringLiteral("bins/%1_%2.bin").arg(first).arg(i));
        TestFiles::write(source, QByteArray(kFrameBytes, char(first + i)));
        list.append({QStringLiteral("frame_%1.bin").arg(i, 3, 10, QLatin1Char('0')), source});
    }
    return list;
}

QStringList TestPackageWriter::parentEntries() const
{
    return QDir(m_dir.filePath(QStringLiteral("card")))
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

void TestPackageWriter::writesANewPackage()
{
    QCOMPARE(PackageWriter::write(target(), frames(2, 'a'), "{ \"frames\": 2 }"), QString());
    const Files written = TestFiles::contents(target());
    QCOMPARE(written.keys(), (QStringList{"frame_000.bin", "frame_001.bin", "playlist.json"}));
    QCOMPARE(written.value("frame_001.bin"), QByteArray(kFrameBytes, 'b'));
    QCOMPARE(written.value("playlist.json"), QByteArray("{ \"frames\": 2 }"));
    QCOMPARE(parentEntries(), QStringList{"vl_play"}); // nothing of the work left beside it
}

void TestPackageWriter::replacesALargerPackageExactly()
{
    QCOMPARE(PackageWriter::write(target(), frames(10, 'a'), "old"), QString());
    QCOMPARE(PackageWriter::write(target(), frames(4, 'A'), "new"), QString());
    const Files written = TestFiles::contents(target());
    // frame_004 ... frame_009 of the old package are gone with it.
    QCOMPARE(written.keys(), (QStringList{"frame_000.bin", "frame_001.bin", "frame_002.bin", "frame_003.bin",
                                          "playlist.json"}));
    QCOMPARE(written.value("frame_003.bin"), QByteArray(kFrameBytes, 'D'));
    QCOMPARE(written.value("playlist.json"), QByteArray("new"));
    QCOMPARE(parentEntries(), QStringList{"vl_play"});
}

void TestPackageWriter::fullDiskAtEachPointLeavesTheOldPackage_data()
{
    QTest::addColumn<qint64>("freeBytes");
    QTest::addColumn<QString>("failingFile");
    QTest::newRow("first frame") << qint64(0) << "frame_000.bin";
    QTest::newRow("inside the third frame") << 2 * kFrameBytes + 100 << "frame_002.bin";
    QTest::newRow("last frame") << 3 * kFrameBytes << "frame_003.bin";
    QTest::newRow("playlist.json, after every frame") << 4 * kFrameBytes + 5 << "playlist.json";
}

void TestPackageWriter::fullDiskAtEachPointLeavesTheOldPackage()
{
    QFETCH(qint64, freeBytes);
    QFETCH(QString, failingFile);
    QCOMPARE(PackageWriter::write(target(), frames(10, 'a'), "last month"), QString());
    const Files before = TestFiles::contents(target());

    FileWriter::simulateFreeSpace(freeBytes);
    const QString error = PackageWriter::write(target(), frames(4, 'A'), "this month");
    // The file named is the one being written, in the new folder beside the package.
    const QRegularExpression written(QRegularExpression::escape(target()) + "\\.partial-[0-9a-z]+/" +
                                     QRegularExpression::escape(failingFile) + "\nNo space left on device");
    QVERIFY2(written.match(error).hasMatch(), qPrintable(error));
    QVERIFY(
        error.endsWith(QStringLiteral("\n\nThe previous package in %1 was left as it was.").arg(target())));
    QCOMPARE(TestFiles::contents(target()), before);
    QCOMPARE(parentEntries(), QStringList{"vl_play"});
}

void TestPackageWriter::fullDiskWithoutAnOldPackageLeavesNone()
{
    FileWriter::simulateFreeSpace(kFrameBytes + 1);
    const QString error = PackageWriter::write(target(), frames(3, 'a'), "{}");
    QVERIFY2(error.endsWith(QStringLiteral("No space left on device\n\nNo package was written.")),
             qPrintable(error));
    QVERIFY(!QFileInfo::exists(target()));
    QCOMPARE(parentEntries(), QStringList());
}

void TestPackageWriter::aWriteThatFillsARealDiskGivesItsReason()
{
    // Another program may fill the disk after the room was checked: the write that finds it full
    // says so, though the system takes what fits of a write without a word.
    SmallVolume volume(m_dir.filePath(QStringLiteral("small")), 512); // 2 MiB
    if (!volume.isMounted())
        QSKIP("this machine cannot mount a small volume");
    QString error;
    QVERIFY(!FileWriter::writeAll(QDir(volume.path()).filePath(QStringLiteral("frame_000.bin")),
                                  QByteArray(3 << 20, 'x'), &error));
    QCOMPARE(error, QStringLiteral("No space left on device"));
}

void TestPackageWriter::realSmallVolume_data()
{
    // The old package takes 10 frames and a page for its playlist; the new one 4 and a page.
    QTest::addColumn<qint64>("roomPages");
    const qint64 framePages = kFrameBytes / SmallVolume::kPage;
    QTest::newRow("room for the frames, not the playlist") << 4 * framePages;
    QTest::newRow("room for two frames") << 2 * framePages;
}

void TestPackageWriter::realSmallVolume()
{
    QFETCH(qint64, roomPages);
    const qint64 oldPages = 10 * (kFrameBytes / SmallVolume::kPage) + 1;
    SmallVolume volume(m_dir.filePath(QStringLiteral("card")), oldPages + roomPages);
    if (!volume.isMounted())
        QSKIP("this machine does not let the test mount a small volume; the simulated full disk covers it");
    const QList<PackageWriter::Frame> old = frames(10, 'a');
    QCOMPARE(PackageWriter::write(target(), old, "last month"), QString());
    const Files before = TestFiles::contents(target());

    // Told before anything is written: how much the new package needs beside the old one.
    const QString error = PackageWriter::write(target(), frames(4, 'A'), "this month");
    const QLocale locale;
    const qint64 needed = SmallVolume::kPage * (4 * (kFrameBytes / SmallVolume::kPage) + 2);
    QCOMPARE(error,
             QStringLiteral("There is not enough room in %1 for the new package: it needs %2, and %3 are "
                            "free. The previous package stays until the new one is complete, so both must "
                            "fit for a moment. Free some space, then Retry.\n\nThe previous package in %4 "
                            "was left as it was.")
                 .arg(QDir::toNativeSeparators(volume.path()), locale.formattedDataSize(needed, 1),
                      locale.formattedDataSize(roomPages * SmallVolume::kPage, 1), target()));
    QCOMPARE(TestFiles::contents(target()), before);
    QCOMPARE(parentEntries(), QStringList{"vl_play"});
}

void TestPackageWriter::folderWithOtherFilesIsNeverTouched()
{
    QCOMPARE(PackageWriter::write(target(), frames(2, 'a'), "old"), QString());
    QVERIFY(TestFiles::write(QDir(target()).filePath("holiday notes.txt"), "mine"));
    QVERIFY(QDir().mkpath(QDir(target()).filePath("backup")));
    const Files before = TestFiles::contents(target());
    QCOMPARE(PackageWriter::write(target(), frames(1, 'A'), "new"),
             QStringLiteral("The folder %1 holds files that are not part of a playback package:\nbackup\n"
                            "holiday notes.txt\n\nMove them elsewhere, then try again. Nothing was changed.")
                 .arg(target()));
    QCOMPARE(PackageWriter::checkTarget(target()), PackageWriter::write(target(), frames(1, 'A'), "new"));
    QCOMPARE(TestFiles::contents(target()), before);
    QVERIFY(QFileInfo(QDir(target()).filePath("backup")).isDir());
    QCOMPARE(parentEntries(), QStringList{"vl_play"});
}

void TestPackageWriter::targetThatIsAFileIsNeverTouched()
{
    QVERIFY(TestFiles::write(target(), "a file called vl_play"));
    const QString expected =
        QStringLiteral("%1 exists but is not a folder; the package cannot be written there.").arg(target());
    QCOMPARE(PackageWriter::write(target(), frames(1, 'a'), "{}"), expected);
    QCOMPARE(PackageWriter::checkTarget(target()), expected);
    QCOMPARE(TestFiles::read(target()), QByteArray("a file called vl_play"));
}

void TestPackageWriter::fileManagerLitterIsReplaced()
{
    QCOMPARE(PackageWriter::write(target(), frames(1, 'a'), "old"), QString());
    QVERIFY(TestFiles::write(QDir(target()).filePath("Thumbs.db"), "thumbnails"));
    QCOMPARE(PackageWriter::write(target(), frames(1, 'A'), "new"), QString());
    QCOMPARE(TestFiles::contents(target()).keys(), (QStringList{"frame_000.bin", "playlist.json"}));
}

void TestPackageWriter::checkTargetBeforeARun()
{
    // A save location that does not exist yet is made; the check leaves nothing else behind.
    QCOMPARE(PackageWriter::checkTarget(target()), QString());
    QCOMPARE(parentEntries(), QStringList());
    QVERIFY(TestFiles::write(m_dir.filePath("card/blocker"), "a file"));
    QCOMPARE(PackageWriter::checkTarget(m_dir.filePath("card/blocker/vl_play")),
             QStringLiteral("Cannot write to the save location:\n%1\n\nNot a directory\n\n"
                            "Choose a folder you can write to.")
                 .arg(m_dir.filePath("card/blocker")));
}

void TestPackageWriter::readOnlySaveLocation()
{
    QVERIFY(QDir().mkpath(m_dir.filePath("card")));
    ReadOnlyFolder readOnly(m_dir.filePath("card"));
    if (!readOnly.isReadOnly())
        QSKIP("this machine cannot make a folder read-only for this user");
    const QString check = PackageWriter::checkTarget(target());
    QVERIFY2(check.startsWith(
                 QStringLiteral("Cannot write to the save location:\n%1\n\n").arg(m_dir.filePath("card"))),
             qPrintable(check));
    QVERIFY2(check.contains("Permission denied") || check.contains("Operation not permitted"),
             qPrintable(check));
    const QString error = PackageWriter::write(target(), frames(1, 'a'), "{}");
    QVERIFY2(error.startsWith(QStringLiteral("Cannot create the folder: %1\n").arg(target())),
             qPrintable(error));
    QCOMPARE(parentEntries(), QStringList());
}

void TestPackageWriter::packageFileNames()
{
    for (const char *name : {"playlist.json", "frame_000.bin", "frame_1000.bin", "Thumbs.db", ".DS_Store",
                             "._frame_000.bin", "desktop.ini"})
        QVERIFY2(PackageWriter::isPackageFile(QLatin1String(name)), name);
    for (const char *name :
         {"frame_00.bin", "frame_000.bin.bak", "notes.txt", "playlist.json~", "FRAME_000.BIN"})
        QVERIFY2(!PackageWriter::isPackageFile(QLatin1String(name)), name);
}

QTEST_GUILESS_MAIN(TestPackageWriter)
#include "tst_PackageWriter.moc"
