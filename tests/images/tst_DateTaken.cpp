// When a photo was taken, from the EXIF of a JPEG and of a HEIC written by libheif itself, and
// nothing (never a crash) from files without one or with a damaged one.
#include "images/DateTaken.h"

#include "HeicWriter.h"
#include "TestFiles.h"

#include <QTemporaryDir>
#include <QTest>

class TestDateTaken : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fromAJpeg();
    void fromAHeic();
    void noneWithoutExif();
    void noneFromADamagedBlock_data();
    void noneFromADamagedBlock();
    void noneFromACutFile();

private:
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
    const QDateTime m_taken{QDate(2024, 5, 17), QTime(10, 30, 0)};
};

void TestDateTaken::fromAJpeg()
{
    QVERIFY(TestFiles::write(path("dated.jpg"), TestFiles::jpegWithDateTaken(TestFiles::markedImage(64, 48),
                                                                             "2024:05:17 10:30:00")));
    QCOMPARE(DateTaken::read(path("dated.jpg")), m_taken);
}

void TestDateTaken::fromAHeic()
{
    QVERIFY(HeicWriter::writeWithExif(path("dated.heic"), TestFiles::markedImage(64, 48),
                                      TestFiles::exifWithDateTaken("2024:05:17 10:30:00")));
    QCOMPARE(DateTaken::read(path("dated.heic")), m_taken);
}

void TestDateTaken::noneWithoutExif()
{
    QVERIFY(TestFiles::markedImage(64, 48).save(path("plain.jpg")));
    QVERIFY(TestFiles::markedImage(64, 48).save(path("plain.png")));
    QVERIFY(HeicWriter::write(path("plain.heic"), TestFiles::markedImage(64, 48)));
    QVERIFY(TestFiles::write(path("turned.jpg"),
                             TestFiles::jpegWithExifOrientation(TestFiles::markedImage(64, 48), 6)));
    for (const char *name : {"plain.jpg", "plain.png", "plain.heic", "turned.jpg", "missing.jpg"})
        QVERIFY2(!DateTaken::read(path(name)).isValid(), name);
}

void TestDateTaken::noneFromADamagedBlock_data()
{
    QTest::addColumn<QByteArray>("exif");
    const QByteArray good = TestFiles::exifWithDateTaken("2024:05:17 10:30:00");
    QTest::newRow("no date") << TestFiles::exifWithDateTaken("0000:00:00 00:00:00");
    QTest::newRow("not a date") << TestFiles::exifWithDateTaken("sometime in spring");
    QByteArray farOffset = good;
    farOffset.replace(36, 4, QByteArray("\xF0\xFF\xFF\x7F", 4)); // the date's text far past the end
    QTest::newRow("text past the end") << farOffset;
    QByteArray farDirectory = good;
    farDirectory.replace(18, 4, QByteArray("\xFF\xFF\xFF\xFF", 4)); // the EXIF directory nowhere
    QTest::newRow("directory past the end") << farDirectory;
    QByteArray manyEntries = good;
    manyEntries.replace(26, 4, QByteArray("\xFF\xFF\x04\x90", 4)); // 65535 entries, none the date
    QTest::newRow("too many entries") << manyEntries;
    QTest::newRow("cut short") << good.left(30);
    QTest::newRow("not TIFF") << QByteArray("XX*\0\x08\0\0\0", 8) + good.mid(8);
}

void TestDateTaken::noneFromADamagedBlock()
{
    QFETCH(QByteArray, exif);
    QVERIFY(!DateTaken::fromTiff(exif).isValid());
    QVERIFY(HeicWriter::writeWithExif(path("damaged.heic"), TestFiles::markedImage(32, 24), exif));
    QVERIFY(!DateTaken::read(path("damaged.heic")).isValid());
}

void TestDateTaken::noneFromACutFile()
{
    const QByteArray jpeg =
        TestFiles::jpegWithDateTaken(TestFiles::markedImage(64, 48), "2024:05:17 10:30:00");
    QVERIFY(HeicWriter::writeWithExif(path("whole.heic"), TestFiles::markedImage(64, 48),
                                      TestFiles::exifWithDateTaken("2024:05:17 10:30:00")));
    const QByteArray heic = TestFiles::read(path("whole.heic"));
    for (int cut : {3, 10, 40, 60}) {
        QVERIFY(TestFiles::write(path("cut.jpg"), jpeg.left(cut)));
        QVERIFY(!DateTaken::read(path("cut.jpg")).isValid());
    }
    // A HEIC cut anywhere in its boxes gives nothing or the date, never a crash.
    for (int cut = 8; cut < qMin<int>(int(heic.size()), 2000); cut += 7) {
        QVERIFY(TestFiles::write(path("cut.heic"), heic.left(cut)));
        const QDateTime taken = DateTaken::read(path("cut.heic"));
        QVERIFY(!taken.isValid() || taken == m_taken);
    }
}

QTEST_GUILESS_MAIN(TestDateTaken)
#include "tst_DateTaken.moc"
