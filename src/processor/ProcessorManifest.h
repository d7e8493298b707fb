#pragma once

#include <QString>
#include <QStringList>

class QJsonObject;

// What a complete processor folder holds and how the processor is test-started, read from
// "processor_manifest.json" (a copy is built into the program). Static functions only.
class ProcessorManifest
{
public:
    struct Validation {
        bool ok = false;
        QString processorDir;
        QStringList missing;
    };

    struct SmokeTest {
        QString executable;
        QStringList args;
        int expectExitCode = 0;
    };

    static QString fileName();
    static QString builtInPath();
    static QStringList defaultRequiredFiles();

    // True for an existing regular file of more than 0 bytes: an interrupted copy leaves
    // empty files, so an empty file counts as missing.
    static bool filePresent(const QString &dir, const QString &name);

    static QString locateManifestPath(const QString &processorDir);
    static bool loadManifestObject(const QString &processorDir, QJsonObject *out);
    static QStringList requiredFilesFromObject(const QJsonObject &manifest);

    static Validation validate(const QString &processorDir);
    static SmokeTest smokeTest(const QString &processorDir);
};
