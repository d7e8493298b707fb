// Captions: the text each kind writes for a picture, where the band or the outlined text lands,
// its size against the composition's height, Chinese characters, and nothing at all by default.
#include "preprocess/Caption.h"

#include "TestFiles.h"

#include <QFontMetrics>
#include <QLocale>
#include <QTest>

namespace {

const QColor kGrey(128, 128, 128);

CaptionSettings caption(CaptionKind kind, CaptionCorner corner, CaptionStyle style, const QString &text)
{
    CaptionSettings settings;
    settings.kind = kind;
    settings.corner = corner;
    settings.style = style;
    settings.custom = text;
    return Caption::resolved(settings, QString(), QDateTime());
}

// How many pixels of a part of the image are near a colour.
int countNear(const QImage &image, const QRect &part, const QColor &colour, int tolerance = 24)
{
    int count = 0;
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x) {
            const QColor c = image.pixelColor(x, y);
            count += qAbs(c.red() - colour.red()) <= tolerance &&
                     qAbs(c.green() - colour.green()) <= tolerance &&
                     qAbs(c.blue() - colour.blue()) <= tolerance;
        }
    return count;
}

} // namespace

class TestCaption : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachKindWritesItsText();
    void theDefaultDrawsNothing();
    void theBandIsInItsCorner_data();
    void theBandIsInItsCorner();
    void outlinedTextKeepsThePictureAround();
    void itsSizeFollowsTheHeight();
    void chineseCharactersHaveAFont();
    void aLongTextIsCutShort();
    void theRenderWritesIt();
};

void TestCaption::eachKindWritesItsText()
{
    const QDateTime taken(QDate(2024, 5, 17), QTime(10, 30));
    CaptionSettings settings;
    settings.custom = QStringLiteral("  Grandma's  90th ");
    const QString path = QStringLiteral("/photos/IMG_0042.final.jpg");
    const auto shown = [&](CaptionKind kind, const QDateTime &when) {
        settings.kind = kind;
        return Caption::resolved(settings, path, when).shown;
    };
    QCOMPARE(shown(CaptionKind::None, taken), QString());
    QCOMPARE(shown(CaptionKind::DateTaken, taken),
             QLocale::system().toString(QDate(2024, 5, 17), QLocale::ShortFormat));
    QVERIFY(!shown(CaptionKind::DateTaken, taken).isEmpty());
    QCOMPARE(shown(CaptionKind::DateTaken, QDateTime()), QString()); // no date taken: nothing
    QCOMPARE(shown(CaptionKind::FileName, taken), QStringLiteral("IMG_0042.final"));
    QCOMPARE(shown(CaptionKind::Custom, taken), QStringLiteral("Grandma's 90th"));
}

void TestCaption::theDefaultDrawsNothing()
{
    const QImage original = TestFiles::photoLikeImage(300, 400, 7).convertToFormat(QImage::Format_RGB32);
    QImage image = original;
    Caption::draw(image, CaptionSettings());
    QCOMPARE(image, original);
    Caption::draw(image,
                  caption(CaptionKind::DateTaken, CaptionCorner::BottomLeft, CaptionStyle::Band, QString()));
    QCOMPARE(image, original); // a date caption of a picture without a date
    QVERIFY(Caption::area(image.size(), CaptionSettings()).isEmpty());
}

void TestCaption::theBandIsInItsCorner_data()
{
    QTest::addColumn<int>("corner");
    QTest::newRow("bottom left") << int(CaptionCorner::BottomLeft);
    QTest::newRow("bottom right") << int(CaptionCorner::BottomRight);
}

void TestCaption::theBandIsInItsCorner()
{
    QFETCH(int, corner);
    const bool left = corner == int(CaptionCorner::BottomLeft);
    QImage image = TestFiles::solidImage(600, 800, kGrey);
    const CaptionSettings settings =
        caption(CaptionKind::Custom, CaptionCorner(corner), CaptionStyle::Band, QStringLiteral("17/05/2024"));
    Caption::draw(image, settings);

    const QRect band = Caption::area(image.size(), settings);
    QVERIFY(!band.isEmpty());
    // In the bottom fifth, on its own side, away from the edges by a little.
    QVERIFY(band.bottom() < 800 && band.top() > 800 * 4 / 5);
    QVERIFY(left ? band.left() > 0 && band.right() < 300 : band.right() < 599 && band.left() > 300);
    // Black with white letters; the grey all around.
    const int black = countNear(image, band, Qt::black);
    const int white = countNear(image, band, Qt::white);
    QVERIFY2(black > band.width() * band.height() / 2, qPrintable(QString::number(black)));
    QVERIFY2(white > 50, qPrintable(QString::number(white)));
    const QRect elsewhere(left ? 300 : 0, 0, 300, 800);
    QCOMPARE(countNear(image, elsewhere, kGrey, 0), 300 * 800);
    QCOMPARE(countNear(image, QRect(0, 0, 600, band.top() - 1), kGrey, 0), 600 * (band.top() - 1));
}

void TestCaption::outlinedTextKeepsThePictureAround()
{
    QImage image = TestFiles::solidImage(600, 800, kGrey);
    const CaptionSettings settings = caption(CaptionKind::Custom, CaptionCorner::BottomRight,
                                             CaptionStyle::Outline, QStringLiteral("Tokyo"));
    Caption::draw(image, settings);
    const QRect box = Caption::area(image.size(), settings);
    const int area = box.width() * box.height();
    QVERIFY(countNear(image, box, Qt::white) > 30);
    QVERIFY(countNear(image, box, Qt::black) > 30);
    QVERIFY(countNear(image, box, kGrey, 0) > area / 4); // no band: the picture shows between letters
}

void TestCaption::itsSizeFollowsTheHeight()
{
    const CaptionSettings settings = caption(CaptionKind::Custom, CaptionCorner::BottomLeft,
                                             CaptionStyle::Band, QStringLiteral("2024-05-17"));
    const QRect small = Caption::area(QSize(600, 800), settings);
    const QRect large = Caption::area(QSize(1200, 1600), settings);
    const QRect wide = Caption::area(QSize(2400, 1600), settings); // the width does not matter
    QVERIFY(qAbs(large.height() - 2 * small.height()) <= 3);
    QVERIFY(qAbs(large.width() - 2 * small.width()) <= 6);
    QCOMPARE(wide.size(), large.size());
    QVERIFY(qAbs(small.height() - 800 * Caption::kHeightShare * 1.9) < 800 * Caption::kHeightShare);
}

void TestCaption::chineseCharactersHaveAFont()
{
    const QFont font = Caption::font(40);
    const QFontMetrics metrics(font);
    for (const QChar c : QStringLiteral("长城日落"))
        QVERIFY2(metrics.inFont(c), qPrintable(font.family()));
    QImage image = TestFiles::solidImage(600, 800, kGrey);
    const CaptionSettings settings = caption(CaptionKind::Custom, CaptionCorner::BottomLeft,
                                             CaptionStyle::Band, QStringLiteral("长城日落 2024"));
    Caption::draw(image, settings);
    QVERIFY(countNear(image, Caption::area(image.size(), settings), Qt::white) > 100);
}

void TestCaption::aLongTextIsCutShort()
{
    const CaptionSettings settings = caption(CaptionKind::Custom, CaptionCorner::BottomRight,
                                             CaptionStyle::Band, QString(400, QLatin1Char('W')));
    const QRect band = Caption::area(QSize(600, 800), settings);
    QVERIFY(band.left() >= 0);
    QVERIFY(band.width() <= 600 * 0.9 + 1);
}

void TestCaption::theRenderWritesIt()
{
    // The composition the thumbnail, the preview and the processor's picture share: the caption
    // is where the corner says as the frame hangs, in landscape too.
    const QImage photo = TestFiles::solidImage(800, 600, kGrey);
    PreprocState state{FillMode::CenterCrop, 0};
    state.caption =
        caption(CaptionKind::Custom, CaptionCorner::BottomLeft, CaptionStyle::Band, QStringLiteral("Hi"));
    const QImage shown = renderPreprocDisplayPreview(photo, state, QSize(300, 400), true);
    QCOMPARE(shown.size(), QSize(400, 300));
    const QRect band = Caption::area(shown.size(), state.caption);
    QVERIFY(countNear(shown, band, Qt::black) > band.width() * band.height() / 2);
    // The processor's picture is that composition turned clockwise: the band is at its top left.
    const QImage exported = renderPreprocExport(photo, state, QSize(300, 400), true);
    QCOMPARE(exported.size(), QSize(300, 400));
    const QPoint padding(band.left() + 2, band.top() + 2); // on the band, beside the letters
    QVERIFY(shown.pixelColor(padding).value() < 40);
    QVERIFY(exported.pixelColor(299 - padding.y(), padding.x()).value() < 40);
    QVERIFY(exported.pixelColor(150, 200).value() > 100);
    // Without a caption, the same render as ever.
    PreprocState plain = state;
    plain.caption = CaptionSettings();
    QCOMPARE(
        renderPreprocDisplayPreview(photo, plain, QSize(300, 400), true),
        renderPreprocDisplayPreview(photo, PreprocState{FillMode::CenterCrop, 0}, QSize(300, 400), true));
}

QTEST_MAIN(TestCaption)
#include "tst_Caption.moc"
