// Framing a picture around its faces: through the real render, a face that a centre crop cuts
// is inside the frame afterwards, at every rotation; faces that cannot all fit keep the
// largest group; the zoom is lowered only as far as needed; fills at zoom 1 change nothing.
#include "preprocess/AutoFrame.h"
#include "preprocess/Framing.h"

#include <QPainter>
#include <QTest>

namespace {

const QSize kPanel(1200, 1600);
const QSize kPicture(2400, 1200); // wide: a portrait frame's centre crop keeps its middle 0.375

PictureSubjects facesAt(const QList<QRectF> &faces)
{
    PictureSubjects subjects;
    subjects.faces = faces;
    subjects.detected = true;
    return subjects;
}

// The upright picture: grey, with each face a red square.
QImage pictureWith(const QList<QRectF> &faces)
{
    QImage image(kPicture, QImage::Format_RGB32);
    image.fill(QColor(128, 128, 128));
    QPainter painter(&image);
    for (const QRectF &face : faces)
        painter.fillRect(QRectF(face.x() * kPicture.width(), face.y() * kPicture.height(),
                                face.width() * kPicture.width(), face.height() * kPicture.height()),
                         Qt::red);
    return image;
}

int redPixels(const QImage &render)
{
    int count = 0;
    for (int y = 0; y < render.height(); y += 2)
        for (int x = 0; x < render.width(); x += 2) {
            const QColor c = render.pixelColor(x, y);
            count += c.red() > 200 && c.green() < 60 ? 1 : 0;
        }
    return count;
}

} // namespace

class TestAutoFrame : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void turnedRects();
    void aFaceTheCropCutsIsBroughtIn_data();
    void aFaceTheCropCutsIsBroughtIn();
    void facesThatFitTogetherAreFramedTogether();
    void facesTooFarApartKeepTheLargestGroup();
    void zoomIsLoweredOnlyAsFarAsNeeded();
    void fillsAtZoomOneChangeNothing();
    void withoutFacesTheSalientSubjectIsFramed();
    void nothingFoundChangesNothing();
};

void TestAutoFrame::turnedRects()
{
    const QRectF face(0.1, 0.2, 0.3, 0.1);
    QCOMPARE(AutoFrame::turned({face}, 0).first(), face);
    QCOMPARE(AutoFrame::turned({face}, 90).first(), QRectF(0.7, 0.1, 0.1, 0.3));
    QCOMPARE(AutoFrame::turned({face}, 180).first(), QRectF(0.6, 0.7, 0.3, 0.1));
    QCOMPARE(AutoFrame::turned({face}, 270).first(), QRectF(0.2, 0.6, 0.1, 0.3));
    QCOMPARE(AutoFrame::turned({face}, -90).first(), AutoFrame::turned({face}, 270).first());
}

void TestAutoFrame::aFaceTheCropCutsIsBroughtIn_data()
{
    QTest::addColumn<int>("rotation");
    QTest::addColumn<bool>("landscape");
    QTest::newRow("upright, portrait frame") << 0 << false;
    QTest::newRow("turned 90, landscape frame") << 90 << true;
    QTest::newRow("turned 180, portrait frame") << 180 << false;
    QTest::newRow("turned 270, landscape frame") << 270 << true;
}

void TestAutoFrame::aFaceTheCropCutsIsBroughtIn()
{
    QFETCH(int, rotation);
    QFETCH(bool, landscape);
    const QList<QRectF> faces{QRectF(0.05, 0.3, 0.08, 0.16)};
    const QImage picture = pictureWith(faces);
    const PreprocState crop{FillMode::CenterCrop, rotation};
    QCOMPARE(redPixels(renderPreprocExport(picture, crop, kPanel, landscape)), 0); // the centre crop cuts it
    QCOMPARE(AutoFrame::cutFaces(kPicture, crop, kPanel, landscape, faces), 1);

    const AutoFrame::Result framed = AutoFrame::frame(crop, kPicture, facesAt(faces), kPanel, landscape);
    QVERIFY(framed.allFacesFit);
    QCOMPARE(framed.state.fillMode, FillMode::CenterCrop);
    QCOMPARE(framed.state.rotationDegrees, rotation);
    QCOMPARE(framed.state.zoom, 1.0);
    QCOMPARE(AutoFrame::cutFaces(kPicture, framed.state, kPanel, landscape, faces), 0);
    // The whole face shows in the frame: as many red pixels as the face is large there.
    const QImage render = renderPreprocExport(picture, framed.state, kPanel, landscape);
    const double scale = double(std::max(kPanel.width(), kPanel.height())) /
                         (rotation % 180 == 0 ? (landscape ? kPicture.width() : kPicture.height())
                                              : (landscape ? kPicture.height() : kPicture.width()));
    const double facePixels = 0.08 * kPicture.width() * 0.16 * kPicture.height() * scale * scale / 4;
    QVERIFY2(qAbs(redPixels(render) - facePixels) < facePixels * 0.1,
             qPrintable(QStringLiteral("%1 red, %2 expected").arg(redPixels(render)).arg(facePixels)));
}

void TestAutoFrame::facesThatFitTogetherAreFramedTogether()
{
    const QList<QRectF> faces{QRectF(0.05, 0.3, 0.08, 0.16), QRectF(0.3, 0.35, 0.06, 0.12)};
    const AutoFrame::Result framed =
        AutoFrame::frame({FillMode::CenterCrop, 0}, kPicture, facesAt(faces), kPanel, false);
    QVERIFY(framed.allFacesFit);
    QCOMPARE(AutoFrame::cutFaces(kPicture, framed.state, kPanel, false, faces), 0);
    QVERIFY(qAbs(framed.state.focusX - (0.05 + 0.36) / 2) < 1e-9);
}

void TestAutoFrame::facesTooFarApartKeepTheLargestGroup()
{
    // Two small faces on the left, one larger on the right: the window (0.375 wide) holds either.
    const QList<QRectF> faces{QRectF(0.02, 0.3, 0.05, 0.1), QRectF(0.15, 0.3, 0.05, 0.1),
                              QRectF(0.8, 0.3, 0.1, 0.2)};
    const AutoFrame::Result framed =
        AutoFrame::frame({FillMode::CenterCrop, 0}, kPicture, facesAt(faces), kPanel, false);
    QVERIFY(!framed.allFacesFit);
    QCOMPARE(AutoFrame::cutFaces(kPicture, framed.state, kPanel, false, faces), 2);
    QCOMPARE(AutoFrame::cutFaces(kPicture, framed.state, kPanel, false, {faces.at(2)}), 0);
}

void TestAutoFrame::zoomIsLoweredOnlyAsFarAsNeeded()
{
    // At 250 % the window is 0.15 wide; the two faces span 0.25.
    const QList<QRectF> faces{QRectF(0.4, 0.3, 0.05, 0.1), QRectF(0.6, 0.3, 0.05, 0.1)};
    PreprocState zoomed{FillMode::CenterCrop, 0};
    zoomed.zoom = 2.5;
    QVERIFY(qAbs(AutoFrame::window(kPicture, zoomed, kPanel, false).width() - 0.15) < 1e-9);
    const AutoFrame::Result framed = AutoFrame::frame(zoomed, kPicture, facesAt(faces), kPanel, false);
    QVERIFY(framed.allFacesFit);
    QVERIFY(qAbs(framed.state.zoom - 2.5 * 0.15 / 0.25) < 1e-9);
    QCOMPARE(AutoFrame::cutFaces(kPicture, framed.state, kPanel, false, faces), 0);
    // A blur fill enlarged twice is framed the same way, its zoom kept where the faces fit.
    PreprocState blur{FillMode::BlurFill, 0};
    blur.zoom = 2.0;
    const AutoFrame::Result fill =
        AutoFrame::frame(blur, kPicture, facesAt({QRectF(0.05, 0.3, 0.08, 0.16)}), kPanel, false);
    QCOMPARE(fill.state.zoom, 2.0);
    QCOMPARE(AutoFrame::cutFaces(kPicture, fill.state, kPanel, false, {QRectF(0.05, 0.3, 0.08, 0.16)}), 0);
}

void TestAutoFrame::fillsAtZoomOneChangeNothing()
{
    const PictureSubjects subjects = facesAt({QRectF(0.05, 0.3, 0.08, 0.16)});
    for (FillMode mode : {FillMode::BlurFill, FillMode::WhiteFill, FillMode::BlackFill, FillMode::Direct}) {
        const PreprocState state{mode, 90};
        const AutoFrame::Result framed = AutoFrame::frame(state, kPicture, subjects, kPanel, false);
        QVERIFY(framed.state == state);
        QVERIFY(framed.allFacesFit);
        QCOMPARE(AutoFrame::cutFaces(kPicture, state, kPanel, false, subjects.faces), 0);
    }
}

void TestAutoFrame::withoutFacesTheSalientSubjectIsFramed()
{
    PictureSubjects subjects;
    subjects.detected = true;
    subjects.salient = QRectF(0.85, 0.2, 0.1, 0.2);
    const AutoFrame::Result framed =
        AutoFrame::frame({FillMode::CenterCrop, 0}, kPicture, subjects, kPanel, false);
    QVERIFY(framed.allFacesFit);
    QVERIFY(framed.state.focusX > 0.8);
    QVERIFY(AutoFrame::window(kPicture, framed.state, kPanel, false).contains(subjects.salient));
}

void TestAutoFrame::nothingFoundChangesNothing()
{
    PreprocState state{FillMode::CenterCrop, 0};
    state.focusX = 0.3;
    QVERIFY(AutoFrame::frame(state, kPicture, PictureSubjects(), kPanel, false).state == state);
}

QTEST_MAIN(TestAutoFrame)
#include "tst_AutoFrame.moc"
