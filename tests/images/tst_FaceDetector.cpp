// Finding faces in a real photograph, placed where a centre crop would cut them, and the
// subject of a picture without faces.
#include "images/FaceDetector.h"

#include "TestFiles.h"

#include <QPainter>
#include <QTest>
#include <QThreadPool>

#include <atomic>

namespace {

// Where the astronaut's face is in her photograph, as fractions of it: about 150 x 170 px of
// 512 x 512, centred near (0.45, 0.25).
const QRectF kFace(0.30, 0.08, 0.30, 0.33);

// A grey canvas with the photograph on it at the given places (its top-left corners), each
// scaled to the given size.
QImage canvasWith(const QSize &canvas, const QList<QPoint> &at, int side)
{
    QImage image(canvas, QImage::Format_RGB32);
    image.fill(QColor(200, 200, 196));
    QPainter painter(&image);
    const QImage photo =
        TestFiles::astronaut().scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    for (const QPoint &corner : at)
        painter.drawImage(corner, photo);
    return image;
}

// Where the face must be on such a canvas, as fractions of it.
QRectF expectedFace(const QSize &canvas, const QPoint &at, int side)
{
    return QRectF((at.x() + kFace.x() * side) / canvas.width(), (at.y() + kFace.y() * side) / canvas.height(),
                  kFace.width() * side / canvas.width(), kFace.height() * side / canvas.height());
}

bool holds(const QRectF &expected, const QRectF &found)
{
    return expected.contains(found.center()) && found.width() > expected.width() * 0.4 &&
           found.width() < expected.width() * 1.6;
}

QString describe(const QList<QRectF> &faces)
{
    QStringList parts;
    for (const QRectF &face : faces)
        parts << QStringLiteral("(%1, %2, %3 x %4)")
                     .arg(face.x())
                     .arg(face.y())
                     .arg(face.width())
                     .arg(face.height());
    return parts.join(QLatin1Char(' '));
}

} // namespace

class TestFaceDetector : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theFaceOfThePhotograph();
    void aFaceOffCentre_data();
    void aFaceOffCentre();
    void twoFaces();
    void aLargePictureIsReducedFirst();
    void noFaceGivesTheSalientSubject();
    void aFlatPictureHasNoSubject();
    void nothingToDetect();
    void severalThreadsAtOnce();
};

void TestFaceDetector::initTestCase()
{
    QVERIFY2(!FaceDetector::cascadePath().isEmpty(), "opencv-data's face cascade is not installed");
    QVERIFY(FaceDetector::cascadePath().endsWith(QStringLiteral("haarcascade_frontalface_alt2.xml")));
}

void TestFaceDetector::theFaceOfThePhotograph()
{
    const PictureSubjects subjects = FaceDetector::detect(TestFiles::astronaut());
    QVERIFY(subjects.detected);
    QCOMPARE(subjects.faces.size(), 1);
    QVERIFY2(holds(kFace, subjects.faces.first()), qPrintable(describe(subjects.faces)));
    QVERIFY(subjects.salient.isEmpty()); // faces are the subject
}

void TestFaceDetector::aFaceOffCentre_data()
{
    QTest::addColumn<QSize>("canvas");
    QTest::addColumn<QPoint>("at");
    QTest::newRow("left of a wide picture") << QSize(2400, 900) << QPoint(60, 200);
    QTest::newRow("right of a wide picture") << QSize(2400, 900) << QPoint(1800, 150);
    QTest::newRow("top of a tall picture") << QSize(900, 2400) << QPoint(200, 40);
}

void TestFaceDetector::aFaceOffCentre()
{
    QFETCH(QSize, canvas);
    QFETCH(QPoint, at);
    const PictureSubjects subjects = FaceDetector::detect(canvasWith(canvas, {at}, 520));
    QVERIFY(subjects.detected);
    QCOMPARE(subjects.faces.size(), 1);
    QVERIFY2(holds(expectedFace(canvas, at, 520), subjects.faces.first()),
             qPrintable(describe(subjects.faces)));
}

void TestFaceDetector::twoFaces()
{
    const QSize canvas(2400, 1000);
    const QList<QPoint> at{QPoint(100, 200), QPoint(1700, 300)};
    const PictureSubjects subjects = FaceDetector::detect(canvasWith(canvas, at, 560));
    QCOMPARE(subjects.faces.size(), 2);
    const bool inOrder = subjects.faces.at(0).center().x() < subjects.faces.at(1).center().x();
    const QRectF left = subjects.faces.at(inOrder ? 0 : 1), right = subjects.faces.at(inOrder ? 1 : 0);
    QVERIFY2(holds(expectedFace(canvas, at.at(0), 560), left), qPrintable(describe(subjects.faces)));
    QVERIFY2(holds(expectedFace(canvas, at.at(1), 560), right), qPrintable(describe(subjects.faces)));
}

void TestFaceDetector::aLargePictureIsReducedFirst()
{
    const QSize canvas(4000, 3000);
    const QPoint at(2900, 400);
    const PictureSubjects subjects = FaceDetector::detect(canvasWith(canvas, {at}, 1000));
    QCOMPARE(subjects.faces.size(), 1);
    QVERIFY2(holds(expectedFace(canvas, at, 1000), subjects.faces.first()),
             qPrintable(describe(subjects.faces)));
}

void TestFaceDetector::noFaceGivesTheSalientSubject()
{
    // A bright yellow ball on a flat grey field, right of centre and high.
    QImage image(1600, 1000, QImage::Format_RGB32);
    image.fill(QColor(120, 124, 120));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(250, 230, 120));
    painter.drawEllipse(QPointF(1250, 300), 110, 110);
    painter.end();
    const PictureSubjects subjects = FaceDetector::detect(image);
    QVERIFY(subjects.detected);
    QVERIFY(subjects.faces.isEmpty());
    QVERIFY(!subjects.salient.isEmpty());
    const QPointF centre = subjects.salient.center();
    QVERIFY2(qAbs(centre.x() - 1250.0 / 1600) < 0.08 && qAbs(centre.y() - 0.3) < 0.1,
             qPrintable(QStringLiteral("%1, %2").arg(centre.x()).arg(centre.y())));
    QVERIFY(subjects.salient.width() < 0.5);
}

void TestFaceDetector::aFlatPictureHasNoSubject()
{
    const PictureSubjects subjects =
        FaceDetector::detect(TestFiles::solidImage(800, 600, QColor(90, 140, 200)));
    QVERIFY(subjects.detected);
    QVERIFY(subjects.faces.isEmpty());
    QVERIFY(subjects.salient.isEmpty());
}

void TestFaceDetector::nothingToDetect()
{
    const PictureSubjects subjects = FaceDetector::detect(QImage());
    QVERIFY(!subjects.detected);
    QVERIFY(subjects.faces.isEmpty());
}

void TestFaceDetector::severalThreadsAtOnce()
{
    const QImage picture = canvasWith(QSize(1200, 800), {QPoint(600, 100)}, 400);
    QThreadPool pool;
    pool.setMaxThreadCount(4);
    std::atomic<int> found{0};
    for (int i = 0; i < 8; ++i)
        pool.start([&picture, &found] { found += int(FaceDetector::detect(picture).faces.size()); });
    QVERIFY(pool.waitForDone(60000));
    QCOMPARE(found.load(), 8);
}

QTEST_MAIN(TestFaceDetector)
#include "tst_FaceDetector.moc"
