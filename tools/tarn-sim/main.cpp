// tarn-sim: a test double of the vendor's frame processor. It keeps the processor's command
// line and exit-code contract so that the whole workflow runs end to end in tests and in the
// demo bundle; the frames it writes are not a format any device can show.
#include "TarnFrame.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QMap>
#include <QSize>
#include <QThread>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

QElapsedTimer g_clock; // from the start of main: what this program itself spends on a frame

enum ExitCode {
    kOk = 0,
    kUsage = 2,
    kBadInput = 3,
    kWrongSize = 4,
    kBadKey = 5,
    kCannotWrite = 6,
};

const char kUsageText[] =
    "tarn-sim - a TEST DOUBLE standing in for the vendor's TARN-lite processor.\n"
    "It keeps the processor's command line and exit codes; its frames are not a device format.\n"
    "\n"
    "Usage:\n"
    "  TARN-lite INPUT OUTPUT [PANEL] [KEYFLAG KEYFILE] [EXTRA...]\n"
    "  TARN-lite --help\n"
    "  TARN-lite --decode FRAME.bin OUT.png\n"
    "\n"
    "  INPUT    a picture Qt can read                        (else exit 3)\n"
    "  OUTPUT   the frame to write; its folder must exist    (else exit 6)\n"
    "  PANEL    133, 070, 100 (1200x1600), 253 (1800x3200) or 285 (2160x3060);\n"
    "           INPUT must be exactly that size               (else exit 4; unknown panel: exit 2)\n"
    "  KEYFLAG  any --flag followed by KEYFILE, a JSON object (else exit 5)\n"
    "  EXTRA    further arguments are printed and ignored\n"
    "\n"
    "Frame: the line \"TSIM 1 <width> <height> <panel>\", a newline, then 6 colours\n"
    "(black, white, yellow, red, blue, green) at 4 bits a pixel, rows padded to whole bytes.\n"
    "\n"
    "Fault injection (environment): TARN_SIM_EXIT=N, TARN_SIM_CRASH=1, TARN_SIM_SLEEP_MS=N,\n"
    "TARN_SIM_BUSY_MS=N (busy on the CPU for N ms), TARN_SIM_HANG=1, TARN_SIM_HELP_EXIT=N,\n"
    "TARN_SIM_BAD_UTF8=1, TARN_SIM_RANDOM_FAULTS=SEED:PERCENT (for PERCENT % of inputs, chosen\n"
    "by SEED and the input's name: an exit code, a crash, garbage on stdout or a 2-s delay).\n";

void out(const QString &line)
{
    std::fputs(line.toUtf8().constData(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

int fail(int code, const QString &message)
{
    std::fputs(("tarn-sim: error: " + message).toUtf8().constData(), stderr);
    std::fputc('\n', stderr);
    std::fflush(stderr);
    return code;
}

bool envFlag(const char *name) { return qEnvironmentVariableIntValue(name) == 1; }

// The integer value of a set variable, or -1 when it is unset or not a number.
// Works on the CPU for ms milliseconds, as a processor that computes does.
// Works on the CPU until this process has used ms of it (std::clock: the process's CPU time;
// on Windows, where it is the time since the start, as long as that), so that a busy machine
// makes the stand-in slower, as it would a real processor.
void keepBusy(int ms)
{
    const std::clock_t start = std::clock();
    const std::clock_t ticks = std::clock_t(double(ms) * CLOCKS_PER_SEC / 1000.0);
    volatile quint64 sum = 0;
    while (std::clock() - start < ticks) {
        for (quint64 i = 0; i < 100000; ++i)
            sum = sum + i * i;
    }
}

int envInt(const char *name)
{
    bool ok = false;
    const int value = qEnvironmentVariableIntValue(name, &ok);
    return ok ? value : -1;
}

// A fault for this input, chosen from TARN_SIM_RANDOM_FAULTS=SEED:PERCENT and the input's file
// name: PERCENT % of the names get one of the four, the same one every time.
enum class RandomFault { None, Exit, Crash, Garbage, Delay };

RandomFault randomFault(const QString &input)
{
    const QStringList parts = qEnvironmentVariable("TARN_SIM_RANDOM_FAULTS").split(QLatin1Char(':'));
    bool seedOk = false;
    bool percentOk = false;
    const uint seed = parts.value(0).toUInt(&seedOk);
    const int percent = parts.value(1).toInt(&percentOk);
    if (parts.size() != 2 || !seedOk || !percentOk || percent <= 0)
        return RandomFault::None;
    const QByteArray digest = QCryptographicHash::hash(
        QByteArray::number(seed) + ':' + QFileInfo(input).fileName().toUtf8(), QCryptographicHash::Md5);
    const quint32 value = quint32(quint8(digest.at(0))) << 24 | quint32(quint8(digest.at(1))) << 16 |
                          quint32(quint8(digest.at(2))) << 8 | quint32(quint8(digest.at(3)));
    if (int(value % 100) >= percent)
        return RandomFault::None;
    return RandomFault(1 + (value / 100) % 4);
}

const QMap<QString, QSize> &panelSizes()
{
    static const QMap<QString, QSize> sizes = {
        {QStringLiteral("133"), QSize(1200, 1600)}, {QStringLiteral("070"), QSize(1200, 1600)},
        {QStringLiteral("100"), QSize(1200, 1600)}, {QStringLiteral("253"), QSize(1800, 3200)},
        {QStringLiteral("285"), QSize(2160, 3060)},
    };
    return sizes;
}

QString sizeText(const QSize &size) { return QStringLiteral("%1x%2").arg(size.width()).arg(size.height()); }

int runHelp()
{
    std::fputs(kUsageText, stdout);
    std::fflush(stdout);
    const int code = envInt("TARN_SIM_HELP_EXIT");
    return code >= 0 ? code : kOk;
}

int runDecode(const QStringList &args)
{
    if (args.size() != 3)
        return fail(kUsage, QStringLiteral("usage: --decode FRAME.bin OUT.png"));
    QFile frame(args.at(1));
    if (!frame.open(QIODevice::ReadOnly))
        return fail(kBadInput, QStringLiteral("cannot read %1").arg(args.at(1)));
    QString panel;
    QString error;
    const QImage image = TarnFrame::decode(frame.readAll(), &panel, &error);
    if (image.isNull())
        return fail(kBadInput, QStringLiteral("%1: %2").arg(args.at(1), error));
    if (!image.save(args.at(2), "PNG"))
        return fail(kCannotWrite, QStringLiteral("cannot write %1").arg(args.at(2)));
    out(QStringLiteral("decoded %1 (%2, panel %3) to %4")
            .arg(args.at(1), sizeText(image.size()), panel, args.at(2)));
    return kOk;
}

int runProcess(const QStringList &args)
{
    if (args.size() < 2)
        return fail(kUsage, QStringLiteral("expected INPUT OUTPUT (see --help)"));
    const QString input = args.at(0);
    const QString output = args.at(1);
    int next = 2;

    QString panel;
    if (next < args.size() && !args.at(next).startsWith(QLatin1String("--"))) {
        panel = args.at(next++);
        if (!panelSizes().contains(panel))
            return fail(kUsage, QStringLiteral("unknown panel type \"%1\"").arg(panel));
    }
    QString keyFlag;
    QString keyFile;
    if (next + 1 < args.size() && args.at(next).startsWith(QLatin1String("--"))) {
        keyFlag = args.at(next);
        keyFile = args.at(next + 1);
        next += 2;
    }
    for (; next < args.size(); ++next)
        out(QStringLiteral("tarn-sim: ignoring argument %1").arg(args.at(next)));

    if (envFlag("TARN_SIM_BAD_UTF8")) {
        std::fputs("tarn-sim: caf\xe9\n", stderr); // Latin-1, not UTF-8, on purpose
        std::fflush(stderr);
    }

    out(QStringLiteral("tarn-sim: reading %1").arg(input));
    QImageReader reader(input);
    reader.setAllocationLimit(1024);
    const QImage image = reader.read();
    if (image.isNull())
        return fail(kBadInput, QStringLiteral("cannot decode %1: %2").arg(input, reader.errorString()));

    if (!panel.isEmpty() && image.size() != panelSizes().value(panel)) {
        return fail(kWrongSize, QStringLiteral("input is %1 but panel %2 needs %3")
                                    .arg(sizeText(image.size()), panel, sizeText(panelSizes().value(panel))));
    }
    if (!keyFlag.isEmpty()) {
        QFile key(keyFile);
        QJsonParseError error{};
        const QJsonDocument document =
            key.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(key.readAll(), &error) : QJsonDocument();
        if (!document.isObject())
            return fail(kBadKey,
                        QStringLiteral("key file %1 (%2) is not a JSON object").arg(keyFile, keyFlag));
        out(QStringLiteral("tarn-sim: key %1 %2").arg(keyFlag, keyFile));
    }
    out(QStringLiteral("tarn-sim: quantising %1 for panel %2")
            .arg(sizeText(image.size()), panel.isEmpty() ? QStringLiteral("none") : panel));

    const RandomFault fault = randomFault(input);
    if (fault == RandomFault::Delay) {
        out(QStringLiteral("tarn-sim: taking 2 s on purpose (TARN_SIM_RANDOM_FAULTS)"));
        QThread::msleep(2000);
    }
    if (fault == RandomFault::Garbage) {
        static const char garbage[] = "\x00\xff\xfe garbage \x01\x02\xc3\x28\x80\n\x1b[2J\xe9\r";
        std::fwrite(garbage, 1, sizeof(garbage) - 1, stdout);
        std::fflush(stdout);
    }
    if (fault == RandomFault::Crash) {
        out(QStringLiteral("tarn-sim: crashing on purpose (TARN_SIM_RANDOM_FAULTS)"));
        std::abort();
    }
    if (fault == RandomFault::Exit) {
        out(QStringLiteral("tarn-sim: exiting with 7 on purpose (TARN_SIM_RANDOM_FAULTS)"));
        return 7;
    }
    const int sleepMs = envInt("TARN_SIM_SLEEP_MS");
    if (sleepMs > 0)
        QThread::msleep(static_cast<unsigned long>(sleepMs));
    const int busyMs = envInt("TARN_SIM_BUSY_MS");
    if (busyMs > 0)
        keepBusy(busyMs);
    if (envFlag("TARN_SIM_CRASH")) {
        out(QStringLiteral("tarn-sim: crashing on purpose (TARN_SIM_CRASH)"));
        std::abort();
    }
    const int forcedExit = envInt("TARN_SIM_EXIT");
    if (forcedExit >= 0) {
        out(QStringLiteral("tarn-sim: exiting with %1 on purpose (TARN_SIM_EXIT)").arg(forcedExit));
        return forcedExit;
    }

    if (!QFileInfo(QFileInfo(output).absolutePath()).isDir())
        return fail(kCannotWrite, QStringLiteral("output folder of %1 does not exist").arg(output));
    QFile frame(output);
    const QByteArray data = TarnFrame::encode(image, panel);
    if (!frame.open(QIODevice::WriteOnly | QIODevice::Truncate) || frame.write(data) != data.size())
        return fail(kCannotWrite, QStringLiteral("cannot write %1").arg(output));
    out(QStringLiteral("tarn-sim: wrote %1 (%2 bytes)").arg(output).arg(data.size()));
    out(QStringLiteral("tarn-sim: finished in %1 ms").arg(g_clock.elapsed()));
    return kOk;
}

} // namespace

int main(int argc, char *argv[])
{
    g_clock.start();
    QCoreApplication app(argc, argv);
    if (envFlag("TARN_SIM_HANG")) {
        out(QStringLiteral("tarn-sim: hanging on purpose (TARN_SIM_HANG)"));
        for (;;)
            QThread::sleep(60);
    }
    const QStringList args = QCoreApplication::arguments().mid(1);
    if (args.value(0) == QLatin1String("--help"))
        return runHelp();
    if (args.value(0) == QLatin1String("--decode"))
        return runDecode(args);
    return runProcess(args);
}
