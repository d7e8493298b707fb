// Faces and captions in the frames a package holds, as the stand-in processor turns them back
// into pictures (tarn-sim --decode): the photograph of a face at the side or the top of a wide
// or tall picture, which a centre crop cuts, is brought into the frame by "Frame faces" in the
// preview dialog and by velora-pack --auto-frame, alike; a picture without a face is framed
// around its subject; a caption of the date taken lands in its corner, in the window and in
// velora-pack alike.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "preprocess/Caption.h"
#include "preprocess/Framing.h"
#include "preprocess/ImagePreviewDialog.h"
#include "preprocess/PreprocWidget.h"

#include "ModalAnswerer.h"
#include "PackageCheck.h"
#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPainter>
#include <QProcess>
#include <QPushButton>
#include <QTest>

namespace {

// Where the astronaut's face is in her photograph (fractions of it), shrunk to its middle.
const QRectF kFace = QRectF(0.30, 0.08, 0.30, 0.33).adjusted(0.05, 0.05, -0.05, -0.05);
const QColor kCanvas(0, 0, 255); // a colour of the panel's own: it stays as it is
const QSize kPanel(1200, 1600);

struct Scene {
    QSize canvas;
    QList<QPoint> photos; // top-left corners of the photograph, 600 x 600
    bool landscape = false;
};

constexpr int kSide = 600;

} // namespace

Q_DECLARE_METATYPE(Scene)

namespace {

QImage sceneImage(const Scene &scene)
{
    QImage image(scene.canvas, QImage::Format_RGB32);
    image.fill(kCanvas);
    QPainter painter(&image);
    for (const QPoint &at : scene.photos)
        painter.drawImage(at, TestFiles::astronaut().scaled(kSide, kSide));
    return image;
}

// The face of the i-th photograph as fractions of the canvas.
QRectF faceOf(const Scene &scene, int i)
{
    const QPoint at = scene.photos.at(i);
    return QRectF((at.x() + kFace.x() * kSide) / scene.canvas.width(),
                  (at.y() + kFace.y() * kSide) / scene.canvas.height(),
                  kFace.width() * kSide / scene.canvas.width(),
                  kFace.height() * kSide / scene.canvas.height());
}

// Where a part of the picture (fractions) is in the processor's picture (panel pixels, portrait;
// a landscape composition is turned clockwise), for the row's state.
QRect inFrame(const QSize &canvas, const PreprocState &state, bool landscape, const QRectF &part)
{
    const QSize frame = landscape ? kPanel.transposed() : kPanel;
    const QRectF picture =
        Framing::pictureRect(canvas, state.fillMode, frame, QPointF(state.focusX, state.focusY), state.zoom);
    QRectF shown(picture.x() + part.x() * picture.width(), picture.y() + part.y() * picture.height(),
                 part.width() * picture.width(), part.height() * picture.height());
    if (landscape)
        shown = QRectF(frame.height() - shown.bottom(), shown.left(), shown.height(), shown.width());
    return shown.toRect();
}

// The share of the pixels of an area that are not of a colour.
double shareNot(const QImage &image, const QRect &area, const QColor &colour)
{
    const QRect inside = area & image.rect();
    int count = 0;
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            count += image.pixelColor(x, y) != colour;
    return inside.isEmpty() ? 0.0 : double(count) / (inside.width() * inside.height());
}

// In the preview dialog: waits for the faces, then "Frame faces", then OK.
void frameFacesInDialog(QWidget *widget)
{
    auto *dialog = qobject_cast<ImagePreviewDialog *>(widget);
    if (!dialog)
        return;
    const auto closing = ModalAnswerer::closingGuard(dialog);
    QTRY_VERIFY(dialog->frameFacesButton()->isEnabled());
    QTest::mouseClick(dialog->frameFacesButton(), Qt::LeftButton);
    QTest::mouseClick(withText<QPushButton>(*dialog, QStringLiteral("OK")), Qt::LeftButton);
}

} // namespace

class TestFaceFrames : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void frameFacesBringsTheFaceIntoTheFrame_data();
    void frameFacesBringsTheFaceIntoTheFrame();
    void withoutAFaceTheSubjectIsFramed();
    void aDateCaptionIsInItsCorner();

private:
    PreprocWidget *row(int index) const { return m_window->preprocWidgetAt(index); }
    void runWindow()
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
        QCOMPARE(completion.titles(), QStringList{"Ready for Your TF Card"});
    }
    int pack(const QStringList &arguments) const
    {
        QProcess process;
        process.setWorkingDirectory(m_fixture->workDir());
        process.start(QStringLiteral(VELORA_PACK), arguments);
        if (!process.waitForFinished(120000))
            return -1;
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    }
    // Adds the picture, centre-cropped, in the frame's orientation; its path.
    QString addCropped(const QImage &picture, bool landscape)
    {
        const QString path = addPictures({picture}).first();
        if (m_window->imageTable()->rowCount() != 1)
            return QString();
        if (landscape)
            comboStartingWith(*m_window, "Portrait (0)")->setCurrentIndex(1);
        check({0});
        m_window->applyFillToCheckedRows(FillMode::CenterCrop);
        return path;
    }
};

void TestFaceFrames::frameFacesBringsTheFaceIntoTheFrame_data()
{
    QTest::addColumn<Scene>("scene");
    QTest::addColumn<bool>("allFit");
    QTest::newRow("at the right") << Scene{{1600, 600}, {{1000, 0}}, false} << true;
    QTest::newRow("at the left") << Scene{{1600, 600}, {{0, 0}}, false} << true;
    QTest::newRow("at the top, landscape") << Scene{{600, 1800}, {{0, 0}}, true} << true;
    QTest::newRow("with a second face") << Scene{{2400, 600}, {{0, 0}, {1800, 0}}, false} << false;
}

void TestFaceFrames::frameFacesBringsTheFaceIntoTheFrame()
{
    QFETCH(Scene, scene);
    QFETCH(bool, allFit);
    const QString path = addCropped(sceneImage(scene), scene.landscape);
    QVERIFY(!path.isEmpty());

    // A centre crop cuts every face: the processor's picture is (nearly) all canvas.
    const PreprocState centred = row(0)->state();
    const QImage centreRender = renderPreprocExport(QImage(path), centred, kPanel, scene.landscape);
    QVERIFY2(shareNot(centreRender, centreRender.rect(), kCanvas) < 0.1,
             qPrintable(QString::number(shareNot(centreRender, centreRender.rect(), kCanvas))));
    for (int i = 0; i < scene.photos.size(); ++i)
        QVERIFY(
            !centreRender.rect().contains(inFrame(scene.canvas, centred, scene.landscape, faceOf(scene, i))));

    {
        ModalAnswerer answerer(QMessageBox::Ok, frameFacesInDialog);
        QTest::mouseClick(row(0)->previewLabel(), Qt::LeftButton);
    }
    const PreprocState framed = row(0)->state();
    QVERIFY(framed != centred);
    QCOMPARE(framed.fillMode, FillMode::CenterCrop);
    QCOMPARE(row(0)->faceMark()->isHidden(), allFit);
    if (!allFit)
        QCOMPARE(row(0)->faceMark()->toolTip(), QStringLiteral("The crop cuts a face"));
    runWindow();

    // The face's colours are where the face must be in the frame the package holds.
    const QImage frame = PackageCheck::frameImage(QDir(packageDir()).filePath("frame_000.bin"));
    QCOMPARE(frame.size(), kPanel);
    int inside = 0;
    for (int i = 0; i < scene.photos.size(); ++i) {
        const QRect face = inFrame(scene.canvas, framed, scene.landscape, faceOf(scene, i));
        if (!frame.rect().contains(face))
            continue;
        ++inside;
        QVERIFY2(shareNot(frame, face, kCanvas) > 0.9,
                 qPrintable(QString::number(shareNot(frame, face, kCanvas))));
    }
    QCOMPARE(inside, allFit ? int(scene.photos.size()) : 1);

    // velora-pack frames it the same way.
    const QStringList arguments{"--out", m_fixture->path("cli"), "--fill", "crop", "--auto-frame", path};
    QCOMPARE(pack(scene.landscape ? arguments + QStringList{"--landscape"} : arguments), 0);
    QCOMPARE(TestFiles::contents(m_fixture->path("cli/vl_play")), TestFiles::contents(packageDir()));
}

void TestFaceFrames::withoutAFaceTheSubjectIsFramed()
{
    // A bright subject on a flat dark ground, at the right of a wide picture.
    QImage picture(1600, 600, QImage::Format_RGB32);
    picture.fill(QColor(0, 0, 0));
    QPainter painter(&picture);
    painter.setBrush(QColor(255, 255, 0));
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QPoint(1350, 300), 110, 110);
    painter.end();
    QVERIFY(!addCropped(picture, false).isEmpty());
    {
        ModalAnswerer answerer(QMessageBox::Ok, frameFacesInDialog);
        QTest::mouseClick(row(0)->previewLabel(), Qt::LeftButton);
    }
    QVERIFY2(row(0)->state().focusX > 0.7, qPrintable(QString::number(row(0)->state().focusX)));
    QVERIFY(row(0)->subjects() && row(0)->subjects()->faces.isEmpty());
    runWindow();
    const QImage frame = PackageCheck::frameImage(QDir(packageDir()).filePath("frame_000.bin"));
    const QRect subject = inFrame(picture.size(), row(0)->state(), false,
                                  QRectF(1300 / 1600.0, 250 / 600.0, 100 / 1600.0, 100 / 600.0));
    QVERIFY(frame.rect().contains(subject));
    QVERIFY(shareNot(frame, subject, QColor(255, 255, 0)) < 0.1);
}

void TestFaceFrames::aDateCaptionIsInItsCorner()
{
    const QString folder = m_fixture->path("dated");
    QVERIFY(TestFiles::write(QDir(folder).filePath("dated.jpg"),
                             TestFiles::jpegWithDateTaken(TestFiles::solidImage(600, 800, QColor(0, 0, 255)),
                                                          "2024:05:17 10:30:00")));
    m_window->addImageFiles({QDir(folder).filePath("dated.jpg")});
    QTRY_COMPARE(m_window->imageTable()->rowCount(), 1);
    check({0});
    CaptionSettings caption;
    caption.kind = CaptionKind::DateTaken;
    QCOMPARE(m_window->applyCaptionToCheckedRows(caption), 1);
    QCOMPARE(row(0)->state().caption.shown,
             QLocale::system().toString(QDate(2024, 5, 17), QLocale::ShortFormat));
    QVERIFY(!row(0)->captionMark()->isHidden());
    runWindow();

    // White letters on a black band at the bottom right; the rest is the picture.
    const QImage frame = PackageCheck::frameImage(QDir(packageDir()).filePath("frame_000.bin"));
    const QRect band = Caption::area(kPanel, row(0)->state().caption);
    QVERIFY(band.left() > kPanel.width() / 2 && band.bottom() > kPanel.height() * 9 / 10);
    QVERIFY(shareNot(frame, band, Qt::black) > 0.05); // letters
    QVERIFY(shareNot(frame, band, Qt::black) < 0.6);  // on black
    QCOMPARE(shareNot(frame, QRect(0, band.top(), band.left() - 40, band.height()), QColor(0, 0, 255)), 0.0);

    // velora-pack writes the same caption, from its command line and from a saved list.
    QCOMPARE(pack({"--out", m_fixture->path("cli"), "--caption", "date", QDir(folder).filePath("dated.jpg")}),
             0);
    QCOMPARE(TestFiles::contents(m_fixture->path("cli/vl_play")), TestFiles::contents(packageDir()));
    const QString list = m_fixture->path("lists/dated.json");
    QVERIFY(QDir().mkpath(QFileInfo(list).absolutePath()));
    QVERIFY(m_window->savePictureList(list));
    QCOMPARE(pack({"--list", list, "--out", m_fixture->path("from-list")}), 0);
    QCOMPARE(TestFiles::contents(m_fixture->path("from-list/vl_play")), TestFiles::contents(packageDir()));

    // Another caption is another frame: the finished row is to be made again.
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    caption.corner = CaptionCorner::BottomLeft;
    QCOMPARE(m_window->applyCaptionToCheckedRows(caption), 1);
    QVERIFY(statusText(0) != QStringLiteral("Done ✓"));
}

QTEST_MAIN(TestFaceFrames)
#include "tst_FaceFrames.moc"
