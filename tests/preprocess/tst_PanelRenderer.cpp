// The preview dialog's worker: the newest request wins, what it delivers is the render itself,
// and destroying it mid-render delivers nothing.
#include "preprocess/EpaperLook.h"
#include "preprocess/PanelRenderer.h"

#include "TestFiles.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace {

const QSize kPanel(1200, 1600);

PanelRenderer::Request request(const QImage &source, FillMode mode, bool epaper = false)
{
    return {source, {mode, 0}, kPanel, false, epaper, QSize(390, 520)};
}

} // namespace

class TestPanelRenderer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void deliversTheRender();
    void theNewestRequestWins();
    void destroyedMidRenderDeliversNothing();

private:
    QImage m_picture = TestFiles::positionImage(1600, 1200);
};

void TestPanelRenderer::deliversTheRender()
{
    PanelRenderer renderer;
    QSignalSpy ready(&renderer, &PanelRenderer::ready);
    const PanelRenderer::Request asked = request(m_picture, FillMode::CenterCrop, true);
    const quint64 ticket = renderer.request(asked);
    QVERIFY(renderer.isBusy());
    QVERIFY(ready.wait(10000));
    QVERIFY(!renderer.isBusy());
    QCOMPARE(ready.size(), 1);
    QCOMPARE(ready.first().at(0).toULongLong(), ticket);
    const auto result = ready.first().at(1).value<PanelRenderer::Result>();
    QCOMPARE(result.composition.size(), kPanel);
    QCOMPARE(result.composition,
             EpaperLook::render(renderPreprocDisplayPreview(m_picture, asked.state, kPanel, false)));
    QCOMPARE(result.framed.size(), QSize(390, 520));
}

void TestPanelRenderer::theNewestRequestWins()
{
    PanelRenderer renderer;
    QSignalSpy ready(&renderer, &PanelRenderer::ready);
    renderer.request(request(m_picture, FillMode::BlurFill, true));
    renderer.request(request(m_picture, FillMode::WhiteFill));
    const quint64 last = renderer.request(request(m_picture, FillMode::BlackFill));
    QTRY_COMPARE_WITH_TIMEOUT(ready.size(), 1, 10000);
    QTest::qWait(200); // nothing older follows
    QCOMPARE(ready.size(), 1);
    QCOMPARE(ready.first().at(0).toULongLong(), last);
    const auto result = ready.first().at(1).value<PanelRenderer::Result>();
    QCOMPARE(result.composition,
             renderPreprocDisplayPreview(m_picture, {FillMode::BlackFill, 0}, kPanel, false));
}

void TestPanelRenderer::destroyedMidRenderDeliversNothing()
{
    const QImage large = TestFiles::positionImage(4000, 3000);
    int delivered = 0;
    for (int round = 0; round < 3; ++round) {
        auto renderer = std::make_unique<PanelRenderer>();
        connect(renderer.get(), &PanelRenderer::ready, this, [&delivered] { ++delivered; });
        renderer->request(request(large, FillMode::BlurFill, true));
        QTest::qWait(round * 20); // before it begins, and while it runs
        renderer.reset();         // waits for the render under way
    }
    QTest::qWait(100);
    QCOMPARE(delivered, 0);
}

QTEST_MAIN(TestPanelRenderer)
#include "tst_PanelRenderer.moc"
