#include "app/SettingsLocation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace SettingsLocation {

namespace {
bool canWriteFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite); // opening leaves the contents as they are
}

// Whether a file can be written in folder as the settings are: a temporary file made there,
// then renamed over the real one.
bool canReplaceFileIn(const QString &folder)
{
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral("VeloraOfflineTool-XXXXXX.probe")));
    if (!probe.open())
        return false;
    probe.close();
    const QString renamed = probe.fileName() + QStringLiteral(".renamed");
    const bool renamedOk = QFile::rename(probe.fileName(), renamed);
    QFile::remove(renamedOk ? renamed : probe.fileName());
    return renamedOk;
}
} // namespace

QString fileName() { return QStringLiteral("VeloraOfflineTool.ini"); }

QString besideProgram() { return QDir(QCoreApplication::applicationDirPath()).filePath(fileName()); }

QString inUserConfig()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)).filePath(fileName());
}

QString path()
{
    const QString beside = besideProgram();
    if (canReplaceFileIn(QCoreApplication::applicationDirPath()) &&
        (!QFileInfo::exists(beside) || canWriteFile(beside)))
        return beside;
    const QString user = inUserConfig();
    QDir().mkpath(QFileInfo(user).absolutePath());
    // Settings kept beside the program until it could keep them there no more go along, once.
    if (!QFileInfo::exists(user) && QFileInfo::exists(beside))
        QFile::copy(beside, user);
    return user;
}

} // namespace SettingsLocation
