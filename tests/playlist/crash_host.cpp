// Writes a package, or copies one to a "card", and is killed at a given step of it, as a crash
// or a kill would end the program there (for the recovery tests):
//
//   crash_host export PARENT SOURCE STEP   the files of SOURCE as frames of PARENT/vl_play
//   crash_host card PACKAGE CARD STEP      PACKAGE copied to CARD/vl_play
//
// Exits 0 when the work ended before the step came.
#include "playlist/CardCopy.h"
#include "playlist/CrashSteps.h"
#include "playlist/PackageWriter.h"

#include <QCoreApplication>
#include <QDir>

#include <atomic>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.size() != 4)
        return 2;
    CrashSteps::killAt(args.at(3).toInt());
    if (args.at(0) == QLatin1String("export")) {
        QList<PackageWriter::Frame> frames;
        const QDir source(args.at(2));
        for (const QString &name : source.entryList(QDir::Files, QDir::Name))
            frames.append({name, source.filePath(name)});
        const QString error = PackageWriter::write(QDir(args.at(1)).filePath("vl_play"), frames, "new");
        return error.isEmpty() ? 0 : 3;
    }
    const std::atomic_bool cancel = false;
    const CardCopy::Result result =
        CardCopy::copy(args.at(1), args.at(2), cancel, [](qint64, qint64, bool) {});
    return result.ok ? 0 : 3;
}
