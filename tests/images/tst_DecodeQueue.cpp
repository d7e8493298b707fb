// Decoding for adding on worker threads: one decode per picture, results in the order given
// however the work finishes, cancel and destruction with decodes under way.
#include "images/DecodeQueue.h"
#include "images/ImageLoader.h"

#include "HeicWriter.h"
#include "TestFiles.h"

#include <QDir>
#include <QPainter>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

class TestDecodeQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void aJpegGivesBothPreviewsFromOneDecode();
    void aHeicIsDecodedOnceForItsCopyAndPreviews();
    void aCachedHeicIsNotDecodedAgain();
    void convertOnlyAndNothing();
    void facesAreFoundFromTheSameDecode();
    void unconvertibleHeic();
    void resultsComeInTheOrderGiven();
    void cancelDropsWhatIsNotDelivered();
    void destroyedWithDecodesUnderWay();

private:
    QString heic(const QString &name, const QImage &image) const;
    QTemporaryDir m_dir;
};

void TestDecodeQueue::initTestCase()
{
    QVERIFY(m_dir.isValid());
    qputenv("TMPDIR", QFile::encodeName(m_dir.filePath("tmp")));
    QDir().mkpath(m_dir.filePath("tmp"));
}

void TestDecodeQueue::init() { QDir(ImageLoader::heicCacheDir()).removeRecursively(); }

QString TestDecodeQueue::heic(const QString &name, const QImage &image) const
{
    const QString path = m_dir.filePath(name);
    if (!QFileInfo::exists(path))
        HeicWriter::write(path, image);
    return path;
}

void TestDecodeQueue::aJpegGivesBothPreviewsFromOneDecode()
{
    const QString path = m_dir.filePath("wide.jpg");
    QVERIFY(TestFiles::markedImage(1000, 500).save(path, "JPEG", 95));
    const DecodedPicture picture = DecodeQueue::decode({path, DecodeQueue::Work::Decode});
    QCOMPARE(picture.preview.size(), QSize(280, 140));
    QCOMPARE(picture.preview.image().size(), QSize(280, 140));
    QCOMPARE(picture.thumbnail.size(), QSize(72, 36));
    QVERIFY(picture.heicCache.isEmpty());
    QVERIFY(!picture.unconvertible);
    // The compact copy is the picture, to within JPEG's loss.
    const QImage preview = ImageLoader::load(path, 280);
    const QColor kept = picture.preview.image().pixelColor(40, 20);
    QVERIFY(qAbs(kept.red() - preview.pixelColor(40, 20).red()) < 12);
    QVERIFY(picture.preview.byteCount() < 40 * 1024);
}

void TestDecodeQueue::aHeicIsDecodedOnceForItsCopyAndPreviews()
{
    const QString path = heic("phone.heic", TestFiles::markedImage(640, 480));
    const int before = ImageLoader::heifDecodeCount();
    const DecodedPicture picture = DecodeQueue::decode({path, DecodeQueue::Work::Decode});
    QCOMPARE(ImageLoader::heifDecodeCount() - before, 1);
    QVERIFY(QFileInfo(picture.heicCache).isFile());
    QCOMPARE(QImage(picture.heicCache).size(), QSize(640, 480));
    QCOMPARE(picture.preview.size(), QSize(280, 210));
    QCOMPARE(picture.thumbnail.size(), QSize(72, 54));
}

void TestDecodeQueue::aCachedHeicIsNotDecodedAgain()
{
    const QString path = heic("phone.heic", TestFiles::markedImage(640, 480));
    const QString cache = DecodeQueue::decode({path, DecodeQueue::Work::Decode}).heicCache;
    const int before = ImageLoader::heifDecodeCount();
    const DecodedPicture again = DecodeQueue::decode({path, DecodeQueue::Work::Decode});
    QCOMPARE(ImageLoader::heifDecodeCount(), before); // the previews come from the cached copy
    QCOMPARE(again.heicCache, cache);
    QCOMPARE(again.preview.size(), QSize(280, 210));
}

void TestDecodeQueue::facesAreFoundFromTheSameDecode()
{
    // The photograph of a face on the right of a wide picture, as a JPEG and as a HEIC.
    QImage wide(2400, 1000, QImage::Format_RGB32);
    wide.fill(QColor(200, 200, 196));
    QPainter(&wide).drawImage(1700, 200, TestFiles::astronaut().scaled(600, 600));
    const QString jpeg = m_dir.filePath("face.jpg");
    QVERIFY(wide.save(jpeg, "JPEG", 92));
    const int heifDecodes = ImageLoader::heifDecodeCount();
    for (const QString &path : {jpeg, heic("face.heic", wide)}) {
        const DecodedPicture picture = DecodeQueue::decode({path, DecodeQueue::Work::Decode, true});
        QVERIFY(picture.subjects.has_value());
        QVERIFY(picture.subjects->detected);
        QCOMPARE(picture.subjects->faces.size(), 1);
        const QPointF centre = picture.subjects->faces.first().center();
        QVERIFY2(centre.x() > 0.75 && centre.x() < 0.85 && centre.y() > 0.25 && centre.y() < 0.5,
                 qPrintable(QStringLiteral("%1, %2").arg(centre.x()).arg(centre.y())));
        // The previews as a decode without faces gives them.
        const DecodedPicture plain = DecodeQueue::decode({path, DecodeQueue::Work::Decode});
        QCOMPARE(picture.preview.size(), plain.preview.size());
        QCOMPARE(picture.thumbnail.size(), plain.thumbnail.size());
        QCOMPARE(picture.pictureSize, QSize(2400, 1000));
    }
    QCOMPARE(ImageLoader::heifDecodeCount(),
             heifDecodes + 1); // the HEIC's one decode serves it all, then the cache
    // Not asked, not found; a picture that cannot be read is reported as not detected.
    QVERIFY(!DecodeQueue::decode({jpeg, DecodeQueue::Work::Decode}).subjects.has_value());
    const QString broken = m_dir.filePath("broken.jpg");
    QVERIFY(TestFiles::write(broken, "not a picture"));
    const DecodedPicture unreadable = DecodeQueue::decode({broken, DecodeQueue::Work::Decode, true});
    QVERIFY(unreadable.subjects.has_value() && !unreadable.subjects->detected);
}

void TestDecodeQueue::convertOnlyAndNothing()
{
    const QString path = heic("phone.heic", TestFiles::markedImage(640, 480));
    const DecodedPicture converted = DecodeQueue::decode({path, DecodeQueue::Work::ConvertOnly});
    QVERIFY(QFileInfo(converted.heicCache).isFile());
    QVERIFY(converted.preview.isNull());
    const DecodedPicture nothing = DecodeQueue::decode({path, DecodeQueue::Work::Nothing});
    QVERIFY(nothing.heicCache.isEmpty() && nothing.preview.isNull() && !nothing.unconvertible);
}

void TestDecodeQueue::unconvertibleHeic()
{
    const QString path = m_dir.filePath("broken.heic");
    QVERIFY(TestFiles::write(path, "not a picture"));
    const DecodedPicture picture = DecodeQueue::decode({path, DecodeQueue::Work::Decode});
    QVERIFY(picture.unconvertible);
    QVERIFY(picture.heicCache.isEmpty());
    // A JPEG that cannot be read still gets its row (with a grey thumbnail): not unconvertible.
    const QString jpeg = m_dir.filePath("broken.jpg");
    QVERIFY(TestFiles::write(jpeg, "not a picture"));
    const DecodedPicture row = DecodeQueue::decode({jpeg, DecodeQueue::Work::Decode});
    QVERIFY(!row.unconvertible && row.preview.isNull() && row.thumbnail.isNull());
}

void TestDecodeQueue::resultsComeInTheOrderGiven()
{
    // A slow HEIC first, then many quick pictures of different sizes: whatever finishes first,
    // the deliveries follow the list.
    QList<DecodeQueue::Job> jobs{
        {heic("first.heic", TestFiles::markedImage(1600, 1200)), DecodeQueue::Work::Decode}};
    const QStringList small = TestFiles::makePictures(m_dir.filePath("small"), 40);
    for (int i = 0; i < small.size(); ++i) {
        TestFiles::markedImage(20 + i, 10 + i).save(small.at(i));
        jobs.append({small.at(i), DecodeQueue::Work::Decode});
    }
    DecodeQueue queue;
    QList<int> order;
    QList<QSize> sizes;
    connect(&queue, &DecodeQueue::decoded, this, [&](int index, const DecodedPicture &picture) {
        order << index;
        sizes << picture.preview.size();
    });
    QSignalSpy finished(&queue, &DecodeQueue::finished);
    queue.start(jobs);
    QVERIFY(finished.wait(30000));
    QCOMPARE(finished.size(), 1);
    QCOMPARE(order.size(), jobs.size());
    for (int i = 0; i < order.size(); ++i)
        QCOMPARE(order.at(i), i);
    QCOMPARE(sizes.first(), QSize(280, 210));
    QCOMPARE(sizes.at(5), QSize(24, 14));
    QVERIFY(!queue.isBusy());
}

void TestDecodeQueue::cancelDropsWhatIsNotDelivered()
{
    const QStringList pictures = TestFiles::makePictures(m_dir.filePath("many"), 300);
    QList<DecodeQueue::Job> jobs;
    for (const QString &picture : pictures)
        jobs.append({picture, DecodeQueue::Work::Decode});
    DecodeQueue queue;
    int delivered = 0;
    connect(&queue, &DecodeQueue::decoded, this, [&](int index, const DecodedPicture &) {
        QCOMPARE(index, delivered);
        if (++delivered == 10)
            queue.cancel();
    });
    QSignalSpy finished(&queue, &DecodeQueue::finished);
    queue.start(jobs);
    QTRY_COMPARE(finished.size(), 1);
    QTest::qWait(200); // decodes that were under way end, and are dropped
    QCOMPARE(delivered, 10);
    QCOMPARE(finished.size(), 1);
    QVERIFY(!queue.isBusy());
}

void TestDecodeQueue::destroyedWithDecodesUnderWay()
{
    QList<DecodeQueue::Job> jobs;
    for (int i = 0; i < 6; ++i)
        jobs.append({heic(QStringLiteral("d%1.heic").arg(i), TestFiles::markedImage(1200 + i, 900)),
                     DecodeQueue::Work::Decode});
    QDir(ImageLoader::heicCacheDir()).removeRecursively();
    int delivered = 0;
    {
        DecodeQueue queue;
        connect(&queue, &DecodeQueue::decoded, this, [&delivered] { ++delivered; });
        queue.start(jobs);
        QTest::qWait(30); // decodes under way
    }
    const int atDestruction = delivered;
    QTest::qWait(300);
    QCOMPARE(delivered, atDestruction); // nothing comes after the queue went
    // Conversions finished or never begun: no half-written copy is left.
    for (const QFileInfo &file : QDir(ImageLoader::heicCacheDir()).entryInfoList(QDir::Files))
        QVERIFY2(!QImage(file.filePath()).isNull(), qPrintable(file.fileName()));
}

QTEST_MAIN(TestDecodeQueue)
#include "tst_DecodeQueue.moc"
