// Runs in which rows fail: exit codes, crashes, start failures, a missing working directory,
// undecodable output and pictures. The run always goes on with the next row.
// switched on through the environment, the package checked file by file.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"
#include "ui/UiLanguage.h"

#include "DialogSpy.h"
#include "LanguageGuard.h"
#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowFixture.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>

class TestMainWindowRunFailures : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void exitCodeMarksEveryRowAndWritesNoPackage();
    void crashIsLoggedWithItsCode();
    void startFailureGoesOnWithTheNextRow();
    void missingWorkingDirectoryFailsEveryRow();
    void invalidUtf8OnStderrIsStillShown();
    void corruptPictureFailsItsRowOnly();
};

void TestMainWindowRunFailures::exitCodeMarksEveryRowAndWritesNoPackage()
{
    addPictures({TestFiles::markedImage(400, 300), TestFiles::markedImage(300, 400)});
    qputenv("TARN_SIM_EXIT", "3");
    DialogSpy dialogs;
    runToTheEnd();
    QCOMPARE(statusText(0), QStringLiteral("Failed (3)"));
    QCOMPARE(statusText(1), QStringLiteral("Failed (3)"));
    const QStringList log = logLines(*m_window);
    QCOMPARE(log.count(QStringLiteral("  ❌ Failed, exit code: 3")), 2);
    QVERIFY(log.contains(QStringLiteral("✅ All done! Success 0 / 2")));
    QVERIFY(!QFileInfo::exists(packageDir()));
    QVERIFY(!dialogs.shownTitles().contains(QStringLiteral("Ready for Your TF Card")));
    {
        LanguageGuard zh(UiLanguage::Chinese);
        m_window->retranslateUi();
        QCOMPARE(statusText(0), QStringLiteral("失败(3)"));
    }
    m_window->retranslateUi();
    QCOMPARE(statusText(1), QStringLiteral("Failed (3)"));
}

void TestMainWindowRunFailures::crashIsLoggedWithItsCode()
{
    addPictures({TestFiles::markedImage(400, 300)});
    qputenv("TARN_SIM_CRASH", "1");
    runToTheEnd();
    QCOMPARE(statusText(0), QStringLiteral("Crashed"));
    const QStringList log = logLines(*m_window);
    QVERIFY(log.contains(QStringLiteral("  | tarn-sim: crashing on purpose (TARN_SIM_CRASH)")));
    QVERIFY(log.contains(QStringLiteral("  ❌ Process crashed (exitCode=0x00000006)"))); // SIGABRT
    QVERIFY(log.contains(QStringLiteral(
        "  ⚠ Ensure the processor executable and its dependencies in the processor folder are intact")));
}

void TestMainWindowRunFailures::startFailureGoesOnWithTheNextRow()
{
    const QString notAProgram = m_fixture->path("processor/TARN-lite");
    QVERIFY(TestFiles::write(notAProgram, "not a program"));
    m_window.reset();
    WindowFixture::removeSettings(); // paths saved by the last window would win over the configuration
    m_fixture->useProcessor(notAProgram, m_fixture->path("processor"));
    {
        ModalAnswerer startupCheck(QMessageBox::Ok); // the start-up check fails too
        m_window = std::make_unique<MainWindow>();
        withoutDuplicateWarnings(*m_window);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        QCOMPARE(startupCheck.title(), QStringLiteral("Processor Check Failed"));
    }
    saveLocation(*m_window)->setText(m_fixture->path("out"));
    addPictures({TestFiles::markedImage(40, 30), TestFiles::markedImage(30, 40)});
    runToTheEnd();
    QCOMPARE(statusText(0), QStringLiteral("Start failed"));
    QCOMPARE(statusText(1), QStringLiteral("Start failed"));
    QCOMPARE(logLines(*m_window).filter(QStringLiteral("  ❌ Failed to start process: ")).size(), 2);
    QVERIFY(logLines(*m_window).contains(QStringLiteral("✅ All done! Success 0 / 2")));
}

void TestMainWindowRunFailures::missingWorkingDirectoryFailsEveryRow()
{
    const QString gone = m_fixture->path("no_such_folder");
    m_window.reset();
    WindowFixture::removeSettings(); // paths saved by the last window would win over the configuration
    m_fixture->useProcessor(WindowFixture::demoProcessor(), gone);
    {
        ModalAnswerer startupCheck(QMessageBox::Ok);
        m_window = std::make_unique<MainWindow>();
        withoutDuplicateWarnings(*m_window);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        QCOMPARE(
            startupCheck.text(),
            QStringLiteral("Processor working directory missing:\n%1").arg(QDir::toNativeSeparators(gone)));
    }
    saveLocation(*m_window)->setText(m_fixture->path("out"));
    addPictures(
        {TestFiles::markedImage(40, 30), TestFiles::markedImage(30, 40), TestFiles::markedImage(50, 50)});
    runToTheEnd();
    const QStringList log = logLines(*m_window);
    for (int row = 0; row < 3; ++row)
        QCOMPARE(statusText(row), QStringLiteral("Failed"));
    QCOMPARE(
        log.count(QStringLiteral("  ❌ Working directory missing: %1").arg(QDir::toNativeSeparators(gone))),
        3);
    QVERIFY(log.contains(QStringLiteral("✅ All done! Success 0 / 3")));
}

void TestMainWindowRunFailures::invalidUtf8OnStderrIsStillShown()
{
    addPictures({TestFiles::markedImage(400, 300)});
    qputenv("TARN_SIM_BAD_UTF8", "1");
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    // Read in the local code page (which is UTF-8 on this system, so the byte shows as U+FFFD).
    QVERIFY(
        logLines(*m_window).contains(QStringLiteral("  ! ") + QString::fromLocal8Bit("tarn-sim: caf\xe9")));
}

void TestMainWindowRunFailures::corruptPictureFailsItsRowOnly()
{
    const QStringList pictures =
        addPictures({TestFiles::markedImage(400, 300), TestFiles::markedImage(300, 400)});
    const QString corrupt = m_fixture->path("broken/damaged.jpg");
    QVERIFY(TestFiles::write(corrupt, "not a jpeg at all"));
    m_window->addImageFiles({corrupt});
    QCOMPARE(m_window->imageTable()->rowCount(), 3);
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    QCOMPARE(statusText(1), QStringLiteral("Done ✓"));
    QCOMPARE(statusText(2), QStringLiteral("Failed (3)")); // the processor cannot read it either
    const QStringList log = logLines(*m_window);
    QVERIFY(log.contains(QStringLiteral("  ⚠ Preprocessing failed; using original")));
    QVERIFY(log.filter(QStringLiteral("  ! tarn-sim: error: cannot decode")).size() == 1);
    QCOMPARE(QDir(packageDir()).entryList(QDir::Files, QDir::Name),
             (QStringList{"frame_000.bin", "frame_001.bin", "playlist.json"}));
    QCOMPARE(TestFiles::read(corrupt), QByteArray("not a jpeg at all")); // never touched
}

QTEST_MAIN(TestMainWindowRunFailures)
#include "tst_MainWindowRunFailures.moc"
