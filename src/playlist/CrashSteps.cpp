#include "playlist/CrashSteps.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

namespace CrashSteps {

namespace {
std::atomic<int> g_count{0};
std::atomic<int> g_killAt{0};
} // namespace

void step()
{
    const int now = ++g_count;
    if (now != g_killAt.load())
        return;
#ifdef SIGKILL
    std::raise(SIGKILL);
#endif
    std::_Exit(137); // where there is no SIGKILL: no clean-up either
}

void killAt(int step) { g_killAt = step; }

int count() { return g_count; }

} // namespace CrashSteps
