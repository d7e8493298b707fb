#include "SmallVolume.h"

#include <QDir>
#include <QFile>

#include <sys/mount.h>
#include <unistd.h>

SmallVolume::SmallVolume(const QString &folder, qint64 pages)
    : m_folder(folder)
{
    QDir().mkpath(folder);
    if (::geteuid() != 0)
        return;
    const QByteArray options = "size=" + QByteArray::number(pages * kPage) + ",mode=0755";
    m_mounted = ::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, options.constData()) == 0;
}

SmallVolume::~SmallVolume()
{
    if (m_mounted)
        ::umount2(QFile::encodeName(m_folder).constData(), MNT_DETACH);
}
