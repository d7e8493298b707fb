// The target device (panel, orientation, key file and its history) and the package built
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

namespace {

QComboBox *historyCombo(MainWindow &window)
{
    // The first combo of the device step: the key-file history.
    for (QComboBox *combo : window.findChildren<QComboBox *>()) {
        if (combo->minimumContentsLength() == 24)
            return combo;
    }
    return nullptr;
}

} // namespace

class TestMainWindowDevice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void keyFileSelectsItsPanel();
    void unknownOrMissingPanelSelects133();
    void missingKeyFileClearsTheField();
    void historyKeepsTheNewestThirty();
    void deletedHistoryEntriesAreHiddenButKept();
    void historyLabels();
    void importKeyButtonOpensTheChooser();
    void choosingFromTheHistoryAppliesTheKey();
    void customPanelSizeTakesALowerCaseXOnly();
    void setLitePanelTypeFallsBackTo133();

    void packageFollowsTheKeyFilesPanel();
    void keyWithoutDeviceIdEncryptsForNobody();
    void unreadableKeyGivesAnUnencryptedPackage();
    void missingOutputsAreSkippedWithContiguousNames();
    void interactiveExportAsksAboutMissingFilesAndExistingFolders();
    void interactiveExportWithoutOutputs();
    void exportRefusals();
    void exportFailureIsReported();
    void openingAPackageThatDoesNotExist();

private:
    QString key(const QString &name, const QByteArray &json);
    QStringList addPictures(int count);
    void writeOutputs(std::initializer_list<int> rows);

    std::unique_ptr<WindowFixture> m_fixture;
    std::unique_ptr<MainWindow> m_window;
    int m_batch = 0;
};

void TestMainWindowDevice::initTestCase()
{
    UiLanguage::set(UiLanguage::English);
    m_fixture = std::make_unique<WindowFixture>();
}

void TestMainWindowDevice::init()
{
    QDir(m_fixture->path("out")).removeRecursively();
    QDir(m_fixture->path("tmp/tarngui_lite_bins")).removeRecursively();
    m_window = std::make_unique<MainWindow>();
    withPlaceholder(*m_window, QStringLiteral("Required"))->setText(m_fixture->path("out"));
}

void TestMainWindowDevice::cleanup()
{
    m_window.reset();
    WindowFixture::removeSettings();
}

QString TestMainWindowDevice::key(const QString &name, const QByteArray &json)
{
    const QString path = m_fixture->path(QStringLiteral("keys/") + name);
    TestFiles::write(path, json);
    return path;
}

QStringList TestMainWindowDevice::addPictures(int count)
{
    const QStringList pictures =
        TestFiles::makePictures(m_fixture->path(QStringLiteral("set%1").arg(m_batch++)), count);
    m_window->addImageFiles(pictures);
    return pictures;
}

void TestMainWindowDevice::writeOutputs(std::initializer_list<int> rows)
{
    for (int row : rows)
        TestFiles::write(m_window->resolveOutputPathsForRow(row), "frame of row " + QByteArray::number(row));
}

void TestMainWindowDevice::keyFileSelectsItsPanel()
{
    addPictures(2);
    QVERIFY(m_window->applyPubkeyFile(key("big.json", R"({"panel": "25.3"})")));
    QCOMPARE(comboStartingWith(*m_window, "133")->currentText(), QStringLiteral("253"));
    QCOMPARE(m_window->panelResolution(), QSize(1800, 3200));
    bool label = false;
    for (QLabel *l : m_window->findChildren<QLabel *>())
        label |= l->text() == QStringLiteral("1800 × 3200");
    QVERIFY(label);
    QCOMPARE(m_window->preprocWidgetAt(1)->panelResolution(), QSize(1800, 3200));
    QCOMPARE(m_window->currentKeyFilePath(), QDir::toNativeSeparators(m_fixture->path("keys/big.json")));
    for (const auto &[code, type] :
         {std::pair{"7.09", "070"}, std::pair{"10", "100"}, std::pair{"28.5", "285"}}) {
        m_window->applyPubkeyFile(key("k.json", QStringLiteral(R"({"panel": "%1"})").arg(code).toUtf8()));
        QCOMPARE(comboStartingWith(*m_window, "133")->currentText(), QString::fromLatin1(type));
    }
}

void TestMainWindowDevice::unknownOrMissingPanelSelects133()
{
    m_window->applyPubkeyFile(key("a.json", R"({"panel": "25.3"})"));
    QVERIFY(m_window->applyPubkeyFile(key("twelve.json", R"({"panel": "12"})")));
    QCOMPARE(comboStartingWith(*m_window, "133")->currentText(), QStringLiteral("133"));
    m_window->applyPubkeyFile(key("a.json", R"({"panel": "25.3"})"));
    QVERIFY(m_window->applyPubkeyFile(key("nopanel.json", R"({"uid": "u"})")));
    QCOMPARE(m_window->panelResolution(), QSize(1200, 1600));
    m_window->applyPubkeyFile(key("a.json", R"({"panel": "25.3"})"));
    QVERIFY(m_window->applyPubkeyFile(key("broken.json", R"({"panel": "25.3")")));
    QCOMPARE(comboStartingWith(*m_window, "133")->currentText(), QStringLiteral("133"));
    QCOMPARE(m_window->currentKeyFilePath(), QDir::toNativeSeparators(m_fixture->path("keys/broken.json")));
}

void TestMainWindowDevice::missingKeyFileClearsTheField()
{
    m_window->applyPubkeyFile(key("a.json", R"({"panel": "25.3"})"));
    QVERIFY(!m_window->applyPubkeyFile(m_fixture->path("keys/gone.json")));
    QCOMPARE(m_window->currentKeyFilePath(), QString());
    QCOMPARE(m_window->panelResolution(), QSize(1200, 1600));
}

void TestMainWindowDevice::historyKeepsTheNewestThirty()
{
    QStringList paths;
    for (int i = 0; i < 31; ++i) {
        paths << QDir::toNativeSeparators(key(QStringLiteral("h%1.json").arg(i), "{}"));
        m_window->addKeyFileToHistory(paths.last());
    }
    QStringList history = m_window->loadKeyFileHistory();
    QCOMPARE(history.size(), 30);
    QCOMPARE(history.first(), paths.at(30));
    QCOMPARE(history.last(), paths.at(1));
    m_window->addKeyFileToHistory(paths.at(5));
    history = m_window->loadKeyFileHistory();
    QCOMPARE(history.size(), 30);
    QCOMPARE(history.first(), paths.at(5));
    QCOMPARE(history.count(paths.at(5)), 1);
    m_window->addKeyFileToHistory(m_fixture->path("keys/absent.json")); // ignored
    m_window->addKeyFileToHistory(QString());
    QCOMPARE(m_window->loadKeyFileHistory(), history);
}

void TestMainWindowDevice::deletedHistoryEntriesAreHiddenButKept()
{
    const QString kept = key("kept.json", "{}");
    const QString gone = key("gone.json", "{}");
    m_window->addKeyFileToHistory(kept);
    m_window->addKeyFileToHistory(gone);
    QFile::remove(gone);
    m_window->refreshSavedKeyCombo();
    QComboBox *combo = historyCombo(*m_window);
    QCOMPARE(combo->count(), 1);
    QCOMPARE(combo->itemData(0).toString(), QDir::toNativeSeparators(kept));
    QCOMPARE(m_window->loadKeyFileHistory().size(), 2);
}

void TestMainWindowDevice::historyLabels()
{
    QCOMPARE(
        m_window->keyFileComboLabel(key("mac.json", R"({"panel": "13.3", "stamac": "A4:CF:12:34:56:78"})")),
        QStringLiteral("13.3 · A4:CF:12:34:56:78"));
    QCOMPARE(m_window->keyFileComboLabel(key("id.json", R"({"panel": "13.3", "device_id": "ABCDEFGHIJKL"})")),
             QStringLiteral("13.3 · ABCDEFGH"));
    QCOMPARE(m_window->keyFileComboLabel(key("short.json", R"({"panel": "25.3", "device_id": "ABC"})")),
             QStringLiteral("25.3 · ABC"));
    QCOMPARE(m_window->keyFileComboLabel(key("bare.json", R"({"stamac": "A4"})")),
             QStringLiteral("bare.json"));
    QCOMPARE(m_window->keyFileComboLabel(key("junk.json", "not json")), QStringLiteral("junk.json"));
}

void TestMainWindowDevice::importKeyButtonOpensTheChooser()
{
    const QString chosen = key("chosen.json", R"({"panel": "28.5", "stamac": "MAC-1"})");
    QString title;
    ModalAnswerer answerer(QMessageBox::Ok, [&](QWidget *dialog) {
        if (qobject_cast<QFileDialog *>(dialog))
            title = dialog->windowTitle();
        ModalAnswerer::chooseInFileDialog(dialog, QFileInfo(chosen).path(), QFileInfo(chosen).fileName());
    });
    QPushButton *import = nullptr;
    for (QPushButton *button : m_window->findChildren<QPushButton *>())
        import = button->text() == QStringLiteral("Import Key...") ? button : import;
    QTest::mouseClick(import, Qt::LeftButton);
    QCOMPARE(title, QStringLiteral("Select key file"));
    QCOMPARE(m_window->currentKeyFilePath(), QDir::toNativeSeparators(chosen));
    QCOMPARE(m_window->panelResolution(), QSize(2160, 3060));
    QCOMPARE(m_window->loadKeyFileHistory().first(), QDir::toNativeSeparators(chosen));
    QCOMPARE(historyCombo(*m_window)->currentText(), QStringLiteral("28.5 · MAC-1"));
}

void TestMainWindowDevice::choosingFromTheHistoryAppliesTheKey()
{
    const QString first = key("first.json", R"({"panel": "25.3", "stamac": "M1"})");
    const QString second = key("second.json", R"({"panel": "13.3", "stamac": "M2"})");
    m_window->addKeyFileToHistory(first);
    m_window->addKeyFileToHistory(second);
    m_window->applyPubkeyFile(second);
    m_window->refreshSavedKeyCombo();
    QComboBox *combo = historyCombo(*m_window);
    QCOMPARE(combo->currentText(), QStringLiteral("13.3 · M2"));
    combo->setCurrentIndex(1);
    QCOMPARE(m_window->currentKeyFilePath(), QDir::toNativeSeparators(first));
    QCOMPARE(m_window->panelResolution(), QSize(1800, 3200));
}

void TestMainWindowDevice::customPanelSizeTakesALowerCaseXOnly()
{
    QComboBox *panel = comboStartingWith(*m_window, "133");
    panel->addItem(QStringLiteral("custom")); // not offered by this window, understood by it
    panel->setCurrentText(QStringLiteral("custom"));
    QLineEdit *custom = withPlaceholder(*m_window, QStringLiteral("WxH"));
    const QList<QPair<QString, QSize>> cases = {
        {"1200x825", QSize(1200, 825)},  {" 800 x 600 ", QSize(800, 600)}, {"1200X825", QSize(1200, 1600)},
        {"1200×825", QSize(1200, 1600)}, {"x600", QSize(1200, 1600)},      {"0x5", QSize(1200, 1600)},
        {"12x", QSize(1200, 1600)},      {"", QSize(1200, 1600)}};
    for (const auto &[text, size] : cases) {
        custom->setText(text);
        QCOMPARE(m_window->panelResolution(), size);
    }
}

void TestMainWindowDevice::setLitePanelTypeFallsBackTo133()
{
    m_window->setLitePanelType(QStringLiteral("070"));
    QCOMPARE(comboStartingWith(*m_window, "133")->currentText(), QStringLiteral("070"));
    m_window->setLitePanelType(QStringLiteral("999"));
    QCOMPARE(comboStartingWith(*m_window, "133")->currentText(), QStringLiteral("133"));
}

void TestMainWindowDevice::packageFollowsTheKeyFilesPanel()
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

void TestMainWindowDevice::keyWithoutDeviceIdEncryptsForNobody()
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

void TestMainWindowDevice::unreadableKeyGivesAnUnencryptedPackage()
{
    addPictures(1);
    writeOutputs({0});
    m_window->applyPubkeyFile(key("broken.json", "{ not json"));
    QVERIFY(m_window->runPlaylistExport(false));
    const QByteArray playlist = TestFiles::read(m_fixture->path("out/vl_play/playlist.json"));
    QVERIFY(playlist.contains("\"version\": 1"));
    QVERIFY(playlist.contains("\"enabled\": false"));
}

void TestMainWindowDevice::missingOutputsAreSkippedWithContiguousNames()
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

void TestMainWindowDevice::interactiveExportAsksAboutMissingFilesAndExistingFolders()
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

void TestMainWindowDevice::interactiveExportWithoutOutputs()
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

void TestMainWindowDevice::exportRefusals()
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

void TestMainWindowDevice::exportFailureIsReported()
{
    addPictures(1);
    writeOutputs({0});
    QVERIFY(
        TestFiles::write(m_fixture->path("blocked"), "a file where the save location should be a folder"));
    withPlaceholder(*m_window, QStringLiteral("Required"))->setText(m_fixture->path("blocked"));
    ModalAnswerer answerer(QMessageBox::Ok);
    QVERIFY(!m_window->runPlaylistExport(true));
    const QString error = QStringLiteral("无法创建目录: ") + m_fixture->path("blocked/vl_play");
    QCOMPARE(answerer.title(), QStringLiteral("Create Failed"));
    QCOMPARE(answerer.icon(), QMessageBox::Critical);
    QCOMPARE(answerer.text(), error);
    QCOMPARE(lastLog(*m_window), QStringLiteral("❌ Failed to create playlist: ") + error);
    QCOMPARE(TestFiles::read(m_fixture->path("blocked")),
             QByteArray("a file where the save location should be a folder"));
}

void TestMainWindowDevice::openingAPackageThatDoesNotExist()
{
    ModalAnswerer answerer(QMessageBox::Ok);
    m_window->openOutputOrPlaylistDir();
    QCOMPARE(answerer.title(), QStringLiteral("Notice"));
    QCOMPARE(answerer.text(), QStringLiteral("Playlist folder does not exist. Finish processing first."));
}

QTEST_MAIN(TestMainWindowDevice)
#include "tst_MainWindowDevice.moc"
