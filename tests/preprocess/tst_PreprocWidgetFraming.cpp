// A row's framing: kept by fill changes, turned by rotations, shown by the thumbnail, and the
// low-resolution mark that follows the picture, the frame, the mode and the zoom.
#include "preprocess/Framing.h"
#include "preprocess/PreprocWidget.h"
#include "ui/UiLanguage.h"

#include "FramedState.h"
#include "LanguageGuard.h"
#include "TestFiles.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

} // namespace

class TestPreprocWidgetFraming : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fillChangesKeepTheFraming();
    void rotationsTurnTheFraming();
    void framingIsKeptWithinItsLimits();
    void thumbnailShowsTheFraming();
    void lowResolutionMarkFollowsTheRow();
    void largePictureHasNoMark();
    void markIsRelabelled();
    void swapExchangesThePictureSize();

private:
    QString picture(const QString &name, const QImage &image)
    {
        return TestFiles::savedPicture(m_dir.filePath(name), image);
    }
    QTemporaryDir m_dir;
};

void TestPreprocWidgetFraming::initTestCase()
{
    QVERIFY(m_dir.isValid());
    UiLanguage::set(UiLanguage::English);
}

void TestPreprocWidgetFraming::fillChangesKeepTheFraming()
{
    PreprocWidget widget(picture("a.png", TestFiles::solidImage(160, 120, Qt::red)));
    widget.commitState(framedState(FillMode::CenterCrop, 0.2, 0.3, 2.0), false);
    widget.setFillMode(FillMode::WhiteFill, true);
    QVERIFY(widget.state() == framedState(FillMode::WhiteFill, 0.2, 0.3, 2.0));
    widget.onFillModeSelected(FillMode::BlurFill);
    QVERIFY(widget.state() == framedState(FillMode::BlurFill, 0.2, 0.3, 2.0));
}

void TestPreprocWidgetFraming::rotationsTurnTheFraming()
{
    PreprocWidget widget(picture("b.png", TestFiles::solidImage(160, 120, Qt::red)));
    widget.commitState(framedState(FillMode::CenterCrop, 0.2, 0.3, 2.0), false);
    widget.stepRotate(90, false);
    QVERIFY(widget.state() == framedState(FillMode::CenterCrop, 0.7, 0.2, 2.0, 90));
    widget.onRotateLeft();
    QCOMPARE(widget.state().rotationDegrees, 0);
    QCOMPARE(widget.state().focusX, 0.2); // back where it was (to the last bit)
    QVERIFY(qFuzzyCompare(widget.state().focusY, 0.3));
}

void TestPreprocWidgetFraming::framingIsKeptWithinItsLimits()
{
    PreprocWidget widget(picture("c.png", TestFiles::solidImage(160, 120, Qt::red)));
    widget.commitState(framedState(FillMode::Direct, -1.0, 2.0, 10.0), true);
    QVERIFY(widget.state() == framedState(FillMode::BlurFill, 0.0, 1.0, 4.0));
}

void TestPreprocWidgetFraming::thumbnailShowsTheFraming()
{
    PreprocWidget widget(picture("d.png", TestFiles::positionImage(280, 210)));
    widget.show();
    QTRY_VERIFY(widget.previewLabel()->isVisible());
    const QImage untouched = widget.previewLabel()->pixmap().toImage();
    QSignalSpy spy(&widget, &PreprocWidget::preprocessingChanged);
    widget.commitState(framedState(FillMode::CenterCrop, 0.0, 0.0, 2.0), true);
    QCOMPARE(spy.count(), 1);
    // The thumbnail's composition starts at the picture's top-left corner.
    const QImage shown = widget.displayPreviewImage();
    const QPointF corner = TestFiles::shownPosition(shown, 0, 0);
    QVERIFY(corner.x() < 0.02 && corner.y() < 0.02);
    const QImage framedThumbnail = widget.previewLabel()->pixmap().toImage();
    QVERIFY(framedThumbnail != untouched);
    QCOMPARE(framedThumbnail, makeFramedPreviewPixmapExact(shown, framedThumbnail.size()).toImage());
}

void TestPreprocWidgetFraming::lowResolutionMarkFollowsTheRow()
{
    PreprocWidget widget(picture("small.png", TestFiles::solidImage(640, 480, Qt::darkCyan)));
    widget.show();
    QCOMPARE(widget.pictureSize(), QSize(640, 480));
    QLabel *mark = widget.lowResolutionMark();
    const auto tip = [mark] { return mark->isVisible() ? mark->toolTip() : QString(); };
    QCOMPARE(tip(), QStringLiteral("Low resolution for this frame: 640×480 is enlarged 1.9×"));
    widget.setFrameSettings(QSize(1800, 3200), false, false);
    QCOMPARE(tip(), QStringLiteral("Low resolution for this frame: 640×480 is enlarged 2.8×"));
    widget.setFrameSettings(QSize(1200, 1600), true, true);
    QCOMPARE(tip(), QStringLiteral("Low resolution for this frame: 640×480 is enlarged 2.5×"));
    widget.setFrameSettings(QSize(600, 800), false, true); // a frame smaller than the picture
    QCOMPARE(tip(), QString());
    widget.setFrameSettings(QSize(1200, 1600), false, true);
    widget.stepRotate(90, false);
    QCOMPARE(tip(), QStringLiteral("Low resolution for this frame: 640×480 is enlarged 2.5×"));
    widget.stepRotate(-90, false);
    widget.setFillMode(FillMode::CenterCrop, false);
    QCOMPARE(tip(), QStringLiteral("Low resolution for this frame: 640×480 is enlarged 3.3×"));
    widget.commitState(framedState(FillMode::BlurFill, 0.5, 0.5, 2.0), false);
    QCOMPARE(tip(), QStringLiteral("Low resolution for this frame: 640×480 is enlarged 3.8×"));
}

void TestPreprocWidgetFraming::largePictureHasNoMark()
{
    // The mark reads the picture's own size, not the thumbnail's; a JPEG's header gives it.
    PreprocWidget widget(picture("large.jpg", TestFiles::solidImage(4000, 3000, Qt::darkCyan)));
    widget.show();
    QCOMPARE(widget.pictureSize(), QSize(4000, 3000));
    QCOMPARE(widget.thumbnailSource().size(), QSize(280, 210));
    QVERIFY(widget.lowResolutionMark()->isHidden());
    // Zoomed 4x into a crop it is enlarged 2.1x.
    widget.commitState(framedState(FillMode::CenterCrop, 0.5, 0.5, 4.0), false);
    QVERIFY(widget.lowResolutionMark()->isVisible());
    QCOMPARE(widget.lowResolutionMark()->toolTip(),
             QStringLiteral("Low resolution for this frame: 4000×3000 is enlarged 2.1×"));
}

void TestPreprocWidgetFraming::markIsRelabelled()
{
    PreprocWidget widget(picture("small2.png", TestFiles::solidImage(640, 480, Qt::darkCyan)));
    const LanguageGuard chinese(UiLanguage::Chinese);
    widget.applyLanguage();
    QCOMPARE(widget.lowResolutionMark()->toolTip(),
             QStringLiteral("此画框分辨率偏低：640×480 需放大 1.9 倍"));
}

void TestPreprocWidgetFraming::swapExchangesThePictureSize()
{
    PreprocWidget small(picture("s.png", TestFiles::solidImage(640, 480, Qt::red)));
    PreprocWidget large(picture("l.jpg", TestFiles::solidImage(2400, 3200, Qt::blue)));
    small.show();
    large.show();
    QVERIFY(small.lowResolutionMark()->isVisible());
    QVERIFY(large.lowResolutionMark()->isHidden());
    small.swapContentWith(&large);
    QCOMPARE(small.pictureSize(), QSize(2400, 3200));
    QVERIFY(small.lowResolutionMark()->isHidden());
    QVERIFY(large.lowResolutionMark()->isVisible());
}

QTEST_MAIN(TestPreprocWidgetFraming)
#include "tst_PreprocWidgetFraming.moc"
