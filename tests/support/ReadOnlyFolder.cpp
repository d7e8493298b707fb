#include "ReadOnlyFolder.h"

#include <QFile>
#include <QTemporaryFile>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

bool setImmutable(const QString &folder, bool on)
{
    const int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY);
    if (fd < 0)
        return false;
    int flags = 0;
    bool ok = ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    if (ok) {
        flags = on ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
        ok = ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    }
    ::close(fd);
    return ok;
}

bool canCreateFileIn(const QString &folder)
{
    QTemporaryFile probe(folder + QStringLiteral("/probe-XXXXXX"));
    return probe.open();
}

} // namespace

ReadOnlyFolder::ReadOnlyFolder(const QString &folder)
    : m_folder(folder)
{
    if (::geteuid() == 0) {
        m_immutable = setImmutable(folder, true);
    } else {
        m_chmodded = QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup |
                                                       QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther);
    }
    m_readOnly = (m_immutable || m_chmodded) && !canCreateFileIn(folder);
}

ReadOnlyFolder::~ReadOnlyFolder()
{
    if (m_immutable)
        setImmutable(m_folder, false);
    if (m_chmodded)
        QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                            QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther |
                                            QFile::ExeOther);
}
