// The program's command line: --help and --version answered by the real program without a
// window system, and pictures and folders given to it taken as a drop takes them.
#include "app/LaunchOptions.h"
#include "ui/UiLanguage.h"

#include <QDir>
#include <QProcess>
#include <QTest>

class TestLaunchOptions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { UiLanguage::set(UiLanguage::English); }
    void picturesAndFolders();
    void helpAndVersion();
    void qtOptionsAreLeftToQt();
    void theProgramAnswersWithoutAWindow_data();
    void theProgramAnswersWithoutAWindow();
};

void TestLaunchOptions::picturesAndFolders()
{
    const LaunchOptions options =
        LaunchOptions::parse({"VeloraOfflineTool", "a.jpg", "/photos/summer", "sub/b c.png"});
    QCOMPARE(options.action, LaunchOptions::Action::Run);
    QCOMPARE(options.pictures, (QStringList{QDir::current().absoluteFilePath("a.jpg"), "/photos/summer",
                                            QDir::current().absoluteFilePath("sub/b c.png")}));
    QVERIFY(LaunchOptions::parse({"VeloraOfflineTool"}).pictures.isEmpty());
}

void TestLaunchOptions::helpAndVersion()
{
    QCOMPARE(LaunchOptions::parse({"VeloraOfflineTool", "--help"}).action, LaunchOptions::Action::Help);
    QCOMPARE(LaunchOptions::parse({"VeloraOfflineTool", "-h"}).action, LaunchOptions::Action::Help);
    QCOMPARE(LaunchOptions::parse({"VeloraOfflineTool", "--version"}).action, LaunchOptions::Action::Version);
    QCOMPARE(LaunchOptions::parse({"VeloraOfflineTool", "-v", "x.png"}).action,
             LaunchOptions::Action::Version);
}

void TestLaunchOptions::qtOptionsAreLeftToQt()
{
    // QApplication takes its own options out before the window reads the pictures; one that
    // reaches the parser is ignored, never an error.
    const LaunchOptions options = LaunchOptions::parse({"VeloraOfflineTool", "--unknown", "/a.png"});
    QCOMPARE(options.action, LaunchOptions::Action::Run);
    QCOMPARE(options.pictures, QStringList{"/a.png"});
}

void TestLaunchOptions::theProgramAnswersWithoutAWindow_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("expected");
    QTest::newRow("version") << "--version"
                             << "Velora Offline Tool 1.0.3\n";
    QTest::newRow("help") << "--help"
                          << "[OPTIONS] [PICTURE_OR_FOLDER…]";
}

void TestLaunchOptions::theProgramAnswersWithoutAWindow()
{
    QFETCH(QString, option);
    QFETCH(QString, expected);
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // No display and no platform: a window could not open, so the answer proves none was tried.
    environment.remove("DISPLAY");
    environment.remove("WAYLAND_DISPLAY");
    environment.remove("QT_QPA_PLATFORM");
    program.setProcessEnvironment(environment);
    program.start(VELORA_PROGRAM, {option});
    QVERIFY(program.waitForFinished(20000));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    const QString out = QString::fromUtf8(program.readAllStandardOutput());
    QVERIFY2(out.contains(expected), qPrintable(out));
}

QTEST_GUILESS_MAIN(TestLaunchOptions)
#include "tst_LaunchOptions.moc"
