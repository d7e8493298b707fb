#include "preprocess/ImagePreviewDialog.h"
#include "preprocess/PreprocControlPanel.h"
#include "preprocess/PreprocWidget.h"
#include "ui/UiLanguage.h"

#include "HeicWriter.h"
#include "ModalAnswerer.h"
#include "TestFiles.h"

#include <QDir>
#include <QImageReader>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {
} // namespace

class TestPreprocWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void newRowShowsBlurFillAndAPortraitThumbnail();
    void directBecomesBlurFillAndStillReports();
    void rotationWrapsAround();
    void setFillModeWithoutRefreshStaysQuiet();
    void unchangedFrameSettingsEmitNothing();
    void landscapeFrameSettingsReshapeTheThumbnail();
    void swapExchangesContentButNotFrameSettings();
    void unreadableImageHidesThePreview();
    void applyPreprocessingWritesTheExport();
    void applyPreprocessingNamesAfterTheBaseName();
    void applyPreprocessingReportsFailure();
    void thumbnailClickOpensThePreview();
    void previewCancelKeepsTheState();

private:
    QString picture(const QString &name, const QImage &image)
    {
        return TestFiles::savedPicture(m_dir.filePath(name), image);
    }
    QTemporaryDir m_dir;
};

void TestPreprocWidget::initTestCase()
{
    QVERIFY(m_dir.isValid());
    UiLanguage::set(UiLanguage::English);
}

void TestPreprocWidget::newRowShowsBlurFillAndAPortraitThumbnail()
{
    PreprocWidget widget(picture("a.png", TestFiles::markedImage(800, 600)));
    QCOMPARE(widget.state().fillMode, FillMode::BlurFill);
    QCOMPARE(widget.state().rotationDegrees, 0);
    QCOMPARE(widget.panelResolution(), QSize(1200, 1600));
    QVERIFY(!widget.isLandscape());
    QCOMPARE(widget.thumbnailSource().size(), QSize(280, 210));
    QVERIFY(widget.controlPanel()->fillButton(FillMode::BlurFill)->isChecked());
    QVERIFY(!widget.controlPanel()->fillButton(FillMode::Direct)); // no direct button on a row
    QCOMPARE(widget.previewLabel()->size(), QSize(66, 88));
    QCOMPARE(widget.previewLabel()->toolTip(), QStringLiteral("Click to zoom / switch effect"));
    QCOMPARE(widget.findChild<QLabel *>()->text(), QStringLiteral("a.png"));
    // The first thumbnail is drawn once the event loop runs.
    QTRY_VERIFY(!widget.previewLabel()->pixmap().isNull());
    QCOMPARE(widget.previewLabel()->pixmap().size(), QSize(66, 88));
}

void TestPreprocWidget::directBecomesBlurFillAndStillReports()
{
    PreprocWidget widget(picture("b.png", TestFiles::markedImage(80, 60)));
    widget.setFillMode(FillMode::WhiteFill, false);
    QSignalSpy spy(&widget, &PreprocWidget::preprocessingChanged);
    widget.setFillMode(FillMode::Direct, true);
    QCOMPARE(widget.state().fillMode, FillMode::BlurFill);
    QCOMPARE(spy.count(), 1);
    widget.commitState({FillMode::Direct, 450}, true);
    QCOMPARE(widget.state().fillMode, FillMode::BlurFill);
    QCOMPARE(widget.state().rotationDegrees, 90);
    QCOMPARE(spy.count(), 2);
}

void TestPreprocWidget::rotationWrapsAround()
{
    PreprocWidget widget(picture("c.png", TestFiles::markedImage(80, 60)));
    QSignalSpy spy(&widget, &PreprocWidget::preprocessingChanged);
    for (int i = 0; i < 4; ++i)
        QTest::mouseClick(widget.controlPanel()->rotateRightButton(), Qt::LeftButton);
    QCOMPARE(widget.state().rotationDegrees, 0);
    QCOMPARE(spy.count(), 4);
    QTest::mouseClick(widget.controlPanel()->rotateLeftButton(), Qt::LeftButton);
    QCOMPARE(widget.state().rotationDegrees, 270);
    QCOMPARE(widget.controlPanel()->rotationLabel()->text(), QStringLiteral("Current 270°"));
}

void TestPreprocWidget::setFillModeWithoutRefreshStaysQuiet()
{
    PreprocWidget widget(picture("d.png", TestFiles::markedImage(80, 60)));
    QSignalSpy spy(&widget, &PreprocWidget::preprocessingChanged);
    widget.setFillMode(FillMode::CenterCrop, false);
    widget.stepRotate(90, false);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(widget.state().fillMode, FillMode::CenterCrop);
    QVERIFY(
        widget.controlPanel()->fillButton(FillMode::CenterCrop)->isChecked()); // pushed to the panel anyway
    QCOMPARE(widget.controlPanel()->rotationLabel()->text(), QStringLiteral("Current 90°"));
    QTest::mouseClick(widget.controlPanel()->fillButton(FillMode::BlackFill), Qt::LeftButton);
    QCOMPARE(widget.state().fillMode, FillMode::BlackFill);
    QCOMPARE(spy.count(), 1);
}

void TestPreprocWidget::unchangedFrameSettingsEmitNothing()
{
    PreprocWidget widget(picture("e.png", TestFiles::markedImage(80, 60)));
    QSignalSpy spy(&widget, &PreprocWidget::preprocessingChanged);
    widget.setFrameSettings(QSize(1200, 1600), false, true);
    QCOMPARE(spy.count(), 0);
    widget.setFrameSettings(QSize(1800, 3200), false, true);
    QCOMPARE(spy.count(), 1);
    widget.setFrameSettings(QSize(2160, 3060), true, false);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(widget.panelResolution(), QSize(2160, 3060));
}

void TestPreprocWidget::landscapeFrameSettingsReshapeTheThumbnail()
{
    PreprocWidget widget(picture("f.png", TestFiles::markedImage(800, 600)));
    widget.setFrameSettings(QSize(1200, 1600), true, true);
    QVERIFY(widget.isLandscape());
    QCOMPARE(widget.previewLabel()->size(), QSize(88, 66));
    QCOMPARE(widget.previewLabel()->pixmap().size(), QSize(88, 66));
    QCOMPARE(widget.displayPreviewImage().size(), QSize(280, 210));
    QVERIFY(!widget.processedPreview().isNull());
}

void TestPreprocWidget::swapExchangesContentButNotFrameSettings()
{
    const QString pathA = picture("swap_a.png", TestFiles::markedImage(80, 60));
    const QString pathB = picture("swap_b.png", TestFiles::solidImage(60, 80, Qt::green));
    PreprocWidget a(pathA);
    PreprocWidget b(pathB);
    a.commitState({FillMode::WhiteFill, 90}, false);
    b.setFrameSettings(QSize(1800, 3200), true, false);
    QSignalSpy spyA(&a, &PreprocWidget::preprocessingChanged);
    QSignalSpy spyB(&b, &PreprocWidget::preprocessingChanged);
    a.swapContentWith(&b);
    QCOMPARE(a.sourcePath(), pathB);
    QCOMPARE(b.sourcePath(), pathA);
    QCOMPARE(a.thumbnailSource().size(), QSize(60, 80));
    QCOMPARE(b.state().fillMode, FillMode::WhiteFill);
    QCOMPARE(b.state().rotationDegrees, 90);
    QCOMPARE(a.state().fillMode, FillMode::BlurFill);
    QVERIFY(b.controlPanel()->fillButton(FillMode::WhiteFill)->isChecked());
    QCOMPARE(a.findChild<QLabel *>()->text(), QStringLiteral("swap_b.png"));
    QCOMPARE(a.findChild<QLabel *>()->toolTip(), pathB);
    QCOMPARE(a.panelResolution(), QSize(1200, 1600));
    QCOMPARE(b.panelResolution(), QSize(1800, 3200));
    QVERIFY(b.isLandscape());
    QCOMPARE(spyA.count() + spyB.count(), 0);
    a.swapContentWith(&a);
    a.swapContentWith(nullptr);
    QCOMPARE(a.sourcePath(), pathB);
}

void TestPreprocWidget::unreadableImageHidesThePreview()
{
    const QString path = m_dir.filePath("broken.jpg");
    QVERIFY(TestFiles::write(path, "not a picture"));
    PreprocWidget widget(path);
    widget.show();
    QTest::qWait(10);
    QVERIFY(widget.thumbnailSource().isNull());
    QVERIFY(widget.previewLabel()->isHidden());
    QTest::mouseClick(widget.controlPanel()->rotateRightButton(), Qt::LeftButton); // the panel still works
    QCOMPARE(widget.state().rotationDegrees, 90);
    widget.openPreviewDialog(); // nothing to open, nothing hangs
    QCOMPARE(widget.applyPreprocessing(m_dir.filePath("out")), QString());
}

void TestPreprocWidget::applyPreprocessingWritesTheExport()
{
    PreprocWidget widget(picture("photo.png", TestFiles::markedImage(1600, 1200)));
    widget.setFrameSettings(QSize(1200, 1600), true, false);
    const QString out = m_dir.filePath("preproc/nested");
    const QString written = widget.applyPreprocessing(out);
    QCOMPARE(written, QDir(out).filePath("photo_preproc.jpg"));
    QImageReader reader(written);
    QCOMPARE(reader.format(), QByteArray("jpeg"));
    const QImage image = reader.read();
    QCOMPARE(image.size(), QSize(1200, 1600));       // the panel's native portrait size
    QVERIFY(image.pixelColor(1189, 10).red() > 200); // the landscape composition turned clockwise
}

void TestPreprocWidget::applyPreprocessingNamesAfterTheBaseName()
{
    const QString source = m_dir.filePath("IMG_1.2.heic");
    QVERIFY(HeicWriter::write(source, TestFiles::markedImage(160, 120)));
    PreprocWidget widget(source);
    const QString written = widget.applyPreprocessing(m_dir.filePath("heic_out"));
    QCOMPARE(written, QDir(m_dir.filePath("heic_out")).filePath("IMG_1.2_preproc.jpg"));
    QCOMPARE(QImage(written).size(), QSize(1200, 1600));
}

void TestPreprocWidget::applyPreprocessingReportsFailure()
{
    PreprocWidget widget(picture("g.png", TestFiles::markedImage(80, 60)));
    QVERIFY(TestFiles::write(m_dir.filePath("blocker"), "a file where the folder should be"));
    QCOMPARE(widget.applyPreprocessing(m_dir.filePath("blocker/out")), QString());
}

void TestPreprocWidget::thumbnailClickOpensThePreview()
{
    PreprocWidget widget(picture("h.png", TestFiles::markedImage(800, 600)));
    widget.show();
    QTRY_VERIFY(widget.previewLabel()->isVisible());
    QSignalSpy spy(&widget, &PreprocWidget::preprocessingChanged);
    QString title;
    ModalAnswerer answerer(QMessageBox::Ok, [&title](QWidget *dialog) {
        auto *preview = qobject_cast<ImagePreviewDialog *>(dialog);
        if (!preview)
            return;
        title = preview->windowTitle();
        for (int i = 0; i < 4; ++i)
            preview->controlPanel()->rotateRightButton()->click();
        preview->controlPanel()->fillButton(FillMode::CenterCrop)->click();
        preview->accept();
    });
    QTest::mouseClick(widget.previewLabel(), Qt::LeftButton);
    QCOMPARE(title, QStringLiteral("Image Preview & Edit"));
    QCOMPARE(widget.state().rotationDegrees, 0);
    QCOMPARE(widget.state().fillMode, FillMode::CenterCrop);
    QCOMPARE(spy.count(), 1); // the row redraws and reports after OK
}

void TestPreprocWidget::previewCancelKeepsTheState()
{
    PreprocWidget widget(picture("i.png", TestFiles::markedImage(800, 600)));
    widget.commitState({FillMode::WhiteFill, 180}, false);
    QSignalSpy spy(&widget, &PreprocWidget::preprocessingChanged);
    ModalAnswerer answerer(QMessageBox::Ok, [](QWidget *dialog) {
        auto *preview = qobject_cast<ImagePreviewDialog *>(dialog);
        if (!preview)
            return;
        preview->controlPanel()->rotateRightButton()->click();
        preview->controlPanel()->fillButton(FillMode::BlackFill)->click();
        preview->reject();
    });
    widget.openPreviewDialog();
    QCOMPARE(widget.state().fillMode, FillMode::WhiteFill);
    QCOMPARE(widget.state().rotationDegrees, 180);
    QCOMPARE(spy.count(), 0);
}

QTEST_MAIN(TestPreprocWidget)
#include "tst_PreprocWidget.moc"
