// Copying a package onto a card: the copy is verified, read back from the card itself, and
// takes the name vl_play only when whole; a Cancel, a file that reads back wrong, a read-only
// or a full card leave the card as it was (an old vl_play untouched, nothing of ours besides
// it), and what could not be removed is named.
#include "playlist/CardCopy.h"
#include "ui/UiLanguage.h"

#include "ReadOnlyFolder.h"
#include "SmallVolume.h"
#include "TestFiles.h"

#include <QDir>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

namespace {

using Files = QMap<QString, QByteArray>;

QByteArray randomBytes(int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(size);
    for (char &byte : bytes)
        byte = char(generator.bounded(256));
    return bytes;
}

} // namespace

class TestCardCopy : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void copiesAndVerifies();
    void replacesAnOldPackageOnlyWhenWhole();
    void cancelLeavesNothing_data();
    void cancelLeavesNothing();
    void aFileThatReadsBackWrongIsRefused();
    void aFolderOfTheUsersIsNeverTouched();
    void readOnlyCard();
    void fullCard();
    void onAWorkerThread();
    void destroyedDuringACopy();
    void theReadBackComesFromTheCard();
    void whatCouldNotBeRemovedIsNamed();

private:
    QString card() const { return m_dir->filePath("card"); }
    QString package() const { return m_dir->filePath("out/vl_play"); }
    CardCopy::Result copy(const std::function<void(qint64, qint64, bool)> &progress = {});

    std::unique_ptr<QTemporaryDir> m_dir;
    Files m_package;
    std::atomic_bool m_cancel{false};
};

void TestCardCopy::initTestCase() { UiLanguage::set(UiLanguage::English); }

void TestCardCopy::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_cancel = false;
    m_package = {{"frame_000.bin", randomBytes(2500000)},
                 {"frame_001.bin", randomBytes(1200000)},
                 {"playlist.json", "{\"frames\": []}"}};
    for (auto it = m_package.cbegin(); it != m_package.cend(); ++it)
        QVERIFY(TestFiles::write(QDir(package()).filePath(it.key()), it.value()));
    QVERIFY(QDir().mkpath(card()));
}

CardCopy::Result TestCardCopy::copy(const std::function<void(qint64, qint64, bool)> &progress)
{
    return CardCopy::copy(
        package(), card(), m_cancel, progress ? progress : [](qint64, qint64, bool) {});
}

void TestCardCopy::copiesAndVerifies()
{
    QList<bool> phases;
    qint64 last = 0;
    const CardCopy::Result result = copy([&](qint64 done, qint64 total, bool verifying) {
        QVERIFY(done > last && done <= total);
        QCOMPARE(total, qint64(2 * (2500000 + 1200000 + 14)));
        last = done;
        if (phases.isEmpty() || phases.last() != verifying)
            phases << verifying;
    });
    QVERIFY2(result.ok, qPrintable(result.error));
    QCOMPARE(result.files, 3);
    QCOMPARE(result.bytes, qint64(2500000 + 1200000 + 14));
    QCOMPARE(result.target, QDir(card()).filePath("vl_play"));
    QCOMPARE(phases, (QList<bool>{false, true})); // every file copied, then every file read back
    QCOMPARE(TestFiles::entries(card()), QStringList{"vl_play"});
    QCOMPARE(TestFiles::contents(result.target), m_package);
    QCOMPARE(TestFiles::contents(package()), m_package); // the source is only read
}

void TestCardCopy::replacesAnOldPackageOnlyWhenWhole()
{
    const QString old = QDir(card()).filePath("vl_play");
    QVERIFY(TestFiles::write(QDir(old).filePath("frame_000.bin"), "old frame"));
    QVERIFY(TestFiles::write(QDir(old).filePath("frame_007.bin"), "old frame 7"));
    QList<QStringList> seen;
    const CardCopy::Result result = copy([&](qint64, qint64, bool) {
        // While the copy works, the old package is there as it was, and the copy is hidden.
        if (TestFiles::contents(old).size() != 2)
            seen << TestFiles::entries(card());
    });
    QVERIFY(result.ok);
    QVERIFY(seen.isEmpty());
    QCOMPARE(TestFiles::entries(card()), QStringList{"vl_play"});
    QCOMPARE(TestFiles::contents(old), m_package);
}

void TestCardCopy::cancelLeavesNothing_data()
{
    QTest::addColumn<bool>("whileVerifying");
    QTest::addColumn<bool>("withOldPackage");
    QTest::newRow("while copying") << false << false;
    QTest::newRow("while verifying") << true << false;
    QTest::newRow("with an old package") << false << true;
}

void TestCardCopy::cancelLeavesNothing()
{
    QFETCH(bool, whileVerifying);
    QFETCH(bool, withOldPackage);
    const Files old{{"frame_000.bin", "old"}, {"playlist.json", "{}"}};
    if (withOldPackage) {
        for (auto it = old.cbegin(); it != old.cend(); ++it)
            QVERIFY(TestFiles::write(QDir(card()).filePath("vl_play/" + it.key()), it.value()));
    }
    const CardCopy::Result result = copy([&](qint64, qint64, bool verifying) {
        if (verifying == whileVerifying)
            m_cancel = true;
    });
    QVERIFY(!result.ok);
    QVERIFY(result.cancelled);
    QVERIFY(result.error.isEmpty());
    if (withOldPackage) {
        QCOMPARE(TestFiles::entries(card()), QStringList{"vl_play"});
        QCOMPARE(TestFiles::contents(QDir(card()).filePath("vl_play")), old);
    } else {
        QCOMPARE(TestFiles::entries(card()), QStringList());
    }
}

void TestCardCopy::aFileThatReadsBackWrongIsRefused()
{
    const CardCopy::Result result = copy([&](qint64, qint64, bool verifying) {
        static bool spoilt = false;
        if (verifying && !spoilt) {
            // The card lost a byte: spoil the hidden copy before it is read back.
            spoilt = true;
            const QString partial = TestFiles::entries(card()).value(0);
            QVERIFY(partial.startsWith(".vl_play.partial-"));
            QFile frame(QDir(card()).filePath(partial + "/frame_001.bin"));
            QVERIFY(frame.open(QIODevice::ReadWrite));
            frame.seek(1000);
            frame.write("X");
        }
    });
    QVERIFY(!result.ok && !result.cancelled);
    QCOMPARE(result.error,
             QStringLiteral("Verification failed: frame_001.bin on the card differs from the package. "
                            "The card may be faulty or was removed.\n\nNothing of this copy was left "
                            "on the card; a vl_play already there was left as it was."));
    QCOMPARE(TestFiles::entries(card()), QStringList());
}

void TestCardCopy::aFolderOfTheUsersIsNeverTouched()
{
    const QString theirs = QDir(card()).filePath("vl_play");
    QVERIFY(TestFiles::write(QDir(theirs).filePath("holiday.jpg"), "a picture of theirs"));
    QVERIFY(TestFiles::write(QDir(theirs).filePath("frame_000.bin"), "an old frame"));
    const CardCopy::Result result = copy();
    QVERIFY(!result.ok && !result.cancelled);
    QCOMPARE(result.error, "The folder " + QDir::toNativeSeparators(theirs) +
                               " holds files that are not part of a playback package:\nholiday.jpg\n\n"
                               "Move them elsewhere, then try again. Nothing was changed.");
    QCOMPARE(TestFiles::entries(card()), QStringList{"vl_play"});
    QCOMPARE(TestFiles::contents(theirs),
             (Files{{"frame_000.bin", "an old frame"}, {"holiday.jpg", "a picture of theirs"}}));
}

void TestCardCopy::readOnlyCard()
{
    ReadOnlyFolder readOnly(card());
    if (!readOnly.isReadOnly())
        QSKIP("this machine cannot make a folder read-only");
    const CardCopy::Result result = copy();
    QVERIFY(!result.ok && !result.cancelled);
    QCOMPARE(result.error,
             "The card cannot be written:\n" + QDir::toNativeSeparators(card()) +
                 "\n\nNothing of this copy was left on the card; a vl_play already there was left "
                 "as it was.");
    QCOMPARE(TestFiles::entries(card()), QStringList());
}

void TestCardCopy::fullCard()
{
    // A real volume with room for the old package and one frame, not for the whole new one.
    SmallVolume volume(card(), SmallVolume::pagesFor(2500000) + 8);
    if (!volume.isMounted())
        QSKIP("this machine cannot mount a small volume");
    QVERIFY(TestFiles::write(QDir(card()).filePath("vl_play/frame_000.bin"), "old"));
    const CardCopy::Result result = copy();
    QVERIFY(!result.ok && !result.cancelled);
    QVERIFY2(result.error.startsWith("Copying frame_001.bin failed: No space left on device\n\n"),
             qPrintable(result.error));
    QCOMPARE(TestFiles::entries(card()), QStringList{"vl_play"});
    QCOMPARE(TestFiles::contents(QDir(card()).filePath("vl_play")), (Files{{"frame_000.bin", "old"}}));
}

void TestCardCopy::onAWorkerThread()
{
    CardCopy copy;
    QSignalSpy progress(&copy, &CardCopy::progress);
    QSignalSpy finished(&copy, &CardCopy::finished);
    copy.start(package(), card());
    QVERIFY(copy.isRunning());
    QVERIFY(finished.wait(30000));
    QVERIFY(!copy.isRunning());
    QVERIFY(progress.size() > 2);
    const auto result = finished.first().first().value<CardCopy::Result>();
    QVERIFY(result.ok);
    QCOMPARE(TestFiles::contents(QDir(card()).filePath("vl_play")), m_package);
}

void TestCardCopy::destroyedDuringACopy()
{
    QVERIFY(TestFiles::write(QDir(package()).filePath("frame_002.bin"), randomBytes(40000000)));
    {
        CardCopy copy;
        copy.start(package(), card());
    } // cancels and waits: no thread outlives it
    QVERIFY(!TestFiles::entries(card()).contains("vl_play"));
    QCOMPARE(TestFiles::entries(card()).filter(".vl_play.partial-"), QStringList());
}

void TestCardCopy::theReadBackComesFromTheCard()
{
    // Just before each file is read back, none of its pages may still be in the computer's cache.
    QStringList checked;
    QStringList resident;
    CardCopy::setBeforeReadBack([&](const QString &path) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const qint64 size = file.size();
        void *mapped = ::mmap(nullptr, size_t(size), PROT_READ, MAP_SHARED, file.handle(), 0);
        QVERIFY(mapped != MAP_FAILED);
        const long page = ::sysconf(_SC_PAGESIZE);
        std::vector<unsigned char> pages(size_t((size + page - 1) / page));
        QCOMPARE(::mincore(mapped, size_t(size), pages.data()), 0);
        ::munmap(mapped, size_t(size));
        const auto inCache = std::count_if(pages.begin(), pages.end(), [](unsigned char p) { return p & 1; });
        checked << QFileInfo(path).fileName();
        if (inCache > 0)
            resident << QStringLiteral("%1: %2 of %3 pages")
                            .arg(QFileInfo(path).fileName())
                            .arg(inCache)
                            .arg(pages.size());
    });
    const auto reset = qScopeGuard([] { CardCopy::setBeforeReadBack({}); });
    const CardCopy::Result result = copy();
    QVERIFY(result.ok);
    QCOMPARE(checked, (QStringList{"frame_000.bin", "frame_001.bin", "playlist.json"}));
    QVERIFY2(resident.isEmpty(), qPrintable(resident.join("; ")));
}

void TestCardCopy::whatCouldNotBeRemovedIsNamed()
{
    // The copy is cancelled and its hidden folder cannot be removed (as on a card gone
    // read-only): the result names the folder and says the next copy removes it.
    std::unique_ptr<ReadOnlyFolder> stuck;
    const CardCopy::Result result = copy([&](qint64, qint64, bool) {
        if (stuck)
            return;
        const QString partial = QDir(card()).filePath(TestFiles::entries(card()).value(0));
        stuck = std::make_unique<ReadOnlyFolder>(partial);
        m_cancel = true;
    });
    QVERIFY(stuck);
    if (!stuck->isReadOnly())
        QSKIP("this machine cannot make a folder read-only");
    QVERIFY(result.cancelled);
    const QString partial = QDir(card()).filePath(TestFiles::entries(card()).value(0));
    QVERIFY(QFileInfo(partial).fileName().startsWith(".vl_play.partial-"));
    QCOMPARE(result.leftNote,
             "What was copied is still on the card as " + QDir::toNativeSeparators(partial) +
                 " (the card may have been removed); the next copy to this card removes it. A "
                 "vl_play already there was left as it was.");
    stuck.reset();
    // And the next copy does.
    m_cancel = false;
    const CardCopy::Result next = copy();
    QVERIFY(next.ok);
    QCOMPARE(next.recovered.size(), 1);
    QCOMPARE(TestFiles::entries(card()), QStringList{"vl_play"});
}

QTEST_GUILESS_MAIN(TestCardCopy)
#include "tst_CardCopy.moc"
