// A package write or a card copy killed at any of its steps, in a child process, leaves a folder
// that the next one puts right: exactly one vl_play, the old package or the new one, never both
// and never none; and what was found is said a line each.
#include "playlist/FolderSwap.h"
#include "ui/UiLanguage.h"

#include "TestFiles.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString kHost = QStringLiteral(VELORA_CRASH_HOST);

using Files = QMap<QString, QByteArray>;

const Files kOld = {{"frame_000.bin", "old frame 0"}, {"playlist.json", "old"}};
const Files kNew = {{"frame_000.bin", "new frame 0"},
                    {"frame_001.bin", "new frame 1"},
                    {"frame_002.bin", "new frame 2"},
                    {"playlist.json", "new"}};

void writeFolder(const QString &folder, const Files &files)
{
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    for (auto file = files.begin(); file != files.end(); ++file)
        QVERIFY(TestFiles::write(QDir(folder).filePath(file.key()), file.value()));
}

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

class TestCrashRecovery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { UiLanguage::set(UiLanguage::English); }
    void anExportKilledAtAnyStepLeavesOnePackage();
    void aCardCopyKilledAtAnyStepLeavesOnePackage();
    void whatIsFoundIsSaidALineEach();

private:
    // Runs the host killed at each step in turn until it finishes; each time, recovers and checks.
    void killAtEachStep(const QString &mode, bool hidden);

    QTemporaryDir m_dir;
};

void TestCrashRecovery::killAtEachStep(const QString &mode, bool hidden)
{
    const QString parent = m_dir.filePath(mode);
    const QString newFiles = m_dir.filePath(mode + "-new");
    writeFolder(newFiles, kNew);
    // The new package of the card copy is read from a package folder; the export's frames are
    // the new files but its playlist.json (written by the export itself).
    Files exported = kNew;
    if (mode == QLatin1String("export"))
        QFile::remove(QDir(newFiles).filePath("playlist.json"));
    QSet<QString> outcomes;
    int step = 1;
    for (;; ++step) {
        QDir(parent).removeRecursively();
        writeFolder(QDir(parent).filePath("vl_play"), kOld);
        QProcess host;
        host.start(kHost, {mode, mode == QLatin1String("export") ? parent : newFiles,
                           mode == QLatin1String("export") ? newFiles : parent, QString::number(step)});
        QVERIFY(host.waitForFinished(30000));
        if (host.exitStatus() == QProcess::NormalExit) {
            QCOMPARE(host.exitCode(), 0); // it got to the end before the step came
            break;
        }
        FolderSwap::recover(QDir(parent).filePath("vl_play"), hidden);
        QCOMPARE(entries(parent), QStringList{"vl_play"});
        const Files left = TestFiles::contents(QDir(parent).filePath("vl_play"));
        QVERIFY2(left == kOld || left == exported, qPrintable(QStringList(left.keys()).join(' ')));
        outcomes << (left == kOld ? QStringLiteral("old") : QStringLiteral("new"));
    }
    // Every step was a place to be killed: the file steps, and both sides of the swap.
    QVERIFY2(step > 5, qPrintable(QString::number(step)));
    QCOMPARE(outcomes, (QSet<QString>{"old", "new"}));
    // And the finished one is the new package alone.
    QCOMPARE(entries(parent), QStringList{"vl_play"});
    QCOMPARE(TestFiles::contents(QDir(parent).filePath("vl_play")), exported);
}

void TestCrashRecovery::anExportKilledAtAnyStepLeavesOnePackage() { killAtEachStep("export", false); }

void TestCrashRecovery::aCardCopyKilledAtAnyStepLeavesOnePackage() { killAtEachStep("card", true); }

void TestCrashRecovery::whatIsFoundIsSaidALineEach()
{
    const QString parent = m_dir.filePath("found");
    // The newer of two old packages is the last good one.
    writeFolder(QDir(parent).filePath("vl_play.old-zz9"), kNew);
    QTest::qWait(30);
    writeFolder(QDir(parent).filePath("vl_play.old-abc123"), kOld);
    writeFolder(QDir(parent).filePath("vl_play.partial-q1w2"), kNew);
    writeFolder(QDir(parent).filePath("vl_play.partial-note"), kNew);  // ours: removed
    writeFolder(QDir(parent).filePath("vl_play.partial-Mine"), kNew);  // not a name of ours
    writeFolder(QDir(parent).filePath(".vl_play.partial-q1w2"), kNew); // a card's: another target
    const QStringList found = FolderSwap::recover(QDir(parent).filePath("vl_play"), false);
    QCOMPARE(found.size(), 4);
    QCOMPARE(found.at(0),
             QStringLiteral("↺ Found the earlier package vl_play.old-abc123 left by an interrupted "
                            "run, and no vl_play: put it back as vl_play."));
    QCOMPARE(found.at(1),
             QStringLiteral(
                 "↺ Found an old package folder vl_play.old-zz9 left by an interrupted run: removed it."));
    QVERIFY(found.contains(QStringLiteral(
        "↺ Found an unfinished folder vl_play.partial-q1w2 left by an interrupted run: removed it.")));
    QCOMPARE(entries(parent), (QStringList{".vl_play.partial-q1w2", "vl_play", "vl_play.partial-Mine"}));
    QCOMPARE(TestFiles::contents(QDir(parent).filePath("vl_play")), kOld);
    // Nothing left to find.
    QVERIFY(FolderSwap::recover(QDir(parent).filePath("vl_play"), false).isEmpty());
}

QTEST_MAIN(TestCrashRecovery)
#include "tst_CrashRecovery.moc"
