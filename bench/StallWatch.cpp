#include "StallWatch.h"

#include <cstdio>

#if defined(__linux__)
#include <cxxabi.h>
#include <execinfo.h>
#include <pthread.h>
#include <signal.h>

#include <chrono>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kMaxFrames = 96;
void *g_frames[kMaxFrames];
std::atomic<int> g_depth{-1};
pthread_t g_guiThread;

void takeSample(int) { g_depth.store(backtrace(g_frames, kMaxFrames)); }

// "binary(mangled+0x12) [0x...]" → the demangled function, or empty for frames of no interest.
QString frameName(const char *symbol)
{
    const char *open = std::strchr(symbol, '(');
    const char *plus = open ? std::strchr(open, '+') : nullptr;
    if (!open || !plus || plus == open + 1)
        return {};
    const std::string mangled(open + 1, plus);
    int status = 0;
    char *demangled = abi::__cxa_demangle(mangled.c_str(), nullptr, nullptr, &status);
    QString name = QString::fromLocal8Bit(status == 0 && demangled ? demangled : mangled.c_str());
    std::free(demangled);
    const QString binary = QString::fromLocal8Bit(symbol, int(open - symbol)).section(QLatin1Char('/'), -1);
    return binary + QLatin1String(": ") + name.left(160);
}

} // namespace

StallWatch::StallWatch(int thresholdMs)
    : m_thresholdMs(thresholdMs)
{
    m_clock.start();
    g_guiThread = pthread_self();
    struct sigaction action = {};
    action.sa_handler = takeSample;
    action.sa_flags = SA_RESTART;
    sigaction(SIGPROF, &action, nullptr);
    void *warmUp[4];
    (void)backtrace(warmUp, 4); // loads what backtrace needs before any signal comes
    connect(&m_beat, &QTimer::timeout, this, [this] { m_lastBeatMs.store(m_clock.elapsed()); });
    m_beat.start(5);
    m_watcher = std::make_unique<std::thread>([this] { watch(); });
}

StallWatch::~StallWatch()
{
    m_stop = true;
    if (m_watcher->joinable())
        m_watcher->join();
}

void StallWatch::watch()
{
    qint64 stalledSince = -1;
    while (!m_stop) {
        std::this_thread::sleep_for(std::chrono::milliseconds(stalledSince >= 0 ? 20 : 5));
        const qint64 now = m_clock.elapsed();
        const qint64 last = m_lastBeatMs.load();
        if (now - last <= m_thresholdMs) {
            stalledSince = -1;
            continue;
        }
        if (stalledSince != last) {
            stalledSince = last;
            m_stalls.append({last, 0, {}});
        }
        g_depth = -1;
        pthread_kill(g_guiThread, SIGPROF);
        for (int wait = 0; wait < 200 && g_depth.load() < 0; ++wait)
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        const int depth = g_depth.load();
        if (depth <= 0)
            continue;
        char **symbols = backtrace_symbols(g_frames, depth);
        QStringList sample;
        for (int i = 2; i < depth; ++i) { // the handler and the signal trampoline first
            const QString name = frameName(symbols[i]);
            if (!name.isEmpty())
                sample << name;
        }
        std::free(symbols);
        m_stalls.last().samples << sample;
        m_stalls.last().lengthMs = m_clock.elapsed() - last;
    }
}

void StallWatch::finish(FILE *out)
{
    m_stop = true;
    if (m_watcher->joinable())
        m_watcher->join();
    for (const Stall &stall : m_stalls) {
        std::fprintf(out, "stall at %lld ms, at least %lld ms, %d sample(s)\n", stall.startMs, stall.lengthMs,
                     int(stall.samples.size()));
        for (const QStringList &sample : stall.samples) {
            std::fprintf(out, "  sample:\n");
            for (const QString &frame : sample)
                std::fprintf(out, "    %s\n", qPrintable(frame));
        }
    }
    std::fflush(out);
}

#else

StallWatch::StallWatch(int thresholdMs)
    : m_thresholdMs(thresholdMs)
{
}

StallWatch::~StallWatch() = default;

void StallWatch::watch() {}

void StallWatch::finish(FILE *out) { std::fprintf(out, "(stalls are sampled on Linux only)\n"); }

#endif
