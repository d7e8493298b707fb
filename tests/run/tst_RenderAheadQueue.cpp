// The run's pictures rendered ahead: the same picture from a reduced decode as from a full
// one, and renders handed over once, dropped with their files when they are not wanted.
#include "images/ImageLoader.h"
#include "run/ExportRender.h"
#include "run/RenderAheadQueue.h"
#include "ui/UiLanguage.h"

#include "FilesBelow.h"
#include "TestFiles.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

#include <cmath>

namespace {

// Peak signal-to-noise ratio of b against a, over the three colour channels, in dB.
double psnr(const QImage &a, const QImage &b)
{
    const QImage x = a.convertToFormat(QImage::Format_RGB32);
    const QImage y = b.convertToFormat(QImage::Format_RGB32);
    if (x.size() != y.size() || x.isNull())
        return 0;
    double sum = 0;
    for (int row = 0; row < x.height(); ++row) {
        const auto *p = reinterpret_cast<const QRgb *>(x.constScanLine(row));
        const auto *q = reinterpret_cast<const QRgb *>(y.constScanLine(row));
        for (int column = 0; column < x.width(); ++column) {
            const int dr = qRed(p[column]) - qRed(q[column]);
            const int dg = qGreen(p[column]) - qGreen(q[column]);
            const int db = qBlue(p[column]) - qBlue(q[column]);
            sum += dr * dr + dg * dg + db * db;
        }
    }
    const double mse = sum / (3.0 * x.width() * x.height());
    return mse == 0 ? 99 : 10 * std::log10(255.0 * 255.0 / mse);
}

} // namespace

class TestRenderAheadQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void reducedDecodeRendersTheSamePicture_data();
    void reducedDecodeRendersTheSamePicture();
    void decodesNoLargerThanNeeded();
    void aRenderIsTakenOnceAndOnlyForItsStamp();
    void twoRowsOfTheSameNameDoNotMeet();
    void discardedAndClearedRendersTakeTheirFiles();
    void destroyedWithRendersUnderWay();
    void failedRenderLeavesNothing();

private:
    RenderRequest request(FillMode mode = FillMode::BlurFill, int rotation = 0) const;

    QTemporaryDir m_dir;
    QString m_photo;
    QImage m_full;
};

void TestRenderAheadQueue::initTestCase()
{
    UiLanguage::set(UiLanguage::English);
    QVERIFY(m_dir.isValid());
    m_photo = m_dir.filePath("photo.jpg");
    QVERIFY(TestFiles::photoLikeImage(3200, 2400, 5).save(m_photo, "JPEG", 90));
    m_full = ImageLoader::load(m_photo, 0);
}

void TestRenderAheadQueue::init() { QDir(m_dir.filePath("out")).removeRecursively(); }

RenderRequest TestRenderAheadQueue::request(FillMode mode, int rotation) const
{
    return {m_photo, {mode, rotation}, QSize(1200, 1600), false, QStringLiteral("photo_preproc.jpg")};
}

void TestRenderAheadQueue::reducedDecodeRendersTheSamePicture_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("rotation");
    QTest::addColumn<QSize>("panel");
    QTest::addColumn<bool>("landscape");
    for (FillMode mode :
         {FillMode::BlurFill, FillMode::WhiteFill, FillMode::BlackFill, FillMode::CenterCrop}) {
        for (int rotation : {0, 90}) {
            for (bool landscape : {false, true}) {
                const QByteArray name = fillModeLabel(mode).toUtf8() + ' ' + QByteArray::number(rotation) +
                                        "° " + (landscape ? "landscape" : "portrait");
                QTest::newRow(name.constData()) << int(mode) << rotation << QSize(1200, 1600) << landscape;
            }
        }
        const QByteArray large = fillModeLabel(mode).toUtf8() + " 25.3\" panel";
        QTest::newRow(large.constData()) << int(mode) << 0 << QSize(1800, 3200) << false;
    }
}

void TestRenderAheadQueue::reducedDecodeRendersTheSamePicture()
{
    QFETCH(int, mode);
    QFETCH(int, rotation);
    QFETCH(QSize, panel);
    QFETCH(bool, landscape);
    const RenderRequest reduced{m_photo, {FillMode(mode), rotation}, panel, landscape, QString()};
    const QImage fromReduced = ExportRender::image(reduced);
    const QImage fromFull = renderPreprocExport(m_full, reduced.state, panel, landscape);
    QCOMPARE(fromReduced.size(), panel);
    const double db = psnr(fromFull, fromReduced);
    qInfo("PSNR %.1f dB", db);
    QVERIFY2(db >= 40, qPrintable(QStringLiteral("%1 dB").arg(db, 0, 'f', 1)));
}

void TestRenderAheadQueue::decodesNoLargerThanNeeded()
{
    // 3200 x 2400 fitted into 1200 x 1600 needs 1200 x 900: three eighths is the smallest step
    // of the reader that covers it.
    QCOMPARE(ImageLoader::loadCovering(m_photo, QSize(1200, 1600), Qt::KeepAspectRatio).size(),
             QSize(1200, 900));
    QCOMPARE(ImageLoader::loadCovering(m_photo, QSize(1300, 1600), Qt::KeepAspectRatio).size(),
             QSize(1600, 1200));
    // Covering it needs 2134 x 1600: six eighths.
    QCOMPARE(ImageLoader::loadCovering(m_photo, QSize(1200, 1600), Qt::KeepAspectRatioByExpanding).size(),
             QSize(2400, 1800));
    // A box larger than the picture: full size; a PNG: full size.
    QCOMPARE(ImageLoader::loadCovering(m_photo, QSize(5000, 5000), Qt::KeepAspectRatio).size(),
             QSize(3200, 2400));
    const QString png = m_dir.filePath("small.png");
    QVERIFY(TestFiles::markedImage(800, 600).save(png));
    QCOMPARE(ImageLoader::loadCovering(png, QSize(100, 100), Qt::KeepAspectRatio).size(), QSize(800, 600));
}

void TestRenderAheadQueue::aRenderIsTakenOnceAndOnlyForItsStamp()
{
    RenderAheadQueue queue(m_dir.filePath("out"));
    QSignalSpy ready(&queue, &RenderAheadQueue::ready);
    QVERIFY(!queue.take(7, "a"));
    queue.request(7, "a", request());
    queue.request(7, "a", request()); // asked for already: nothing more
    QVERIFY(queue.has(7));
    QVERIFY(ready.wait(20000));
    QCOMPARE(ready.first().first().toULongLong(), quint64(7));
    QVERIFY(!queue.take(7, "changed")); // made from something else
    const std::optional<QString> file = queue.take(7, "a");
    QVERIFY(file && QFileInfo(*file).isFile());
    QCOMPARE(QFileInfo(*file).fileName(), QStringLiteral("photo_preproc.jpg"));
    QCOMPARE(QImage(*file).size(), QSize(1200, 1600));
    QVERIFY(!queue.take(7, "a")); // once
    QVERIFY(!queue.has(7));
    QTest::qWait(100);
    QCOMPARE(ready.size(), 1);
}

void TestRenderAheadQueue::twoRowsOfTheSameNameDoNotMeet()
{
    RenderAheadQueue queue(m_dir.filePath("out"));
    QSignalSpy ready(&queue, &RenderAheadQueue::ready);
    queue.request(1, "s", request(FillMode::WhiteFill));
    queue.request(2, "s", request(FillMode::BlackFill));
    QTRY_COMPARE_WITH_TIMEOUT(ready.size(), 2, 30000);
    const QString white = *queue.take(1, "s");
    const QString black = *queue.take(2, "s");
    QVERIFY(white != black);
    QCOMPARE(QImage(white).pixelColor(5, 5), QColor(Qt::white));
    QCOMPARE(QImage(black).pixelColor(5, 5), QColor(Qt::black));
}

void TestRenderAheadQueue::discardedAndClearedRendersTakeTheirFiles()
{
    RenderAheadQueue queue(m_dir.filePath("out"));
    QSignalSpy ready(&queue, &RenderAheadQueue::ready);
    queue.request(1, "s", request());
    QVERIFY(ready.wait(20000));
    queue.discard(1); // finished, not taken
    queue.request(2, "s", request());
    queue.discard(2); // still under way: its file goes when it ends
    queue.request(3, "s", request());
    queue.request(3, "other", request(FillMode::WhiteFill)); // asked anew: the first one goes
    QTRY_VERIFY_WITH_TIMEOUT(ready.size() >= 2, 30000);
    QTest::qWait(500);
    queue.clear(); // the second render of row 3, finished and not taken, goes too
    QTRY_COMPARE_WITH_TIMEOUT(filesBelow(m_dir.filePath("out")), QStringList(), 20000);
    QCOMPARE(QDir(m_dir.filePath("out")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

void TestRenderAheadQueue::destroyedWithRendersUnderWay()
{
    {
        RenderAheadQueue queue(m_dir.filePath("out"));
        for (quint64 row = 1; row <= 4; ++row)
            queue.request(row, "s", request(FillMode::CenterCrop));
        QTest::qWait(50);
    }
    // The renders under way are not waited for: each removes its own file as it ends.
    QThreadPool::globalInstance()->waitForDone();
    QCOMPARE(filesBelow(m_dir.filePath("out")), QStringList());
}

void TestRenderAheadQueue::failedRenderLeavesNothing()
{
    RenderAheadQueue queue(m_dir.filePath("out"));
    QSignalSpy ready(&queue, &RenderAheadQueue::ready);
    RenderRequest broken = request();
    broken.source = m_dir.filePath("missing.jpg");
    queue.request(9, "s", broken);
    QVERIFY(ready.wait(10000));
    QCOMPARE(queue.take(9, "s"), std::optional<QString>(QString())); // taken, and it failed
    QCOMPARE(QDir(m_dir.filePath("out")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

QTEST_GUILESS_MAIN(TestRenderAheadQueue)
#include "tst_RenderAheadQueue.moc"
