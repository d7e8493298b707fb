// The checks before a run and the processor's command line, against the real window.
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
#include <QDateTime>
#include <QDir>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QSet>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>

class TestMainWindowCommandLine : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void validationOrder();
    void thousandRowsStartThousandAndOneDoNot();
    void outputPathsOfRows();
    void commandLine();
    void keyFlagFromTheVariant();
    void rowsWithoutRowWidgetSendTheirSource();
};

void TestMainWindowCommandLine::validationOrder()
{
    {
        // Nothing at all: the executable comes first.
        m_window.reset();
        m_fixture->removeConfiguration();
        m_window = std::make_unique<MainWindow>();
        ModalAnswerer answerer(QMessageBox::Ok);
        m_window->onStartProcess();
        QCOMPARE(answerer.title(), QStringLiteral("Settings Error"));
        QCOMPARE(
            answerer.text(),
            QStringLiteral("Processor executable not found (Velora Offline Tool). Check tarngui_lite.json."));
        QCOMPARE(answerer.icon(), QMessageBox::Warning);
        m_fixture->useProcessor(WindowFixture::demoProcessor(), WindowFixture::demoProcessorDir());
        m_window = std::make_unique<MainWindow>();
    }
    {
        ModalAnswerer answerer(QMessageBox::Ok);
        m_window->onStartProcess();
        QCOMPARE(answerer.title(), QStringLiteral("Notice"));
        QCOMPARE(answerer.text(), QStringLiteral("Add images to process first."));
        QCOMPARE(answerer.icon(), QMessageBox::Information);
    }
    addPictures({TestFiles::markedImage(40, 30)});
    {
        saveLocation(*m_window)->setText(QStringLiteral("   "));
        ModalAnswerer answerer(QMessageBox::Ok);
        m_window->onStartProcess();
        QCOMPARE(answerer.text(), QStringLiteral("Set the playlist save location."));
        QVERIFY(!m_window->isProcessing());
    }
    // Blanks around an existing executable are fine; an empty key field does not stop a run.
    for (QLineEdit *edit : m_window->findChildren<QLineEdit *>()) {
        if (edit->text() == QDir::toNativeSeparators(WindowFixture::demoProcessor()))
            edit->setText(QStringLiteral("  ") + edit->text() + QStringLiteral("  "));
    }
    saveLocation(*m_window)->setText(m_fixture->path("out"));
    QVERIFY(m_window->currentKeyFilePath().isEmpty());
    ModalAnswerer completion(QMessageBox::Cancel);
    m_window->onStartProcess();
    QVERIFY(m_window->isProcessing());
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->isProcessing(), 30000);
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
}

void TestMainWindowCommandLine::thousandRowsStartThousandAndOneDoNot()
{
    // Rows without pictures are enough here: the check counts rows, whatever they hold.
    ImageTableWidget *table = m_window->imageTable();
    table->setRowCount(1001);
    {
        ModalAnswerer answerer(QMessageBox::Ok);
        m_window->onStartProcess();
        QCOMPARE(answerer.title(), QStringLiteral("Settings Error"));
        QCOMPARE(answerer.text(), QStringLiteral("A playlist supports at most 1000 frame(s)."));
        QVERIFY(!m_window->isProcessing());
    }
    table->setRowCount(1000);
    for (QLineEdit *edit : m_window->findChildren<QLineEdit *>()) {
        if (edit->text() == QDir::toNativeSeparators(WindowFixture::demoProcessorDir()))
            edit->setText(m_fixture->path("missing_work_dir")); // every row then fails at once
    }
    ModalAnswerer none(QMessageBox::Ok);
    m_window->onStartProcess();
    QVERIFY(!m_window->isProcessing());
    QVERIFY(!none.answered());
    QVERIFY(logLines(*m_window).contains(QStringLiteral("✅ All done! Success 0 / 1000")));
}

void TestMainWindowCommandLine::outputPathsOfRows()
{
    // Each window stages in a folder of its own; a row's output is named by the row's id, so it
    // stays the row's wherever the row moves.
    const QString staging = m_window->liteBinStagingDir();
    QCOMPARE(QFileInfo(staging).absolutePath(), m_fixture->path("tmp/tarngui_lite_bins"));
    QVERIFY(QFileInfo(staging).isDir());
    addPictures(3);
    QStringList outputs;
    for (int row = 0; row < 3; ++row) {
        outputs << m_window->resolveOutputPathsForRow(row);
        QVERIFY(QRegularExpression("^" + QRegularExpression::escape(staging) + "/out_\\d{6}\\.bin$")
                    .match(outputs.last())
                    .hasMatch());
    }
    QCOMPARE(QSet<QString>(outputs.begin(), outputs.end()).size(), 3);
    m_window->moveTableRowDown(0);
    QCOMPARE(m_window->resolveOutputPathsForRow(1), outputs.at(0));
    QCOMPARE(m_window->resolveOutputPathsForRow(0), outputs.at(1));
    QCOMPARE(MainWindow::kTempPreprocDir, QStringLiteral("/tarngui_preproc"));
    QCOMPARE(QFileInfo(m_window->renderDir()).absolutePath(), MainWindow::tempPreprocDir());
}

void TestMainWindowCommandLine::commandLine()
{
    const QStringList pictures =
        addPictures({TestFiles::markedImage(400, 300), TestFiles::markedImage(300, 400)});
    QStringList args = m_window->buildArgs(0);
    QCOMPARE(args.size(), 3); // no key file: no key flag
    QCOMPARE(args.at(0), QDir(m_window->renderDir()).filePath("photo_0_preproc.jpg"));
    QVERIFY(QFileInfo::exists(args.at(0)));
    QCOMPARE(m_window->imageTable()
                 ->item(0, MainWindow::FileColumn)
                 ->data(MainWindow::kTempPreprocRole)
                 .toString(),
             args.at(0));
    QCOMPARE(args.at(1), m_window->resolveOutputPathsForRow(0));
    QCOMPARE(args.at(2), QStringLiteral("133"));
    m_window->cleanupTempFile(0);
    QVERIFY(!QFileInfo::exists(QDir(m_window->renderDir()).filePath("photo_0_preproc.jpg")));

    // A Chinese folder: the key goes as an ASCII copy, made once and then reused.
    const QString key = m_fixture->path(QStringLiteral("密钥/key.json"));
    QVERIFY(TestFiles::write(key, R"({"panel": "13.3"})"));
    setKeyFile(key);
    args = m_window->buildArgs(1);
    const QString windowId = QFileInfo(m_window->liteBinStagingDir()).fileName();
    const QString staged = m_fixture->path("tmp/tarngui_pubkey/" + windowId + "/device_key.json");
    QCOMPARE(args.mid(2), (QStringList{"133", "--pubkey", staged}));
    QCOMPARE(TestFiles::read(staged), TestFiles::read(key));
    const QDateTime longAgo = QDateTime::currentDateTime().addDays(-3);
    {
        QFile copy(staged);
        QVERIFY(copy.open(QIODevice::ReadWrite) &&
                copy.setFileTime(longAgo, QFileDevice::FileModificationTime));
    }
    QCOMPARE(m_window->buildArgs(0).mid(3), (QStringList{"--pubkey", staged}));
    QCOMPARE(QFileInfo(staged).lastModified(), longAgo); // not copied again

    // A plain ASCII path goes as a copy too: the processor never reads the user's file.
    const QString plainKey = m_fixture->path("keys/plain.key");
    QVERIFY(TestFiles::write(plainKey, "{}"));
    setKeyFile(plainKey);
    const QString plainCopy = QFileInfo(staged).absolutePath() + "/device_key.key";
    QCOMPARE(m_window->buildArgs(0).mid(3), (QStringList{"--pubkey", plainCopy}));
    QCOMPARE(TestFiles::read(plainCopy), QByteArray("{}"));
    // A render that fails falls back to the original picture, with a warning.
    QFile::remove(pictures.at(1));
    args = m_window->buildArgs(1);
    QCOMPARE(args.at(0), pictures.at(1));
    QCOMPARE(logLines(*m_window).last(), QStringLiteral("  ⚠ Preprocessing failed; using original"));
}

void TestMainWindowCommandLine::keyFlagFromTheVariant()
{
    m_window.reset();
    WindowFixture::removeSettings(); // paths saved by the last window would win over the configuration
    m_fixture->useProcessor(
        WindowFixture::demoProcessor(), WindowFixture::demoProcessorDir(),
        R"({"key_file_arg": "--device-key", "extra_args": ["--quality", "high"], "omit_args": ["--pubkey"]})");
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    saveLocation(*m_window)->setText(m_fixture->path("out"));
    const QString key = m_fixture->path("keys/k.json");
    QVERIFY(TestFiles::write(key, R"({"panel": "10"})"));
    setKeyFile(key);
    addPictures({TestFiles::markedImage(400, 300)});
    const QString windowId = QFileInfo(m_window->liteBinStagingDir()).fileName();
    const QString copy = m_fixture->path("tmp/tarngui_pubkey/" + windowId + "/device_key.json");
    QCOMPARE(m_window->buildArgs(0).mid(2), (QStringList{"100", "--device-key", copy, "--quality", "high"}));
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    QVERIFY(logLines(*m_window).contains(QStringLiteral("  | tarn-sim: ignoring argument --quality")));
}

void TestMainWindowCommandLine::rowsWithoutRowWidgetSendTheirSource()
{
    const QStringList pictures = addPictures({TestFiles::markedImage(400, 300)});
    m_window->imageTable()->removeCellWidget(0, MainWindow::FileColumn);
    const QStringList args = m_window->buildArgs(0);
    QCOMPARE(args.at(0), pictures.at(0));
    QVERIFY(QDir(m_window->renderDir()).entryList(QDir::Files).isEmpty());
    QCOMPARE(m_window->imageTable()
                 ->item(0, MainWindow::FileColumn)
                 ->data(MainWindow::kTempPreprocRole)
                 .toString(),
             QString());
}

QTEST_MAIN(TestMainWindowCommandLine)
#include "tst_MainWindowCommandLine.moc"
