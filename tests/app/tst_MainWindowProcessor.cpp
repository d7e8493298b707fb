// The processor as the window sees it: the configuration applied, the default LUT, the path
// choosers, and the start-up check of the processor folder with the stand-in processor.
#include "app/MainWindow.h"
#include "ui/UiLanguage.h"

#include "Heartbeat.h"
#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowFixture.h"
#include "WindowProbe.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSettings>
#include <QTest>
#include <QTextBlock>

namespace {

const QString kFailureStart =
    QStringLiteral("The image processor failed the startup self-test (TARN-lite --help).\n\n");

} // namespace

class TestMainWindowProcessor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void demoProcessorPassesSilently();
    void checkRunsOnTheFirstShowOnly();
    void missingProcessorFolder();
    void emptyRequiredFileIsMissing();
    void emptyRequiredListFallsBackToTheBuiltInOne();
    void processorThatCannotStart();
    void processorThatFailsItsHelp();
    void processorThatNeverEndsIsKilled();
    void defaultLutSearchOrder();
    void configuredDefaultLut();
    void unknownVariantLeavesTheFields();
    void reloadingTheConfiguration();
    void choosingTheExecutableIsSavedAtOnce();
    void choosingTheWorkingDirectoryIsSavedAtOnce();
    void theConfigurationDecidesOnceTheProcessorMoves();
    void aProcessorChosenByHandCountsWhileItIsThere();

private:
    QString makeProcessor(const QString &name, const QByteArray &manifest,
                          const QStringList &emptyFiles = {});
    QStringList showAndCollect();

    std::unique_ptr<WindowFixture> m_fixture;
};

void TestMainWindowProcessor::initTestCase()
{
    UiLanguage::set(UiLanguage::English);
    m_fixture = std::make_unique<WindowFixture>();
}

void TestMainWindowProcessor::cleanup()
{
    for (const char *name : {"TARN_SIM_HANG", "TARN_SIM_HELP_EXIT"})
        qunsetenv(name);
    WindowFixture::removeSettings();
    m_fixture->useProcessor(WindowFixture::demoProcessor(), WindowFixture::demoProcessorDir());
}

QString TestMainWindowProcessor::makeProcessor(const QString &name, const QByteArray &manifest,
                                               const QStringList &emptyFiles)
{
    const QString dir = m_fixture->path(name);
    QDir(dir).removeRecursively();
    QDir().mkpath(dir);
    QFile::copy(WindowFixture::demoProcessor(), dir + "/TARN-lite");
    if (!manifest.isEmpty())
        TestFiles::write(dir + "/processor_manifest.json", manifest);
    for (const QString &file : emptyFiles)
        TestFiles::write(dir + "/" + file, QByteArray());
    m_fixture->useProcessor(dir + "/TARN-lite", dir);
    return dir;
}

QStringList TestMainWindowProcessor::showAndCollect()
{
    ModalAnswerer answerer(QMessageBox::Ok);
    MainWindow window;
    window.show();
    (void)QTest::qWaitForWindowExposed(&window);
    // The self-test runs in the background; a failure's box opens when it has ended.
    [&] { QTRY_VERIFY_WITH_TIMEOUT(!startupCheckRunning(window), 20000); }();
    QTest::qWait(100);
    QStringList texts;
    for (const ModalAnswerer::Seen &seen : answerer.seen()) {
        if (seen.title != QStringLiteral("Processor Check Failed") || seen.icon != QMessageBox::Critical)
            texts << QStringLiteral("unexpected box: ") + seen.title;
        else
            texts << seen.text;
    }
    return texts;
}

void TestMainWindowProcessor::demoProcessorPassesSilently() { QCOMPARE(showAndCollect(), QStringList()); }

void TestMainWindowProcessor::checkRunsOnTheFirstShowOnly()
{
    m_fixture->removeConfiguration(); // the check then looks for <program folder>/processor
    ModalAnswerer answerer(QMessageBox::Ok);
    MainWindow window;
    window.show();
    QTRY_COMPARE(answerer.seen().size(), 1);
    window.hide();
    window.show();
    QTest::qWait(50);
    QCOMPARE(answerer.seen().size(), 1);
}

void TestMainWindowProcessor::missingProcessorFolder()
{
    m_fixture->removeConfiguration();
    const QString expected =
        QDir::toNativeSeparators(QDir(QCoreApplication::applicationDirPath()).filePath("processor"));
    QCOMPARE(showAndCollect(),
             QStringList{QStringLiteral("Processor working directory missing:\n") + expected});
    m_fixture->useProcessor(WindowFixture::demoProcessor(), m_fixture->path("nowhere"));
    QCOMPARE(showAndCollect(), QStringList{QStringLiteral("Processor working directory missing:\n") +
                                           QDir::toNativeSeparators(m_fixture->path("nowhere"))});
}

void TestMainWindowProcessor::emptyRequiredFileIsMissing()
{
    const QString dir = makeProcessor("zero", R"({"required": ["TARN-lite", "zlib1.dll", "jpeg62.dll"],
        "smoke_test": {"executable": "TARN-lite", "args": ["--help"], "expect_exit_code": 0}})",
                                      {"zlib1.dll"});
    QCOMPARE(showAndCollect(),
             QStringList{QStringLiteral(
                             "Processor folder is incomplete. Missing: zlib1.dll, jpeg62.dll\nDirectory: %1\n"
                             "Please reinstall or restore the processor folder from the full package.")
                             .arg(QDir::toNativeSeparators(dir))});
}

void TestMainWindowProcessor::emptyRequiredListFallsBackToTheBuiltInOne()
{
    makeProcessor("builtin", R"({"required": []})");
    const QStringList texts = showAndCollect();
    QCOMPARE(texts.size(), 1);
    QVERIFY(texts.first().startsWith(QStringLiteral("Processor folder is incomplete. Missing: TARN-lite.exe, "
                                                    "libcrypto-3-x64.dll, opencv_core4.dll")));
    QVERIFY(texts.first().contains(QStringLiteral("vcruntime140_1.dll, concrt140.dll\n")));
}

void TestMainWindowProcessor::processorThatCannotStart()
{
    const QString dir = makeProcessor(
        "nostart", R"({"required": ["TARN-lite"], "smoke_test": {"executable": "absent-program"}})");
    const QStringList texts = showAndCollect();
    QCOMPARE(texts.size(), 1);
    QVERIFY2(
        texts.first().startsWith(kFailureStart + QStringLiteral("Executable: %1\nWorking directory: %2\n\n"
                                                                "Error: failed to start process: ")
                                                     .arg(QDir::toNativeSeparators(dir + "/absent-program"),
                                                          QDir::toNativeSeparators(dir))),
        qPrintable(texts.first()));
    QVERIFY(texts.first().endsWith(
        QStringLiteral("\nPlease reinstall or restore the processor folder from the full package.")));
}

void TestMainWindowProcessor::processorThatFailsItsHelp()
{
    const QString dir = makeProcessor(
        "helpexit", R"({"required": ["TARN-lite"], "smoke_test": {"executable": "TARN-lite"}})");
    qputenv("TARN_SIM_HELP_EXIT", "1");
    QCOMPARE(showAndCollect(),
             QStringList{
                 kFailureStart +
                 QStringLiteral("Executable: %1\nWorking directory: %2\n\nError: abnormal exit (exitCode=1)\n"
                                "Please reinstall or restore the processor folder from the full package.")
                     .arg(QDir::toNativeSeparators(dir + "/TARN-lite"), QDir::toNativeSeparators(dir))});
    // The expected code comes from the manifest.
    makeProcessor(
        "helpexit",
        R"({"required": ["TARN-lite"], "smoke_test": {"executable": "TARN-lite", "expect_exit_code": 1}})");
    QCOMPARE(showAndCollect(), QStringList());
}

void TestMainWindowProcessor::processorThatNeverEndsIsKilled()
{
    makeProcessor("hang", R"({"required": ["TARN-lite"], "smoke_test": {"executable": "TARN-lite"}})");
    qputenv("TARN_SIM_HANG", "1");
    const Heartbeat heartbeat;
    const QStringList texts = showAndCollect();
    QCOMPARE(texts.size(), 1);
    QVERIFY(texts.first().contains(QStringLiteral("\n\nError: processor self-test timed out.\n")));
    QVERIFY(heartbeat.elapsedMs() >= 10000); // waited the full ten seconds before giving up
    QVERIFY2(heartbeat.longestGapMs() < 500,
             qPrintable(QStringLiteral("the window froze for %1 ms").arg(heartbeat.longestGapMs())));
}

void TestMainWindowProcessor::defaultLutSearchOrder()
{
    MainWindow window;
    const QString work = m_fixture->path("luts");
    QDir(work).removeRecursively();
    QDir().mkpath(work + "/test");
    QCOMPARE(window.detectDefaultLut(QString(), QString()), QString());
    QCOMPARE(window.detectDefaultLut(QString(), work), QString());
    TestFiles::write(work + "/test/lut_128_36_16_uni_251208.bin", "b");
    TestFiles::write(work + "/lut_128_36_16_uni_260215.bin", "a");
    // The first name wins wherever it is.
    QCOMPARE(window.detectDefaultLut(QString(), work), work + "/lut_128_36_16_uni_260215.bin");
    TestFiles::write(work + "/test/lut_128_36_16_uni_260215.bin", "a");
    QCOMPARE(window.detectDefaultLut(QString(), work), work + "/test/lut_128_36_16_uni_260215.bin");
    // A configured LUT that exists comes first; one that does not is passed over.
    TestFiles::write(work + "/mine.bin", "m");
    QCOMPARE(window.detectDefaultLut(work + "/mine.bin", work), work + "/mine.bin");
    QCOMPARE(window.detectDefaultLut(work + "/gone.bin", work), work + "/test/lut_128_36_16_uni_260215.bin");
}

void TestMainWindowProcessor::configuredDefaultLut()
{
    const QString work = m_fixture->path("withlut");
    QDir().mkpath(work + "/luts");
    TestFiles::write(work + "/luts/a.bin", "lut");
    m_fixture->useProcessor(WindowFixture::demoProcessor(), work, R"({"default_lut": "luts/a.bin"})");
    MainWindow window;
    QCOMPARE(processorFields(window).at(4)->text(), QDir::toNativeSeparators(work + "/luts/a.bin"));
}

void TestMainWindowProcessor::unknownVariantLeavesTheFields()
{
    MainWindow window;
    const QString before = processorFields(window).at(1)->text();
    window.applyVariant(QStringLiteral("internal"));
    window.applyVariant(QStringLiteral("default"));
    QCOMPARE(processorFields(window).at(1)->text(), before);
}

void TestMainWindowProcessor::reloadingTheConfiguration()
{
    MainWindow window;
    const QString other = makeProcessor("reloaded", QByteArray());
    window.onReloadConfig();
    QCOMPARE(lastLog(window), QStringLiteral("Config reloaded."));
    QCOMPARE(processorFields(window).at(1)->text(), QDir::toNativeSeparators(other + "/TARN-lite"));
    m_fixture->writeConfiguration("{ broken");
    window.onReloadConfig();
    QVERIFY(window.findChild<QPlainTextEdit *>()->toPlainText().contains(
        QStringLiteral("⚠ The configuration file is not valid JSON: ")));
    QCOMPARE(processorFields(window).at(1)->text(), QDir::toNativeSeparators(other + "/TARN-lite")); // kept
}

void TestMainWindowProcessor::choosingTheExecutableIsSavedAtOnce()
{
    const QString dir = makeProcessor("chosen_exe", QByteArray());
    TestFiles::write(dir + "/lut_128_36_16_uni_251208.bin", "lut");
    MainWindow window;
    processorFields(window).at(4)->clear();
    QString title;
    ModalAnswerer answerer(QMessageBox::Ok, [&](QWidget *dialog) {
        if (qobject_cast<QFileDialog *>(dialog))
            title = dialog->windowTitle();
        ModalAnswerer::chooseInFileDialog(dialog, dir, QStringLiteral("TARN-lite"));
    });
    window.onBrowseExe();
    QCOMPARE(title, QStringLiteral("Select processor executable"));
    QCOMPARE(processorFields(window).at(1)->text(), QDir::toNativeSeparators(dir + "/TARN-lite"));
    QCOMPARE(processorFields(window).at(4)->text(),
             QDir::toNativeSeparators(dir + "/lut_128_36_16_uni_251208.bin"));
    // Written before the window closes.
    QCOMPARE(
        QSettings(WindowFixture::settingsPath(), QSettings::IniFormat).value("variant/lite/exe").toString(),
        QDir::toNativeSeparators(dir + "/TARN-lite"));
}

void TestMainWindowProcessor::choosingTheWorkingDirectoryIsSavedAtOnce()
{
    const QString dir = m_fixture->path("chosen_dir");
    QDir().mkpath(dir);
    MainWindow window;
    QString title;
    ModalAnswerer answerer(QMessageBox::Ok, [&](QWidget *dialog) {
        if (qobject_cast<QFileDialog *>(dialog))
            title = dialog->windowTitle();
        ModalAnswerer::chooseInFileDialog(dialog, dir, QString());
    });
    window.onBrowseWorkDir();
    QCOMPARE(title, QStringLiteral("Select working directory"));
    QCOMPARE(processorFields(window).at(2)->text(), QDir::toNativeSeparators(dir));
    QCOMPARE(QSettings(WindowFixture::settingsPath(), QSettings::IniFormat)
                 .value("variant/lite/work_dir")
                 .toString(),
             QDir::toNativeSeparators(dir));
}

void TestMainWindowProcessor::theConfigurationDecidesOnceTheProcessorMoves()
{
    makeProcessor("folder_a", QByteArray());
    {
        MainWindow window;
        QVERIFY(window.close());
    }
    // The processor is moved and the configuration follows it: the window runs the new one.
    const QString b = makeProcessor("folder_b", QByteArray());
    MainWindow window;
    QCOMPARE(processorFields(window).at(1)->text(), QDir::toNativeSeparators(b + "/TARN-lite"));
    QCOMPARE(processorFields(window).at(2)->text(), QDir::toNativeSeparators(b));
}

void TestMainWindowProcessor::aProcessorChosenByHandCountsWhileItIsThere()
{
    const QString dir = m_fixture->path("by_hand");
    QDir().mkpath(dir);
    QVERIFY(QFile::copy(WindowFixture::demoProcessor(), dir + "/TARN-lite"));
    {
        MainWindow window;
        ModalAnswerer answerer(QMessageBox::Ok, [&](QWidget *dialog) {
            ModalAnswerer::chooseInFileDialog(dialog, dir, QStringLiteral("TARN-lite"));
        });
        window.onBrowseExe();
    }
    {
        MainWindow window;
        QCOMPARE(processorFields(window).at(1)->text(), QDir::toNativeSeparators(dir + "/TARN-lite"));
    }
    QVERIFY(QFile::remove(dir + "/TARN-lite"));
    MainWindow window;
    QCOMPARE(processorFields(window).at(1)->text(), QDir::toNativeSeparators(WindowFixture::demoProcessor()));
}

QTEST_MAIN(TestMainWindowProcessor)
#include "tst_MainWindowProcessor.moc"
