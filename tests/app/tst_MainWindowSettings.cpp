// The settings file beside the executable: what a start reads and what a close writes.
#include "app/MainWindow.h"
#include "app/SettingsLocation.h"
#include "ui/UiLanguage.h"

#include "ModalAnswerer.h"
#include "ReadOnlyFolder.h"
#include "TestFiles.h"
#include "WindowFixture.h"
#include "WindowProbe.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QProcess>
#include <QScopeGuard>
#include <QSettings>
#include <QSpinBox>
#include <QStatusBar>
#include <QTest>

namespace {

std::unique_ptr<QSettings> settingsFile()
{
    return std::make_unique<QSettings>(WindowFixture::settingsPath(), QSettings::IniFormat);
}

} // namespace

class TestMainWindowSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void settingsLiveBesideTheExecutable();
    void firstStartDefaults();
    void closingWritesEveryKey();
    void valuesComeBack();
    void orientationOtherThan90LoadsAs0();
    void deletedLutIsReplacedByTheDetectedDefault();
    void outputDirIsShownAndNeverWritten();
    void tooShortIntervalIsSavedClamped();
    void keyFileDecidesThePanel();
    void unwritableProgramFolderKeepsSettingsInTheUserFolder();
    void settingsBesideTheProgramWinWhileWritable();
    void aChangeIsWrittenWithinASecond();
    void aKilledProgramKeepsWhatWasChanged();
    void aWritableFileInAReadOnlyFolderMovesToTheUserFolder();
    void aFailedWriteIsToldOnce();

private:
    // The settings program copied into folder and run there; its output lines.
    QStringList runInstalled(const QString &folder, const QStringList &args);

    std::unique_ptr<WindowFixture> m_fixture;
};

void TestMainWindowSettings::initTestCase()
{
    UiLanguage::set(UiLanguage::English);
    m_fixture = std::make_unique<WindowFixture>();
}

void TestMainWindowSettings::cleanup() { WindowFixture::removeSettings(); }

void TestMainWindowSettings::settingsLiveBesideTheExecutable()
{
    const std::unique_ptr<QSettings> settings = appSettings();
    QCOMPARE(settings->fileName(), WindowFixture::settingsPath());
    QCOMPARE(settings->format(), QSettings::IniFormat);
    QVERIFY(settings->fileName().endsWith(QStringLiteral("/VeloraOfflineTool.ini")));
}

void TestMainWindowSettings::firstStartDefaults()
{
    QVERIFY(!QFileInfo::exists(WindowFixture::settingsPath()));
    MainWindow window;
    QCOMPARE(comboStartingWith(window, "133")->currentText(), QStringLiteral("133"));
    QCOMPARE(comboStartingWith(window, "Portrait (0)")->currentIndex(), 0);
    QVERIFY(withText<QCheckBox>(window, "Include subfolders")->isChecked());
    QVERIFY(withText<QCheckBox>(window, "Generate playlist")->isChecked());
    QVERIFY(withText<QCheckBox>(window, "Loop playback")->isChecked());
    QCOMPARE(window.playlistIntervalMinutes(), 30);
    QCOMPARE(saveLocation(window)->text(), QString());
    QCOMPARE(window.currentKeyFilePath(), QString());
    const QList<QLineEdit *> fields = processorFields(window);
    QCOMPARE(fields.at(1)->text(), QDir::toNativeSeparators(WindowFixture::demoProcessor()));
    QCOMPARE(fields.at(3)->text(), QString()); // output
    QCOMPARE(fields.at(4)->text(), QString()); // no LUT beside the stand-in
}

void TestMainWindowSettings::closingWritesEveryKey()
{
    {
        MainWindow window;
        withText<QCheckBox>(window, "Generate playlist")->setChecked(false);
        saveLocation(window)->setText(QStringLiteral(" /somewhere/else "));
        withText<QCheckBox>(window, "Loop playback")->setChecked(false);
        withText<QCheckBox>(window, "Include subfolders")->setChecked(false);
        comboStartingWith(window, "Portrait (0)")->setCurrentIndex(1);
        window.setPlaylistIntervalMinutes(1500);
        QVERIFY(window.close()); // no run: closes without a question
    }
    const auto settings = settingsFile();
    QCOMPARE(settings->value("processor_variant").toString(), QStringLiteral("lite"));
    QCOMPARE(settings->value("playlist_enabled").toBool(), true);
    QCOMPARE(settings->value("playlist_loop").toBool(), false);
    QCOMPARE(settings->value("recursive_scan").toBool(), false);
    QCOMPARE(settings->value("orientation").toString(), QStringLiteral("90"));
    QCOMPARE(settings->value("panel_type").toString(), QStringLiteral("133"));
    QCOMPARE(settings->value("playlist_interval_min").toInt(), 1500);
    QCOMPARE(settings->value("playlist_parent_dir").toString(),
             QStringLiteral(" /somewhere/else ")); // as shown
    QCOMPARE(settings->value("key_file_path").toString(), QString());
    // The processor's paths are the configuration's to decide: only a choice by hand is written.
    QVERIFY(!settings->contains("variant/lite/exe"));
    QVERIFY(!settings->contains("variant/lite/work_dir"));
    QVERIFY(settings->contains("lut_path"));
    QVERIFY(!settings->contains("output_dir"));
    QVERIFY(!settings->contains("ui_language"));
}

void TestMainWindowSettings::valuesComeBack()
{
    {
        const auto settings = settingsFile();
        settings->setValue("playlist_loop", false);
        settings->setValue("recursive_scan", false);
        settings->setValue("playlist_parent_dir", "/pictures/frame");
        settings->setValue("playlist_interval_min", 4321);
        settings->setValue("orientation", "90");
        settings->setValue("variant/lite/exe", "/opt/processor/TARN-lite");
    }
    MainWindow window;
    QVERIFY(!withText<QCheckBox>(window, "Loop playback")->isChecked());
    QVERIFY(!withText<QCheckBox>(window, "Include subfolders")->isChecked());
    QVERIFY(withText<QCheckBox>(window, "Generate playlist")->isChecked());
    QCOMPARE(saveLocation(window)->text(), QStringLiteral("/pictures/frame"));
    QCOMPARE(window.playlistIntervalMinutes(), 4321);
    QVERIFY(window.isLandscapeOrientation());
    // A path an older version saved at its close is not a choice: the configuration decides.
    QCOMPARE(processorFields(window).at(1)->text(), QDir::toNativeSeparators(WindowFixture::demoProcessor()));
    QCOMPARE(processorFields(window).at(2)->text(),
             QDir::toNativeSeparators(WindowFixture::demoProcessorDir()));
}

void TestMainWindowSettings::orientationOtherThan90LoadsAs0()
{
    settingsFile()->setValue("orientation", "180");
    MainWindow window;
    QCOMPARE(window.frameOrientationValue(), QStringLiteral("0"));
    QVERIFY(!window.isLandscapeOrientation());
}

void TestMainWindowSettings::deletedLutIsReplacedByTheDetectedDefault()
{
    // A processor folder with a default LUT in its test/ folder.
    const QString processor = m_fixture->path("lutproc");
    QDir().mkpath(processor + "/test");
    QVERIFY(QFile::copy(WindowFixture::demoProcessor(), processor + "/TARN-lite"));
    QVERIFY(TestFiles::write(processor + "/test/lut_128_36_16_uni_251208.bin", "lut"));
    m_fixture->useProcessor(processor + "/TARN-lite", processor);
    const QString deleted = m_fixture->path("deleted.bin");
    settingsFile()->setValue("lut_path", deleted);
    {
        MainWindow window;
        QCOMPARE(processorFields(window).at(4)->text(),
                 QDir::toNativeSeparators(processor + "/test/lut_128_36_16_uni_251208.bin"));
    }
    // A LUT that exists is kept.
    const QString kept = m_fixture->path("kept.bin");
    QVERIFY(TestFiles::write(kept, "lut"));
    settingsFile()->setValue("lut_path", kept);
    {
        MainWindow window;
        QCOMPARE(processorFields(window).at(4)->text(), QDir::toNativeSeparators(kept));
    }
    m_fixture->useProcessor(WindowFixture::demoProcessor(), WindowFixture::demoProcessorDir());
}

void TestMainWindowSettings::outputDirIsShownAndNeverWritten()
{
    settingsFile()->setValue("output_dir", "/old/output/path");
    {
        MainWindow window;
        QCOMPARE(processorFields(window).at(3)->text(), QDir::toNativeSeparators("/old/output/path"));
        processorFields(window).at(3)->setText(QStringLiteral("/changed"));
    }
    QCOMPARE(settingsFile()->value("output_dir").toString(), QStringLiteral("/old/output/path"));
}

void TestMainWindowSettings::tooShortIntervalIsSavedClamped()
{
    settingsFile()->setValue("playlist_interval_min", 1);
    {
        MainWindow window;
        const QList<QSpinBox *> spins = window.findChildren<QSpinBox *>();
        QCOMPARE(spins.at(0)->value(), 0);
        QCOMPARE(spins.at(1)->value(), 0);
        QCOMPARE(spins.at(2)->value(), 3);
    }
    QCOMPARE(settingsFile()->value("playlist_interval_min").toInt(), 3);
}

void TestMainWindowSettings::keyFileDecidesThePanel()
{
    const QString key = m_fixture->path("keys/saved.json");
    QVERIFY(TestFiles::write(key, R"({"panel": "25.3", "stamac": "MAC"})"));
    {
        const auto settings = settingsFile();
        settings->setValue("key_file_path", key);
        settings->setValue("panel_type", "100");
    }
    {
        MainWindow window;
        QCOMPARE(window.currentKeyFilePath(), QDir::toNativeSeparators(key));
        QCOMPARE(window.panelResolution(), QSize(1800, 3200));
        QCOMPARE(window.loadKeyFileHistory(), QStringList{QDir::toNativeSeparators(key)});
        QCOMPARE(comboStartingWith(window, "25.3 · MAC")->count(), 1);
    }
    QCOMPARE(settingsFile()->value("panel_type").toString(), QStringLiteral("253"));
    // A key file that disappeared leaves the panel at 133, whatever was saved.
    QFile::remove(key);
    settingsFile()->setValue("panel_type", "285");
    MainWindow window;
    QCOMPARE(comboStartingWith(window, "133")->currentText(), QStringLiteral("133"));
    QCOMPARE(window.loadKeyFileHistory().size(), 1); // kept in the list, though not offered
}

QStringList TestMainWindowSettings::runInstalled(const QString &folder, const QStringList &args)
{
    QProcess program;
    program.start(QDir(folder).filePath("VeloraOfflineTool"), args);
    if (!program.waitForFinished(30000) || program.exitCode() != 0)
        return {QStringLiteral("failed: ") + QString::fromUtf8(program.readAllStandardError())};
    return QString::fromUtf8(program.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
}

void TestMainWindowSettings::unwritableProgramFolderKeepsSettingsInTheUserFolder()
{
    // Installed where the user cannot write (Program Files): settings go to the user's folder.
    const QString program = m_fixture->path("installed");
    QVERIFY(QDir().mkpath(program));
    QVERIFY(QFile::copy(QStringLiteral(VELORA_SETTINGS_HOST), QDir(program).filePath("VeloraOfflineTool")));
    const QString userSettings = m_fixture->path("config/PLABRUB/Velora Offline Tool/VeloraOfflineTool.ini");
    ReadOnlyFolder readOnly(program);
    if (!readOnly.isReadOnly())
        QSKIP("this machine cannot make a folder read-only for this user");
    QCOMPARE(runInstalled(program, {"--save", "/photos/frame"}), QStringList{"settings " + userSettings});
    QVERIFY(QFileInfo::exists(userSettings));
    QVERIFY(!QFileInfo::exists(QDir(program).filePath("VeloraOfflineTool.ini")));
    // Read back at the next start.
    QCOMPARE(runInstalled(program, {"--load"}),
             (QStringList{"location /photos/frame", "settings " + userSettings}));
}

void TestMainWindowSettings::settingsBesideTheProgramWinWhileWritable()
{
    const QString program = m_fixture->path("portable");
    QVERIFY(QDir().mkpath(program));
    QVERIFY(QFile::copy(QStringLiteral(VELORA_SETTINGS_HOST), QDir(program).filePath("VeloraOfflineTool")));
    // A user folder file from an earlier, read-only install does not win over the program's own.
    const QString userSettings = m_fixture->path("config/PLABRUB/Velora Offline Tool/VeloraOfflineTool.ini");
    QVERIFY(TestFiles::write(userSettings, "[General]\nplaylist_parent_dir=/elsewhere\n"));
    const QString beside = QDir(program).filePath("VeloraOfflineTool.ini");
    QCOMPARE(runInstalled(program, {"--save", "/photos/portable"}), QStringList{"settings " + beside});
    QCOMPARE(runInstalled(program, {"--load"}),
             (QStringList{"location /photos/portable", "settings " + beside}));
    QVERIFY(TestFiles::read(userSettings).contains("/elsewhere"));
    QFile::remove(userSettings);
}

void TestMainWindowSettings::aChangeIsWrittenWithinASecond()
{
    MainWindow window;
    QVERIFY(!QFileInfo::exists(WindowFixture::settingsPath())); // nothing written at the start
    saveLocation(window)->setText(QStringLiteral("/photos/soon"));
    window.setPlaylistIntervalMinutes(45);
    QVERIFY(!QFileInfo::exists(WindowFixture::settingsPath()));
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(WindowFixture::settingsPath()), 3000);
    const auto settings = settingsFile();
    QCOMPARE(settings->value("playlist_parent_dir").toString(), QStringLiteral("/photos/soon"));
    QCOMPARE(settings->value("playlist_interval_min").toInt(), 45);
}

void TestMainWindowSettings::aKilledProgramKeepsWhatWasChanged()
{
    const QString program = m_fixture->path("killed");
    QVERIFY(QDir().mkpath(program));
    QVERIFY(QFile::copy(QStringLiteral(VELORA_SETTINGS_HOST), QDir(program).filePath("VeloraOfflineTool")));
    const QString beside = QDir(program).filePath("VeloraOfflineTool.ini");
    QProcess running;
    running.start(QDir(program).filePath("VeloraOfflineTool"), {"--change", "/photos/kept"});
    QVERIFY(running.waitForReadyRead(30000));
    QCOMPARE(running.readAllStandardOutput(), QByteArray("changed\n"));
    // Written while the program runs on; then it is killed, as a logout or a crash would end it.
    QTRY_VERIFY_WITH_TIMEOUT(TestFiles::read(beside).contains("/photos/kept"), 10000);
    running.kill();
    QVERIFY(running.waitForFinished(10000));
    QCOMPARE(running.exitStatus(), QProcess::CrashExit);
    QCOMPARE(runInstalled(program, {"--load"}), (QStringList{"location /photos/kept", "settings " + beside}));
}

void TestMainWindowSettings::aWritableFileInAReadOnlyFolderMovesToTheUserFolder()
{
    // The settings file can be written, but its folder takes no new file: the settings' own
    // temporary file cannot be made there.
    const QString program = m_fixture->path("read-only-with-file");
    QVERIFY(QDir().mkpath(program));
    QVERIFY(QFile::copy(QStringLiteral(VELORA_SETTINGS_HOST), QDir(program).filePath("VeloraOfflineTool")));
    const QString beside = QDir(program).filePath("VeloraOfflineTool.ini");
    QVERIFY(TestFiles::write(beside, "[General]\nplaylist_parent_dir=/photos/before\n"));
    const QString userSettings = m_fixture->path("config/PLABRUB/Velora Offline Tool/VeloraOfflineTool.ini");
    QFile::remove(userSettings);
    ReadOnlyFolder readOnly(program);
    if (!readOnly.isReadOnly())
        QSKIP("this machine cannot make a folder read-only for this user");
    // What was kept beside the program comes along once; what changes is kept and comes back.
    QCOMPARE(runInstalled(program, {"--load"}),
             (QStringList{"location /photos/before", "settings " + userSettings}));
    QCOMPARE(runInstalled(program, {"--save", "/photos/after"}), QStringList{"settings " + userSettings});
    QCOMPARE(runInstalled(program, {"--load"}),
             (QStringList{"location /photos/after", "settings " + userSettings}));
    QVERIFY(TestFiles::read(beside).contains("/photos/before")); // left as it was
    QFile::remove(userSettings);
}

void TestMainWindowSettings::aFailedWriteIsToldOnce()
{
    // Folders stand where the settings file would be written, beside the program and in the
    // user's folder.
    const QString userSettings = SettingsLocation::inUserConfig();
    QVERIFY(QDir().mkpath(WindowFixture::settingsPath()));
    QVERIFY(QDir().mkpath(userSettings));
    const auto cleanUp = qScopeGuard([&] {
        QDir().rmdir(WindowFixture::settingsPath());
        QDir().rmdir(userSettings);
    });
    {
        MainWindow window;
        saveLocation(window)->setText(QStringLiteral("/photos/one"));
        const QString told =
            QStringLiteral("⚠ The settings could not be saved: %1. Settings changed now will not be kept for "
                           "the next start.")
                .arg(QDir::toNativeSeparators(userSettings));
        QTRY_VERIFY_WITH_TIMEOUT(logLines(window).contains(told), 3000);
        QCOMPARE(window.statusBar()->currentMessage(), told);
        saveLocation(window)->setText(QStringLiteral("/photos/two"));
        QTest::qWait(1500);
        QCOMPARE(logLines(window).count(told), 1);
    }
}

QTEST_MAIN(TestMainWindowSettings)
#include "tst_MainWindowSettings.moc"
