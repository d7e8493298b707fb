#include "ExfatCard.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include <csignal>
#include <optional>
#include <sys/mount.h>
#include <unistd.h>

namespace {

QString toolPath(const QString &name)
{
    const QString found = QStandardPaths::findExecutable(name);
    return !found.isEmpty()
               ? found
               : QStandardPaths::findExecutable(name, {QStringLiteral("/usr/sbin"), QStringLiteral("/sbin")});
}

// Runs a tool to its end; its standard output, or nullopt (with why) when it fails.
std::optional<QString> run(const QString &tool, const QStringList &arguments, QString *why)
{
    QProcess process;
    process.start(toolPath(tool), arguments);
    if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        *why = tool + QLatin1String(" failed: ") +
               QString::fromLocal8Bit(process.readAllStandardError()).trimmed();
        return std::nullopt;
    }
    return QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
}

} // namespace

ExfatCard::ExfatCard(const QString &image, const QString &mountPoint, int megabytes, const QString &label)
    : m_image(image)
    , m_mountPoint(mountPoint)
{
    QDir().mkpath(mountPoint);
    if (::geteuid() != 0) {
        m_whyNot = QStringLiteral("mounting a card image needs root");
        return;
    }
    for (const QString &tool :
         {QStringLiteral("losetup"), QStringLiteral("mkfs.exfat"), QStringLiteral("mount.exfat-fuse")}) {
        if (toolPath(tool).isEmpty()) {
            m_whyNot = tool + QLatin1String(" is not installed");
            return;
        }
    }
    if (!QFile::exists(QStringLiteral("/dev/fuse"))) {
        m_whyNot = QStringLiteral("this machine has no /dev/fuse");
        return;
    }
    QFile file(image);
    if (!file.open(QIODevice::WriteOnly) || !file.resize(qint64(megabytes) << 20)) {
        m_whyNot = QStringLiteral("cannot make the image: ") + file.errorString();
        return;
    }
    file.close();
    const std::optional<QString> device = run(
        QStringLiteral("losetup"), {QStringLiteral("--find"), QStringLiteral("--show"), image}, &m_whyNot);
    if (!device)
        return;
    m_device = *device;
    if (!run(QStringLiteral("mkfs.exfat"), {QStringLiteral("-L"), label, m_device}, &m_whyNot))
        return;
    mount();
}

ExfatCard::~ExfatCard()
{
    unmount();
    if (!m_device.isEmpty()) {
        QString ignored;
        (void)run(QStringLiteral("losetup"), {QStringLiteral("--detach"), m_device}, &ignored);
    }
    QDir().rmdir(m_mountPoint);
}

bool ExfatCard::mount()
{
    // The daemon leaves once the file system is mounted.
    m_mounted = run(QStringLiteral("mount.exfat-fuse"), {m_device, m_mountPoint}, &m_whyNot).has_value();
    return m_mounted;
}

void ExfatCard::unmount()
{
    if (m_mounted)
        ::umount2(QFile::encodeName(m_mountPoint).constData(), MNT_DETACH);
    m_mounted = false;
}

qint64 ExfatCard::daemon() const
{
    const QStringList processes = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &process : processes) {
        QFile commandLine(QStringLiteral("/proc/") + process + QStringLiteral("/cmdline"));
        if (!commandLine.open(QIODevice::ReadOnly))
            continue;
        const QList<QByteArray> arguments = commandLine.readAll().split('\0');
        if (arguments.value(0).endsWith("mount.exfat-fuse") &&
            arguments.contains(QFile::encodeName(m_device)))
            return process.toLongLong();
    }
    return 0;
}

void ExfatCard::pull()
{
    const qint64 pid = daemon();
    if (pid <= 0)
        return;
    ::kill(pid_t(pid), SIGKILL);
    for (int wait = 0; wait < 500 && QFile::exists(QStringLiteral("/proc/%1").arg(pid)); ++wait)
        QThread::msleep(10);
}

bool ExfatCard::reinsert()
{
    unmount();
    return mount();
}
