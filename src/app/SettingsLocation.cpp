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

bool canCreateFileIn(const QString &folder)
{
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral("VeloraOfflineTool-XXXXXX.probe")));
    return probe.open(); // removed again when the probe goes
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
    if (QFileInfo::exists(beside) ? canWriteFile(beside)
                                  : canCreateFileIn(QCoreApplication::applicationDirPath()))
        return beside;
    const QString user = inUserConfig();
    QDir().mkpath(QFileInfo(user).absolutePath());
    return user;
}

} // namespace SettingsLocation
