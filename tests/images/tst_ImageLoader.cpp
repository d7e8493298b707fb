#include "images/HeifDecoder.h"
#include "images/ImageLoader.h"
#include "images/WicDecode.h"
#include "ui/AppStrings.h"
#include "ui/UiLanguage.h"

#include "HeicWriter.h"
#include "TestFiles.h"

#include <QColorSpace>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QImageReader>
#include <QTemporaryDir>
#include <QTest>

namespace {

bool near(const QColor &a, const QColor &b, int tolerance = 24)
{
    return qAbs(a.red() - b.red()) <= tolerance && qAbs(a.green() - b.green()) <= tolerance &&
           qAbs(a.blue() - b.blue()) <= tolerance;
}

} // namespace

class TestImageLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void extensions();
    void isHeicPathLooksAtTheSuffixOnly_data();
    void isHeicPathLooksAtTheSuffixOnly();
    void dialogFilterListsTheSameExtensionsAsTheCatalogue();
    void nothingToLoad();
    void maxSideShrinksWhileDecoding();
    void exifOrientationIsApplied();
    void largePhotosLoad();
    void hostileHeaderGivesNullQuickly();
    void qtReadableHeicNeedsNoHeifDecoder();
    void heicDecodes();
    void heicRotationIsAppliedOnce();
    void heicScaledToMaxSide();
    void corruptHeicGivesNull();
    void nonHeicPathsGoToTheProcessorUnchanged();
    void heicIsConvertedOnceIntoTheCache();
    void changedHeicGetsANewCacheFile();
    void transparentHeicIsCachedWithoutAlpha();
    void unconvertibleHeicGivesEmptyPath();
    void removeCachedConversion();
    void wicPixelsBecomeRgb32WithoutAlpha();
    void wicColourContextBecomesAProfile();

private:
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
};

void TestImageLoader::initTestCase()
{
    QVERIFY(m_dir.isValid());
    // The cache goes below the temporary location: keep it inside this test's folder.
    qputenv("TMPDIR", QFile::encodeName(m_dir.filePath(QStringLiteral("tmp"))));
    QVERIFY(QDir().mkpath(m_dir.filePath(QStringLiteral("tmp"))));
    QCOMPARE(ImageLoader::heicCacheDir(), m_dir.filePath(QStringLiteral("tmp/tarngui_heic_cache")));
    ImageLoader::prepareReaders(); // as the program does at start-up
    UiLanguage::set(UiLanguage::English);
}

void TestImageLoader::extensions()
{
    QCOMPARE(ImageLoader::supportedExtensions(),
             (QStringList{"jpg", "jpeg", "png", "bmp", "tif", "tiff", "webp", "heic", "heif"}));
    QCOMPARE(QImageReader::allocationLimit(), ImageLoader::kAllocationLimitMB);
    QVERIFY(qint64(ImageLoader::kAllocationLimitMB) * 1024 * 1024 >= qint64(108'000'000) * 4);
}

void TestImageLoader::isHeicPathLooksAtTheSuffixOnly_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("heic");
    QTest::newRow("heic") << "/a/b.heic" << true;
    QTest::newRow("HEIC") << "/a/B.HEIC" << true;
    QTest::newRow("heif") << "c.heif" << true;
    QTest::newRow("Heif") << "c.Heif" << true;
    QTest::newRow("jpg") << "c.jpg" << false;
    QTest::newRow("double suffix") << "c.heic.jpg" << false;
    QTest::newRow("no suffix") << "heic" << false;
    QTest::newRow("folder named heic") << "/x.heic/photo" << false;
    QTest::newRow("empty") << "" << false;
}

void TestImageLoader::isHeicPathLooksAtTheSuffixOnly()
{
    QFETCH(QString, path);
    QFETCH(bool, heic);
    QCOMPARE(ImageLoader::isHeicPath(path), heic);
}

void TestImageLoader::dialogFilterListsTheSameExtensionsAsTheCatalogue()
{
    QCOMPARE(
        ImageLoader::imageFileDialogFilter(),
        QStringLiteral("Images (*.jpg *.jpeg *.png *.bmp *.tif *.tiff *.webp *.heic *.heif);;All files (*)"));
    QCOMPARE(Str::imageFileFilter(), ImageLoader::imageFileDialogFilter());
}

void TestImageLoader::nothingToLoad()
{
    QVERIFY(ImageLoader::load(QString(), 0).isNull());
    QVERIFY(ImageLoader::load(path("absent.jpg"), 72).isNull());
    QVERIFY(TestFiles::write(path("text.png"), "hello"));
    QVERIFY(ImageLoader::load(path("text.png"), 0).isNull());
    QVERIFY(TestFiles::write(path("empty.jpg"), QByteArray()));
    QVERIFY(ImageLoader::load(path("empty.jpg"), 72).isNull());
}

void TestImageLoader::maxSideShrinksWhileDecoding()
{
    QVERIFY(TestFiles::markedImage(4000, 3000).save(path("big.jpg"), "JPEG", 90));
    QCOMPARE(ImageLoader::load(path("big.jpg"), 72).size(), QSize(72, 54));
    QCOMPARE(ImageLoader::load(path("big.jpg"), 280).size(), QSize(280, 210));
    QCOMPARE(ImageLoader::load(path("big.jpg"), 0).size(), QSize(4000, 3000));
    QCOMPARE(ImageLoader::load(path("big.jpg"), -1).size(), QSize(4000, 3000));
    QVERIFY(TestFiles::markedImage(50, 40).save(path("small.png")));
    QCOMPARE(ImageLoader::load(path("small.png"), 72).size(), QSize(50, 40));
    QVERIFY(TestFiles::markedImage(3000, 1).save(path("strip.png")));
    QCOMPARE(ImageLoader::load(path("strip.png"), 72).size(), QSize(72, 1));
    QVERIFY(TestFiles::markedImage(200, 100).save(path("upper.JPG"), "JPEG"));
    QCOMPARE(ImageLoader::load(path("upper.JPG"), 72).size(), QSize(72, 36));
}

void TestImageLoader::exifOrientationIsApplied()
{
    // Stored 400 x 200 with the marker top-left; orientation 6 means "turn clockwise to view".
    QVERIFY(TestFiles::write(path("rotated.jpg"),
                             TestFiles::jpegWithExifOrientation(TestFiles::markedImage(400, 200), 6)));
    const QImage full = ImageLoader::load(path("rotated.jpg"), 0);
    QCOMPARE(full.size(), QSize(200, 400));
    QVERIFY(near(full.pixelColor(200 - 20, 20), Qt::red)); // marker now top-right
    QVERIFY(near(full.pixelColor(20, 20), Qt::blue));
    const QImage thumb = ImageLoader::load(path("rotated.jpg"), 72);
    QCOMPARE(thumb.size(), QSize(36, 72));
    QVERIFY(near(thumb.pixelColor(36 - 3, 3), Qt::red, 40));
}

void TestImageLoader::largePhotosLoad()
{
    // 48 megapixels: over Qt's default 128 MB limit at 32 bits.
    QVERIFY(TestFiles::solidImage(8000, 6000, QColor(40, 120, 200)).save(path("48mp.jpg"), "JPEG", 80));
    const QImage full = ImageLoader::load(path("48mp.jpg"), 0);
    QCOMPARE(full.size(), QSize(8000, 6000));
    QVERIFY(near(full.pixelColor(7999, 5999), QColor(40, 120, 200), 6));
    QCOMPARE(ImageLoader::load(path("48mp.jpg"), 280).size(), QSize(280, 210));
}

void TestImageLoader::hostileHeaderGivesNullQuickly()
{
    QVERIFY(TestFiles::write(path("huge.png"), TestFiles::pngWithOneRow(30000, 30000)));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(ImageLoader::load(path("huge.png"), 0).isNull());
    QVERIFY(ImageLoader::load(path("huge.png"), 72).isNull());
    QVERIFY2(timer.elapsed() < 5000, "refused without decoding"); // generous: a refusal, not a benchmark
    // The same under a HEIC name: neither reader takes it.
    QVERIFY(TestFiles::write(path("huge.heic"), TestFiles::pngWithOneRow(30000, 30000)));
    QVERIFY(ImageLoader::load(path("huge.heic"), 0).isNull());
}

void TestImageLoader::qtReadableHeicNeedsNoHeifDecoder()
{
    // A file Qt itself can read is taken by Qt whatever its name; libheif could not read a PNG.
    QVERIFY(TestFiles::markedImage(64, 32).save(path("really_png.heic"), "PNG"));
    const QImage image = ImageLoader::load(path("really_png.heic"), 0);
    QCOMPARE(image.size(), QSize(64, 32));
    QCOMPARE(image.pixelColor(0, 0), QColor(Qt::red));
    QVERIFY(decodeHeif(path("really_png.heic")).isNull());
}

void TestImageLoader::heicDecodes()
{
    QVERIFY(HeicWriter::write(path("photo.heic"), TestFiles::markedImage(320, 240)));
    const QImage image = ImageLoader::load(path("photo.heic"), 0);
    QCOMPARE(image.size(), QSize(320, 240));
    QCOMPARE(image.format(), QImage::Format_RGB32);
    QVERIFY(near(image.pixelColor(20, 20), Qt::red));
    QVERIFY(near(image.pixelColor(300, 200), Qt::blue));
    QVERIFY(HeicWriter::write(path("photo.HEIF"), TestFiles::markedImage(320, 240)));
    QCOMPARE(ImageLoader::load(path("photo.HEIF"), 0).size(), QSize(320, 240));
}

void TestImageLoader::heicRotationIsAppliedOnce()
{
    // The file says "turn clockwise" in its own boxes; the picture must come out turned once.
    QVERIFY(HeicWriter::write(path("turned.heic"), TestFiles::markedImage(320, 160), 6));
    const QImage image = ImageLoader::load(path("turned.heic"), 0);
    QCOMPARE(image.size(), QSize(160, 320));
    QVERIFY(near(image.pixelColor(160 - 10, 10), Qt::red)); // marker top-right after one turn
    QVERIFY(near(image.pixelColor(10, 10), Qt::blue));
}

void TestImageLoader::heicScaledToMaxSide()
{
    QVERIFY(HeicWriter::write(path("scaled.heic"), TestFiles::markedImage(400, 300)));
    QCOMPARE(ImageLoader::load(path("scaled.heic"), 72).size(), QSize(72, 54));
    QCOMPARE(ImageLoader::load(path("scaled.heic"), 500).size(), QSize(400, 300));
}

void TestImageLoader::corruptHeicGivesNull()
{
    QVERIFY(HeicWriter::write(path("whole.heic"), TestFiles::markedImage(64, 64)));
    const QByteArray whole = TestFiles::read(path("whole.heic"));
    QVERIFY(TestFiles::write(path("cut.heic"), whole.left(whole.size() / 2)));
    QVERIFY(ImageLoader::load(path("cut.heic"), 0).isNull());
    QVERIFY(TestFiles::write(path("noise.heic"), QByteArray(4096, '\x5a')));
    QVERIFY(ImageLoader::load(path("noise.heic"), 72).isNull());
    QVERIFY(ImageLoader::load(path("missing.heic"), 0).isNull());
}

void TestImageLoader::nonHeicPathsGoToTheProcessorUnchanged()
{
    QCOMPARE(ImageLoader::resolveProcessorInputPath(QStringLiteral("/no/such/file.jpg")),
             QStringLiteral("/no/such/file.jpg"));
    QCOMPARE(ImageLoader::resolveProcessorInputPath(path("big.jpg")), path("big.jpg"));
    QVERIFY(!QFileInfo::exists(ImageLoader::heicCacheDir()) || QDir(ImageLoader::heicCacheDir()).isEmpty());
}

void TestImageLoader::heicIsConvertedOnceIntoTheCache()
{
    const QString source = path("cache_me.heic");
    QVERIFY(HeicWriter::write(source, TestFiles::markedImage(200, 100)));
    const QFileInfo info(source);
    const QByteArray key = "srgb|" + info.absoluteFilePath().toUtf8() + '|' +
                           QByteArray::number(info.lastModified().toMSecsSinceEpoch());
    const QString expected =
        QDir(ImageLoader::heicCacheDir())
            .filePath(QCryptographicHash::hash(key, QCryptographicHash::Md5).toHex() + ".jpg");

    const QString cached = ImageLoader::resolveProcessorInputPath(source);
    QCOMPARE(cached, expected);
    const QImage converted = QImageReader(cached).read();
    QCOMPARE(QImageReader(cached).format(), QByteArray("jpeg"));
    QCOMPARE(converted.size(), QSize(200, 100));
    QVERIFY(near(converted.pixelColor(10, 10), Qt::red));

    // A second call returns the cache file at once: it does not decode or rewrite it.
    QVERIFY(TestFiles::write(cached, "marker: not rewritten"));
    QCOMPARE(ImageLoader::resolveProcessorInputPath(source), cached);
    QCOMPARE(TestFiles::read(cached), QByteArray("marker: not rewritten"));
    QVERIFY(QFileInfo::exists(source)); // the user's file is never touched
}

void TestImageLoader::changedHeicGetsANewCacheFile()
{
    const QString source = path("touched.heic");
    QVERIFY(HeicWriter::write(source, TestFiles::markedImage(100, 100)));
    const QString first = ImageLoader::resolveProcessorInputPath(source);
    QVERIFY(!first.isEmpty());
    QFile file(source);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(
        file.setFileTime(QFileInfo(source).lastModified().addSecs(10), QFileDevice::FileModificationTime));
    file.close();
    const QString second = ImageLoader::resolveProcessorInputPath(source);
    QVERIFY(!second.isEmpty());
    QVERIFY(second != first);
    QVERIFY(QFileInfo::exists(first)); // the old one stays until its row is removed
}

void TestImageLoader::transparentHeicIsCachedWithoutAlpha()
{
    QImage image(120, 80, QImage::Format_ARGB32);
    image.fill(QColor(200, 40, 40, 60));
    QVERIFY(HeicWriter::write(path("alpha.heic"), image, 1, true));
    const QImage decoded = ImageLoader::load(path("alpha.heic"), 0);
    QCOMPARE(decoded.size(), QSize(120, 80));
    QVERIFY(!decoded.hasAlphaChannel());
    const QString cached = ImageLoader::resolveProcessorInputPath(path("alpha.heic"));
    QVERIFY(!cached.isEmpty());
    const QImage reread(cached);
    QVERIFY(!reread.hasAlphaChannel());
    QVERIFY(near(reread.pixelColor(60, 40), QColor(200, 40, 40)));
}

void TestImageLoader::unconvertibleHeicGivesEmptyPath()
{
    QVERIFY(TestFiles::write(path("broken.heic"), "not a picture at all"));
    QCOMPARE(ImageLoader::resolveProcessorInputPath(path("broken.heic")), QString());
    QCOMPARE(ImageLoader::resolveProcessorInputPath(path("gone.heif")), QString());
}

void TestImageLoader::removeCachedConversion()
{
    ImageLoader::removeCachedConversion(QString()); // nothing happens
    const QString source = path("remove_me.heic");
    QVERIFY(HeicWriter::write(source, TestFiles::markedImage(60, 60)));
    const QString cached = ImageLoader::resolveProcessorInputPath(source);
    QVERIFY(QFileInfo::exists(cached));
    ImageLoader::removeCachedConversion(cached);
    QVERIFY(!QFileInfo::exists(cached));
    QVERIFY(QFileInfo::exists(source));
    ImageLoader::removeCachedConversion(cached); // already gone: ignored
}

void TestImageLoader::wicPixelsBecomeRgb32WithoutAlpha()
{
    WicImage wic;
    wic.width = 2;
    wic.height = 1;
    wic.bgra = {10, 20, 30, 128, 255, 0, 0, 0}; // B G R A: half-transparent, then transparent blue
    const QImage image = imageFromWicBgra(wic);
    QCOMPARE(image.size(), QSize(2, 1));
    QCOMPARE(image.format(), QImage::Format_RGB32);
    QCOMPARE(image.pixel(0, 0), qRgb(30, 20, 10));
    QCOMPARE(image.pixel(1, 0), qRgb(0, 0, 255));
    wic.bgra.pop_back();
    QVERIFY(imageFromWicBgra(wic).isNull());
    QVERIFY(imageFromWicBgra(WicImage()).isNull());
}

void TestImageLoader::wicColourContextBecomesAProfile()
{
    WicImage wic;
    QVERIFY(colourFromWic(wic).isSrgb());
    wic.exifColorSpace = 1; // sRGB
    QVERIFY(colourFromWic(wic).isSrgb());
    wic.exifColorSpace = 2; // Adobe RGB
    QCOMPARE(QColorSpace::fromIccProfile(colourFromWic(wic).icc), QColorSpace(QColorSpace::AdobeRgb));
    const QByteArray p3 = QColorSpace(QColorSpace::DisplayP3).iccProfile();
    wic.icc.assign(p3.begin(), p3.end()); // the profile wins over the EXIF colour space
    QCOMPARE(colourFromWic(wic).icc, p3);
}

QTEST_MAIN(TestImageLoader)
#include "tst_ImageLoader.moc"
