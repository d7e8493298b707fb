#pragma once

#include "processor/ProcessorConfig.h"
#include "ui/AppStrings.h"

#include <QProcess>
#include <QString>
#include <QStringList>

// How the processor is run for one picture, the same for the window's run and velora-pack:
// its argument list, its environment, its start, how its output bytes become log lines and
// how its end becomes a status and a log text.
namespace ProcessorCommand {

// input, output, the panel type (left out when empty), the key flag and path (left out when
// keyPath is empty), then the variant's extra arguments.
QStringList arguments(const QString &input, const QString &output, const QString &panelType,
                      const VariantConfig &variant, const QString &keyPath);

// The system environment with UTF-8 for Python's streams and the processor's own folder
// first on PATH, so that its libraries are found.
QProcessEnvironment environment(const QString &executable);

// Starts the executable in workDir, tied to this program's life (ChildProcessGuard), and
// waits up to 5 s for it to start; false when it did not (process->errorString() says why).
bool start(QProcess *process, const QString &executable, const QStringList &args, const QString &workDir);

// Output as it arrives: UTF-8, or the local code page for bytes that are not; each line
// trimmed, empty lines left out. A line cut across two chunks gives two lines.
QStringList outputLines(const QByteArray &bytes);

// The end of a processor: Done for exit code 0, Crashed for a crash, else ExitCodeFailed.
struct Outcome {
    Str::RowStatus status = Str::RowStatus::Done;
    int exitCode = 0;
    QString log; // the log text for it
};
Outcome outcome(int exitCode, QProcess::ExitStatus exitStatus);

} // namespace ProcessorCommand
