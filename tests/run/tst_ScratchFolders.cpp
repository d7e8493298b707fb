// The folders of one window: its own below the temporary location, gone with it, and those of
// a copy that died removed by the next one, while a live copy's are left alone.
#include "run/ScratchFolders.h"

#include "TestFiles.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

class TestScratchFolders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void eachOwnerHasItsOwnFoldersAndTakesThemAlong();
    void foldersOfADeadCopyAreRemovedByTheNext();
    void filesOfAnOlderVersionAreRemoved();

private:
    QTemporaryDir m_temp;
};

void TestScratchFolders::initTestCase()
{
    QVERIFY(m_temp.isValid());
    qputenv("TMPDIR", QFile::encodeName(m_temp.path()));
}

void TestScratchFolders::eachOwnerHasItsOwnFoldersAndTakesThemAlong()
{
    auto first = std::make_unique<ScratchFolders>();
    ScratchFolders second;
    QVERIFY(first->id() != second.id());
    for (const QString &dir : {first->stagingDir(), first->renderDir(), first->keyDir(), second.stagingDir()})
        QVERIFY2(QFileInfo(dir).isDir(), qPrintable(dir));
    QCOMPARE(QFileInfo(first->stagingDir()).absolutePath(), m_temp.filePath("tarngui_lite_bins"));
    QCOMPARE(QFileInfo(first->renderDir()).absolutePath(), m_temp.filePath("tarngui_preproc"));
    QCOMPARE(QFileInfo(first->keyDir()).absolutePath(), m_temp.filePath("tarngui_pubkey"));
    QVERIFY(TestFiles::write(QDir(first->stagingDir()).filePath("out_000001.bin"), "frame"));
    const QString firstStaging = first->stagingDir();
    // A live owner's folders survive another's clean-up.
    ScratchFolders::removeAbandoned();
    QVERIFY(QFileInfo::exists(QDir(firstStaging).filePath("out_000001.bin")));
    first.reset();
    QVERIFY(!QFileInfo::exists(firstStaging));
    QVERIFY(QFileInfo(second.stagingDir()).isDir());
}

void TestScratchFolders::foldersOfADeadCopyAreRemovedByTheNext()
{
    QProcess host;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", m_temp.path());
    host.setProcessEnvironment(environment);
    host.start(QStringLiteral(VELORA_RUN_HOST), {TestFiles::tarnSimPath(), "--decode"}); // ends at once
    QVERIFY(host.waitForReadyRead(10000));
    const QString id = QString::fromUtf8(host.readLine()).trimmed().section(' ', 1);
    QVERIFY(!id.isEmpty());
    const QString staging = m_temp.filePath("tarngui_lite_bins/" + id);
    QVERIFY(QFileInfo(staging).isDir());
    QVERIFY(TestFiles::write(QDir(staging).filePath("out_000001.bin"), "frame"));
    host.kill(); // dies without cleaning up
    QVERIFY(host.waitForFinished(5000));
    QVERIFY(QFileInfo(staging).isDir());

    ScratchFolders next;
    QVERIFY(!QFileInfo::exists(staging));
    QVERIFY(!QFileInfo::exists(m_temp.filePath("tarngui_preproc/" + id)));
    QVERIFY(!QFileInfo::exists(m_temp.filePath("tarngui_lite_bins/" + id + ".lock")));
}

void TestScratchFolders::filesOfAnOlderVersionAreRemoved()
{
    QVERIFY(TestFiles::write(m_temp.filePath("tarngui_lite_bins/row_0000.bin"), "old"));
    QVERIFY(TestFiles::write(m_temp.filePath("tarngui_preproc/IMG_1_preproc.jpg"), "old"));
    QVERIFY(TestFiles::write(m_temp.filePath("tarngui_pubkey/device_key.json"), "{}"));
    ScratchFolders::removeAbandoned();
    for (const char *file : {"tarngui_lite_bins/row_0000.bin", "tarngui_preproc/IMG_1_preproc.jpg",
                             "tarngui_pubkey/device_key.json"})
        QVERIFY2(!QFileInfo::exists(m_temp.filePath(file)), file);
}

QTEST_GUILESS_MAIN(TestScratchFolders)
#include "tst_ScratchFolders.moc"
