// The stand-in processor, driven as the window drives it: a real child process.
#include "TestFiles.h"

#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_UNIX
#include <sys/resource.h>
#endif

namespace {

struct Run {
    bool finished = false;
    QProcess::ExitStatus status = QProcess::NormalExit;
    int code = -1;
    QByteArray out;
    QByteArray err;
};

Run runSim(const QStringList &args, const QStringList &env = {}, int timeoutMs = 20000)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &pair : env)
        environment.insert(pair.section('=', 0, 0), pair.section('=', 1));
    process.setProcessEnvironment(environment);
    process.start(TestFiles::tarnSimPath(), args);
    Run run;
    if (!process.waitForStarted(5000))
        return run;
    run.finished = process.waitForFinished(timeoutMs);
    if (!run.finished) {
        process.kill();
        process.waitForFinished(2000);
    }
    run.status = process.exitStatus();
    run.code = process.exitCode();
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

} // namespace

class TestTarnSim : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void helpSaysItIsATestDouble();
    void helpExitCodeCanBeForced();
    void hangNeverFinishesEvenForHelp();
    void tooFewArgumentsIsAUsageError();
    void undecodableInputExits3_data();
    void undecodableInputExits3();
    void writesAFrameForThePanelSize_data();
    void writesAFrameForThePanelSize();
    void wrongSizeExits4NamingBothSizes();
    void unknownPanelExits2();
    void withoutPanelAnySizeIsTaken();
    void keyFileMustBeAJsonObject_data();
    void keyFileMustBeAJsonObject();
    void anyDoubleDashFlagCarriesTheKey();
    void extraArgumentsArePrintedAndIgnored();
    void missingOutputFolderExits6();
    void forcedExitWritesNothing();
    void crashIsACrashExit();
    void sleepDelaysTheEnd();
    void busyWorksOnTheCpu();
    void badUtf8OnStderr();
    void randomFaultsAreSeededPerInputName();
    void quantisesToSixColoursAndDecodes();
    void decodeRejectsMalformedFrames();

private:
    QString picture(const QString &name, const QSize &size, const QColor &colour = Qt::white);
    QTemporaryDir m_dir;
};

void TestTarnSim::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY2(QFileInfo(TestFiles::tarnSimPath()).isExecutable(), qPrintable(TestFiles::tarnSimPath()));
}

QString TestTarnSim::picture(const QString &name, const QSize &size, const QColor &colour)
{
    const QString path = m_dir.filePath(name);
    if (!TestFiles::solidImage(size.width(), size.height(), colour).save(path))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

void TestTarnSim::helpSaysItIsATestDouble()
{
    const Run run = runSim({"--help"});
    QVERIFY(run.finished);
    QCOMPARE(run.status, QProcess::NormalExit);
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.contains("TEST DOUBLE"));
    QVERIFY(run.out.contains("TARN-lite INPUT OUTPUT [PANEL] [KEYFLAG KEYFILE] [EXTRA...]"));
}

void TestTarnSim::helpExitCodeCanBeForced()
{
    QCOMPARE(runSim({"--help"}, {"TARN_SIM_HELP_EXIT=1"}).code, 1);
    QCOMPARE(runSim({"--help"}, {"TARN_SIM_HELP_EXIT=7"}).code, 7);
}

void TestTarnSim::hangNeverFinishesEvenForHelp()
{
    const Run help = runSim({"--help"}, {"TARN_SIM_HANG=1"}, 800);
    QVERIFY(!help.finished);
    const Run work =
        runSim({picture("hang.png", {8, 8}), m_dir.filePath("hang.bin")}, {"TARN_SIM_HANG=1"}, 800);
    QVERIFY(!work.finished);
    QVERIFY(!QFileInfo::exists(m_dir.filePath("hang.bin")));
}

void TestTarnSim::tooFewArgumentsIsAUsageError()
{
    QCOMPARE(runSim({}).code, 2);
    QCOMPARE(runSim({picture("one.png", {4, 4})}).code, 2);
}

void TestTarnSim::undecodableInputExits3_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("text") << QByteArray("not a picture\n");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("truncated png") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
}

void TestTarnSim::undecodableInputExits3()
{
    QFETCH(QByteArray, bytes);
    const QString input = m_dir.filePath("bad.jpg");
    QVERIFY(TestFiles::write(input, bytes));
    const Run run = runSim({input, m_dir.filePath("bad.bin"), "133"});
    QCOMPARE(run.status, QProcess::NormalExit);
    QCOMPARE(run.code, 3);
    QVERIFY(run.err.contains("cannot decode"));
    QVERIFY(!QFileInfo::exists(m_dir.filePath("bad.bin")));
    QCOMPARE(runSim({m_dir.filePath("absent.jpg"), m_dir.filePath("bad.bin")}).code, 3);
}

void TestTarnSim::writesAFrameForThePanelSize_data()
{
    QTest::addColumn<QString>("panel");
    QTest::addColumn<QSize>("size");
    QTest::newRow("133") << "133" << QSize(1200, 1600);
    QTest::newRow("070") << "070" << QSize(1200, 1600);
    QTest::newRow("100") << "100" << QSize(1200, 1600);
    QTest::newRow("253") << "253" << QSize(1800, 3200);
    QTest::newRow("285") << "285" << QSize(2160, 3060);
}

void TestTarnSim::writesAFrameForThePanelSize()
{
    QFETCH(QString, panel);
    QFETCH(QSize, size);
    const QString output = m_dir.filePath("out_" + panel + ".bin");
    const Run run = runSim({picture("in_" + panel + ".jpg", size, QColor(250, 10, 10)), output, panel});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.contains("tarn-sim: reading"));
    QVERIFY(run.out.contains("quantising"));
    const QByteArray frame = TestFiles::read(output);
    const QByteArray header =
        QStringLiteral("TSIM 1 %1 %2 %3\n").arg(size.width()).arg(size.height()).arg(panel).toLatin1();
    QVERIFY(frame.startsWith(header));
    QCOMPARE(frame.size(), header.size() + qsizetype((size.width() + 1) / 2) * size.height());
    QCOMPARE(frame.at(header.size()), char(0x33)); // two red pixels (index 3)
    QVERIFY(QRegularExpression(QStringLiteral("tarn-sim: finished in \\d+ ms\n$"))
                .match(QString::fromUtf8(run.out))
                .hasMatch());
}

void TestTarnSim::wrongSizeExits4NamingBothSizes()
{
    const QString output = m_dir.filePath("wrong.bin");
    const Run run = runSim({picture("landscape.png", {1600, 1200}), output, "133"});
    QCOMPARE(run.code, 4);
    QVERIFY(run.err.contains("1600x1200"));
    QVERIFY(run.err.contains("1200x1600"));
    QVERIFY(!QFileInfo::exists(output));
}

void TestTarnSim::unknownPanelExits2()
{
    const Run run = runSim({picture("p.png", {1200, 1600}), m_dir.filePath("u.bin"), "999"});
    QCOMPARE(run.code, 2);
    QVERIFY(run.err.contains("999"));
    QCOMPARE(runSim({picture("p.png", {1200, 1600}), m_dir.filePath("u.bin"), "custom"}).code, 2);
}

void TestTarnSim::withoutPanelAnySizeIsTaken()
{
    const QString output = m_dir.filePath("free.bin");
    QCOMPARE(runSim({picture("free.png", {5, 3}), output}).code, 0);
    QVERIFY(TestFiles::read(output).startsWith("TSIM 1 5 3 none\n"));
}

void TestTarnSim::keyFileMustBeAJsonObject_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<int>("code");
    QTest::newRow("object") << QByteArray(R"({"panel": "13.3", "device_id": "abc"})") << 0;
    QTest::newRow("array") << QByteArray("[1, 2]") << 5;
    QTest::newRow("truncated") << QByteArray(R"({"panel": )") << 5;
    QTest::newRow("not json") << QByteArray("-----BEGIN PUBLIC KEY-----") << 5;
    QTest::newRow("not utf-8") << QByteArray("{\"uid\": \"caf\xe9\"}") << 5;
}

void TestTarnSim::keyFileMustBeAJsonObject()
{
    QFETCH(QByteArray, key);
    QFETCH(int, code);
    const QString keyPath = m_dir.filePath("key.json");
    QVERIFY(TestFiles::write(keyPath, key));
    const QString output = m_dir.filePath("keyed.bin");
    QFile::remove(output);
    const Run run = runSim({picture("k.png", {1200, 1600}), output, "133", "--pubkey", keyPath});
    QCOMPARE(run.code, code);
    QCOMPARE(QFileInfo::exists(output), code == 0);
    QCOMPARE(runSim({picture("k.png", {1200, 1600}), output, "133", "--pubkey", m_dir.filePath("nokey.json")})
                 .code,
             5);
}

void TestTarnSim::anyDoubleDashFlagCarriesTheKey()
{
    const QString keyPath = m_dir.filePath("other_key.json");
    QVERIFY(TestFiles::write(keyPath, "{}"));
    const Run run = runSim({picture("k2.png", {6, 6}), m_dir.filePath("k2.bin"), "--device-key", keyPath});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.contains("key --device-key"));
    QVERIFY(TestFiles::read(m_dir.filePath("k2.bin")).startsWith("TSIM 1 6 6 none\n"));
}

void TestTarnSim::extraArgumentsArePrintedAndIgnored()
{
    const QString keyPath = m_dir.filePath("extra_key.json");
    QVERIFY(TestFiles::write(keyPath, "{}"));
    const Run run = runSim({picture("e.png", {1200, 1600}), m_dir.filePath("e.bin"), "133", "--pubkey",
                            keyPath, "--quality", "high", "plain"});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.contains("ignoring argument --quality"));
    QVERIFY(run.out.contains("ignoring argument high"));
    QVERIFY(run.out.contains("ignoring argument plain"));
}

void TestTarnSim::missingOutputFolderExits6()
{
    const QString output = m_dir.filePath("no/such/folder/x.bin");
    const Run run = runSim({picture("o.png", {4, 4}), output});
    QCOMPARE(run.code, 6);
    QVERIFY(!QFileInfo::exists(output));
}

void TestTarnSim::forcedExitWritesNothing()
{
    const QString output = m_dir.filePath("forced.bin");
    const Run run = runSim({picture("f.png", {1200, 1600}), output, "133"}, {"TARN_SIM_EXIT=3"});
    QCOMPARE(run.status, QProcess::NormalExit);
    QCOMPARE(run.code, 3);
    QVERIFY(run.out.contains("quantising")); // the progress lines come first
    QVERIFY(!QFileInfo::exists(output));
    QCOMPARE(runSim({picture("f.png", {1200, 1600}), output, "133"}, {"TARN_SIM_EXIT=0"}).code, 0);
    QVERIFY(!QFileInfo::exists(output));
}

void TestTarnSim::crashIsACrashExit()
{
    const QString output = m_dir.filePath("crash.bin");
    const Run run = runSim({picture("c.png", {8, 8}), output}, {"TARN_SIM_CRASH=1"});
    QVERIFY(run.finished);
    QCOMPARE(run.status, QProcess::CrashExit);
    QVERIFY(run.out.contains("crashing on purpose"));
    QVERIFY(!QFileInfo::exists(output));
}

void TestTarnSim::sleepDelaysTheEnd()
{
    QElapsedTimer timer;
    timer.start();
    const Run run = runSim({picture("s.png", {8, 8}), m_dir.filePath("s.bin")}, {"TARN_SIM_SLEEP_MS=400"});
    QCOMPARE(run.code, 0);
    QVERIFY(timer.elapsed() >= 400);
}

void TestTarnSim::busyWorksOnTheCpu()
{
#ifdef Q_OS_UNIX
    rusage before{};
    getrusage(RUSAGE_CHILDREN, &before);
#endif
    QElapsedTimer timer;
    timer.start();
    const Run run = runSim({picture("b.png", {8, 8}), m_dir.filePath("b.bin")}, {"TARN_SIM_BUSY_MS=400"});
    QCOMPARE(run.code, 0);
    QVERIFY(timer.elapsed() >= 400);
#ifdef Q_OS_UNIX
    rusage after{};
    getrusage(RUSAGE_CHILDREN, &after);
    const double cpuMs = (after.ru_utime.tv_sec - before.ru_utime.tv_sec) * 1000.0 +
                         (after.ru_utime.tv_usec - before.ru_utime.tv_usec) / 1000.0;
    QVERIFY2(cpuMs >= 300, qPrintable(QString::number(cpuMs))); // the time went on the CPU, not asleep
#endif
    QVERIFY(runSim({"--help"}).out.contains("TARN_SIM_BUSY_MS=N"));
}

void TestTarnSim::badUtf8OnStderr()
{
    const Run run = runSim({picture("u.png", {8, 8}), m_dir.filePath("u8.bin")}, {"TARN_SIM_BAD_UTF8=1"});
    QCOMPARE(run.code, 0);
    QVERIFY(run.err.contains("caf\xe9"));
    QVERIFY(!QString::fromUtf8(run.err).contains(QStringLiteral("café")));
}

void TestTarnSim::randomFaultsAreSeededPerInputName()
{
    // Twenty-four inputs at 50 %: some of each fault, the rest made; the same again for the same seed.
    const QString source = picture("r.png", {8, 8});
    const auto outcomes = [&](const QString &faults) {
        QStringList seen;
        for (int i = 0; i < 24; ++i) {
            const QString input = m_dir.filePath(QStringLiteral("row_%1.png").arg(i));
            QFile::remove(input);
            QFile::copy(source, input);
            QElapsedTimer clock;
            clock.start();
            const Run run = runSim({input, m_dir.filePath("r.bin")}, {"TARN_SIM_RANDOM_FAULTS=" + faults});
            if (run.status == QProcess::CrashExit)
                seen << "crash";
            else if (run.code == 7)
                seen << "exit";
            else if (run.code == 0 && run.out.contains('\xff'))
                seen << "garbage";
            else if (run.code == 0 && clock.elapsed() >= 1900)
                seen << "delay";
            else
                seen << (run.code == 0 ? "made" : "code " + QString::number(run.code));
        }
        return seen;
    };
    const QStringList first = outcomes("7:50");
    for (const char *kind : {"crash", "exit", "garbage", "delay", "made"})
        QVERIFY2(first.contains(kind), qPrintable(first.join(' ')));
    QCOMPARE(first.count("made"),
             24 - first.count("crash") - first.count("exit") - first.count("garbage") - first.count("delay"));
    QCOMPARE(outcomes("7:50"), first);
    QVERIFY(outcomes("8:50") != first);
    QCOMPARE(outcomes("7:0"), QStringList(24, "made"));
}

void TestTarnSim::quantisesToSixColoursAndDecodes()
{
    // Seven stripes: the six palette colours and a light grey that must become white.
    const QList<QColor> stripes = {Qt::black, Qt::white, Qt::yellow,           Qt::red,
                                   Qt::blue,  Qt::green, QColor(200, 200, 200)};
    QImage source(7, 3, QImage::Format_RGB32);
    for (int x = 0; x < 7; ++x)
        for (int y = 0; y < 3; ++y)
            source.setPixelColor(x, y, stripes.at(x));
    const QString input = m_dir.filePath("stripes.png");
    QVERIFY(source.save(input));
    const QString frame = m_dir.filePath("stripes.bin");
    QCOMPARE(runSim({input, frame}).code, 0);
    QCOMPARE(TestFiles::read(frame).size(), QByteArray("TSIM 1 7 3 none\n").size() + 4 * 3);

    const QString png = m_dir.filePath("stripes_decoded.png");
    const Run decode = runSim({"--decode", frame, png});
    QCOMPARE(decode.code, 0);
    const QImage decoded(png);
    QCOMPARE(decoded.size(), QSize(7, 3));
    for (int x = 0; x < 6; ++x)
        QCOMPARE(decoded.pixelColor(x, 1), stripes.at(x));
    QCOMPARE(decoded.pixelColor(6, 2), QColor(Qt::white));
}

void TestTarnSim::decodeRejectsMalformedFrames()
{
    const QString bad = m_dir.filePath("bad_frame.bin");
    for (const QByteArray &bytes : {QByteArray("garbage"), QByteArray("TSIM 1 4 4 133\n\x11"),
                                    QByteArray("TSIM 2 1 1 133\n\x11"), QByteArray("TSIM 1 -4 4 133\n")}) {
        QVERIFY(TestFiles::write(bad, bytes));
        const Run run = runSim({"--decode", bad, m_dir.filePath("bad.png")});
        QCOMPARE(run.code, 3);
        QVERIFY(!QFileInfo::exists(m_dir.filePath("bad.png")));
    }
    QCOMPARE(runSim({"--decode", bad}).code, 2);
}

QTEST_GUILESS_MAIN(TestTarnSim)
#include "tst_TarnSim.moc"
