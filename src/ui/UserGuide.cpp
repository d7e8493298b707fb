#include "ui/UserGuide.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace UserGuide {

QString path(const QString &programFolder)
{
    const QDir programDir(programFolder.isEmpty() ? QCoreApplication::applicationDirPath() : programFolder);
    const QString installed = QStringLiteral("share/doc/velora-offline-tool/user-guide.html");
    const QStringList candidates = {
        programDir.filePath(QStringLiteral("../../") + installed), // <prefix>/lib/velora-offline-tool/
        programDir.filePath(QStringLiteral("../") + installed),    // <prefix>/bin/ and the build tree
        programDir.filePath(QStringLiteral("user-guide.html")),    // Windows
    };
    for (const QString &candidate : candidates) {
        if (QFileInfo(candidate).isFile())
            return QDir::cleanPath(QFileInfo(candidate).absoluteFilePath());
    }
    return QDir::cleanPath(candidates.first());
}

QUrl url() { return QUrl::fromLocalFile(path()); }

} // namespace UserGuide
