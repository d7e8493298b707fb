#include "playlist/Volumes.h"

#include "playlist/BootSector.h"

#include <QCoreApplication>
#include <QDir>
#include <QStorageInfo>

namespace {

std::optional<QList<Volume>> &overridden()
{
    static std::optional<QList<Volume>> volumes;
    return volumes;
}

bool isPseudoFileSystem(const QByteArray &type)
{
    static const QList<QByteArray> pseudo = {"tmpfs",   "devtmpfs",    "overlay",  "proc",  "sysfs",
                                             "ramfs",   "squashfs",    "autofs",   "nsfs",  "cgroup",
                                             "cgroup2", "fuse.portal", "efivarfs", "devpts"};
    return pseudo.contains(type);
}

bool isWhereCardsAreMounted(const QString &root)
{
#if defined(Q_OS_LINUX)
    for (const char *prefix : {"/media/", "/run/media/", "/mnt/"}) {
        if (root.startsWith(QLatin1String(prefix)))
            return true;
    }
    return false;
#elif defined(Q_OS_MACOS)
    return root.startsWith(QLatin1String("/Volumes/"));
#else
    Q_UNUSED(root);
    return true; // every drive letter but the system's own
#endif
}

} // namespace

namespace Volumes {

QList<Volume> cards()
{
    if (overridden())
        return *overridden();
    const QString systemRoot = QStorageInfo::root().rootPath();
    const QString homeRoot = QStorageInfo(QDir::homePath()).rootPath();
    const QString programRoot = QStorageInfo(QCoreApplication::applicationDirPath()).rootPath();
    QList<Volume> found;
    for (const QStorageInfo &storage : QStorageInfo::mountedVolumes()) {
        const QString root = storage.rootPath();
        if (!storage.isValid() || !storage.isReady() || storage.isReadOnly() || root == systemRoot ||
            root == homeRoot || root == programRoot || isPseudoFileSystem(storage.fileSystemType()) ||
            !isWhereCardsAreMounted(root))
            continue;
        bool known = true;
        const QString device = QString::fromLocal8Bit(storage.device());
        const QString fileSystem =
            fileSystemOf(QString::fromLatin1(storage.fileSystemType()), device, &known);
        QString name = storage.name();
        if (name.isEmpty() && fileSystem == QLatin1String("exfat"))
            name = BootSector::exFatLabelOf(device); // a FUSE mount does not tell it
        found.append({root, name.isEmpty() ? root : name, fileSystem, storage.bytesAvailable(), known});
    }
    return found;
}

void setOverride(const std::optional<QList<Volume>> &volumes) { overridden() = volumes; }

bool isCardFileSystem(const QString &fileSystem)
{
    const QString type = fileSystem.toLower();
    return type == QLatin1String("vfat") || type == QLatin1String("fat32") ||
           type == QLatin1String("msdos") || type == QLatin1String("exfat");
}

QString fileSystemOf(const QString &type, const QString &device, bool *known)
{
    const bool fuse = type == QLatin1String("fuseblk") || type.startsWith(QLatin1String("fuse"));
    const QString read = fuse ? BootSector::fileSystemName(BootSector::readFrom(device)) : QString();
    if (known)
        *known = !fuse || !read.isEmpty();
    return read.isEmpty() ? type : read;
}

} // namespace Volumes
