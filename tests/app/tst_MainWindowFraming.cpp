// A row framed in the preview dialog is processed with exactly that framing: the stand-in's
// frame shows the picture's marker where the framing put it. Cancelled framing changes
// nothing; batches keep each row's framing; the low-resolution mark follows the frame.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "preprocess/FramingSurface.h"
#include "preprocess/ImagePreviewDialog.h"
#include "preprocess/PreprocControlPanel.h"
#include "preprocess/PreprocWidget.h"
#include "ui/UiLanguage.h"

#include "FramedState.h"
#include "ModalAnswerer.h"
#include "PackageCheck.h"
#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTest>

namespace {

// White, with an 80 x 80 red square centred at (200, 600): near the left edge, half-way down,
// outside the middle that a centred crop for a portrait frame keeps.
QImage markedPicture()
{
    QImage image(1600, 1200, QImage::Format_RGB32);
    image.fill(Qt::white);
    for (int y = 560; y < 640; ++y)
        for (int x = 160; x < 240; ++x)
            image.setPixel(x, y, qRgb(255, 0, 0));
    return image;
}

// The centre of the red pixels of a decoded frame, and how many there are.
QPointF redCentre(const QImage &frame, int *count)
{
    double sumX = 0, sumY = 0;
    *count = 0;
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x) {
            if (frame.pixel(x, y) == qRgb(255, 0, 0)) {
                sumX += x;
                sumY += y;
                ++*count;
            }
        }
    }
    return *count ? QPointF(sumX / *count, sumY / *count) : QPointF();
}

// Frames the picture in the row's preview dialog as a user does: zoom to 200 % with the
// wheel, drag the picture all the way to the right, then OK (or Cancel).
void frameInDialog(QWidget *widget, bool confirm)
{
    auto *dialog = qobject_cast<ImagePreviewDialog *>(widget);
    if (!dialog)
        return;
    QWidget *surface = dialog->previewLabel();
    const QPointF centre = surface->rect().center();
    QWheelEvent wheel(centre, surface->mapToGlobal(centre), QPoint(), QPoint(0, 120 * 10), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(surface, &wheel);
    const QPoint from = surface->rect().center();
    QTest::mousePress(surface, Qt::LeftButton, {}, from);
    QTest::mouseMove(surface, from + QPoint(300, 0));
    QTest::mouseMove(surface, from + QPoint(600, 0));
    QTest::mouseRelease(surface, Qt::LeftButton, {}, from + QPoint(600, 0));
    QTest::mouseClick(
        withText<QPushButton>(*dialog, confirm ? QStringLiteral("OK") : QStringLiteral("Cancel")),
        Qt::LeftButton);
}

} // namespace

class TestMainWindowFraming : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void framedRowIsProcessedWithItsFraming();
    void cancelledFramingChangesNothing();
    void batchesKeepEachRowsFraming();
    void lowResolutionMarksFollowTheFrame();

private:
    PreprocWidget *rowWidget(int row) const { return m_window->preprocWidgetAt(row); }
    void waitForRows(int count) { QTRY_COMPARE(m_window->imageTable()->rowCount(), count); }
};

void TestMainWindowFraming::framedRowIsProcessedWithItsFraming()
{
    // Two copies of the picture, both centre-cropped for the 1200 x 1600 portrait panel; the
    // first is framed in the dialog, the second left as it is.
    addPictures({markedPicture(), markedPicture()});
    waitForRows(2);
    for (int row = 0; row < 2; ++row)
        rowWidget(row)->controlPanel()->fillButton(FillMode::CenterCrop)->click();
    const QImage untouchedThumbnail = rowWidget(0)->previewLabel()->pixmap().toImage();
    {
        ModalAnswerer answerer(QMessageBox::Ok, [](QWidget *dialog) { frameInDialog(dialog, true); });
        QTest::mouseClick(rowWidget(0)->previewLabel(), Qt::LeftButton);
        QVERIFY(!answerer.answered()); // no message box on the way
    }
    // Zoomed 2x the crop window is 450 x 600 of the picture; dragged right, it starts at the
    // picture's left edge: the focus is 225 of 1600 across and the middle down.
    const PreprocState state = rowWidget(0)->state();
    QCOMPARE(state.fillMode, FillMode::CenterCrop);
    QCOMPARE(state.zoom, 2.0);
    QVERIFY2(qAbs(state.focusX - 225.0 / 1600) < 1e-6, qPrintable(QString::number(state.focusX)));
    QCOMPARE(state.focusY, 0.5);
    QTRY_VERIFY(rowWidget(0)->previewLabel()->pixmap().toImage() != untouchedThumbnail);

    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    QCOMPARE(statusText(1), QStringLiteral("Done ✓"));
    // The window maps picture x 0..450 and y 300..900 onto the frame: the marker's centre
    // (200, 600) lands at (533, 800), 213 pixels wide.
    int count = 0;
    const QImage framedFrame = PackageCheck::frameImage(QDir(packageDir()).filePath("frame_000.bin"));
    QCOMPARE(framedFrame.size(), QSize(1200, 1600));
    const QPointF marker = redCentre(framedFrame, &count);
    QVERIFY2(qAbs(marker.x() - 533.3) < 6 && qAbs(marker.y() - 800) < 6,
             qPrintable(QStringLiteral("marker at (%1, %2)").arg(marker.x()).arg(marker.y())));
    QVERIFY2(qAbs(count - 213 * 213) < 213 * 12, qPrintable(QString::number(count)));
    // Centred, the crop keeps picture x 350..1250: the marker is cut off.
    const QImage centredFrame = PackageCheck::frameImage(QDir(packageDir()).filePath("frame_001.bin"));
    redCentre(centredFrame, &count);
    QCOMPARE(count, 0);
}

void TestMainWindowFraming::cancelledFramingChangesNothing()
{
    addColours({Qt::blue});
    waitForRows(1);
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    {
        ModalAnswerer answerer(QMessageBox::Ok, [](QWidget *dialog) { frameInDialog(dialog, false); });
        QTest::mouseClick(rowWidget(0)->previewLabel(), Qt::LeftButton);
    }
    QVERIFY(rowWidget(0)->state() == PreprocState({FillMode::BlurFill, 0}));
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    {
        ModalAnswerer answerer(QMessageBox::Ok, [](QWidget *dialog) { frameInDialog(dialog, true); });
        QTest::mouseClick(rowWidget(0)->previewLabel(), Qt::LeftButton);
    }
    QCOMPARE(rowWidget(0)->state().zoom, 2.0);
    QCOMPARE(statusText(0), QStringLiteral("Pending")); // a new framing makes a new frame
}

void TestMainWindowFraming::batchesKeepEachRowsFraming()
{
    addColours({Qt::red, Qt::green});
    waitForRows(2);
    rowWidget(0)->commitState(framedState(FillMode::CenterCrop, 0.2, 0.3, 2.0), true);
    rowWidget(1)->commitState(framedState(FillMode::BlurFill, 0.6, 0.5, 1.5), true);
    check({0, 1});
    QTest::mouseClick(withText<QPushButton>(*section(*m_window, QStringLiteral("Step 2: Add Images")),
                                            QStringLiteral("White")),
                      Qt::LeftButton);
    QVERIFY(rowWidget(0)->state() == framedState(FillMode::WhiteFill, 0.2, 0.3, 2.0));
    QVERIFY(rowWidget(1)->state() == framedState(FillMode::WhiteFill, 0.6, 0.5, 1.5));
    QTest::mouseClick(withText<QPushButton>(*section(*m_window, QStringLiteral("Step 2: Add Images")),
                                            QStringLiteral("Rotate right")),
                      Qt::LeftButton);
    QCOMPARE(rowWidget(0)->state().rotationDegrees, 90);
    QCOMPARE(QPointF(rowWidget(0)->state().focusX, rowWidget(0)->state().focusY), QPointF(0.7, 0.2));
    QCOMPARE(rowWidget(0)->state().zoom, 2.0);
    QCOMPARE(QPointF(rowWidget(1)->state().focusX, rowWidget(1)->state().focusY), QPointF(0.5, 0.6));
}

void TestMainWindowFraming::lowResolutionMarksFollowTheFrame()
{
    addPictures({TestFiles::solidImage(640, 480, Qt::blue), TestFiles::solidImage(4000, 3000, Qt::green)});
    waitForRows(2);
    QLabel *smallMark = rowWidget(0)->lowResolutionMark();
    QLabel *largeMark = rowWidget(1)->lowResolutionMark();
    QVERIFY(!smallMark->isHidden());
    QCOMPARE(smallMark->toolTip(), QStringLiteral("Low resolution for this frame: 640×480 is enlarged 1.9×"));
    QVERIFY(largeMark->isHidden());

    setKeyFile(key("big.json", R"({"panel": "25.3"})"));
    QCOMPARE(m_window->panelResolution(), QSize(1800, 3200));
    QCOMPARE(smallMark->toolTip(), QStringLiteral("Low resolution for this frame: 640×480 is enlarged 2.8×"));
    comboStartingWith(*m_window, QStringLiteral("Portrait (0)"))->setCurrentIndex(1);
    QCOMPARE(smallMark->toolTip(), QStringLiteral("Low resolution for this frame: 640×480 is enlarged 3.8×"));
    QVERIFY(largeMark->isHidden());

    // The mark never stands in the way of a run.
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd(120000);
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    QCOMPARE(statusText(1), QStringLiteral("Done ✓"));
}

QTEST_MAIN(TestMainWindowFraming)
#include "tst_MainWindowFraming.moc"
