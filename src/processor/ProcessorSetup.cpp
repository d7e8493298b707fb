#include "processor/ProcessorSetup.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

namespace {
const QStringList kDefaultLutNames = {QStringLiteral("lut_128_36_16_uni_260215.bin"),
                                      QStringLiteral("lut_128_36_16_uni_251208.bin")};
} // namespace

ProcessorSetup ProcessorSetup::resolve(const ProcessorConfig &config, const QString &variantId,
                                       const QString &chosenExecutable, const QString &chosenWorkDir)
{
    ProcessorSetup setup;
    setup.variantId = variantId;
    setup.variant = config.variant(variantId);
    setup.executable = config.resolvedExecutable(variantId);
    setup.workDir = config.resolvedWorkDir(variantId);
    if (!chosenExecutable.isEmpty() && QFileInfo(chosenExecutable).isFile())
        setup.executable = QDir::cleanPath(QFileInfo(chosenExecutable).absoluteFilePath());
    if (!chosenWorkDir.isEmpty() && QFileInfo(chosenWorkDir).isDir())
        setup.workDir = QDir::cleanPath(QFileInfo(chosenWorkDir).absoluteFilePath());
    else if (setup.workDir.isEmpty() && !setup.executable.isEmpty())
        setup.workDir = QFileInfo(setup.executable).absolutePath(); // the processor's own folder
    setup.lut = detectLut(config.resolvedDefaultLut(variantId), config.resolvedWorkDir(variantId));
    return setup;
}

namespace {
QString settingsKey(const QString &variantId, const QString &field)
{
    return QStringLiteral("variant/%1/%2").arg(variantId, field);
}
} // namespace

ProcessorSetup ProcessorSetup::resolve(const ProcessorConfig &config, const QString &variantId,
                                       const QSettings &settings)
{
    const auto chosen = [&](const QString &field) {
        return settings.value(settingsKey(variantId, field + QStringLiteral("_chosen"))).toBool()
                   ? settings.value(settingsKey(variantId, field)).toString()
                   : QString();
    };
    return resolve(config, variantId, chosen(QStringLiteral("exe")), chosen(QStringLiteral("work_dir")));
}

void ProcessorSetup::rememberChoice(QSettings *settings, const QString &variantId, const char *field,
                                    const QString &path)
{
    const QString name = QLatin1String(field);
    settings->setValue(settingsKey(variantId, name), path);
    settings->setValue(settingsKey(variantId, name + QStringLiteral("_chosen")), true);
}

QString ProcessorSetup::detectLut(const QString &configuredLut, const QString &workDir)
{
    if (!configuredLut.isEmpty() && QFileInfo::exists(configuredLut))
        return QFileInfo(configuredLut).absoluteFilePath();
    if (workDir.isEmpty())
        return QString();
    // The first name wins wherever it is; within a name, test/ comes before the folder itself.
    const QDir dir(workDir);
    for (const QString &name : kDefaultLutNames) {
        for (const QString &candidate : {dir.filePath(QStringLiteral("test/") + name), dir.filePath(name)}) {
            if (QFileInfo::exists(candidate))
                return QFileInfo(candidate).absoluteFilePath();
        }
    }
    return QString();
}
