// The vl_play package made from the window: the request, the questions and the messages.
// from the window, against the real window.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "playlist/PlaylistExporter.h"
#include "preprocess/PreprocWidget.h"
#include "ui/UiLanguage.h"

#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowFixture.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>

class TestMainWindowPlaylist : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void packageFollowsTheKeyFilesPanel();
    void keyWithoutDeviceIdEncryptsForNobody();
    void unreadableKeyGivesAnUnencryptedPackage();
    void missingOutputsAreSkippedWithContiguousNames();
    void interactiveExportAsksAboutMissingFilesAndExistingFolders();
    void interactiveExportWithoutOutputs();
    void exportRefusals();
    void exportFailureIsReported();
    void openingAPackageThatDoesNotExist();
};

void TestMainWindowPlaylist::packageFollowsTheKeyFilesPanel()
{
    addPictures(2);
    writeOutputs({0, 1});
    m_window->applyPubkeyFile(key("big.json", R"({"panel": "28.5", "device_id": "D1", "uid": "U1"})"));
    comboStartingWith(*m_window, "133")->setCurrentText(QStringLiteral("133")); // the combo says otherwise
    PlaylistExportRequest request;
    QString message;
    QVERIFY(m_window->buildPlaylistRequest(&request, &message));
    QCOMPARE(message, QString());
    QCOMPARE(request.panel.panel, QStringLiteral("28.5"));
    QCOMPARE(request.panel.size, QSize(2160, 3060));
    QVERIFY(request.encrypt);
    QCOMPARE(request.accountUid, QStringLiteral("U1"));
    QCOMPARE(request.deviceIds, QStringList{"D1"});
    QCOMPARE(request.frameNames, (QStringList{"frame_000.bin", "frame_001.bin"}));
    QCOMPARE(request.intervalMinutes, 30);
    QVERIFY(request.loop);
    QVERIFY(!m_window->buildPlaylistRequest(nullptr, &message));
}

void TestMainWindowPlaylist::keyWithoutDeviceIdEncryptsForNobody()
{
    addPictures(1);
    writeOutputs({0});
    m_window->applyPubkeyFile(key("noid.json", R"({"panel": "13.3", "uid": "U2"})"));
    QVERIFY(m_window->runPlaylistExport(false));
    const QJsonObject encrypt =
        QJsonDocument::fromJson(TestFiles::read(m_fixture->path("out/vl_play/playlist.json")))
            .object()
            .value("encrypt")
            .toObject();
    QVERIFY(encrypt.value("enabled").toBool());
    QCOMPARE(encrypt.value("recipient_count").toInt(-1), 0);
    QVERIFY(encrypt.value("device_ids").toArray().isEmpty());
    QCOMPARE(encrypt.value("account_uid").toString(), QStringLiteral("U2"));
}

void TestMainWindowPlaylist::unreadableKeyGivesAnUnencryptedPackage()
{
    addPictures(1);
    writeOutputs({0});
    m_window->applyPubkeyFile(key("broken.json", "{ not json"));
    QVERIFY(m_window->runPlaylistExport(false));
    const QByteArray playlist = TestFiles::read(m_fixture->path("out/vl_play/playlist.json"));
    QVERIFY(playlist.contains("\"version\": 1"));
    QVERIFY(playlist.contains("\"enabled\": false"));
}

void TestMainWindowPlaylist::missingOutputsAreSkippedWithContiguousNames()
{
    addPictures(3);
    writeOutputs({0, 2});
    QVERIFY(m_window->runPlaylistExport(false));
    const QDir package(m_fixture->path("out/vl_play"));
    QCOMPARE(package.entryList(QDir::Files, QDir::Name),
             (QStringList{"frame_000.bin", "frame_001.bin", "playlist.json"}));
    QCOMPARE(TestFiles::read(package.filePath("frame_001.bin")), QByteArray("frame of row 2"));
    QVERIFY(logLines(*m_window).contains(QStringLiteral("⚠ 1 file(s) missing BIN; will skip:")));
    QVERIFY(logLines(*m_window).contains(QStringLiteral("pic_0001.png")));
    QCOMPARE(lastLog(*m_window), QStringLiteral("✅ Playlist created: %1 (2 frames, interval=30 min)")
                                     .arg(QDir::toNativeSeparators(package.path())));
}

void TestMainWindowPlaylist::interactiveExportAsksAboutMissingFilesAndExistingFolders()
{
    addPictures(2);
    writeOutputs({1});
    {
        ModalAnswerer no(QMessageBox::No);
        QVERIFY(!m_window->runPlaylistExport(true));
        QCOMPARE(no.title(), QStringLiteral("Some Files Missing"));
        QCOMPARE(no.text(),
                 QStringLiteral(
                     "1 file(s) missing BIN; will skip:\npic_0000.png\n\nContinue creating the playlist?"));
    }
    QVERIFY(!QFileInfo::exists(m_fixture->path("out/vl_play")));
    {
        ModalAnswerer yes(QMessageBox::Yes);
        QVERIFY(m_window->runPlaylistExport(true));
        QCOMPARE(yes.titles(), (QStringList{"Some Files Missing", "Created"}));
        QCOMPARE(yes.text(),
                 QStringLiteral(
                     "Playlist created:\n%1\n\n1 BIN file(s) and playlist.json\nCopy the vl_play folder "
                     "to the TF card root.")
                     .arg(QDir::toNativeSeparators(m_fixture->path("out/vl_play"))));
    }
    writeOutputs({0});
    {
        ModalAnswerer no(QMessageBox::No);
        QVERIFY(!m_window->runPlaylistExport(true));
        QCOMPARE(no.title(), QStringLiteral("Folder Exists"));
        QCOMPARE(no.text(),
                 QStringLiteral("Target folder already exists:\n%1\n\nOverwrite BIN and playlist.json?")
                     .arg(QDir::toNativeSeparators(m_fixture->path("out/vl_play"))));
    }
    ModalAnswerer yes(QMessageBox::Yes);
    QVERIFY(m_window->runPlaylistExport(true));
    QVERIFY(QFileInfo::exists(m_fixture->path("out/vl_play/frame_001.bin")));
}

void TestMainWindowPlaylist::interactiveExportWithoutOutputs()
{
    addPictures(2);
    {
        ModalAnswerer answerer(QMessageBox::Ok);
        QVERIFY(!m_window->runPlaylistExport(true));
        QCOMPARE(answerer.title(), QStringLiteral("Cannot Create Playlist"));
        QCOMPARE(answerer.text(), QStringLiteral("pic_0000.png\npic_0001.png"));
    }
    QVERIFY(!m_window->runPlaylistExport(false));
    QCOMPARE(lastLog(*m_window),
             QStringLiteral("pic_0001.png")); // "⚠ Playlist export failed: pic_0000.png\npic_0001.png"
    // Rows that name no file give the general message.
    m_window->onClearAll();
    m_window->imageTable()->setRowCount(1000);
    ModalAnswerer answerer(QMessageBox::Ok);
    QVERIFY(!m_window->runPlaylistExport(true));
    QCOMPARE(answerer.text(),
             QStringLiteral("No BIN files found. Finish processing first, or disable JPG preview only."));
}

void TestMainWindowPlaylist::exportRefusals()
{
    {
        ModalAnswerer answerer(QMessageBox::Ok);
        QVERIFY(!m_window->runPlaylistExport(true));
        QCOMPARE(answerer.title(), QStringLiteral("Notice"));
        QCOMPARE(answerer.text(), QStringLiteral("Add images to process first."));
    }
    const int lines = int(logLines(*m_window).size());
    QVERIFY(!m_window->runPlaylistExport(false));
    QCOMPARE(int(logLines(*m_window).size()), lines);

    m_window->imageTable()->setRowCount(1001);
    {
        ModalAnswerer answerer(QMessageBox::Ok);
        QVERIFY(!m_window->runPlaylistExport(true));
        QCOMPARE(answerer.title(), QStringLiteral("Settings Error"));
        QCOMPARE(answerer.text(), QStringLiteral("A playlist supports at most 1000 frame(s)."));
    }
    QVERIFY(!m_window->runPlaylistExport(false));
    QCOMPARE(lastLog(*m_window),
             QStringLiteral("⚠ Playlist export failed: A playlist supports at most 1000 frame(s)."));

    m_window->imageTable()->setRowCount(0);
    addPictures(1);
    writeOutputs({0});
    withPlaceholder(*m_window, QStringLiteral("Required"))->clear();
    {
        ModalAnswerer answerer(QMessageBox::Ok);
        QVERIFY(!m_window->runPlaylistExport(true));
        QCOMPARE(answerer.title(), QStringLiteral("Settings Error"));
        QCOMPARE(answerer.text(), QStringLiteral("Set the playlist save location first."));
    }
    QVERIFY(!m_window->runPlaylistExport(false));
    QCOMPARE(lastLog(*m_window), QStringLiteral("⚠ Playlist export failed: Save location not set."));

    comboStartingWith(*m_window, "133")->addItem(QStringLiteral("custom"));
    comboStartingWith(*m_window, "133")->setCurrentText(QStringLiteral("custom"));
    withPlaceholder(*m_window, QStringLiteral("WxH"))->setText(QStringLiteral("1200x825"));
    ModalAnswerer answerer(QMessageBox::Ok);
    QVERIFY(!m_window->runPlaylistExport(true));
    QCOMPARE(answerer.title(), QStringLiteral("Cannot Create Playlist"));
    QCOMPARE(
        answerer.text(),
        QStringLiteral("Custom panel type cannot build a TF playlist. Choose 133 / 070 / 100 / 253 / 285."));
}

void TestMainWindowPlaylist::exportFailureIsReported()
{
    addPictures(1);
    writeOutputs({0});
    QVERIFY(
        TestFiles::write(m_fixture->path("blocked"), "a file where the save location should be a folder"));
    withPlaceholder(*m_window, QStringLiteral("Required"))->setText(m_fixture->path("blocked"));
    ModalAnswerer answerer(QMessageBox::Ok);
    QVERIFY(!m_window->runPlaylistExport(true));
    const QString error = QStringLiteral("Cannot write to the save location:\n%1\n\nNot a directory\n\n"
                                         "Choose a folder you can write to.")
                              .arg(m_fixture->path("blocked"));
    QCOMPARE(answerer.title(), QStringLiteral("Create Failed"));
    QCOMPARE(answerer.icon(), QMessageBox::Critical);
    QCOMPARE(answerer.text(), error);
    QVERIFY(logLines(*m_window).join('\n').endsWith(QStringLiteral("❌ Failed to create playlist: ") + error));
    QCOMPARE(TestFiles::read(m_fixture->path("blocked")),
             QByteArray("a file where the save location should be a folder"));
}

void TestMainWindowPlaylist::openingAPackageThatDoesNotExist()
{
    ModalAnswerer answerer(QMessageBox::Ok);
    m_window->openOutputOrPlaylistDir();
    QCOMPARE(answerer.title(), QStringLiteral("Notice"));
    QCOMPARE(answerer.text(), QStringLiteral("Playlist folder does not exist. Finish processing first."));
}

QTEST_MAIN(TestMainWindowPlaylist)
#include "tst_MainWindowPlaylist.moc"
