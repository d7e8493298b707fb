// A stand-in for the program, for the tests of what happens when it dies: it holds scratch
// folders as a window does, starts one program as the run starts the processor (through the
// child guard, unless told --unguarded), prints "scratch <id>" and "child <pid>", and waits
// to be killed.
#include "processor/ChildProcessGuard.h"
#include "run/ScratchFolders.h"

#include <QCoreApplication>
#include <QProcess>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    const bool guarded = !args.removeOne(QStringLiteral("--unguarded"));
    if (args.isEmpty())
        return 2;
    ScratchFolders scratch;
    std::printf("scratch %s\n", qPrintable(scratch.id()));
    QProcess child;
    if (guarded)
        ChildProcessGuard::prepare(&child);
    child.start(args.takeFirst(), args);
    if (!child.waitForStarted(5000))
        return 3;
    if (guarded)
        ChildProcessGuard::adopt(&child);
    std::printf("child %lld\n", child.processId());
    std::fflush(stdout);
    return app.exec();
}
