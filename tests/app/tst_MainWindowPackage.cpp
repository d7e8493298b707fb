// The package is always exactly the table's Done rows, in table order, or the previous
// package untouched and a box that says why: runs added to, stopped, reordered while they
// work, written over a larger package, onto a full disk or into a read-only save location.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "playlist/FileWriter.h"
#include "preprocess/PreprocWidget.h"
#include "ui/UiLanguage.h"

#include "LanguageGuard.h"
#include "ModalAnswerer.h"
#include "PackageCheck.h"
#include "ReadOnlyFolder.h"
#include "SmallVolume.h"
#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QDir>
#include <QLocale>
#include <QMap>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>

namespace {

// The stand-in's frame for a 1200 x 1600 panel: its header line, then two pixels a byte.
constexpr qint64 kFrameBytes = 21 + 600 * 1600;

using Files = QMap<QString, QByteArray>;

} // namespace

class TestMainWindowPackage : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void picturesAddedAfterARunJoinThePackage();
    void leftoversOfAnInterruptedExportAreClearedFirst();
    void completionNamesWhatThePackageHolds();
    void stopThenStartContinuesWhereTheRunStopped();
    void reorderingTheRowBeingProcessed();
    void changingARowWhileItIsProcessed();
    void removingAndReorderingBetweenRuns();
    void exportOverALargerPackage();
    void oldPackageWithFilesOfTheUsersIsNeverTouched();
    void fullDiskAtEachPointOfTheExport_data();
    void fullDiskAtEachPointOfTheExport();
    void retryWritesThePackageOnceThereIsRoom();
    void realVolumeWithRoomForTheFramesButNotThePlaylist();
    void retrySaysHowMuchRoomIsStillNeeded();
    void readOnlySaveLocationIsRefusedBeforeTheRun();
    void saveLocationThatBecomesReadOnlyDuringTheRun();

private:
    QPushButton *reorderButton(int row, const QString &arrow) const;
    QStringList commandLines() const { return logLines(*m_window).filter(QStringLiteral("  $ TARN-lite")); }
};

void TestMainWindowPackage::cleanup()
{
    FileWriter::simulateFreeSpace(-1);
    WindowTestCase::cleanup();
}

QPushButton *TestMainWindowPackage::reorderButton(int row, const QString &arrow) const
{
    QWidget *cell = m_window->imageTable()->cellWidget(row, MainWindow::OrderColumn);
    return cell ? withText<QPushButton>(*cell, arrow) : nullptr;
}

void TestMainWindowPackage::leftoversOfAnInterruptedExportAreClearedFirst()
{
    // An export killed between its renames: no vl_play, the last good package aside, and an
    // unfinished folder of an export killed earlier.
    const QString out = m_fixture->path("out");
    QVERIFY(TestFiles::write(QDir(out).filePath("vl_play.old-k1ll3d/frame_000.bin"), "old frame"));
    QVERIFY(TestFiles::write(QDir(out).filePath("vl_play.old-k1ll3d/playlist.json"), "{}"));
    QVERIFY(TestFiles::write(QDir(out).filePath("vl_play.partial-h4lf/frame_000.bin"), "half"));
    addColours({Qt::red, Qt::blue});
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    const QStringList log = logLines(*m_window);
    QVERIFY(log.contains("↺ Found the earlier package vl_play.old-k1ll3d left by an interrupted run, and no "
                         "vl_play: put it back as vl_play."));
    QVERIFY(log.contains(
        "↺ Found an unfinished folder vl_play.partial-h4lf left by an interrupted run: removed it."));
    // Then the new package replaced the one put back.
    QCOMPARE(TestFiles::entries(out), QStringList{"vl_play"});
    expectPackage({Qt::red, Qt::blue});
}

void TestMainWindowPackage::picturesAddedAfterARunJoinThePackage()
{
    addColours({Qt::red, Qt::blue, Qt::green});
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    expectPackage({Qt::red, Qt::blue, Qt::green});

    addColours({Qt::yellow, Qt::black});
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QCOMPARE(commandLines().size(), 2); // only the new rows were processed
    for (int row = 0; row < 5; ++row)
        QCOMPARE(statusText(row), QStringLiteral("Done ✓"));
    expectPackage({Qt::red, Qt::blue, Qt::green, Qt::yellow, Qt::black});
    QCOMPARE(completion.titles(), QStringList{"Ready for Your TF Card"});
    QVERIFY(ModalAnswerer::plainText(completion.text()).startsWith("The package holds 5 of 5 picture(s)."));
}

void TestMainWindowPackage::completionNamesWhatThePackageHolds()
{
    addColours({Qt::red, Qt::blue});
    const QString broken = m_fixture->path("broken.png");
    QVERIFY(TestFiles::write(broken, "not a picture"));
    m_window->addImageFiles({broken});
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QCOMPARE(statusText(2), QStringLiteral("Failed (3)"));
    QCOMPARE(completion.titles(), QStringList{"Ready for Your TF Card"});
    QVERIFY(ModalAnswerer::plainText(completion.text())
                .startsWith(QStringLiteral("The package holds 2 of 3 picture(s); 1 failed.\n")));
    expectPackage({Qt::red, Qt::blue});
}

void TestMainWindowPackage::stopThenStartContinuesWhereTheRunStopped()
{
    addColours({Qt::red, Qt::blue, Qt::green});
    qputenv("TARN_SIM_SLEEP_MS", "600");
    ModalAnswerer none(QMessageBox::Cancel);
    m_window->onStartProcess();
    QTRY_COMPARE_WITH_TIMEOUT(statusText(2), QStringLiteral("Processing..."), 20000);
    QTest::mouseClick(withText<QPushButton>(*m_window, QStringLiteral("■  Stop")), Qt::LeftButton);
    QTRY_COMPARE(statusText(2), QStringLiteral("Pending"));
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    QCOMPARE(statusText(1), QStringLiteral("Done ✓"));
    QVERIFY(!none.answered()); // a stopped run writes no package
    QVERIFY(!QFileInfo::exists(packageDir()));

    qunsetenv("TARN_SIM_SLEEP_MS");
    runToTheEnd();
    QCOMPARE(commandLines().size(), 1);
    QVERIFY(commandLines().first().contains("photo_2_preproc.jpg"));
    expectPackage({Qt::red, Qt::blue, Qt::green});
    QCOMPARE(none.titles(), QStringList{"Ready for Your TF Card"});
}

void TestMainWindowPackage::reorderingTheRowBeingProcessed()
{
    addColours({Qt::red, Qt::blue, Qt::green});
    qputenv("TARN_SIM_SLEEP_MS", "1500");
    ModalAnswerer completion(QMessageBox::Cancel);
    m_window->onStartProcess();
    QTRY_VERIFY(
        logLines(*m_window).contains(QStringLiteral("  | tarn-sim: quantising 1200x1600 for panel 133")));
    // ↓ on the red row while its processor works: it moves with its status to row 1.
    QTest::mouseClick(reorderButton(0, QStringLiteral("↓")), Qt::LeftButton);
    QCOMPARE(statusText(1), QStringLiteral("Processing..."));
    QCOMPARE(statusText(0), QStringLiteral("Pending"));
    qunsetenv("TARN_SIM_SLEEP_MS");
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->isProcessing(), 30000);
    for (int row = 0; row < 3; ++row)
        QCOMPARE(statusText(row), QStringLiteral("Done ✓"));
    QCOMPARE(commandLines().size(), 3);
    expectPackage({Qt::blue, Qt::red, Qt::green}); // the table's order at the end
}

void TestMainWindowPackage::changingARowWhileItIsProcessed()
{
    addColours({Qt::red, Qt::blue});
    qputenv("TARN_SIM_SLEEP_MS", "1500");
    ModalAnswerer completion(QMessageBox::Cancel);
    m_window->onStartProcess();
    QTRY_VERIFY(
        logLines(*m_window).contains(QStringLiteral("  | tarn-sim: quantising 1200x1600 for panel 133")));
    // Turned while its processor works on the unturned picture: that output is not the row's.
    m_window->preprocWidgetAt(0)->onRotateRight();
    QCOMPARE(statusText(0), QStringLiteral("Processing..."));
    qunsetenv("TARN_SIM_SLEEP_MS");
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->isProcessing(), 30000);
    QVERIFY(logLines(*m_window).contains(
        QStringLiteral("  ⚠ The picture's settings changed while it was processed; it is processed again")));
    QCOMPARE(commandLines().size(), 3); // row 0, row 1, row 0 again
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    expectPackage({Qt::red, Qt::blue});
}

void TestMainWindowPackage::removingAndReorderingBetweenRuns()
{
    addColours({Qt::red, Qt::blue, Qt::green, Qt::yellow});
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    // Remove blue, move yellow to the top, turn green: only green is made again.
    check({1});
    m_window->onRemoveSelected();
    m_window->imageTable()->moveRow(2, 0);
    m_window->preprocWidgetAt(2)->onRotateLeft();
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    QCOMPARE(statusText(2), QStringLiteral("Pending"));
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QCOMPARE(commandLines().size(), 1);
    expectPackage({Qt::yellow, Qt::red, Qt::green});
}

void TestMainWindowPackage::exportOverALargerPackage()
{
    // Last month's package: ten frames.
    for (int i = 0; i < 10; ++i)
        TestFiles::write(
            QDir(packageDir()).filePath(QStringLiteral("frame_%1.bin").arg(i, 3, 10, QLatin1Char('0'))),
            "last month");
    TestFiles::write(QDir(packageDir()).filePath("playlist.json"), "{}");
    addColours({Qt::red, Qt::blue, Qt::green, Qt::yellow});
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    expectPackage({Qt::red, Qt::blue, Qt::green, Qt::yellow}); // frame_004 ... frame_009 are gone
    QCOMPARE(QDir(packageDir() + "/..").entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{"vl_play"});
}

void TestMainWindowPackage::oldPackageWithFilesOfTheUsersIsNeverTouched()
{
    TestFiles::write(QDir(packageDir()).filePath("frame_000.bin"), "last month");
    TestFiles::write(QDir(packageDir()).filePath("my notes.txt"), "mine");
    addColours({Qt::red});
    ModalAnswerer refusal(QMessageBox::Ok);
    m_window->onStartProcess();
    QCOMPARE(refusal.title(), QStringLiteral("Settings Error"));
    QCOMPARE(refusal.text(),
             QStringLiteral("The folder %1 holds files that are not part of a playback package:\n"
                            "my notes.txt\n\nMove them elsewhere, then try again. Nothing was changed.")
                 .arg(QDir::toNativeSeparators(packageDir())));
    QVERIFY(!m_window->isProcessing());
    QCOMPARE(statusText(0), QStringLiteral("Pending"));
    QCOMPARE(TestFiles::read(QDir(packageDir()).filePath("my notes.txt")), QByteArray("mine"));
    QCOMPARE(TestFiles::read(QDir(packageDir()).filePath("frame_000.bin")), QByteArray("last month"));
}

void TestMainWindowPackage::fullDiskAtEachPointOfTheExport_data()
{
    QTest::addColumn<qint64>("freeBytes");
    QTest::addColumn<QString>("failingFile");
    QTest::newRow("first frame") << qint64(0) << "frame_000.bin";
    QTest::newRow("inside the second frame") << kFrameBytes + 100 << "frame_001.bin";
    QTest::newRow("last frame") << 2 * kFrameBytes << "frame_002.bin";
    QTest::newRow("playlist.json, after every frame") << 3 * kFrameBytes + 10 << "playlist.json";
}

void TestMainWindowPackage::fullDiskAtEachPointOfTheExport()
{
    QFETCH(qint64, freeBytes);
    QFETCH(QString, failingFile);
    addColours({Qt::red, Qt::blue});
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    const Files before = TestFiles::contents(packageDir());
    QCOMPARE(before.size(), 3);

    addColours({Qt::green});
    FileWriter::simulateFreeSpace(freeBytes);
    ModalAnswerer boxes(QMessageBox::Close);
    runToTheEnd();
    QCOMPARE(boxes.titles(), QStringList{"Create Failed"}); // and no "Ready for Your TF Card"
    QCOMPARE(boxes.icon(), QMessageBox::Critical);
    QCOMPARE(boxes.seen().first().buttons, (QStringList{"Retry", "Close"}));
    const QString shown = QDir::toNativeSeparators(packageDir());
    // The file named is the one being written, in the new folder beside the package.
    const QRegularExpression written(QRegularExpression::escape(packageDir()) + "\\.partial-[0-9a-z]+/" +
                                     QRegularExpression::escape(failingFile) + "\nNo space left on device");
    QVERIFY2(written.match(boxes.text()).hasMatch(), qPrintable(boxes.text()));
    QVERIFY(
        boxes.text().endsWith(QStringLiteral("The previous package in %1 was left as it was.").arg(shown)));
    QCOMPARE(TestFiles::contents(packageDir()), before);
    QCOMPARE(QDir(packageDir() + "/..").entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{"vl_play"});
    for (int row = 0; row < 3; ++row)
        QCOMPARE(statusText(row), QStringLiteral("Done ✓")); // the rows keep their outputs
}

void TestMainWindowPackage::retryWritesThePackageOnceThereIsRoom()
{
    addColours({Qt::red, Qt::blue});
    FileWriter::simulateFreeSpace(kFrameBytes / 2);
    ModalAnswerer boxes(QMessageBox::Retry);
    boxes.setBeforeAnswer(
        [](const ModalAnswerer::Seen &) { FileWriter::simulateFreeSpace(-1); }); // room made
    runToTheEnd();
    QCOMPARE(boxes.titles(), (QStringList{"Create Failed", "Ready for Your TF Card"}));
    expectPackage({Qt::red, Qt::blue});
}

void TestMainWindowPackage::realVolumeWithRoomForTheFramesButNotThePlaylist()
{
    // A card of its own for the save location: last month's two frames and playlist, and room
    // for this month's three frames, but not for one page more.
    const qint64 framePages = SmallVolume::pagesFor(kFrameBytes);
    SmallVolume card(m_fixture->path("card"), 2 * framePages + 1 + 3 * framePages);
    if (!card.isMounted())
        QSKIP("this machine does not let the test mount a small volume; the simulated full disk covers it");
    saveLocation(*m_window)->setText(card.path());
    const QString package = QDir(card.path()).filePath("vl_play");
    addColours({Qt::red, Qt::blue});
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    const Files before = TestFiles::contents(package);
    addColours({Qt::green});
    ModalAnswerer boxes(QMessageBox::Close);
    runToTheEnd();
    QCOMPARE(boxes.titles(), QStringList{"Create Failed"});
    // Told before anything is written, with how much is needed and how much is free.
    QVERIFY2(boxes.text().startsWith("There is not enough room in " + QDir::toNativeSeparators(card.path()) +
                                     " for the new package: it needs "),
             qPrintable(boxes.text()));
    QCOMPARE(TestFiles::contents(package), before);
    QCOMPARE(PackageCheck::colours(package), (QList<QColor>{Qt::red, Qt::blue}));
    QCOMPARE(QDir(card.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{"vl_play"});
}

void TestMainWindowPackage::retrySaysHowMuchRoomIsStillNeeded()
{
    // A card with last month's two frames and room for this month's three beside them (and a
    // page for their folder, as the check counts it), but for two files of the user's: 60 pages and 1.
    const qint64 framePages = SmallVolume::pagesFor(kFrameBytes);
    SmallVolume card(m_fixture->path("card"), (2 * framePages + 1) + (3 * framePages + 2));
    if (!card.isMounted())
        QSKIP("this machine does not let the test mount a small volume");
    saveLocation(*m_window)->setText(card.path());
    addColours({Qt::red, Qt::blue});
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    const QString first = QDir(card.path()).filePath("sixty-pages.txt");
    const QString second = QDir(card.path()).filePath("one-page.txt");
    QVERIFY(TestFiles::write(first, QByteArray(60 * SmallVolume::kPage, 's')));
    QVERIFY(TestFiles::write(second, QByteArray(100, 'l')));
    addColours({Qt::green});
    // Retry after freeing the larger file says the same with the new figures; after the other, it writes.
    QStringList freed;
    ModalAnswerer boxes(QMessageBox::Retry);
    boxes.setBeforeAnswer([&](const ModalAnswerer::Seen &) {
        const QString next = freed.isEmpty() ? first : second;
        if (freed.size() < 2 && QFile::remove(next))
            freed << next;
    });
    runToTheEnd();
    QCOMPARE(boxes.titles(), (QStringList{"Create Failed", "Create Failed", "Ready for Your TF Card"}));
    const QLocale locale;
    const QString needs = QStringLiteral(" for the new package: it needs %1, and ")
                              .arg(locale.formattedDataSize(SmallVolume::kPage * (3 * framePages + 2), 1));
    for (int box = 0; box < 2; ++box)
        QVERIFY2(boxes.seen().at(box).text.startsWith("There is not enough room in " +
                                                      QDir::toNativeSeparators(card.path()) + needs),
                 qPrintable(boxes.seen().at(box).text));
    QVERIFY(boxes.seen().at(0).text != boxes.seen().at(1).text); // the free room told anew
    QCOMPARE(PackageCheck::colours(QDir(card.path()).filePath("vl_play")),
             (QList<QColor>{Qt::red, Qt::blue, Qt::green}));
}

void TestMainWindowPackage::readOnlySaveLocationIsRefusedBeforeTheRun()
{
    QVERIFY(QDir().mkpath(m_fixture->path("out")));
    ReadOnlyFolder readOnly(m_fixture->path("out"));
    if (!readOnly.isReadOnly())
        QSKIP("this machine cannot make a folder read-only for this user");
    addColours({Qt::red});
    {
        ModalAnswerer refusal(QMessageBox::Ok);
        m_window->onStartProcess();
        QCOMPARE(refusal.title(), QStringLiteral("Settings Error"));
        QVERIFY2(refusal.text().startsWith(QStringLiteral("Cannot write to the save location:\n%1\n\n")
                                               .arg(QDir::toNativeSeparators(m_fixture->path("out")))),
                 qPrintable(refusal.text()));
        QVERIFY(refusal.text().endsWith(QStringLiteral("\n\nChoose a folder you can write to.")));
    }
    QVERIFY(!m_window->isProcessing());
    QVERIFY(commandLines().isEmpty());
    QCOMPARE(statusText(0), QStringLiteral("Pending"));
    // In the window's language.
    LanguageGuard zh(UiLanguage::Chinese);
    ModalAnswerer refusal(QMessageBox::Ok);
    m_window->onStartProcess();
    QCOMPARE(refusal.title(), QStringLiteral("设置错误"));
    QVERIFY(refusal.text().startsWith(QStringLiteral("无法写入保存位置:\n")));
}

void TestMainWindowPackage::saveLocationThatBecomesReadOnlyDuringTheRun()
{
    QVERIFY(QDir().mkpath(m_fixture->path("out")));
    addColours({Qt::red});
    qputenv("TARN_SIM_SLEEP_MS", "500");
    ModalAnswerer boxes(QMessageBox::Close);
    m_window->onStartProcess();
    QVERIFY(m_window->isProcessing());
    ReadOnlyFolder readOnly(m_fixture->path("out"));
    if (!readOnly.isReadOnly())
        QSKIP("this machine cannot make a folder read-only for this user");
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->isProcessing(), 20000);
    QCOMPARE(boxes.titles(), QStringList{"Create Failed"});
    QVERIFY2(
        boxes.text().startsWith(
            QStringLiteral("Cannot create the folder: %1\n").arg(QDir::toNativeSeparators(packageDir()))),
        qPrintable(boxes.text()));
    QVERIFY(boxes.text().endsWith(QStringLiteral("\n\nNo package was written.")));
    QCOMPARE(QDir(m_fixture->path("out")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

QTEST_MAIN(TestMainWindowPackage)
#include "tst_MainWindowPackage.moc"
