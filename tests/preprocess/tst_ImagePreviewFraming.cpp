// Framing a picture in the preview dialog with the mouse, the wheel, the slider and the keys;
// the e-paper view and the low-resolution line.
#include "preprocess/EpaperLook.h"
#include "preprocess/Framing.h"
#include "preprocess/FramingSurface.h"
#include "preprocess/ImagePreviewDialog.h"
#include "preprocess/PreprocControlPanel.h"
#include "ui/UiLanguage.h"

#include "FramedState.h"
#include "ModalAnswerer.h"
#include "PreviewProbe.h"
#include "TestFiles.h"
#include "WindowProbe.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QWheelEvent>

#include <cmath>

namespace {

const QSize kPanel(1200, 1600);
// The dialog at its first size frames a portrait 1200 x 1600 panel 390 x 520 with a border of
// 39: the composition shows at 312 / 1200 = 0.26 screen pixels per frame pixel.
constexpr double kShown = 0.26;
// A 1600 x 1200 picture cropped for that frame covers it at 2133 x 1600 frame pixels.
constexpr double kCroppedWidth = 1600 * 4 / 3.0;

void wheel(QWidget *widget, int delta)
{
    const QPointF at = widget->rect().center();
    QWheelEvent event(at, widget->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

void drag(QWidget *widget, const QPoint &by)
{
    const QPoint from = widget->rect().center();
    QTest::mousePress(widget, Qt::LeftButton, {}, from);
    QTest::mouseMove(widget, from + by);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, from + by);
}

QImage expectedPixmap(const ImagePreviewDialog &dialog, const QImage &picture, bool epaper = false)
{
    QImage preview = renderPreprocDisplayPreview(picture, dialog.workingState(), kPanel, false);
    if (epaper)
        preview = EpaperLook::render(preview);
    return makeFramedPreviewPixmapExact(preview, shownPixmap(dialog).size()).toImage();
}

double meanDifference(const QImage &a, const QImage &b)
{
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            sum += qAbs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y)));
    return sum / (double(a.width()) * a.height());
}

} // namespace

class TestImagePreviewFraming : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void controls();
    void dragMovesTheFocus();
    void dragStopsAtTheEdgeAndComesBackAtOnce();
    void quickPreviewWhileDraggingShowsTheSameFraming();
    void wheelZooms();
    void sliderZooms();
    void arrowKeysNudge();
    void resetRestores();
    void aPauseRendersAtFullResolution();
    void rotatingTurnsTheFocus();
    void directIgnoresDragging();
    void okAppliesTheFramingCancelLeavesIt();
    void epaperView();
    void lowResolutionLine();

private:
    QImage m_picture = TestFiles::positionImage(1600, 1200);
};

void TestImagePreviewFraming::initTestCase() { UiLanguage::set(UiLanguage::English); }

void TestImagePreviewFraming::controls()
{
    ImagePreviewDialog dialog(m_picture, kPanel, false, framedState(FillMode::CenterCrop, 0.3, 0.5, 1.5));
    QCOMPARE(dialog.zoomSlider()->minimum(), 100);
    QCOMPARE(dialog.zoomSlider()->maximum(), 400);
    QCOMPARE(dialog.zoomSlider()->value(), 150);
    QCOMPARE(dialog.resetFramingButton()->text(), QStringLiteral("Reset framing"));
    QCOMPARE(dialog.epaperCheckBox()->text(), QStringLiteral("Show as e-paper"));
    QVERIFY(!dialog.epaperCheckBox()->isChecked());
    bool noteFound = false;
    for (QLabel *label : dialog.findChildren<QLabel *>())
        noteFound |=
            label->text() ==
            QStringLiteral("An approximation of a six-colour panel; the processor makes the real frames.");
    QVERIFY(noteFound);
    QVERIFY(
        dialog.infoLabel()->text().startsWith(QStringLiteral("Current: Center crop + Zoom 150% — preview")));
    QCOMPARE(dialog.previewLabel()->pixmap().size(), QSize(390, 520));
    QCOMPARE(renderedPixmap(dialog), expectedPixmap(dialog, m_picture));
}

void TestImagePreviewFraming::dragMovesTheFocus()
{
    ImagePreviewDialog dialog(m_picture, kPanel, false, {FillMode::CenterCrop, 0});
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const QImage before = shownPixmap(dialog);
    drag(dialog.previewLabel(), QPoint(26, 0)); // 100 frame pixels to the right
    // The picture moved right: the focus went left by 100 of its 2133 pixels; down it fits.
    QVERIFY(qAbs(dialog.workingState().focusX - (0.5 - 100 / kCroppedWidth)) < 1e-6);
    QCOMPARE(dialog.workingState().focusY, 0.5);
    QCOMPARE(dialog.workingState().zoom, 1.0);
    QVERIFY(shownPixmap(dialog) != before);
    QCOMPARE(renderedPixmap(dialog), expectedPixmap(dialog, m_picture));
    // What shows at the frame's left edge now is 100 frame pixels further left in the picture.
    const QImage crop = renderPreprocDisplayPreview(m_picture, dialog.workingState(), kPanel, false);
    QVERIFY(qAbs(TestFiles::shownPosition(crop, 0, 800).x() - (1066.7 - 600 - 100) / kCroppedWidth) < 0.01);
}

void TestImagePreviewFraming::dragStopsAtTheEdgeAndComesBackAtOnce()
{
    ImagePreviewDialog dialog(m_picture, kPanel, false, {FillMode::CenterCrop, 0});
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    drag(dialog.previewLabel(), QPoint(400, 300));
    // The picture's left edge reached the frame's: its focus is half a frame in.
    QVERIFY(qAbs(dialog.workingState().focusX - 600 / kCroppedWidth) < 1e-6);
    QCOMPARE(dialog.workingState().focusY, 0.5);
    drag(dialog.previewLabel(), QPoint(-26, 0));
    QVERIFY(qAbs(dialog.workingState().focusX - 700 / kCroppedWidth) < 1e-6);
}

void TestImagePreviewFraming::quickPreviewWhileDraggingShowsTheSameFraming()
{
    const QImage photo = TestFiles::photoLikeImage(4000, 3000, 11);
    ImagePreviewDialog dialog(photo, kPanel, false, framedState(FillMode::CenterCrop, 0.5, 0.5, 2.0));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QWidget *surface = dialog.previewLabel();
    const QPoint from = surface->rect().center();
    QTest::mousePress(surface, Qt::LeftButton, {}, from);
    QTest::mouseMove(surface, from + QPoint(30, -20));
    QVERIFY(dialog.framingSurface()->isDragging());
    QVERIFY(dialog.isShowingQuickPreview());
    const QImage quick = shownPixmap(dialog);
    QCOMPARE(quick.size(), QSize(390, 520));
    const QImage full = expectedPixmap(dialog, photo);
    QVERIFY2(meanDifference(quick, full) < 3.0, qPrintable(QString::number(meanDifference(quick, full))));
    QTest::mouseRelease(surface, Qt::LeftButton, {}, from + QPoint(30, -20));
    QCOMPARE(renderedPixmap(dialog), full);
}

void TestImagePreviewFraming::wheelZooms()
{
    ImagePreviewDialog dialog(m_picture, kPanel, false, {FillMode::BlurFill, 0});
    wheel(dialog.previewLabel(), 120);
    QCOMPARE(dialog.workingState().zoom, 1.1);
    wheel(dialog.previewLabel(), 60); // half a notch: nothing yet
    QCOMPARE(dialog.workingState().zoom, 1.1);
    wheel(dialog.previewLabel(), 60);
    QCOMPARE(dialog.workingState().zoom, 1.2);
    QCOMPARE(dialog.zoomSlider()->value(), 120);
    QVERIFY(dialog.infoLabel()->text().contains(QStringLiteral("Blur fill + Zoom 120%")));
    wheel(dialog.previewLabel(), -120 * 5);
    QCOMPARE(dialog.workingState().zoom, 1.0);
    QVERIFY(!dialog.infoLabel()->text().contains(QStringLiteral("Zoom")));
    wheel(dialog.previewLabel(), 120 * 40);
    QCOMPARE(dialog.workingState().zoom, 4.0);
}

void TestImagePreviewFraming::sliderZooms()
{
    ImagePreviewDialog dialog(m_picture, kPanel, false, {FillMode::CenterCrop, 0});
    const QImage before = shownPixmap(dialog);
    dialog.zoomSlider()->setValue(250);
    QCOMPARE(dialog.workingState().zoom, 2.5);
    QVERIFY(shownPixmap(dialog) != before);
    QTest::keyClick(dialog.zoomSlider(), Qt::Key_PageUp);
    QCOMPARE(dialog.workingState().zoom, 3.0);
    bool valueShown = false;
    for (QLabel *label : dialog.findChildren<QLabel *>())
        valueShown |= label->text() == QStringLiteral("300%");
    QVERIFY(valueShown);
}

void TestImagePreviewFraming::arrowKeysNudge()
{
    ImagePreviewDialog dialog(m_picture, kPanel, false, framedState(FillMode::CenterCrop, 0.5, 0.5, 2.0));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(QApplication::focusWidget(), dialog.previewLabel());
    const double step = FramingSurface::kNudgePixels / kShown; // frame pixels
    QTest::keyClick(dialog.previewLabel(), Qt::Key_Right);     // the picture moves right
    QVERIFY(qAbs(dialog.workingState().focusX - (0.5 - step / (2 * kCroppedWidth))) < 1e-6);
    QTest::keyClick(dialog.previewLabel(), Qt::Key_Down);
    QVERIFY(qAbs(dialog.workingState().focusY - (0.5 - step / 3200)) < 1e-6);
    // Arrow keys that reach the dialog itself nudge too.
    dialog.previewLabel()->clearFocus();
    QTest::keyClick(&dialog, Qt::Key_Left);
    QVERIFY(qAbs(dialog.workingState().focusX - 0.5) < 1e-6);
}

void TestImagePreviewFraming::resetRestores()
{
    ImagePreviewDialog dialog(m_picture, kPanel, false, framedState(FillMode::CenterCrop, 0.2, 0.5, 2.0));
    const QImage framedPixmap = shownPixmap(dialog);
    QTest::mouseClick(dialog.resetFramingButton(), Qt::LeftButton);
    QVERIFY(Framing::isUntouched(dialog.workingState()));
    QCOMPARE(dialog.workingState().fillMode, FillMode::CenterCrop);
    QCOMPARE(dialog.zoomSlider()->value(), 100);
    QVERIFY(shownPixmap(dialog) != framedPixmap);
    QCOMPARE(renderedPixmap(dialog), expectedPixmap(dialog, m_picture));
}

void TestImagePreviewFraming::aPauseRendersAtFullResolution()
{
    ImagePreviewDialog dialog(m_picture, kPanel, false, {FillMode::CenterCrop, 0});
    wheel(dialog.previewLabel(), 240);
    QVERIFY(dialog.isShowingQuickPreview());
    QTRY_VERIFY_WITH_TIMEOUT(!dialog.isShowingQuickPreview(), 5000);
    QCOMPARE(shownPixmap(dialog), expectedPixmap(dialog, m_picture));
}

void TestImagePreviewFraming::rotatingTurnsTheFocus()
{
    ImagePreviewDialog dialog(m_picture, kPanel, false, framedState(FillMode::CenterCrop, 0.2, 0.1, 2.0));
    dialog.controlPanel()->rotateRightButton()->click();
    QCOMPARE(dialog.workingState().rotationDegrees, 90);
    QCOMPARE(QPointF(dialog.workingState().focusX, dialog.workingState().focusY), QPointF(0.9, 0.2));
    QCOMPARE(dialog.workingState().zoom, 2.0);
    dialog.controlPanel()->fillButton(FillMode::WhiteFill)->click(); // a mode change keeps the framing
    QCOMPARE(QPointF(dialog.workingState().focusX, dialog.workingState().focusY), QPointF(0.9, 0.2));
}

void TestImagePreviewFraming::directIgnoresDragging()
{
    ImagePreviewDialog dialog(m_picture, kPanel, false, {FillMode::Direct, 0});
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    drag(dialog.previewLabel(), QPoint(60, 60));
    QVERIFY(Framing::isUntouched(dialog.workingState()));
}

void TestImagePreviewFraming::okAppliesTheFramingCancelLeavesIt()
{
    const PreprocState start{FillMode::CenterCrop, 0};
    {
        ModalAnswerer ok(QMessageBox::Ok, [](QWidget *widget) {
            auto *dialog = qobject_cast<ImagePreviewDialog *>(widget);
            drag(dialog->previewLabel(), QPoint(26, 0));
            wheel(dialog->previewLabel(), 120 * 5);
            QTest::mouseClick(withText<QPushButton>(*dialog, QStringLiteral("OK")), Qt::LeftButton);
        });
        const auto [accepted, state] =
            ImagePreviewDialog::openPreview(m_picture, kPanel, false, start, nullptr);
        QVERIFY(accepted);
        QCOMPARE(state.zoom, 1.5);
        QVERIFY(state.focusX < 0.5);
    }

    ModalAnswerer cancel(QMessageBox::Ok, [](QWidget *widget) {
        auto *dialog = qobject_cast<ImagePreviewDialog *>(widget);
        drag(dialog->previewLabel(), QPoint(26, 0));
        dialog->zoomSlider()->setValue(300);
        dialog->reject();
    });
    const auto [cancelled, kept] = ImagePreviewDialog::openPreview(m_picture, kPanel, false, start, nullptr);
    QVERIFY(!cancelled);
    QVERIFY(kept == start);
}

void TestImagePreviewFraming::epaperView()
{
    ImagePreviewDialog dialog(m_picture, kPanel, false, {FillMode::BlurFill, 0});
    const QImage plain = renderedPixmap(dialog);
    dialog.epaperCheckBox()->click();
    QCOMPARE(renderedPixmap(dialog), expectedPixmap(dialog, m_picture, true));
    QVERIFY(shownPixmap(dialog) != plain);
    dialog.epaperCheckBox()->click();
    QCOMPARE(renderedPixmap(dialog), plain);
}

void TestImagePreviewFraming::lowResolutionLine()
{
    const QImage small = TestFiles::solidImage(640, 480, Qt::darkCyan);
    ImagePreviewDialog dialog(small, kPanel, false, {FillMode::BlurFill, 0});
    QVERIFY(dialog.infoLabel()->text().endsWith(
        QStringLiteral("\n⚠ Low resolution for this frame: 640×480 is enlarged 1.9×")));
    dialog.zoomSlider()->setValue(200);
    QVERIFY(dialog.infoLabel()->text().endsWith(QStringLiteral("640×480 is enlarged 3.8×")));

    // 1600 x 1200 is shrunk to fit (0.75x) until it is zoomed past 2x.
    ImagePreviewDialog large(m_picture, kPanel, false, {FillMode::BlurFill, 0});
    QVERIFY(!large.infoLabel()->text().contains(QStringLiteral("Low resolution")));
    large.zoomSlider()->setValue(200);
    QVERIFY(!large.infoLabel()->text().contains(QStringLiteral("Low resolution")));
    large.zoomSlider()->setValue(250);
    QVERIFY(large.infoLabel()->text().endsWith(QStringLiteral("1600×1200 is enlarged 1.9×")));
}

QTEST_MAIN(TestImagePreviewFraming)
#include "tst_ImagePreviewFraming.moc"
