// The run engine on its own, without a window or widgets (a GUI-less application), with the
// stand-in processor: the order of its items, stop and continue, moving, removing and changing
// items during a run, how every end of a processor becomes a status, pictures rendered ahead,
// and several processors at once with their log blocks whole and in order.
#include "run/PackageJob.h"
#include "ui/AppStrings.h"
#include "ui/UiLanguage.h"

#include "FilesBelow.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString kProcessor = QStringLiteral(VELORA_DEMO_PROCESSOR);

QStringList namesBelow(const QString &folder)
{
    QStringList names;
    for (const QString &path : filesBelow(folder))
        names << QFileInfo(path).fileName();
    return names;
}

} // namespace

class TestPackageJob : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void itemsAreProcessedInOrder();
    void stopAndContinue();
    void reorderAndRemoveDuringARun();
    void aChangeDuringARunMakesTheItemAgain();
    void everyEndBecomesAStatus_data();
    void everyEndBecomesAStatus();
    void theNextPicturesAreRenderedAhead();
    void severalProcessorsAtOnceLogWholeBlocksInOrder();
    void stopEndsEveryProcessor();
    void aStartRightAfterAStopSettlesTheStoppedOnes();
    void aRestoredItemIsDoneWithItsOwnOutputAgain();

private:
    // A picture of its own colour, and the job's item for it.
    JobPicture picture(const QString &name, FillMode fill = FillMode::BlurFill, QSize size = QSize(160, 120));
    void addItems(int count);
    bool runToTheEnd(int timeoutMs = 30000);
    // The log blocks' headers' numbers, in the order they were written.
    QList<int> headerNumbers() const;

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<PackageJob> m_job;
    QStringList m_log;
    QList<quint64> m_started;
};

void TestPackageJob::initTestCase() { UiLanguage::set(UiLanguage::English); }

void TestPackageJob::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_job = std::make_unique<PackageJob>(m_dir->filePath("out"), m_dir->filePath("render"),
                                         m_dir->filePath("key"));
    ProcessorSetup setup;
    setup.variantId = QStringLiteral("lite");
    setup.executable = kProcessor;
    setup.workDir = QFileInfo(kProcessor).absolutePath();
    m_job->setProcessor(setup);
    m_job->setFrame(JobFrame{QStringLiteral("133"), QSize(1200, 1600), false, QStringLiteral("0")});
    m_log.clear();
    m_started.clear();
    connect(m_job.get(), &PackageJob::logLine, this, [this](const QString &line) { m_log << line; });
    connect(m_job.get(), &PackageJob::itemStarted, this, [this](quint64 id) { m_started << id; });
}

void TestPackageJob::cleanup()
{
    m_job.reset();
    for (const char *name : {"TARN_SIM_SLEEP_MS", "TARN_SIM_EXIT", "TARN_SIM_CRASH"})
        qunsetenv(name);
}

JobPicture TestPackageJob::picture(const QString &name, FillMode fill, QSize size)
{
    const QString path = m_dir->filePath("pictures/" + name + ".png");
    QDir().mkpath(QFileInfo(path).absolutePath());
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor::fromHsv(int(qHash(name) % 360), 200, 200));
    image.save(path);
    return JobPicture{path, QString(), name + ".png", PreprocState{fill, 0}};
}

void TestPackageJob::addItems(int count)
{
    for (int i = 1; i <= count; ++i)
        m_job->insert(quint64(i), picture(QStringLiteral("p%1").arg(i)));
}

bool TestPackageJob::runToTheEnd(int timeoutMs)
{
    QSignalSpy finished(m_job.get(), &PackageJob::runFinished);
    return m_job->start(KeySnapshot()) && (finished.count() > 0 || finished.wait(timeoutMs));
}

QList<int> TestPackageJob::headerNumbers() const
{
    QList<int> numbers;
    for (const QString &line : m_log) {
        const int open = int(line.indexOf(QStringLiteral("] (")));
        if (line.startsWith('[') && open > 0)
            numbers << line.mid(open + 3, line.indexOf('/', open) - open - 3).toInt();
    }
    return numbers;
}

void TestPackageJob::itemsAreProcessedInOrder()
{
    addItems(3);
    m_job->insert(4, picture("first"), 0);
    QVERIFY(runToTheEnd());
    QCOMPARE(m_started, (QList<quint64>{4, 1, 2, 3}));
    QCOMPARE(headerNumbers(), (QList<int>{1, 2, 3, 4}));
    QCOMPARE(m_job->successCount(), 4);
    for (quint64 id : {1, 2, 3, 4}) {
        QCOMPARE(m_job->status(id), RowStatus::Done);
        QVERIFY(!m_job->outputStamp(id).isEmpty());
    }
    QCOMPARE(m_job->frames(), (QStringList{m_job->outputPath(4), m_job->outputPath(1), m_job->outputPath(2),
                                           m_job->outputPath(3)}));
    QVERIFY(filesBelow(m_dir->filePath("render")).isEmpty()); // each picture went with its processor
    // Nothing is Pending: nothing starts.
    QVERIFY(!m_job->start(KeySnapshot()));
}

void TestPackageJob::stopAndContinue()
{
    addItems(2);
    qputenv("TARN_SIM_SLEEP_MS", "20000");
    QVERIFY(m_job->start(KeySnapshot()));
    QTRY_VERIFY(m_log.filter(QStringLiteral("| tarn-sim:")).size() > 0);
    QSignalSpy statuses(m_job.get(), &PackageJob::statusChanged);
    m_job->stop();
    QVERIFY(!m_job->isRunning());
    QCOMPARE(m_job->status(1), RowStatus::Cancelled);
    QVERIFY(m_log.contains(QStringLiteral("■ Processing stopped")));
    QTRY_COMPARE(m_job->status(1), RowStatus::Pending); // once the killed processor has ended
    QVERIFY(m_log.contains(QStringLiteral("  ■ Stopped; this picture is processed again at the next start")));
    QCOMPARE(m_job->status(2), RowStatus::Pending);
    QVERIFY(!QFileInfo::exists(m_job->outputPath(1)));
    qunsetenv("TARN_SIM_SLEEP_MS");
    m_started.clear();
    QVERIFY(runToTheEnd());
    QCOMPARE(m_started, (QList<quint64>{1, 2}));
    QCOMPARE(m_job->frames().size(), 2);
}

void TestPackageJob::reorderAndRemoveDuringARun()
{
    addItems(4);
    qputenv("TARN_SIM_SLEEP_MS", "400");
    QSignalSpy finished(m_job.get(), &PackageJob::runFinished);
    QVERIFY(m_job->start(KeySnapshot()));
    QCOMPARE(m_started, QList<quint64>{1});
    m_job->setOrder({1, 4, 3, 2});
    m_job->remove(3);
    QVERIFY(finished.wait(30000));
    QCOMPARE(m_started, (QList<quint64>{1, 4, 2}));
    QCOMPARE(m_job->order(), (QList<quint64>{1, 4, 2}));
    QCOMPARE(m_job->frames(),
             (QStringList{m_job->outputPath(1), m_job->outputPath(4), m_job->outputPath(2)}));
}

void TestPackageJob::aChangeDuringARunMakesTheItemAgain()
{
    addItems(2);
    qputenv("TARN_SIM_SLEEP_MS", "600");
    QSignalSpy finished(m_job.get(), &PackageJob::runFinished);
    QVERIFY(m_job->start(KeySnapshot()));
    JobPicture changed = *m_job->picture(1);
    changed.state.rotationDegrees = 90;
    m_job->update(1, changed);
    m_job->markChanged(1); // judged when its processor ends, not now
    QCOMPARE(m_job->status(1), RowStatus::Processing);
    QVERIFY(finished.wait(30000));
    QVERIFY(m_log.contains(QStringLiteral("  ⚠ The picture's settings changed while it was processed; it is "
                                          "processed again")));
    // Made again in the same run, from what it is now.
    QCOMPARE(m_started, (QList<quint64>{1, 2, 1}));
    QCOMPARE(m_job->status(1), RowStatus::Done);
    QCOMPARE(m_job->outputStamp(1), m_job->inputStamp(1, QByteArray()));
}

void TestPackageJob::everyEndBecomesAStatus_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QString>("workDir");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("statusText");
    QTest::addColumn<QString>("logLine");
    const QString folder = QFileInfo(kProcessor).absolutePath();
    QTest::newRow("done") << QByteArray() << kProcessor << folder << int(RowStatus::Done) << "Done ✓"
                          << "  ✅ Done";
    QTest::newRow("exit code") << QByteArray("TARN_SIM_EXIT=3") << kProcessor << folder
                               << int(RowStatus::ExitCodeFailed) << "Failed (3)"
                               << "  ❌ Failed, exit code: 3";
    QTest::newRow("crash") << QByteArray("TARN_SIM_CRASH=1") << kProcessor << folder
                           << int(RowStatus::Crashed) << "Crashed"
                           << "  ❌ Process crashed";
    QTest::newRow("no executable") << QByteArray() << folder + "/missing-processor" << folder
                                   << int(RowStatus::StartFailed) << "Start failed"
                                   << "  ❌ Failed to start process: ";
    QTest::newRow("no working folder")
        << QByteArray() << kProcessor << folder + "/missing-folder" << int(RowStatus::Failed) << "Failed"
        << "  ❌ Working directory missing: " + folder + "/missing-folder";
}

void TestPackageJob::everyEndBecomesAStatus()
{
    QFETCH(QByteArray, variable);
    QFETCH(QString, executable);
    QFETCH(QString, workDir);
    QFETCH(int, status);
    QFETCH(QString, statusText);
    QFETCH(QString, logLine);
    if (!variable.isEmpty())
        qputenv(variable.left(variable.indexOf('=')).constData(), variable.mid(variable.indexOf('=') + 1));
    ProcessorSetup setup = m_job->processor();
    setup.executable = executable;
    setup.workDir = workDir;
    m_job->setProcessor(setup);
    addItems(1);
    QVERIFY(runToTheEnd());
    QCOMPARE(int(m_job->status(1)), status);
    QCOMPARE(Str::rowStatusText(m_job->status(1), m_job->exitCode(1)), statusText);
    QVERIFY2(!m_log.filter(logLine).isEmpty(), qPrintable(m_log.join('\n')));
    QCOMPARE(m_job->frames().size(), status == int(RowStatus::Done) ? 1 : 0);
    QCOMPARE(QFileInfo::exists(m_job->outputPath(1)), status == int(RowStatus::Done));
    QCOMPARE(m_job->successCount(), status == int(RowStatus::Done) ? 1 : 0);
}

void TestPackageJob::theNextPicturesAreRenderedAhead()
{
    addItems(3);
    qputenv("TARN_SIM_SLEEP_MS", "3000");
    QVERIFY(m_job->start(KeySnapshot()));
    // While the first picture's processor works, the next two pictures are rendered.
    const auto renderedAhead = [this] {
        const QStringList files = namesBelow(m_dir->filePath("render"));
        return files.contains("p2_preproc.jpg") && files.contains("p3_preproc.jpg");
    };
    QTRY_VERIFY_WITH_TIMEOUT(renderedAhead() || m_job->status(1) != RowStatus::Processing, 10000);
    QCOMPARE(m_job->status(1), RowStatus::Processing);
    QVERIFY(renderedAhead());
    QCOMPARE(m_job->status(2), RowStatus::Pending);
    m_job->stop();
    QTRY_VERIFY(filesBelow(m_dir->filePath("render")).isEmpty()); // dropped with the stop
}

void TestPackageJob::severalProcessorsAtOnceLogWholeBlocksInOrder()
{
    addItems(6);
    // Sent as it is (at the panel's size), so it starts at once, while others are still rendered.
    m_job->insert(7, picture("direct", FillMode::Direct, QSize(1200, 1600)));
    m_job->setProcessorsAtOnce(3);
    QCOMPARE(m_job->processorsAtOnce(), 3);
    qputenv("TARN_SIM_SLEEP_MS", "500");
    int mostAtOnce = 0;
    connect(m_job.get(), &PackageJob::statusChanged, this,
            [&] { mostAtOnce = qMax(mostAtOnce, m_job->countWithStatus({RowStatus::Processing})); });
    QList<int> logged;
    connect(m_job.get(), &PackageJob::itemLogged, this, [&](quint64, int number) { logged << number; });
    QVERIFY(runToTheEnd());
    QCOMPARE(mostAtOnce, m_job->processorsAtOnce());
    QCOMPARE(m_job->frames().size(), 7);
    QCOMPARE(logged, (QList<int>{1, 2, 3, 4, 5, 6, 7}));
    // Each block whole: its header, its command line, its output and its result, before the next.
    QCOMPARE(headerNumbers(), (QList<int>{1, 2, 3, 4, 5, 6, 7}));
    int block = 0;
    for (const QString &line : std::as_const(m_log)) {
        if (line.startsWith('['))
            ++block;
        else if (line.startsWith(QStringLiteral("  | tarn-sim: wrote ")))
            QVERIFY2(line.contains(QStringLiteral("out_%1.bin").arg(block, 6, 10, QLatin1Char('0'))),
                     qPrintable(m_log.join('\n')));
        else if (line == QStringLiteral("  ✅ Done"))
            QCOMPARE(m_log.filter(QStringLiteral("] (%1/7)").arg(block)).size(), 1);
    }
    QCOMPARE(m_log.count(QStringLiteral("  ✅ Done")), 7);
}

void TestPackageJob::stopEndsEveryProcessor()
{
    addItems(3);
    m_job->setProcessorsAtOnce(2);
    qputenv("TARN_SIM_SLEEP_MS", "20000");
    QVERIFY(m_job->start(KeySnapshot()));
    QTRY_COMPARE(m_log.filter(QStringLiteral("| tarn-sim: quantising")).size(), 1); // the first one's
    QTRY_COMPARE(m_job->countWithStatus({RowStatus::Processing}), 2);
    m_job->stop();
    QCOMPARE(m_job->countWithStatus({RowStatus::Cancelled}), 2);
    QTRY_COMPARE(m_job->countWithStatus({RowStatus::Pending}), 3);
    QCOMPARE(m_log.count(QStringLiteral("  ■ Stopped; this picture is processed again at the next start")),
             2);
    QVERIFY(!m_job->isBusy());
}

void TestPackageJob::aStartRightAfterAStopSettlesTheStoppedOnes()
{
    addItems(3);
    m_job->setProcessorsAtOnce(2);
    qputenv("TARN_SIM_SLEEP_MS", "20000");
    QVERIFY(m_job->start(KeySnapshot()));
    QTRY_COMPARE(m_log.filter(QStringLiteral("| tarn-sim: quantising")).size(), 1);
    QTRY_COMPARE(m_job->countWithStatus({RowStatus::Processing}), 2);
    m_job->stop();
    qunsetenv("TARN_SIM_SLEEP_MS");
    // Without waiting for the killed processors to end.
    m_started.clear();
    QVERIFY(runToTheEnd());
    QCOMPARE(m_log.count(QStringLiteral("  ■ Stopped; this picture is processed again at the next start")),
             2);
    QCOMPARE(m_started, (QList<quint64>{1, 2, 3}));
    QCOMPARE(m_job->frames().size(), 3);
}

void TestPackageJob::aRestoredItemIsDoneWithItsOwnOutputAgain()
{
    addItems(2);
    QVERIFY(runToTheEnd());
    QFile output(m_job->outputPath(1));
    QVERIFY(output.open(QIODevice::ReadOnly));
    const QByteArray made = output.readAll();
    output.close();
    const PackageJob::Record before = *m_job->record(1);

    // Changed and made again: another output.
    JobPicture changed = *m_job->picture(1);
    changed.state.rotationDegrees = 90;
    m_job->update(1, changed);
    m_job->markChanged(1);
    QCOMPARE(m_job->status(1), RowStatus::Pending);
    QVERIFY(runToTheEnd());
    QCOMPARE(m_job->status(1), RowStatus::Done);
    const PackageJob::Record after = *m_job->record(1);
    QVERIFY(after.outputStamp != before.outputStamp);

    // Put back as it was: Done, with the output made from that state, and back again.
    m_job->restore(1, before);
    QCOMPARE(m_job->status(1), RowStatus::Done);
    QCOMPARE(m_job->picture(1)->state.rotationDegrees, 0);
    QVERIFY(output.open(QIODevice::ReadOnly));
    QCOMPARE(output.readAll(), made);
    output.close();
    QCOMPARE(m_job->outputStamp(1), m_job->inputStamp(1, QByteArray()));
    m_job->restore(1, after);
    QCOMPARE(m_job->status(1), RowStatus::Done);
    QCOMPARE(m_job->outputStamp(1), m_job->inputStamp(1, QByteArray()));

    // Removed and put back at its place: Done with its output.
    const PackageJob::Record second = *m_job->record(2);
    m_job->remove(2);
    QVERIFY(!QFileInfo::exists(m_job->outputPath(2)));
    m_job->restore(2, second, 1);
    QCOMPARE(m_job->order(), (QList<quint64>{1, 2}));
    QCOMPARE(m_job->status(2), RowStatus::Done);
    QCOMPARE(m_job->frames().size(), 2);

    // Without its output, a finished item is to be made again; a failure stays one.
    m_job->markChanged(2);
    QVERIFY(
        QFile::remove(QDir(m_dir->filePath("out")).entryInfoList({"out_000002.*.bin"}).value(0).filePath()));
    m_job->restore(2, second);
    QCOMPARE(m_job->status(2), RowStatus::Pending);
    m_job->restore(2, PackageJob::Record{second.picture, RowStatus::ExitCodeFailed, 3, {}});
    QCOMPARE(m_job->status(2), RowStatus::ExitCodeFailed);
    QCOMPARE(m_job->exitCode(2), 3);
}

QTEST_GUILESS_MAIN(TestPackageJob)
#include "tst_PackageJob.moc"
