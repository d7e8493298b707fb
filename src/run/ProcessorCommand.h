#pragma once

#include "processor/ProcessorConfig.h"
#include "run/RowStatus.h"

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

// Starts the executable in workDir without waiting for it: QProcess::started or errorOccurred
// follow. Call adopt() once it has started, to tie it to this program's life (ChildProcessGuard).
void launch(QProcess *process, const QString &executable, const QStringList &args, const QString &workDir);
void adopt(QProcess *process);

// Output as it arrives: UTF-8, or the local code page for bytes that are not; each line
// trimmed, empty lines left out. A line cut across two chunks gives two lines.
QStringList outputLines(const QByteArray &bytes);

// The end of a processor: Done for exit code 0, Crashed for a crash, else ExitCodeFailed.
struct Outcome {
    RowStatus status = RowStatus::Done;
    int exitCode = 0;
    QString log; // the log text for it
};
Outcome outcome(int exitCode, QProcess::ExitStatus exitStatus);

} // namespace ProcessorCommand
