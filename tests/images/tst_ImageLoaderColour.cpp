// Pictures come out of the one decoding path in sRGB, whatever profile their file carries
// (JPEG, PNG, TIFF, WebP and HEIC, an ICC profile or an nclx description), and untagged and
// sRGB pictures come out exactly as they are stored.
#include "images/DecodeQueue.h"
#include "images/HeifDecoder.h"
#include "images/ImageLoader.h"
#include "run/ExportRender.h"
#include "run/RenderAheadQueue.h"

#include "ColourReference.h"
#include "HeicWriter.h"
#include "TestFiles.h"

#include <QBuffer>
#include <QColorSpace>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QImageReader>
#include <QTemporaryDir>
#include <QTest>

#include <lcms2.h>

namespace {

using ColourReference::Space;

// The picture as its file stores it: no profile applied.
QImage stored(const QString &path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    QImage image = reader.read();
    image.setColorSpace(QColorSpace());
    return image.convertToFormat(QImage::Format_RGB32);
}

// The image as the program's JPEGs hold it.
QImage asJpeg(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    ImageLoader::writeJpeg(image, &buffer);
    return QImage::fromData(bytes, "JPEG").convertToFormat(QImage::Format_RGB32);
}

QString deltaText(double error) { return QStringLiteral("mean ΔE %1").arg(error); }

// Prints a picture's error as loaded beside its error when taken as sRGB, which is how pictures
// were read before their profiles were honoured.
void report(const QImage &asSrgb, const QImage &loaded, const QImage &expected)
{
    qInfo("%s: mean ΔE76 %.2f as sRGB, %.2f converted",
          QTest::currentDataTag() ? QTest::currentDataTag() : QTest::currentTestFunction(),
          ColourReference::meanDeltaE(asSrgb, expected), ColourReference::meanDeltaE(loaded, expected));
}

} // namespace

class TestImageLoaderColour : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void taggedPicturesLoadInSrgb_data();
    void taggedPicturesLoadInSrgb();
    void profileQtRefusesIsStillHonoured_data();
    void profileQtRefusesIsStillHonoured();
    void heicWithIccProfile();
    void heicWithNclx();
    void damagedProfileShowsAsSrgbAndSaysSo();
    void untaggedAndSrgbLoadAsStored_data();
    void untaggedAndSrgbLoadAsStored();
    void untaggedRenderIsUnchanged();
    void processorJpegIsUntagged();
    void cacheFilesOfEarlierVersionsAreNotTaken();

private:
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QString savedTagged(const QString &name, const QByteArray &icc) const;
    QTemporaryDir m_dir;
    QImage m_chart = ColourReference::chart();
};

void TestImageLoaderColour::initTestCase()
{
    QVERIFY(m_dir.isValid());
    qputenv("TMPDIR", QFile::encodeName(m_dir.filePath(QStringLiteral("tmp"))));
    QVERIFY(QDir().mkpath(m_dir.filePath(QStringLiteral("tmp"))));
    ImageLoader::prepareReaders();
}

QString TestImageLoaderColour::savedTagged(const QString &name, const QByteArray &icc) const
{
    QImage tagged = m_chart;
    tagged.setColorSpace(QColorSpace::fromIccProfile(icc));
    if (!tagged.colorSpace().isValid())
        qFatal("Qt does not take the test's profile");
    return TestFiles::savedPicture(path(name), tagged);
}

void TestImageLoaderColour::taggedPicturesLoadInSrgb_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Space>("space");
    QTest::addColumn<double>("version");
    QTest::newRow("Display P3 JPEG") << "p3.jpg" << ColourReference::displayP3() << 4.3;
    QTest::newRow("Display P3 PNG") << "p3.png" << ColourReference::displayP3() << 4.3;
    QTest::newRow("Display P3 WebP") << "p3.webp" << ColourReference::displayP3() << 2.1;
    QTest::newRow("Adobe RGB JPEG") << "adobe.jpg" << ColourReference::adobeRgb() << 2.1;
    QTest::newRow("ProPhoto TIFF") << "prophoto.tif" << ColourReference::proPhoto() << 4.3;
    QTest::newRow("ProPhoto JPEG") << "prophoto.jpg" << ColourReference::proPhoto() << 2.1;
    QTest::newRow("gamma 1.8 JPEG") << "gamma18.jpg" << ColourReference::gamma18() << 2.1;
}

void TestImageLoaderColour::taggedPicturesLoadInSrgb()
{
    QFETCH(QString, name);
    QFETCH(Space, space);
    QFETCH(double, version);
    const QString file = savedTagged(name, ColourReference::iccProfile(space, version));
    const QImage expected = ColourReference::toSrgb(stored(file), space);
    QVERIFY(ColourReference::meanDeltaE(stored(file), expected) > 2.5); // taken as sRGB it is off

    ColourProfile::Problem problem = ColourProfile::Problem::Damaged;
    const QImage full = ImageLoader::load(file, 0, &problem);
    QCOMPARE(problem, ColourProfile::Problem::None);
    double error = ColourReference::meanDeltaE(full, expected);
    QVERIFY2(error <= 1.5, qPrintable(deltaText(error)));
    report(stored(file), full, expected);
    // The run's decode, no larger than the frame needs, takes the same path.
    error = ColourReference::meanDeltaE(ImageLoader::loadCovering(file, m_chart.size(), Qt::KeepAspectRatio),
                                        expected);
    QVERIFY2(error <= 1.5, qPrintable(deltaText(error)));
}

void TestImageLoaderColour::profileQtRefusesIsStillHonoured_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("JPEG") << "table.jpg";
    QTest::newRow("PNG") << "table.png";
}

void TestImageLoaderColour::profileQtRefusesIsStillHonoured()
{
    QFETCH(QString, name);
    const QByteArray icc = ColourReference::tableProfile(ColourReference::displayP3(), 17);
    QVERIFY(TestFiles::write(path(name), name.endsWith(QLatin1String("jpg"))
                                             ? ColourReference::jpegWithProfile(m_chart, icc)
                                             : ColourReference::pngWithProfile(m_chart, icc)));
    QVERIFY(!QImageReader(path(name)).read().colorSpace().isValid()); // Qt's reader ignores it
    const QImage expected = ColourReference::toSrgb(stored(path(name)), ColourReference::displayP3());
    const double error = ColourReference::meanDeltaE(ImageLoader::load(path(name), 0), expected);
    QVERIFY2(error <= 1.5, qPrintable(deltaText(error)));
    report(stored(path(name)), ImageLoader::load(path(name), 0), expected);
}

void TestImageLoaderColour::heicWithIccProfile()
{
    const Space p3 = ColourReference::displayP3();
    QVERIFY(HeicWriter::writeWithProfile(path("p3.heic"), m_chart, ColourReference::iccProfile(p3)));
    ColourProfile colour;
    const QImage raw = decodeHeif(path("p3.heic"), &colour); // as stored
    QVERIFY(!colour.icc.isEmpty());
    const QImage expected = ColourReference::toSrgb(raw, p3);
    QVERIFY(ColourReference::meanDeltaE(raw, expected) > 2.5);
    const double error = ColourReference::meanDeltaE(ImageLoader::load(path("p3.heic"), 0), expected);
    QVERIFY2(error <= 1.5, qPrintable(deltaText(error)));
    report(raw, ImageLoader::load(path("p3.heic"), 0), expected);
    // The converted copy the processor gets holds sRGB pixels, and no profile: it is what
    // the expected picture gives as such a JPEG.
    const QString cached = ImageLoader::resolveProcessorInputPath(path("p3.heic"));
    QVERIFY(!QImageReader(cached).read().colorSpace().isValid());
    const double cachedError = ColourReference::meanDeltaE(stored(cached), asJpeg(expected));
    QVERIFY2(cachedError <= 1.5, qPrintable(deltaText(cachedError)));
    QVERIFY(ColourReference::meanDeltaE(stored(cached), asJpeg(raw)) > 2.5);
}

void TestImageLoaderColour::heicWithNclx()
{
    // Display P3 as nclx code points: P3 primaries with D65 (12), sRGB's transfer (13).
    QVERIFY(HeicWriter::writeWithNclx(path("nclx.heic"), m_chart, 12, 13));
    ColourProfile colour;
    const QImage raw = decodeHeif(path("nclx.heic"), &colour);
    QVERIFY(!colour.icc.isEmpty());
    const QImage expected = ColourReference::toSrgb(raw, ColourReference::displayP3());
    QVERIFY(ColourReference::meanDeltaE(raw, expected) > 2.5);
    const double error = ColourReference::meanDeltaE(ImageLoader::load(path("nclx.heic"), 0), expected);
    QVERIFY2(error <= 1.5, qPrintable(deltaText(error)));
    report(raw, ImageLoader::load(path("nclx.heic"), 0), expected);

    // The encoder's own default description (BT.709 primaries, sRGB's transfer) is sRGB.
    QVERIFY(HeicWriter::writeWithNclx(path("srgb.heic"), m_chart, 1, 13));
    const QImage plain = decodeHeif(path("srgb.heic"), &colour);
    QVERIFY(colour.isSrgb());
    QCOMPARE(ImageLoader::load(path("srgb.heic"), 0), plain);
}

void TestImageLoaderColour::damagedProfileShowsAsSrgbAndSaysSo()
{
    QByteArray damaged = ColourReference::iccProfile(ColourReference::displayP3());
    damaged.truncate(100);
    QVERIFY(TestFiles::write(path("damaged.jpg"), ColourReference::jpegWithProfile(m_chart, damaged)));
    ColourProfile::Problem problem = ColourProfile::Problem::None;
    const QImage image = ImageLoader::load(path("damaged.jpg"), 0, &problem);
    QCOMPARE(problem, ColourProfile::Problem::Damaged);
    QCOMPARE(image.convertToFormat(QImage::Format_RGB32), stored(path("damaged.jpg")));
    // Adding the picture says so once, and the picture is added.
    const DecodedPicture picture = DecodeQueue::decode({path("damaged.jpg"), DecodeQueue::Work::Decode});
    QCOMPARE(picture.colourProblem, ColourProfile::Problem::Damaged);
    QVERIFY(!picture.preview.isNull());
    QCOMPARE(DecodeQueue::decode({savedTagged(QStringLiteral("fine.jpg"),
                                              ColourReference::iccProfile(ColourReference::adobeRgb())),
                                  DecodeQueue::Work::Decode})
                 .colourProblem,
             ColourProfile::Problem::None);
}

void TestImageLoaderColour::untaggedAndSrgbLoadAsStored_data()
{
    QTest::addColumn<QString>("file");
    const QImage photo = TestFiles::photoLikeImage(400, 300, 5);
    for (const char *suffix : {"jpg", "png", "tif", "webp", "bmp"})
        QTest::newRow(suffix) << TestFiles::savedPicture(path(QStringLiteral("untagged.") + suffix), photo);
    QImage tagged = photo;
    tagged.setColorSpace(QColorSpace(QColorSpace::SRgb));
    QTest::newRow("sRGB JPEG") << TestFiles::savedPicture(path("srgb.jpg"), tagged);
    QTest::newRow("sRGB PNG") << TestFiles::savedPicture(path("srgb.png"), tagged);
    tagged.setColorSpace(
        QColorSpace::fromIccProfile(ColourReference::iccProfile(ColourReference::srgb(), 2.1)));
    QTest::newRow("sRGB v2 of another program") << TestFiles::savedPicture(path("srgb2.jpg"), tagged);
}

void TestImageLoaderColour::untaggedAndSrgbLoadAsStored()
{
    QFETCH(QString, file);
    QImageReader reader(file);
    reader.setAutoTransform(true);
    const QImage asStored = reader.read();
    QCOMPARE(ImageLoader::load(file, 0), asStored);
    QCOMPARE(ImageLoader::loadCovering(file, QSize(400, 300), Qt::KeepAspectRatio), asStored);
    QImageReader scaled(file);
    scaled.setAutoTransform(true);
    scaled.setScaledSize(QSize(72, 54));
    QCOMPARE(ImageLoader::load(file, 72), scaled.read());
}

void TestImageLoaderColour::untaggedRenderIsUnchanged()
{
    const QString file = TestFiles::savedPicture(path("render.png"), TestFiles::photoLikeImage(900, 700, 8));
    const RenderRequest request{file, {FillMode::BlurFill, 90}, QSize(1200, 1600), false, QString()};
    QCOMPARE(ExportRender::image(request),
             renderPreprocExport(QImage(file), request.state, request.panel, request.landscape));
}

void TestImageLoaderColour::processorJpegIsUntagged()
{
    const QString file = savedTagged(QStringLiteral("tagged_source.png"),
                                     ColourReference::iccProfile(ColourReference::displayP3()));
    const QString out = path("render/out.jpg");
    QCOMPARE(ExportRender::write({file, {FillMode::CenterCrop, 0}, QSize(1200, 1600), false, QString()}, out),
             out);
    QVERIFY(!QImageReader(out).read().colorSpace().isValid());
}

void TestImageLoaderColour::cacheFilesOfEarlierVersionsAreNotTaken()
{
    const QString source = path("old_cache.heic");
    QVERIFY(HeicWriter::write(source, TestFiles::markedImage(64, 64)));
    // An earlier version named its files after the path and time alone, and kept the
    // picture's own colours in them.
    const QFileInfo info(source);
    const QByteArray oldKey =
        info.absoluteFilePath().toUtf8() + '|' + QByteArray::number(info.lastModified().toMSecsSinceEpoch());
    const QString oldFile =
        QDir(ImageLoader::heicCacheDir())
            .filePath(QCryptographicHash::hash(oldKey, QCryptographicHash::Md5).toHex() + ".jpg");
    QVERIFY(TestFiles::write(oldFile, "made by an earlier version"));
    const QString cached = ImageLoader::resolveProcessorInputPath(source);
    QVERIFY(!cached.isEmpty());
    QVERIFY(cached != oldFile);
    QVERIFY(!QImage(cached).isNull());
}

QTEST_MAIN(TestImageLoaderColour)
#include "tst_ImageLoaderColour.moc"
