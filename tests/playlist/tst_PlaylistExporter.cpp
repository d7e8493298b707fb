#include "playlist/PlaylistExporter.h"
#include "ui/UiLanguage.h"

#include "LanguageGuard.h"
#include "TestFiles.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

class TestPlaylistExporter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void unencryptedJsonIsByteExact();
    void encryptedJsonIsByteExact();
    void encryptionWithoutDeviceIds();
    void exportsFramesAndPlaylist();
    void invalidPanelFailsFirst();
    void checksRunInOrder();
    void intervalBounds_data();
    void intervalBounds();
    void thousandFramesAcceptedThousandAndOneRefused();
    void emptyOutputDirIsRefused();
    void missingBinWritesNothing();
    void nativeSeparatorsAreAccepted();
    void reExportReplacesFramesAndPlaylist();
    void outputDirThatCannotBeCreated();
    void folderInTheWayIsNotTouched();
    void copyFailureNamesBothPaths();

private:
    PlaylistExportRequest request(int frames);
    QTemporaryDir m_dir;
};

void TestPlaylistExporter::initTestCase() { UiLanguage::set(UiLanguage::English); }

void TestPlaylistExporter::init()
{
    QVERIFY(m_dir.isValid());
    QDir(m_dir.filePath(QStringLiteral("out"))).removeRecursively();
    QFile::remove(m_dir.filePath(QStringLiteral("blocker")));
}

PlaylistExportRequest TestPlaylistExporter::request(int frames)
{
    PlaylistExportRequest r;
    r.outputDir = m_dir.filePath(QStringLiteral("out/vl_play"));
    r.intervalMinutes = 30;
    r.loop = true;
    r.panel = PlaylistExporter::panelFromGuiType(QStringLiteral("133"), QString());
    for (int i = 0; i < frames; ++i) {
        const QString source =
            m_dir.filePath(QStringLiteral("bins/row_%1.bin").arg(i, 4, 10, QLatin1Char('0')));
        if (!QFileInfo::exists(source))
            TestFiles::write(source, "frame " + QByteArray::number(i));
        r.frameNames << QStringLiteral("frame_%1.bin").arg(i, 3, 10, QLatin1Char('0'));
        r.sourcePaths << source;
    }
    return r;
}

void TestPlaylistExporter::unencryptedJsonIsByteExact()
{
    PlaylistExportRequest r = request(2);
    const QByteArray expected = R"({
    "boot_policy": "exclusive",
    "encrypt": {
        "enabled": false
    },
    "frames": [
        {
            "file": "frame_000.bin"
        },
        {
            "file": "frame_001.bin"
        }
    ],
    "play": {
        "loop": true,
        "mode": "sequence"
    },
    "schedule": {
        "interval_min": 30,
        "type": "interval"
    },
    "screen": {
        "height": 1600,
        "panel": "13.3",
        "width": 1200
    },
    "version": 1
}
)";
    QCOMPARE(PlaylistExporter::buildPlaylistJson(r), expected);
}

void TestPlaylistExporter::encryptedJsonIsByteExact()
{
    PlaylistExportRequest r = request(1);
    r.panel = PlaylistExporter::panelFromGuiType(QStringLiteral("253"), QString());
    r.loop = false;
    r.intervalMinutes = 1440;
    r.encrypt = true;
    r.accountUid = QStringLiteral("u-42");
    r.deviceIds = QStringList{QStringLiteral("A1B2C3D4E5F6")};
    const QByteArray expected = R"({
    "boot_policy": "exclusive",
    "encrypt": {
        "account_uid": "u-42",
        "device_ids": [
            "A1B2C3D4E5F6"
        ],
        "enabled": true,
        "recipient_count": 1,
        "require_provisioned": true,
        "scheme": "ecies-p256-gcm-v1"
    },
    "frames": [
        {
            "file": "frame_000.bin"
        }
    ],
    "play": {
        "loop": false,
        "mode": "sequence"
    },
    "schedule": {
        "interval_min": 1440,
        "type": "interval"
    },
    "screen": {
        "height": 3200,
        "panel": "25.3",
        "width": 1800
    },
    "version": 3
}
)";
    QCOMPARE(PlaylistExporter::buildPlaylistJson(r), expected);
}

void TestPlaylistExporter::encryptionWithoutDeviceIds()
{
    PlaylistExportRequest r = request(1);
    r.encrypt = true;
    const QJsonObject root = QJsonDocument::fromJson(PlaylistExporter::buildPlaylistJson(r)).object();
    const QJsonObject encrypt = root.value("encrypt").toObject();
    QCOMPARE(root.value("version").toInt(), 3);
    QVERIFY(encrypt.value("enabled").toBool());
    QCOMPARE(encrypt.value("recipient_count").toInt(-1), 0);
    QVERIFY(encrypt.value("device_ids").isArray());
    QVERIFY(encrypt.value("device_ids").toArray().isEmpty());
    QCOMPARE(encrypt.value("account_uid").toString("x"), QString());
}

void TestPlaylistExporter::exportsFramesAndPlaylist()
{
    const PlaylistExportRequest r = request(3);
    QCOMPARE(PlaylistExporter::exportPlaylist(r), QString());
    const QDir out(r.outputDir);
    QCOMPARE(out.entryList(QDir::Files, QDir::Name),
             (QStringList{"frame_000.bin", "frame_001.bin", "frame_002.bin", "playlist.json"}));
    for (int i = 0; i < 3; ++i)
        QCOMPARE(TestFiles::read(out.filePath(r.frameNames.at(i))), "frame " + QByteArray::number(i));
    QCOMPARE(TestFiles::read(out.filePath("playlist.json")), PlaylistExporter::buildPlaylistJson(r));
    // The sources are copied, never moved.
    for (const QString &source : r.sourcePaths)
        QVERIFY(QFileInfo::exists(source));
}

void TestPlaylistExporter::invalidPanelFailsFirst()
{
    PlaylistExportRequest r = request(1);
    r.panel = PlaylistExporter::panelFromGuiType(QStringLiteral("custom"), QStringLiteral("1200x825"));
    r.intervalMinutes = 1; // would fail later
    r.sourcePaths.clear(); // would fail later
    QCOMPARE(PlaylistExporter::exportPlaylist(r), QStringLiteral("Invalid panel info."));
    QVERIFY(!QFileInfo::exists(r.outputDir));
    QCOMPARE(
        r.panel.error,
        QStringLiteral("Custom panel type cannot build a TF playlist. Choose 133 / 070 / 100 / 253 / 285."));
    r.panel = PanelSpec();
    QCOMPARE(PlaylistExporter::exportPlaylist(r), QStringLiteral("Invalid panel info."));
}

void TestPlaylistExporter::checksRunInOrder()
{
    PlaylistExportRequest r = request(2);
    r.sourcePaths.removeLast();
    r.intervalMinutes = 2;
    QCOMPARE(PlaylistExporter::exportPlaylist(r),
             QStringLiteral("The frame list and the source files differ in number."));

    r = request(0);
    r.intervalMinutes = 2;
    QCOMPARE(PlaylistExporter::exportPlaylist(r), QStringLiteral("A playlist needs at least one BIN frame."));

    r = request(1);
    r.intervalMinutes = 2;
    r.outputDir.clear();
    QCOMPARE(PlaylistExporter::exportPlaylist(r),
             QStringLiteral("The slideshow interval must be at least 3 minutes."));
    QVERIFY(!QFileInfo::exists(m_dir.filePath("out")));
    LanguageGuard zh(UiLanguage::Chinese); // every message follows the UI language
    QCOMPARE(PlaylistExporter::exportPlaylist(r), QStringLiteral("轮播间隔至少为 3 分钟。"));
}

void TestPlaylistExporter::intervalBounds_data()
{
    QTest::addColumn<int>("minutes");
    QTest::addColumn<QString>("error");
    QTest::newRow("2") << 2 << "The slideshow interval must be at least 3 minutes.";
    QTest::newRow("-5") << -5 << "The slideshow interval must be at least 3 minutes.";
    QTest::newRow("3") << 3 << "";
    QTest::newRow("50000") << 50000 << "";
    QTest::newRow("50001") << 50001 << "The slideshow interval cannot exceed 50000 minutes.";
}

void TestPlaylistExporter::intervalBounds()
{
    QFETCH(int, minutes);
    QFETCH(QString, error);
    PlaylistExportRequest r = request(1);
    r.intervalMinutes = minutes;
    QCOMPARE(PlaylistExporter::exportPlaylist(r), error);
    if (error.isEmpty()) {
        const QJsonObject root =
            QJsonDocument::fromJson(TestFiles::read(QDir(r.outputDir).filePath("playlist.json"))).object();
        QCOMPARE(root.value("schedule").toObject().value("interval_min").toInt(), minutes);
    }
}

void TestPlaylistExporter::thousandFramesAcceptedThousandAndOneRefused()
{
    PlaylistExportRequest r = request(1001);
    QCOMPARE(PlaylistExporter::exportPlaylist(r),
             QStringLiteral("A playlist supports at most 1000 frame(s)."));
    QVERIFY(!QFileInfo::exists(r.outputDir));

    r.frameNames.removeLast();
    r.sourcePaths.removeLast();
    QCOMPARE(PlaylistExporter::exportPlaylist(r), QString());
    QVERIFY(QFileInfo::exists(QDir(r.outputDir).filePath("frame_999.bin")));
    const QJsonObject root =
        QJsonDocument::fromJson(TestFiles::read(QDir(r.outputDir).filePath("playlist.json"))).object();
    QCOMPARE(root.value("frames").toArray().size(), 1000);
}

void TestPlaylistExporter::emptyOutputDirIsRefused()
{
    PlaylistExportRequest r = request(1);
    r.outputDir.clear();
    QCOMPARE(PlaylistExporter::exportPlaylist(r), QStringLiteral("Specify the vl_play output folder."));
}

void TestPlaylistExporter::missingBinWritesNothing()
{
    PlaylistExportRequest r = request(3);
    const QString gone = m_dir.filePath("bins/gone.bin");
    r.sourcePaths[1] = gone;
    QCOMPARE(PlaylistExporter::exportPlaylist(r),
             QStringLiteral("BIN file does not exist: %1\n\nNo package was written.").arg(gone));
    QVERIFY(!QFileInfo::exists(r.outputDir));
    QCOMPARE(QDir(m_dir.filePath("out")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

void TestPlaylistExporter::nativeSeparatorsAreAccepted()
{
    PlaylistExportRequest r = request(1);
    r.outputDir = QDir::toNativeSeparators(r.outputDir);
    r.sourcePaths[0] = QDir::toNativeSeparators(r.sourcePaths[0]);
    QCOMPARE(PlaylistExporter::exportPlaylist(r), QString());
}

void TestPlaylistExporter::reExportReplacesFramesAndPlaylist()
{
    PlaylistExportRequest r = request(2);
    QCOMPARE(PlaylistExporter::exportPlaylist(r), QString());
    const QDir out(r.outputDir);

    QVERIFY(TestFiles::write(r.sourcePaths.at(0), "second run"));
    r.loop = false;
    QCOMPARE(PlaylistExporter::exportPlaylist(r), QString());
    QCOMPARE(TestFiles::read(out.filePath("frame_000.bin")), QByteArray("second run"));
    QCOMPARE(TestFiles::read(out.filePath("playlist.json")), PlaylistExporter::buildPlaylistJson(r));
    QVERIFY(TestFiles::read(out.filePath("playlist.json")).contains("\"loop\": false"));
}

void TestPlaylistExporter::outputDirThatCannotBeCreated()
{
    PlaylistExportRequest r = request(1);
    QVERIFY(TestFiles::write(m_dir.filePath("blocker"), "a file, not a folder"));
    r.outputDir = m_dir.filePath("blocker/vl_play");
    QCOMPARE(PlaylistExporter::exportPlaylist(r),
             QStringLiteral("Cannot write to the save location:\n%1\n\nNot a directory\n\n"
                            "Choose a folder you can write to.")
                 .arg(m_dir.filePath("blocker")));
    QCOMPARE(TestFiles::read(m_dir.filePath("blocker")), QByteArray("a file, not a folder"));
}

void TestPlaylistExporter::folderInTheWayIsNotTouched()
{
    PlaylistExportRequest r = request(1);
    // A folder named like the playlist inside the old package is not the package's own.
    QVERIFY(QDir().mkpath(QDir(r.outputDir).filePath("playlist.json")));
    QCOMPARE(
        PlaylistExporter::exportPlaylist(r),
        QStringLiteral("The folder %1 holds files that are not part of a playback package:\nplaylist.json\n\n"
                       "Move them elsewhere, then try again. Nothing was changed.")
            .arg(r.outputDir));
    QVERIFY(QFileInfo(QDir(r.outputDir).filePath("playlist.json")).isDir());
}

void TestPlaylistExporter::copyFailureNamesBothPaths()
{
    PlaylistExportRequest r = request(1);
    // A folder where the frame should be: it exists, but cannot be read as a file.
    QVERIFY(QDir().mkpath(m_dir.filePath("bins/folder.bin")));
    r.sourcePaths[0] = m_dir.filePath("bins/folder.bin");
    const QString error = PlaylistExporter::exportPlaylist(r);
    // The frame being written, in the new folder beside the package.
    QVERIFY2(QRegularExpression("^" +
                                QRegularExpression::escape("Copy failed: " + r.sourcePaths.at(0) + " → " +
                                                           QDir::cleanPath(r.outputDir)) +
                                "\\.partial-[0-9a-z]+/frame_000\\.bin\n")
                 .match(error)
                 .hasMatch(),
             qPrintable(error));
    QVERIFY(error.endsWith(QStringLiteral("\n\nNo package was written.")));
    QVERIFY(!QFileInfo::exists(r.outputDir));
}

QTEST_GUILESS_MAIN(TestPlaylistExporter)
#include "tst_PlaylistExporter.moc"
