// Reading the ICC profile a picture file carries from the file itself.
#include "images/EmbeddedProfile.h"

#include "ColourReference.h"
#include "TestFiles.h"

#include <QColorSpace>
#include <QTemporaryDir>
#include <QTest>

class TestEmbeddedProfile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFormatGivesItsProfile_data();
    void everyFormatGivesItsProfile();
    void profilesQtDoesNotWriteAreRead();
    void largeProfileSpreadOverSegments();
    void noProfileGivesNothing();
    void damagedFilesGiveNothing();

private:
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
    QImage m_picture = TestFiles::photoLikeImage(64, 48, 3);
};

void TestEmbeddedProfile::everyFormatGivesItsProfile_data()
{
    QTest::addColumn<QString>("suffix");
    for (const char *suffix : {"jpg", "png", "tif", "webp"})
        QTest::newRow(suffix) << QString::fromLatin1(suffix);
}

void TestEmbeddedProfile::everyFormatGivesItsProfile()
{
    QFETCH(QString, suffix);
    const QByteArray icc = ColourReference::iccProfile(ColourReference::adobeRgb(), 2.1);
    QImage tagged = m_picture;
    tagged.setColorSpace(QColorSpace::fromIccProfile(icc));
    QVERIFY(tagged.colorSpace().isValid());
    const QString file = TestFiles::savedPicture(path(QStringLiteral("tagged.") + suffix), tagged);
    QCOMPARE(EmbeddedProfile::read(file), icc);
}

void TestEmbeddedProfile::profilesQtDoesNotWriteAreRead()
{
    const QByteArray odd = QByteArray("a profile Qt would refuse ") + QByteArray(500, 'x');
    QVERIFY(TestFiles::write(path("odd.jpg"), ColourReference::jpegWithProfile(m_picture, odd)));
    QVERIFY(TestFiles::write(path("odd.png"), ColourReference::pngWithProfile(m_picture, odd)));
    QCOMPARE(EmbeddedProfile::read(path("odd.jpg")), odd);
    QCOMPARE(EmbeddedProfile::read(path("odd.png")), odd);
    QVERIFY(!QImage(path("odd.png")).isNull()); // the pictures themselves are whole
    QVERIFY(!QImage(path("odd.jpg")).isNull());
}

void TestEmbeddedProfile::largeProfileSpreadOverSegments()
{
    // A JPEG segment holds at most 64 KB: Qt writes a larger profile in numbered parts.
    QColorSpace space =
        QColorSpace::fromIccProfile(ColourReference::iccProfile(ColourReference::displayP3()));
    QByteArray large = space.iccProfile();
    large += QByteArray(150 * 1024, '\0'); // room after the tags, as some profiles carry
    QImage tagged = m_picture;
    tagged.setColorSpace(QColorSpace::fromIccProfile(large));
    if (!tagged.colorSpace().isValid())
        QSKIP("Qt does not take a padded profile here");
    const QString file = TestFiles::savedPicture(path("large.jpg"), tagged);
    QCOMPARE(EmbeddedProfile::read(file), large);
}

void TestEmbeddedProfile::noProfileGivesNothing()
{
    for (const char *suffix : {"jpg", "png", "tif", "webp", "bmp"}) {
        const QString file = TestFiles::savedPicture(path(QStringLiteral("plain.") + suffix), m_picture);
        QVERIFY2(EmbeddedProfile::read(file).isEmpty(), suffix);
    }
    QVERIFY(EmbeddedProfile::read(path("missing.jpg")).isEmpty());
}

void TestEmbeddedProfile::damagedFilesGiveNothing()
{
    const QByteArray jpeg = ColourReference::jpegWithProfile(
        m_picture, ColourReference::iccProfile(ColourReference::displayP3()));
    const QByteArray png =
        ColourReference::pngWithProfile(m_picture, ColourReference::iccProfile(ColourReference::displayP3()));
    QVERIFY(TestFiles::write(path("cut.jpg"), jpeg.left(40)));
    QVERIFY(TestFiles::write(path("cut.png"), png.left(60)));
    QVERIFY(TestFiles::write(path("text.jpg"), "just some words, not a picture"));
    QVERIFY(TestFiles::write(path("tiny.png"), "\x89PNG"));
    for (const char *name : {"cut.jpg", "cut.png", "text.jpg", "tiny.png"})
        QVERIFY2(EmbeddedProfile::read(path(QString::fromLatin1(name))).isEmpty(), name);
    // A PNG profile chunk that claims far more than it holds.
    QByteArray lying = png;
    lying[33] = '\x7f';
    QVERIFY(TestFiles::write(path("lying.png"), lying));
    QVERIFY(EmbeddedProfile::read(path("lying.png")).isEmpty());
}

QTEST_MAIN(TestEmbeddedProfile)
#include "tst_EmbeddedProfile.moc"
