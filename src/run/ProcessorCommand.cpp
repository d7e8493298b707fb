#include "run/ProcessorCommand.h"

#include "processor/ChildProcessGuard.h"
#include "ui/AppStrings.h"

#include <QDir>
#include <QFileInfo>

namespace {
const QString kDefaultKeyFlag = QStringLiteral("--pubkey");
} // namespace

namespace ProcessorCommand {

QStringList arguments(const QString &input, const QString &output, const QString &panelType,
                      const VariantConfig &variant, const QString &keyPath)
{
    QStringList args{input, output};
    if (!panelType.isEmpty())
        args << panelType;
    if (!keyPath.isEmpty())
        args << (variant.keyFileArg.isEmpty() ? kDefaultKeyFlag : variant.keyFileArg) << keyPath;
    args << variant.extraArgs; // omit_args is read but removes nothing from this list, on purpose
    return args;
}

QProcessEnvironment environment(const QString &executable)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PYTHONIOENCODING"), QStringLiteral("utf-8"));
    environment.insert(QStringLiteral("PATH"),
                       QDir::toNativeSeparators(QFileInfo(executable).absolutePath()) +
                           QDir::listSeparator() + environment.value(QStringLiteral("PATH")));
    return environment;
}

void launch(QProcess *process, const QString &executable, const QStringList &args, const QString &workDir)
{
    process->setProcessEnvironment(environment(executable));
    process->setWorkingDirectory(workDir);
    ChildProcessGuard::prepare(process);
    process->start(executable, args, QIODevice::ReadWrite);
}

void adopt(QProcess *process) { ChildProcessGuard::adopt(process); }

QStringList outputLines(const QByteArray &bytes)
{
    QStringList lines;
    if (bytes.isEmpty())
        return lines;
    QString text = QString::fromUtf8(bytes);
    if (text.contains(QChar::ReplacementCharacter))
        text = QString::fromLocal8Bit(bytes);
    for (const QString &line : text.trimmed().split(QLatin1Char('\n'))) {
        const QString trimmed = line.trimmed();
        if (!trimmed.isEmpty())
            lines << trimmed;
    }
    return lines;
}

Outcome outcome(int exitCode, QProcess::ExitStatus exitStatus)
{
    if (exitStatus == QProcess::CrashExit)
        return {RowStatus::Crashed, exitCode, Str::processCrashed(exitCode)};
    if (exitCode != 0)
        return {RowStatus::ExitCodeFailed, exitCode, Str::processFailed(exitCode)};
    return {RowStatus::Done, 0, Str::rowDone()};
}

} // namespace ProcessorCommand
