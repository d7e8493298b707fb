// Whole runs of the real window: the built stand-in processor in a real QProcess, its faults
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

class TestMainWindowRun : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:

    void portraitRunWritesThePackage();
    void landscapeRunHandsOverPortraitPictures();
    void largePanelKeyFromAFolderWithChineseCharacters();
    void rerunWhenEverythingIsDone();
    void onlyPendingRowsRunAndProgressCountsTableRows();
    void theSummaryCountsEveryFrameOfTheTable();
};

void TestMainWindowRun::portraitRunWritesThePackage()
{
    const QString key = m_fixture->path("keys/device.json");
    QVERIFY(TestFiles::write(
        key, R"({"panel": "13.3", "stamac": "A4:CF:12:00:00:01", "device_id": "DEV-0001", "uid": "u-42"})"));
    setKeyFile(key);
    addPictures({TestFiles::markedImage(800, 600), TestFiles::markedImage(600, 800),
                 TestFiles::solidImage(1200, 1600, Qt::green)});
    m_window->preprocWidgetAt(1)->setFillMode(FillMode::WhiteFill, true);
    m_window->preprocWidgetAt(2)->setFillMode(FillMode::CenterCrop, true);

    ModalAnswerer completion(QMessageBox::Cancel); // closed without "open the folder"
    runToTheEnd();
    for (int row = 0; row < 3; ++row)
        QCOMPARE(statusText(row), QStringLiteral("Done ✓"));

    QCOMPARE(completion.seen().size(), 1);
    QCOMPARE(completion.title(), QStringLiteral("Ready for Your TF Card"));
    QCOMPARE(completion.text(), Str::processingCompleteSummaryHtml(3, 3, 0));
    QVERIFY(ModalAnswerer::plainText(completion.text())
                .startsWith(
                    QStringLiteral("The package holds 3 of 3 picture(s).\nYour playback package is ready.")));
    QCOMPARE(completion.seen().first().buttons, QStringList{"OK and open the vl_play"});

    const QDir package(packageDir());
    QCOMPARE(package.entryList(QDir::Files, QDir::Name),
             (QStringList{"frame_000.bin", "frame_001.bin", "frame_002.bin", "playlist.json"}));
    for (int i = 0; i < 3; ++i) {
        const QByteArray frame =
            TestFiles::read(package.filePath(QStringLiteral("frame_%1.bin").arg(i, 3, 10, QLatin1Char('0'))));
        QVERIFY(frame.startsWith("TSIM 1 1200 1600 133\n"));
        QCOMPARE(frame.size(), QByteArray("TSIM 1 1200 1600 133\n").size() + 600 * 1600);
        QCOMPARE(frame, TestFiles::read(m_window->resolveOutputPathsForRow(i)));
    }
    const QByteArray expected = R"({
    "boot_policy": "exclusive",
    "encrypt": {
        "account_uid": "u-42",
        "device_ids": [
            "DEV-0001"
        ],
        "enabled": true,
        "recipient_count": 1,
        "require_provisioned": true,
        "scheme": "ecies-p256-gcm-v1"
    },
    "frames": [
        {
            "file": "frame_000.bin"
        },
        {
            "file": "frame_001.bin"
        },
        {
            "file": "frame_002.bin"
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
    "version": 3
}
)";
    QCOMPARE(TestFiles::read(package.filePath("playlist.json")), expected);

    const QStringList log = logLines(*m_window);
    QCOMPARE(log.at(0), QStringLiteral("▶ Starting processing, 3 image(s)"));
    QCOMPARE(
        log.at(1),
        QStringLiteral("  Playlist save location: %1").arg(QDir::toNativeSeparators(m_fixture->path("out"))));
    QCOMPARE(log.at(2), QString(42, QChar(0x2500)));
    QVERIFY(QRegularExpression(QStringLiteral("^\\[\\d\\d:\\d\\d:\\d\\d\\] \\(1/3\\) photo_0\\.png$"))
                .match(log.at(3))
                .hasMatch());
    QVERIFY(log.at(4).startsWith(QStringLiteral("  $ TARN-lite ")));
    QVERIFY(log.at(4).contains(QStringLiteral("photo_0_preproc.jpg ") +
                               m_window->resolveOutputPathsForRow(0) + " 133 --pubkey "));
    QCOMPARE(log.at(5), QStringLiteral("  Working directory: %1")
                            .arg(QDir::toNativeSeparators(WindowFixture::demoProcessorDir())));
    QVERIFY(log.contains(QStringLiteral("  | tarn-sim: quantising 1200x1600 for panel 133")));
    QCOMPARE(log.count(QStringLiteral("  ✅ Done")), 3);
    QVERIFY(log.contains(QStringLiteral("✅ All done! Success 3 / 3")));
    QCOMPARE(log.last(), QStringLiteral("✅ Playlist created: %1 (3 frames, interval=30 min)")
                             .arg(QDir::toNativeSeparators(packageDir())));

    QProgressBar *progress = m_window->findChild<QProgressBar *>();
    QVERIFY(progress->isVisible());
    QCOMPARE(progress->value(), 3);
    QCOMPARE(progress->format(), QStringLiteral("Done 3 / 3"));
    // The rendered JPEGs are gone again; the user's pictures are untouched.
    QVERIFY(QDir(m_window->renderDir()).entryList(QDir::Files).isEmpty());
    for (int row = 0; row < 3; ++row)
        QCOMPARE(m_window->imageTable()
                     ->item(row, MainWindow::FileColumn)
                     ->data(MainWindow::kTempPreprocRole)
                     .toString(),
                 QString());
    QVERIFY(withText<QPushButton>(*m_window, QStringLiteral("▶  Start Processing"))->isEnabled());
    QVERIFY(!withText<QPushButton>(*m_window, QStringLiteral("■  Stop"))->isEnabled());
}

void TestMainWindowRun::landscapeRunHandsOverPortraitPictures()
{
    const QList<QComboBox *> orientation = m_window->findChildren<QComboBox *>();
    for (QComboBox *combo : orientation) {
        if (combo->count() == 2 && combo->itemData(1).toString() == QLatin1String("90"))
            combo->setCurrentIndex(1);
    }
    QVERIFY(m_window->isLandscapeOrientation());
    addPictures({TestFiles::markedImage(1600, 1200), TestFiles::markedImage(900, 1600)});
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    // tarn-sim refuses any picture that is not the panel's native portrait size.
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    QCOMPARE(statusText(1), QStringLiteral("Done ✓"));
    const QByteArray frame = TestFiles::read(QDir(packageDir()).filePath("frame_000.bin"));
    QVERIFY(frame.startsWith("TSIM 1 1200 1600 133\n"));
    // Unencrypted without a key file.
    QVERIFY(TestFiles::read(QDir(packageDir()).filePath("playlist.json")).contains("\"enabled\": false"));
}

void TestMainWindowRun::largePanelKeyFromAFolderWithChineseCharacters()
{
    const QString key = m_fixture->path(QStringLiteral("钥匙/设备密钥.json"));
    QVERIFY(TestFiles::write(key, R"({"panel": "25.3", "device_id": "ABCDEFGHIJKL", "uid": "u-7"})"));
    setKeyFile(key);
    QCOMPARE(m_window->panelResolution(), QSize(1800, 3200));
    addPictures({TestFiles::markedImage(1000, 700), TestFiles::markedImage(700, 1000)});
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    QCOMPARE(statusText(1), QStringLiteral("Done ✓"));
    const QString windowId = QFileInfo(m_window->liteBinStagingDir()).fileName();
    const QString staged = m_fixture->path("tmp/tarngui_pubkey/" + windowId + "/device_key.json");
    QVERIFY(QFileInfo::exists(staged));
    const QStringList log = logLines(*m_window);
    QCOMPARE(log.filter(QStringLiteral("  $ TARN-lite")).filter(QStringLiteral("--pubkey ") + staged).size(),
             2);
    QVERIFY(
        TestFiles::read(QDir(packageDir()).filePath("frame_001.bin")).startsWith("TSIM 1 1800 3200 253\n"));
    const QByteArray playlist = TestFiles::read(QDir(packageDir()).filePath("playlist.json"));
    QVERIFY(playlist.contains("\"panel\": \"25.3\""));
    QVERIFY(playlist.contains("\"width\": 1800"));
    QVERIFY(QFileInfo::exists(key)); // the user's key file stays where it was
}

void TestMainWindowRun::rerunWhenEverythingIsDone()
{
    addPictures({TestFiles::markedImage(400, 300)});
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    {
        ModalAnswerer no(QMessageBox::No);
        QTest::mouseClick(withText<QPushButton>(*m_window, QStringLiteral("▶  Start Processing")),
                          Qt::LeftButton);
        QCOMPARE(no.title(), QStringLiteral("Confirm"));
        QCOMPARE(no.text(), QStringLiteral("All images are done. Reset status and process again?"));
        QVERIFY(!m_window->isProcessing());
    }
    ModalAnswerer yes(QMessageBox::Yes);
    runToTheEnd();
    QCOMPARE(yes.titles(), (QStringList{"Confirm", "Ready for Your TF Card"}));
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
}

void TestMainWindowRun::onlyPendingRowsRunAndProgressCountsTableRows()
{
    addPictures(
        {TestFiles::markedImage(40, 30), TestFiles::markedImage(30, 40), TestFiles::markedImage(50, 50)});
    m_window->setRowStatus(1, Str::RowStatus::Done); // Done, but without an output
    QSignalSpy progress(m_window->findChild<QProgressBar *>(), &QProgressBar::valueChanged);
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QList<int> values;
    for (const QList<QVariant> &call : progress)
        values << call.at(0).toInt();
    QCOMPARE(values, (QList<int>{0, 1, 3}));
    QCOMPARE(logLines(*m_window).filter(QStringLiteral("  $ TARN-lite")).size(), 2);
    // Row 1 has no output any more: the package skips it and keeps its frame names contiguous.
    QVERIFY(logLines(*m_window).contains(
        QStringLiteral("⚠ 1 file(s) missing BIN; will skip:\nphoto_1.png").split('\n').first()));
    QCOMPARE(QDir(packageDir()).entryList(QDir::Files, QDir::Name),
             (QStringList{"frame_000.bin", "frame_001.bin", "playlist.json"}));
    QCOMPARE(m_window->findChild<QProgressBar *>()->format(), QStringLiteral("Done 2 / 3"));
}

void TestMainWindowRun::theSummaryCountsEveryFrameOfTheTable()
{
    addPictures(3);
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    addPictures(2);
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QCOMPARE(logLines(*m_window).filter(QStringLiteral("  $ TARN-lite")).size(), 2); // only the new ones ran
    // The three frames of the first run count as the two of this one do.
    QVERIFY(logLines(*m_window).contains(QStringLiteral("✅ All done! Success 5 / 5")));
    QCOMPARE(m_window->findChild<QProgressBar *>()->format(), QStringLiteral("Done 5 / 5"));
    QCOMPARE(completion.text(), Str::processingCompleteSummaryHtml(5, 5, 0));
}

QTEST_MAIN(TestMainWindowRun)
#include "tst_MainWindowRun.moc"
