// The session written on a worker thread: the newest list wins, a write at the end waits for
// the one under way and is not overwritten by it, and a saver destroyed in the middle of a write
// waits for it: a whole file, and no temporary one.
#include "app/PictureList.h"
#include "app/SessionSaver.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

// A list of count pictures, the first named after mark.
PictureList listOf(int count, const QString &mark)
{
    PictureList list;
    for (int i = 0; i < count; ++i)
        list.pictures.append(
            {QStringLiteral("/pictures/%1_%2.jpg").arg(mark).arg(i), {FillMode::BlurFill, 0}});
    return list;
}

QString firstPath(const QString &file)
{
    const std::optional<PictureList> list = PictureList::load(file, nullptr);
    return list && !list->pictures.isEmpty() ? list->pictures.first().path : QString();
}

} // namespace

class TestSessionSaver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theNewestListWins();
    void aWriteAtTheEndWaitsAndIsNotOverwritten();
    void aSaverDestroyedMidWriteLeavesAWholeFile();
};

void TestSessionSaver::theNewestListWins()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("session.json"));
    SessionSaver saver(file);
    QSignalSpy written(&saver, &SessionSaver::written);
    saver.save(listOf(3000, QStringLiteral("a")));
    saver.save(listOf(3000, QStringLiteral("b")));
    saver.save(listOf(3000, QStringLiteral("c")));
    QTRY_VERIFY(!saver.isBusy());
    QCOMPARE(firstPath(file), QStringLiteral("/pictures/c_0.jpg"));
    // The one under way, then the newest; the one in between was never written.
    QVERIFY(written.size() <= 2);
    for (const QList<QVariant> &end : written)
        QVERIFY(end.at(0).toBool());
}

void TestSessionSaver::aWriteAtTheEndWaitsAndIsNotOverwritten()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("session.json"));
    SessionSaver saver(file);
    saver.save(listOf(3000, QStringLiteral("a")));
    saver.save(listOf(3000, QStringLiteral("b")));
    QVERIFY(saver.saveNow(listOf(2, QStringLiteral("end"))));
    QCOMPARE(firstPath(file), QStringLiteral("/pictures/end_0.jpg"));
    QTest::qWait(300);
    QCOMPARE(firstPath(file), QStringLiteral("/pictures/end_0.jpg"));
}

void TestSessionSaver::aSaverDestroyedMidWriteLeavesAWholeFile()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("session.json"));
    for (int round = 0; round < 10; ++round) {
        {
            SessionSaver saver(file);
            saver.save(listOf(3000, QString::number(round)));
        }
        // The write under way was waited for.
        QCOMPARE(firstPath(file), QStringLiteral("/pictures/%1_0.jpg").arg(round));
    }
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{"session.json"});
}

QTEST_MAIN(TestSessionSaver)
#include "tst_SessionSaver.moc"
