// The grid's tiles drawn on worker threads: the framed picture at the tile's size, drawn again
// for a new state or size, the tiles shown longest ago let go beyond the budget, and the tiles
// of removed rows forgotten.
#include "images/CompactImage.h"
#include "preprocess/TileRenderer.h"

#include "TestFiles.h"

#include <QSignalSpy>
#include <QTest>

namespace {

PreviewRenderer::Request request(const CompactImage &source, FillMode fill = FillMode::BlurFill)
{
    return {source, PreprocState{fill, 0}, QSize(1200, 1600), false};
}

const QSize kTile = PreviewRenderer::framedSize(QSize(1200, 1600), false, 160);

} // namespace

class TestTileRenderer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTileIsTheFramedPictureAtItsSize();
    void aNewStateOrSizeIsDrawnAgainWhileTheOldTileStandsIn();
    void theTilesShownLongestAgoGoBeyondTheBudget();
    void theTilesOfRemovedRowsAreForgotten();
};

void TestTileRenderer::aTileIsTheFramedPictureAtItsSize()
{
    QCOMPARE(kTile, QSize(120, 160));
    const CompactImage source(TestFiles::photoLikeImage(280, 210, 3));
    TileRenderer renderer(8 * 1024 * 1024);
    QSignalSpy ready(&renderer, &TileRenderer::tileReady);
    QVERIFY(renderer.tile(7, request(source), kTile).isNull()); // nothing yet: asked for
    QVERIFY(ready.wait(5000));
    QCOMPARE(ready.first().first().toULongLong(), quint64(7));
    QVERIFY(renderer.isCurrent(7, request(source), kTile));
    QCOMPARE(renderer.tile(7, request(source), kTile), PreviewRenderer::render(request(source), kTile));
    QCOMPARE(renderer.keptBytes(), qsizetype(kTile.width()) * kTile.height() * 4);
    // Asked for again while current: not drawn again.
    QTest::qWait(50);
    QCOMPARE(ready.size(), 1);
}

void TestTileRenderer::aNewStateOrSizeIsDrawnAgainWhileTheOldTileStandsIn()
{
    const CompactImage source(TestFiles::photoLikeImage(280, 210, 3));
    TileRenderer renderer(8 * 1024 * 1024);
    QSignalSpy ready(&renderer, &TileRenderer::tileReady);
    renderer.tile(1, request(source), kTile);
    QVERIFY(ready.wait(5000));
    const QImage blurred = renderer.tile(1, request(source), kTile);

    const QImage standing = renderer.tile(1, request(source, FillMode::WhiteFill), kTile);
    QCOMPARE(standing, blurred);
    QVERIFY(!renderer.isCurrent(1, request(source, FillMode::WhiteFill), kTile));
    QTRY_VERIFY(renderer.isCurrent(1, request(source, FillMode::WhiteFill), kTile));
    QVERIFY(renderer.tile(1, request(source, FillMode::WhiteFill), kTile) != blurred);

    const QSize larger = PreviewRenderer::framedSize(QSize(1200, 1600), false, 320);
    QCOMPARE(renderer.tile(1, request(source, FillMode::WhiteFill), larger).size(), kTile);
    QTRY_COMPARE(renderer.tile(1, request(source, FillMode::WhiteFill), larger).size(), larger);
    // An equal picture made anew is another source: drawn again.
    const CompactImage again(TestFiles::photoLikeImage(280, 210, 3));
    QVERIFY(!renderer.isCurrent(1, request(again, FillMode::WhiteFill), larger));
}

void TestTileRenderer::theTilesShownLongestAgoGoBeyondTheBudget()
{
    const CompactImage source(TestFiles::photoLikeImage(280, 210, 3));
    const qsizetype tileBytes = qsizetype(kTile.width()) * kTile.height() * 4;
    TileRenderer renderer(3 * tileBytes);
    for (quint64 id = 1; id <= 6; ++id) {
        renderer.tile(id, request(source), kTile);
        QTRY_VERIFY(renderer.isCurrent(id, request(source), kTile));
    }
    QCOMPARE(renderer.keptTiles(), 3);
    QCOMPARE(renderer.keptBytes(), 3 * tileBytes);
    for (quint64 id = 1; id <= 6; ++id)
        QCOMPARE(renderer.isCurrent(id, request(source), kTile), id > 3);
    // Shown again, tile 4 stays when another comes; tile 5 goes.
    renderer.tile(4, request(source), kTile);
    renderer.tile(1, request(source), kTile);
    QTRY_VERIFY(renderer.isCurrent(1, request(source), kTile));
    QVERIFY(renderer.isCurrent(4, request(source), kTile));
    QVERIFY(!renderer.isCurrent(5, request(source), kTile));
    QVERIFY(renderer.isCurrent(6, request(source), kTile));
}

void TestTileRenderer::theTilesOfRemovedRowsAreForgotten()
{
    const CompactImage source(TestFiles::photoLikeImage(280, 210, 3));
    TileRenderer renderer(8 * 1024 * 1024);
    for (quint64 id = 1; id <= 3; ++id) {
        renderer.tile(id, request(source), kTile);
        QTRY_VERIFY(renderer.isCurrent(id, request(source), kTile));
    }
    renderer.keepOnly({2});
    QCOMPARE(renderer.keptTiles(), 1);
    QVERIFY(renderer.isCurrent(2, request(source), kTile));
    QVERIFY(!renderer.isCurrent(1, request(source), kTile));
    QCOMPARE(renderer.keptBytes(), qsizetype(kTile.width()) * kTile.height() * 4);
}

QTEST_MAIN(TestTileRenderer)
#include "tst_TileRenderer.moc"
