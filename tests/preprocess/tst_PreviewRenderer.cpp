// The rows' framed thumbnails drawn on worker threads: the same picture as drawn at once, the
// newest request winning, nothing delivered to a widget that has gone.
#include "images/CompactImage.h"
#include "preprocess/PreprocWidget.h"
#include "preprocess/PreviewRenderer.h"
#include "ui/UiLanguage.h"

#include "TestFiles.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTest>

class TestPreviewRenderer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aRenderedThumbnailIsTheOneDrawnAtOnce();
    void theNewestRequestWins();
    void aWidgetThatWentGetsNothing();
};

void TestPreviewRenderer::initTestCase() { UiLanguage::set(UiLanguage::English); }

void TestPreviewRenderer::aRenderedThumbnailIsTheOneDrawnAtOnce()
{
    const CompactImage source(TestFiles::photoLikeImage(280, 210, 3));
    PreprocWidget direct(QStringLiteral("/nowhere/a.jpg"), source);
    PreprocWidget rendered(QStringLiteral("/nowhere/a.jpg"), source);
    PreviewRenderer renderer;
    rendered.setPreviewRenderer(&renderer);
    QSignalSpy idle(&renderer, &PreviewRenderer::idle);
    for (PreprocWidget *widget : {&direct, &rendered}) {
        widget->setFrameSettings(QSize(1200, 1600), true, false);
        widget->setFillMode(FillMode::WhiteFill, true);
    }
    QVERIFY(!renderer.isIdle());
    QVERIFY(idle.wait(5000));
    QVERIFY(renderer.isIdle());
    QCOMPARE(rendered.previewLabel()->pixmap().toImage(), direct.previewLabel()->pixmap().toImage());
}

void TestPreviewRenderer::theNewestRequestWins()
{
    const CompactImage source(TestFiles::markedImage(280, 210));
    PreprocWidget widget(QStringLiteral("/nowhere/b.jpg"), source);
    PreprocWidget expected(QStringLiteral("/nowhere/b.jpg"), source);
    PreviewRenderer renderer;
    widget.setPreviewRenderer(&renderer);
    QSignalSpy idle(&renderer, &PreviewRenderer::idle);
    for (int step = 0; step < 20; ++step)
        widget.onRotateRight(); // twenty requests: five full turns
    widget.setFillMode(FillMode::BlackFill, true);
    QVERIFY(idle.wait(5000));
    expected.setFillMode(FillMode::BlackFill, true);
    QCOMPARE(widget.previewLabel()->pixmap().toImage(), expected.previewLabel()->pixmap().toImage());
}

void TestPreviewRenderer::aWidgetThatWentGetsNothing()
{
    PreviewRenderer renderer;
    QSignalSpy idle(&renderer, &PreviewRenderer::idle);
    {
        PreprocWidget widget(QStringLiteral("/nowhere/c.jpg"),
                             CompactImage(TestFiles::markedImage(280, 210)));
        widget.setPreviewRenderer(&renderer);
        for (int i = 0; i < 5; ++i)
            widget.onRotateLeft();
    }
    QVERIFY(idle.wait(5000)); // the renders end, and are dropped
    // And a renderer that goes first leaves its widgets drawing themselves no more, safely.
    auto *early = new PreviewRenderer;
    PreprocWidget orphan(QStringLiteral("/nowhere/d.jpg"), CompactImage(TestFiles::markedImage(280, 210)));
    orphan.setPreviewRenderer(early);
    orphan.onRotateRight();
    delete early;
    orphan.onRotateRight(); // drawn at once again
    QVERIFY(!orphan.previewLabel()->pixmap().isNull());
}

QTEST_MAIN(TestPreviewRenderer)
#include "tst_PreviewRenderer.moc"
