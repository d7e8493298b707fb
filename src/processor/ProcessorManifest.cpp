#include "processor/ProcessorManifest.h"

#include "processor/ProcessorConfig.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

QString ProcessorManifest::fileName() { return QStringLiteral("processor_manifest.json"); }

QString ProcessorManifest::builtInPath() { return QStringLiteral(":/manifest/processor_manifest.json"); }

QStringList ProcessorManifest::defaultRequiredFiles()
{
    return {
        QStringLiteral("TARN-lite.exe"),
        QStringLiteral("libcrypto-3-x64.dll"),
        QStringLiteral("opencv_core4.dll"),
        QStringLiteral("opencv_imgproc4.dll"),
        QStringLiteral("opencv_imgcodecs4.dll"),
        QStringLiteral("zlib1.dll"),
        QStringLiteral("jpeg62.dll"),
        QStringLiteral("libpng16.dll"),
        QStringLiteral("tiff.dll"),
        QStringLiteral("libwebp.dll"),
        QStringLiteral("libwebpdecoder.dll"),
        QStringLiteral("libwebpdemux.dll"),
        QStringLiteral("libwebpmux.dll"),
        QStringLiteral("libsharpyuv.dll"),
        QStringLiteral("liblzma.dll"),
        QStringLiteral("msvcp140.dll"),
        QStringLiteral("vcruntime140.dll"),
        QStringLiteral("vcruntime140_1.dll"),
        QStringLiteral("concrt140.dll"),
    };
}

bool ProcessorManifest::filePresent(const QString &dir, const QString &name)
{
    const QFileInfo info(QDir(dir).filePath(name));
    return info.exists() && info.isFile() && info.size() > 0;
}

QString ProcessorManifest::locateManifestPath(const QString &processorDir)
{
    const QDir appDir(QCoreApplication::applicationDirPath());
    const QStringList candidates = {
        QDir(processorDir).filePath(fileName()),
        appDir.filePath(QStringLiteral("processor/") + fileName()),
        appDir.filePath(fileName()),
    };
    for (const QString &candidate : candidates) {
        if (QFileInfo::exists(candidate))
            return candidate;
    }
    return builtInPath();
}

bool ProcessorManifest::loadManifestObject(const QString &processorDir, QJsonObject *out)
{
    QFile file(locateManifestPath(processorDir));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return false;
    if (out)
        *out = document.object();
    return true;
}

QStringList ProcessorManifest::requiredFilesFromObject(const QJsonObject &manifest)
{
    QStringList names;
    const QJsonArray required = manifest.value(QStringLiteral("required")).toArray();
    for (const QJsonValue &value : required) {
        if (value.isString())
            names << value.toString();
    }
    return names.isEmpty() ? defaultRequiredFiles() : names;
}

ProcessorManifest::Validation ProcessorManifest::validate(const QString &processorDir)
{
    Validation result;
    result.processorDir = QFileInfo(processorDir).absoluteFilePath();
    if (!QFileInfo(result.processorDir).isDir())
        return result;

    QJsonObject manifest;
    const QStringList required = loadManifestObject(result.processorDir, &manifest)
                                     ? requiredFilesFromObject(manifest)
                                     : defaultRequiredFiles();
    for (const QString &name : required) {
        if (!filePresent(result.processorDir, name))
            result.missing << name;
    }
    result.ok = result.missing.isEmpty();
    return result;
}

ProcessorManifest::SmokeTest ProcessorManifest::smokeTest(const QString &processorDir)
{
    SmokeTest test{QStringLiteral("TARN-lite.exe"), {QStringLiteral("--help")}, 0};

    QJsonObject manifest;
    if (!loadManifestObject(processorDir, &manifest))
        return test;
    const QJsonObject smoke = manifest.value(QStringLiteral("smoke_test")).toObject();
    if (smoke.isEmpty())
        return test;

    const QString executable = smoke.value(QStringLiteral("executable")).toString().trimmed();
    if (!executable.isEmpty())
        test.executable = executable;

    const QJsonValue args = smoke.value(QStringLiteral("args"));
    bool allStrings = args.isArray() && !args.toArray().isEmpty();
    for (const QJsonValue &arg : args.toArray())
        allStrings = allStrings && arg.isString();
    if (allStrings)
        test.args = jsonToStringList(args);

    const QJsonValue expected = smoke.value(QStringLiteral("expect_exit_code"));
    if (expected.isDouble())
        test.expectExitCode = expected.toInt();
    return test;
}
