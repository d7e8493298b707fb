#include "processor/ChildProcessGuard.h"

#include <QProcess>

#if defined(Q_OS_WIN)
#include "processor/JobObject.h"
#elif defined(Q_OS_LINUX)
#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>
#endif

namespace ChildProcessGuard {

void prepare(QProcess *process)
{
#if defined(Q_OS_LINUX)
    const pid_t parent = ::getpid();
    process->setChildProcessModifier([parent] {
        // Runs in the child between fork and exec. A parent that died before the request took
        // effect would never send the signal: then the child ends at once.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent)
            ::_exit(127);
    });
#else
    Q_UNUSED(process);
#endif
}

void adopt(QProcess *process)
{
#if defined(Q_OS_WIN)
    if (process->processId() > 0)
        JobObject::killWithThisProcess(static_cast<unsigned long>(process->processId()));
#else
    Q_UNUSED(process);
#endif
}

} // namespace ChildProcessGuard
