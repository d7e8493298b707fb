// A picture list's file: what is written is read back the same, and a file that is not a
// whole list of this version gives a message and nothing.
#include "app/PictureList.h"
#include "ui/UiLanguage.h"

#include "FramedState.h"
#include "ReadOnlyFolder.h"
#include "TestFiles.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

class TestPictureList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { UiLanguage::set(UiLanguage::English); }
    void writtenIsReadBack();
    void versionOneListsAreNeutral();
    void relativePathsAreTakenFromTheListsFolder();
    void faultyFilesGiveAMessage_data();
    void faultyFilesGiveAMessage();
    void fillModeKeys();
    void savingIntoAReadOnlyFolderKeepsTheOldList();
    void missingFile();

private:
    static PictureList sample();
};

PictureList TestPictureList::sample()
{
    PictureList list;
    PreprocState vivid = framedState(FillMode::CenterCrop, 0.1, 0.9, 2.5, 90);
    vivid.tone = {TonePreset::Vivid, 0.5, -0.25, 1.3};
    vivid.caption.kind = CaptionKind::Custom;
    vivid.caption.corner = CaptionCorner::BottomLeft;
    vivid.caption.style = CaptionStyle::Outline;
    vivid.caption.custom = QStringLiteral("长城 2024");
    PreprocState dated = framedState(FillMode::BlackFill, 0.3, 0.5, 1.25, 270);
    dated.caption.kind = CaptionKind::DateTaken;
    list.pictures << PictureList::Picture{"/photos/a.jpg", vivid}
                  << PictureList::Picture{"/photos/b c/é.png", framedState(FillMode::Direct, 0.5, 0.5, 1.0)}
                  << PictureList::Picture{"/photos/c.heic", dated};
    list.keyFile = "/keys/frame.json";
    list.panelType = "253";
    list.landscape = true;
    list.intervalMinutes = 1440;
    list.loop = false;
    list.saveLocation = "/out";
    return list;
}

void TestPictureList::writtenIsReadBack()
{
    const PictureList written = sample();
    QString error;
    const std::optional<PictureList> read = PictureList::fromJson(written.toJson(), "/elsewhere", &error);
    QVERIFY2(read, qPrintable(error));
    QCOMPARE(read->pictures.size(), 3);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(read->pictures.at(i).path,
                 QDir::cleanPath(QFileInfo(written.pictures.at(i).path).absoluteFilePath()));
        QVERIFY(read->pictures.at(i).state == written.pictures.at(i).state);
    }
    QCOMPARE(read->keyFile, QFileInfo("/keys/frame.json").absoluteFilePath());
    QCOMPARE(read->panelType, QString("253"));
    QVERIFY(read->landscape);
    QCOMPARE(read->intervalMinutes, 1440);
    QVERIFY(!read->loop);
    QCOMPARE(read->saveLocation, QFileInfo("/out").absoluteFilePath());

    const QJsonObject root = QJsonDocument::fromJson(written.toJson()).object();
    QCOMPARE(root.value("format").toString(), QString("velora-picture-list"));
    QCOMPARE(root.value("version").toInt(), 2);
    const QJsonObject tone = root.value("pictures")[0].toObject().value("tone").toObject();
    QCOMPARE(tone.value("preset").toString(), QString("vivid"));
    QCOMPARE(tone.value("exposure").toDouble(), 0.5);
    QCOMPARE(tone.value("contrast").toDouble(), -0.25);
    QCOMPARE(tone.value("saturation").toDouble(), 1.3);
    QCOMPARE(root.value("pictures")[1].toObject().value("tone").toObject().value("preset").toString(),
             QString("neutral"));
    // A caption where there is one: its text only where it is the owner's.
    const QJsonObject caption = root.value("pictures")[0].toObject().value("caption").toObject();
    QCOMPARE(caption.value("kind").toString(), QString("text"));
    QCOMPARE(caption.value("corner").toString(), QString("bottom-left"));
    QCOMPARE(caption.value("style").toString(), QString("outline"));
    QCOMPARE(caption.value("text").toString(), QString("长城 2024"));
    QVERIFY(!root.value("pictures")[1].toObject().contains("caption"));
    const QJsonObject date = root.value("pictures")[2].toObject().value("caption").toObject();
    QCOMPARE(date.value("kind").toString(), QString("date"));
    QVERIFY(!date.contains("text"));
}

void TestPictureList::versionOneListsAreNeutral()
{
    // A list written before tones: version 1, no tone (one that is there anyway is not read).
    QByteArray json = sample().toJson().replace("\"version\": 2", "\"version\": 1");
    QString error;
    const std::optional<PictureList> read = PictureList::fromJson(json, "/", &error);
    QVERIFY2(read, qPrintable(error));
    QCOMPARE(read->pictures.size(), 3);
    for (const PictureList::Picture &picture : read->pictures)
        QVERIFY(picture.state.tone == ToneSettings() && picture.state.caption == CaptionSettings());
    QCOMPARE(read->pictures.first().state.zoom, 2.5); // the rest of the state is read
    // Written again, it is a version-2 list.
    QCOMPARE(QJsonDocument::fromJson(read->toJson()).object().value("version").toInt(), 2);
}

void TestPictureList::relativePathsAreTakenFromTheListsFolder()
{
    QByteArray json = sample().toJson();
    json.replace("\"/photos/a.jpg\"", "\"sub/a.jpg\"");
    const std::optional<PictureList> read = PictureList::fromJson(json, "/lists", nullptr);
    QVERIFY(read);
    QCOMPARE(read->pictures.first().path, QDir::cleanPath(QFileInfo("/lists/sub/a.jpg").absoluteFilePath()));
}

void TestPictureList::faultyFilesGiveAMessage_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("message");
    const QByteArray whole = sample().toJson();
    const auto edited = [&](const char *from, const char *to) { return QByteArray(whole).replace(from, to); };
    QTest::newRow("empty") << QByteArray() << "The file is not valid JSON";
    QTest::newRow("truncated") << whole.left(whole.size() / 2) << "The file is not valid JSON";
    QTest::newRow("an array") << QByteArray("[1, 2]") << "The file is not a picture list of this program.";
    QTest::newRow("another format") << edited("velora-picture-list", "other-list")
                                    << "The file is not a picture list of this program.";
    QTest::newRow("newer version") << edited("\"version\": 2", "\"version\": 3")
                                   << "The list has format version 3; this program reads versions 1 to 2.";
    QTest::newRow("version 0") << edited("\"version\": 2", "\"version\": 0")
                               << "The list has format version 0; this program reads versions 1 to 2.";
    QTest::newRow("no version") << edited("\"version\": 2", "\"versio\": 2")
                                << "The list has format version ?; this program reads versions 1 to 2.";
    QTest::newRow("bad orientation") << edited("\"landscape\"", "\"sideways\"")
                                     << "The list's settings are missing or invalid.";
    QTest::newRow("interval out of range") << edited("\"interval_minutes\": 1440", "\"interval_minutes\": 1")
                                           << "The list's settings are missing or invalid.";
    QTest::newRow("zoom too large") << edited("\"zoom\": 2.5", "\"zoom\": 9")
                                    << "Picture 1 of the list is missing or invalid.";
    QTest::newRow("odd rotation") << edited("\"rotation\": 270", "\"rotation\": 45")
                                  << "Picture 3 of the list is missing or invalid.";
    QTest::newRow("unknown fill") << edited("\"fill\": \"direct\"", "\"fill\": \"stretch\"")
                                  << "Picture 2 of the list is missing or invalid.";
    QTest::newRow("unknown tone") << edited("\"vivid\"", "\"sepia\"")
                                  << "Picture 1 in the list has an invalid tone: unknown preset \"sepia\".";
    QTest::newRow("exposure out of range")
        << edited("\"exposure\": 0.5", "\"exposure\": 5")
        << "Picture 1 in the list has an invalid tone: exposure 5 is outside -2 … 2.";
    QTest::newRow("saturation below 0")
        << edited("\"saturation\": 1.3", "\"saturation\": -1")
        << "Picture 1 in the list has an invalid tone: saturation -1 is outside 0 … 2.";
    QTest::newRow("contrast not a number")
        << edited("\"contrast\": -0.25", "\"contrast\": \"lots\"")
        << "Picture 1 in the list has an invalid tone: contrast lots is outside -1 … 1.";
    QTest::newRow("unknown caption")
        << edited("\"kind\": \"text\"", "\"kind\": \"poem\"")
        << "Picture 1 in the list has an invalid caption: unknown kind \"poem\".";
    QTest::newRow("unknown corner")
        << edited("\"bottom-right\"", "\"top\"")
        << "Picture 3 in the list has an invalid caption: unknown corner \"top\".";
    QTest::newRow("caption text not a text")
        << edited("\"长城 2024\"", "17")
        << "Picture 1 in the list has an invalid caption: unknown text \"17\".";
    QTest::newRow("no pictures") << edited("\"pictures\"", "\"picture\"")
                                 << "The list has no picture entries.";
}

void TestPictureList::faultyFilesGiveAMessage()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, message);
    QString error;
    QVERIFY(!PictureList::fromJson(json, "/", &error));
    QVERIFY2(error.startsWith(message), qPrintable(error));
}

void TestPictureList::fillModeKeys()
{
    for (FillMode mode : {FillMode::Direct, FillMode::BlurFill, FillMode::WhiteFill, FillMode::BlackFill,
                          FillMode::CenterCrop})
        QCOMPARE(PictureList::fillModeFromKey(PictureList::fillModeKey(mode)), std::optional<FillMode>(mode));
    QCOMPARE(PictureList::fillModeKey(FillMode::CenterCrop), QString("crop"));
    QVERIFY(!PictureList::fillModeFromKey("Blur"));
}

void TestPictureList::savingIntoAReadOnlyFolderKeepsTheOldList()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("lists/mine.json");
    QVERIFY(TestFiles::write(path, "the old list"));
    ReadOnlyFolder readOnly(dir.filePath("lists"));
    if (!readOnly.isReadOnly())
        QSKIP("this machine cannot make a folder read-only");
    QString error;
    QVERIFY(!sample().save(path, &error));
    QVERIFY2(error.startsWith("The picture list cannot be saved:\n" + QDir::toNativeSeparators(path)),
             qPrintable(error));
    QCOMPARE(TestFiles::read(path), QByteArray("the old list"));
    QCOMPARE(QDir(dir.filePath("lists")).entryList(QDir::Files), QStringList{"mine.json"});
}

void TestPictureList::missingFile()
{
    QString error;
    QVERIFY(!PictureList::load("/nonexistent/list.json", &error));
    QVERIFY(error.startsWith(QStringLiteral("The picture list cannot be opened:\n") +
                             QDir::toNativeSeparators("/nonexistent/list.json")));
    QVERIFY(error.endsWith("The table was not changed."));
}

QTEST_GUILESS_MAIN(TestPictureList)
#include "tst_PictureList.moc"
