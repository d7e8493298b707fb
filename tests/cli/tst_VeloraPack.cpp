// velora-pack as a user runs it: the same package as the window from the same pictures, key
// and settings (byte for byte), its progress and summary, and its exit codes.
#include "app/MainWindow.h"
#include "app/PictureList.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"
#include "preprocess/Tone.h"
#include "run/PackageJob.h"
#include "ui/AppStrings.h"

#include "ColourReference.h"
#include "FramedState.h"
#include "HeicWriter.h"
#include "ModalAnswerer.h"
#include "PackageCheck.h"
#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

namespace {

struct Result {
    int exitCode = -1;
    QString out;
    QString err;
};

} // namespace

class TestVeloraPack : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void helpAndVersion();
    void samePackageAsTheWindowFromAList();
    void samePackageAsTheWindowFromTheCommandLine();
    void toneGivesTheWindowsPackage();
    void heicPicturesAreConvertedAsTheWindowDoes();
    void progressAndSummary();
    void severalProcessorsGiveTheWindowsPackage();
    void aDamagedColourProfileIsSaidOnce();
    void needsNoDisplayWithoutCaptions();
    void aMissingWorkingFolderEndsAtOnce();
    void usageErrors_data();
    void usageErrors();
    void keyForAnotherPanel();
    void noPictureMadeWritesNoPackage();
    void noProcessorConfiguration();

private:
    // Runs velora-pack with the fixture's temporary folder (or tempDir) as its own.
    Result pack(const QStringList &arguments, const QString &executable = QStringLiteral(VELORA_PACK),
                const QString &workDir = QString(), const QString &tempDir = QString()) const;
    void runWindow();
};

Result TestVeloraPack::pack(const QStringList &arguments, const QString &executable, const QString &workDir,
                            const QString &tempDir) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", tempDir.isEmpty() ? m_fixture->path("tmp") : tempDir);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(workDir.isEmpty() ? m_fixture->workDir() : workDir);
    process.start(executable, arguments);
    Result result;
    if (!process.waitForFinished(120000))
        return result;
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

void TestVeloraPack::runWindow()
{
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QCOMPARE(completion.titles(), QStringList{"Ready for Your TF Card"});
}

void TestVeloraPack::helpAndVersion()
{
    const Result help = pack({"--help"});
    QCOMPARE(help.exitCode, 0);
    QVERIFY(help.out.contains("[OPTIONS] PICTURE_OR_FOLDER…"));
    for (const char *option :
         {"--out <DIR>", "--key <KEY.json>", "--panel <PANEL>", "--landscape",
          "--fill <blur|white|black|crop>", "--tone <neutral|balanced|vivid|soft|monochrome>",
          "--caption <none|date|name>", "--auto-frame", "--interval <MIN>", "--no-loop",
          "--list <LIST.json>"})
        QVERIFY2(help.out.contains(option), option);
    QVERIFY(help.out.contains("Exit codes:\n  0  the package was written\n"));
    const Result version = pack({"--version"});
    QCOMPARE(version.exitCode, 0);
    QCOMPARE(version.out, QStringLiteral("velora-pack 1.0.3\n"));
}

void TestVeloraPack::samePackageAsTheWindowFromAList()
{
    addColours({Qt::red, Qt::blue, Qt::green});
    const QString keyFile = key("frame.json", R"({"panel": "13.3", "device_id": "D-1", "uid": "U-9"})");
    setKeyFile(keyFile);
    m_window->preprocWidgetAt(0)->applyState(framedState(FillMode::CenterCrop, 0.1, 0.9, 2.0, 90));
    m_window->preprocWidgetAt(1)->applyState(framedState(FillMode::Direct, 0.5, 0.5, 1.0));
    m_window->preprocWidgetAt(2)->applyState(framedState(FillMode::WhiteFill, 0.3, 0.5, 1.5, 180));
    m_window->preprocWidgetAt(2)->setTone({TonePreset::Soft, 0.5, 0.2, 1.5}, true);
    comboStartingWith(*m_window, "Portrait (0)")->setCurrentIndex(1);
    m_window->setPlaylistIntervalMinutes(240);
    withText<QCheckBox>(*m_window, "Loop playback")->setChecked(false);
    runWindow();
    const QString list = m_fixture->path("lists/frame.json");
    QDir().mkpath(QFileInfo(list).absolutePath());
    QVERIFY(m_window->savePictureList(list));

    const Result result = pack({"--list", list, "--out", m_fixture->path("cli")});
    QVERIFY2(result.exitCode == 0, qPrintable(result.err));
    const auto window = TestFiles::contents(packageDir());
    QCOMPARE(window.keys(),
             (QStringList{"frame_000.bin", "frame_001.bin", "frame_002.bin", "playlist.json"}));
    QVERIFY(window.value("playlist.json").contains("\"enabled\": true"));
    QCOMPARE(TestFiles::contents(m_fixture->path("cli/vl_play")), window);
}

void TestVeloraPack::samePackageAsTheWindowFromTheCommandLine()
{
    const QStringList pictures = addColours({Qt::yellow, Qt::red});
    m_window->imageTable()->item(0, MainWindow::SelectColumn)->setCheckState(Qt::Checked);
    m_window->imageTable()->item(1, MainWindow::SelectColumn)->setCheckState(Qt::Checked);
    m_window->applyFillToCheckedRows(FillMode::BlackFill);
    comboStartingWith(*m_window, "Portrait (0)")->setCurrentIndex(1);
    m_window->setPlaylistIntervalMinutes(90);
    runWindow();

    const Result result = pack({"--out", m_fixture->path("cli"), "--fill", "black", "--landscape",
                                "--interval", "90", QFileInfo(pictures.first()).absolutePath()});
    QVERIFY2(result.exitCode == 0, qPrintable(result.err));
    QCOMPARE(TestFiles::contents(m_fixture->path("cli/vl_play")), TestFiles::contents(packageDir()));
    expectPackage({Qt::yellow, Qt::red});
}

void TestVeloraPack::toneGivesTheWindowsPackage()
{
    const QStringList pictures =
        addPictures({TestFiles::positionImage(800, 600), TestFiles::positionImage(600, 800)});
    check({0, 1});
    QCOMPARE(m_window->applyToneToCheckedRows(ToneSettings{TonePreset::Vivid}), 2);
    runWindow();

    const Result result =
        pack({"--out", m_fixture->path("cli"), "--tone", "vivid", pictures.at(0), pictures.at(1)});
    QVERIFY2(result.exitCode == 0, qPrintable(result.err));
    const auto window = TestFiles::contents(packageDir());
    QCOMPARE(TestFiles::contents(m_fixture->path("cli/vl_play")), window);
    // Without the tone, the frames are other ones.
    const Result plain = pack({"--out", m_fixture->path("plain"), pictures.at(0), pictures.at(1)});
    QVERIFY2(plain.exitCode == 0, qPrintable(plain.err));
    QVERIFY(TestFiles::contents(m_fixture->path("plain/vl_play")).value("frame_000.bin") !=
            window.value("frame_000.bin"));
}

void TestVeloraPack::heicPicturesAreConvertedAsTheWindowDoes()
{
    const QString folder = m_fixture->path("heic-pictures");
    QVERIFY(QDir().mkpath(folder));
    QVERIFY(
        HeicWriter::write(QDir(folder).filePath("a_phone.heic"), TestFiles::solidImage(400, 300, Qt::blue)));
    QVERIFY(TestFiles::solidImage(300, 400, Qt::green).save(QDir(folder).filePath("b_camera.png")));
    // velora-pack first, with a temporary folder of its own: it converts the HEIC itself.
    const QString ownTemp = m_fixture->path("tmp-cli");
    QDir().mkpath(ownTemp);
    const Result result =
        pack({"--out", m_fixture->path("cli-heic"), folder}, VELORA_PACK, QString(), ownTemp);
    QVERIFY2(result.exitCode == 0, qPrintable(result.err));
    QVERIFY(!TestFiles::entries(ownTemp + "/tarngui_heic_cache").isEmpty());

    m_window->addImageFiles({folder});
    QCOMPARE(m_window->imageTable()->rowCount(), 2);
    runWindow();
    QCOMPARE(TestFiles::contents(m_fixture->path("cli-heic/vl_play")), TestFiles::contents(packageDir()));
    expectPackage({Qt::blue, Qt::green});
}

void TestVeloraPack::progressAndSummary()
{
    const QStringList pictures = addColours({Qt::red, Qt::blue});
    const QString broken = m_fixture->path("pictures-broken/broken.png");
    QVERIFY(TestFiles::write(broken, "not a picture"));
    const Result result = pack({"--out", m_fixture->path("cli"), pictures.at(0), broken, pictures.at(1)});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.out.split('\n', Qt::SkipEmptyParts),
             (QStringList{"[1/3] " + QDir::toNativeSeparators(pictures.at(0)) + ": Done ✓",
                          "[2/3] " + QDir::toNativeSeparators(broken) + ": Failed (3)",
                          "[3/3] " + QDir::toNativeSeparators(pictures.at(1)) + ": Done ✓"}));
    QVERIFY(result.err.startsWith("✅ All done! Success 2 / 3\n"));
    QVERIFY(result.err.contains("(2 frames, interval=30 min)"));
    QCOMPARE(PackageCheck::colours(m_fixture->path("cli/vl_play")), (QList<QColor>{Qt::red, Qt::blue}));
}

void TestVeloraPack::severalProcessorsGiveTheWindowsPackage()
{
    const QStringList pictures = addColours({Qt::red, Qt::green, Qt::blue, Qt::yellow, Qt::cyan});
    runWindow();
    const QString jobs = QString::number(qMin(3, PackageJob::maxProcessorsAtOnce()));
    qputenv("TARN_SIM_SLEEP_MS", "300"); // so that the processors overlap
    const Result result =
        pack(QStringList{"--out", m_fixture->path("cli-jobs"), "--jobs", jobs, "--verbose"} + pictures);
    qunsetenv("TARN_SIM_SLEEP_MS");
    QVERIFY2(result.exitCode == 0, qPrintable(result.err));
    QCOMPARE(TestFiles::contents(m_fixture->path("cli-jobs/vl_play")), TestFiles::contents(packageDir()));
    // Each picture's block whole and in order, its progress line after it.
    const QStringList lines = result.out.split('\n', Qt::SkipEmptyParts);
    int last = -1;
    for (int i = 0; i < pictures.size(); ++i) {
        const int header =
            int(lines.indexOf(QRegularExpression(QStringLiteral("^\\[.*\\] \\(%1/5\\) .*").arg(i + 1))));
        const int progress = int(lines.indexOf(
            QStringLiteral("[%1/5] %2: Done ✓").arg(i + 1).arg(QDir::toNativeSeparators(pictures.at(i)))));
        QVERIFY2(header > last && progress > header, qPrintable(result.out));
        QCOMPARE(lines.mid(header, progress - header).filter(QStringLiteral("  ✅ Done")).size(), 1);
        last = progress;
    }
}

void TestVeloraPack::aDamagedColourProfileIsSaidOnce()
{
    const QString damaged = m_fixture->path("pictures-icc/damaged.jpg");
    QVERIFY(
        TestFiles::write(damaged, ColourReference::jpegWithProfile(TestFiles::solidImage(400, 300, Qt::red),
                                                                   QByteArray("acsp, but no profile"))));
    const Result result = pack({"--out", m_fixture->path("cli-icc"), damaged});
    QVERIFY2(result.exitCode == 0, qPrintable(result.err));
    const QString warning = Str::colourProfileWarning(QDir::toNativeSeparators(damaged), true);
    QCOMPARE(result.err.count(warning), 1);
    QVERIFY(result.err.startsWith(warning)); // before the summary
}

void TestVeloraPack::needsNoDisplayWithoutCaptions()
{
    // Told to use a platform that needs a display, where there is none: a GUI application could
    // not start, a core application never asks.
    const QStringList pictures = addColours({Qt::red});
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    const QByteArray display = qgetenv("DISPLAY");
    qputenv("QT_QPA_PLATFORM", "xcb");
    qunsetenv("DISPLAY");
    const Result result = pack({"--out", m_fixture->path("cli-core"), pictures.first()});
    qputenv("QT_QPA_PLATFORM", platform);
    if (!display.isEmpty())
        qputenv("DISPLAY", display);
    QVERIFY2(result.exitCode == 0, qPrintable(result.err));
    QCOMPARE(PackageCheck::colours(m_fixture->path("cli-core/vl_play")), QList<QColor>{Qt::red});
}

void TestVeloraPack::aMissingWorkingFolderEndsAtOnce()
{
    // A copy of velora-pack beside a configuration whose working folder does not exist, and
    // pictures sent as they are (no render to wait for): every picture fails at once, before the
    // run's event loop begins.
    const QString folder = m_fixture->path("nowork/bin");
    QDir().mkpath(folder);
    const QString copy = QDir(folder).filePath("velora-pack");
    QVERIFY(QFile::copy(VELORA_PACK, copy));
    const QJsonObject variant{{"executable", WindowFixture::demoProcessor()},
                              {"work_dir", m_fixture->path("no-such-folder")}};
    QVERIFY(
        TestFiles::write(QDir(folder).filePath("tarngui_lite.json"),
                         QJsonDocument(QJsonObject{{"variants", QJsonObject{{"lite", variant}}}}).toJson()));
    const QStringList pictures = addColours({Qt::red, Qt::blue});
    QJsonArray listed;
    for (const QString &picture : pictures)
        listed.append(QJsonObject{{"path", picture},
                                  {"fill", "direct"},
                                  {"rotation", 0},
                                  {"focus_x", 0.5},
                                  {"focus_y", 0.5},
                                  {"zoom", 1.0}});
    const QString list = m_fixture->path("nowork/list.json");
    QVERIFY(
        TestFiles::write(list, QJsonDocument(QJsonObject{{"format", "velora-picture-list"},
                                                         {"version", 2},
                                                         {"settings", QJsonObject{{"key_file", ""},
                                                                                  {"panel", "133"},
                                                                                  {"orientation", "portrait"},
                                                                                  {"interval_minutes", 30},
                                                                                  {"loop", true},
                                                                                  {"save_location", ""}}},
                                                         {"pictures", listed}})
                                   .toJson()));
    const Result result = pack({"--out", m_fixture->path("cli-nowork"), "--list", list}, copy, folder);
    QVERIFY2(result.exitCode == 1, qPrintable(result.err));
    QCOMPARE(result.out.count(": Failed"), 2);
    QVERIFY2(result.err.startsWith("❌ No picture was made (of 2); no package was written.\n"),
             qPrintable(result.err));
    QVERIFY(!QFileInfo::exists(m_fixture->path("cli-nowork/vl_play")));
}

void TestVeloraPack::usageErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("no output") << QStringList{"."} << "Name the package's save location with --out.";
    QTest::newRow("no pictures") << QStringList{"--out", "o"} << "There are no pictures to process.";
    QTest::newRow("missing picture") << QStringList{"--out", "o", "/nonexistent.png"}
                                     << "No such picture or folder: /nonexistent.png";
    QTest::newRow("bad fill") << QStringList{"--out", "o", "--fill", "stretch", "."}
                              << "Unknown fill mode: stretch (use blur, white, black or crop)";
    QTest::newRow("bad tone") << QStringList{"--out", "o", "--tone", "sepia", "."}
                              << "Unknown tone: sepia (use neutral, balanced, vivid, soft or monochrome)";
    QTest::newRow("bad caption") << QStringList{"--out", "o", "--caption", "poem", "."}
                                 << "Unknown caption: poem (use none, date or name)";
    QTest::newRow("bad interval") << QStringList{"--out", "o", "--interval", "2", "."}
                                  << "The interval must be 3 to 50000 minutes: 2";
    QTest::newRow("bad jobs") << QStringList{"--out", "o", "--jobs", "0", "."}
                              << "The processors at once must be 1 to ";
    QTest::newRow("bad panel") << QStringList{"--out", "o", "--panel", "999", "."}
                               << "Unknown frame model: 999";
    QTest::newRow("unknown option") << QStringList{"--shiny"} << "Unknown option 'shiny'.";
    QTest::newRow("broken list") << QStringList{"--list", "/nonexistent/list.json"}
                                 << "The picture list cannot be opened:\n/nonexistent/list.json";
}

void TestVeloraPack::usageErrors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const Result result = pack(arguments);
    QCOMPARE(result.exitCode, 2);
    QVERIFY2(result.err.startsWith(message), qPrintable(result.err));
    QVERIFY(result.err.endsWith("See --help for the usage.\n"));
    QVERIFY(!QFileInfo::exists(m_fixture->path("cwd/o")));
}

void TestVeloraPack::keyForAnotherPanel()
{
    const QStringList pictures = addColours({Qt::red});
    const QString keyFile = key("big.json", R"({"panel": "25.3"})");
    const Result result =
        pack({"--out", m_fixture->path("cli-key"), "--key", keyFile, "--panel", "133", pictures.first()});
    QCOMPARE(result.exitCode, 4);
    QVERIFY2(
        result.err.startsWith("The device key file is for frame model 253, but frame model 133 is chosen"),
        qPrintable(result.err));
    const Result unreadable =
        pack({"--out", m_fixture->path("cli-key"), "--key", key("bad.json", "[1]"), pictures.first()});
    QCOMPARE(unreadable.exitCode, 4);
    QVERIFY(!QFileInfo::exists(m_fixture->path("cli-key/vl_play")));
}

void TestVeloraPack::noPictureMadeWritesNoPackage()
{
    const QStringList pictures = addColours({Qt::red, Qt::blue});
    qputenv("TARN_SIM_EXIT", "6");
    const Result result = pack({"--out", m_fixture->path("cli-none"), pictures.at(0), pictures.at(1)});
    qunsetenv("TARN_SIM_EXIT");
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.out.count(": Failed (6)"), 2);
    // No success tick, and no word of an option velora-pack does not have.
    QCOMPARE(
        result.err,
        QStringLiteral("❌ No picture was made (of 2); no package was written.\n"
                       "Each picture's reason is above; add --verbose to see the processor's output.\n"));
    QVERIFY(!result.err.contains("JPG"));
    QVERIFY(!QFileInfo::exists(m_fixture->path("cli-none/vl_play")));
}

void TestVeloraPack::noProcessorConfiguration()
{
    // A copy of velora-pack in a folder with no configuration near it, started from there.
    const QString folder = m_fixture->path("lonely/a/b/bin");
    QDir().mkpath(folder);
    const QString copy = QDir(folder).filePath("velora-pack");
    QVERIFY(QFile::copy(VELORA_PACK, copy));
    const QStringList pictures = addColours({Qt::red});
    const Result result = pack({"--out", m_fixture->path("cli"), pictures.first()}, copy, folder);
    QCOMPARE(result.exitCode, 3);
    QVERIFY2(result.err.contains("tarngui_lite.json"), qPrintable(result.err));
}

QTEST_MAIN(TestVeloraPack)
#include "tst_VeloraPack.moc"
