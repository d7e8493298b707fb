#pragma once

#include <QDir>
#include <QFileInfo>
#include <QStringList>

// Every file below folder, at any depth, by path. Header-only, for tests that link the core
// library alone as well as for the others.
inline QStringList filesBelow(const QString &folder)
{
    QStringList files;
    for (const QFileInfo &entry : QDir(folder).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        if (entry.isDir())
            files << filesBelow(entry.filePath());
        else
            files << entry.filePath();
    }
    return files;
}
