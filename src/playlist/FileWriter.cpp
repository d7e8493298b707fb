#include "playlist/FileWriter.h"

#include <QFile>
#include <QFileInfo>

#include <atomic>

namespace FileWriter {

namespace {
std::atomic<qint64> g_simulatedFreeSpace{-1};

// What fits of the next `wanted` bytes on the simulated volume (all of them when none is set).
qint64 takeSpace(qint64 wanted)
{
    qint64 free = g_simulatedFreeSpace.load();
    while (free >= 0) {
        const qint64 granted = qMin(free, wanted);
        if (g_simulatedFreeSpace.compare_exchange_weak(free, free - granted))
            return granted;
    }
    return wanted;
}

bool fail(QString *error, const QString &reason)
{
    if (error)
        *error = reason;
    return false;
}
} // namespace

bool writeFully(QFileDevice &file, const char *data, qint64 size)
{
    qint64 written = 0;
    while (written < size) {
        const qint64 now = file.write(data + written, size - written);
        if (now <= 0)
            return false;
        written += now;
    }
    return true;
}

void simulateFreeSpace(qint64 bytes) { g_simulatedFreeSpace.store(bytes < 0 ? -1 : bytes); }

bool writeAll(const QString &path, const QByteArray &data, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return fail(error, file.errorString());
    const qint64 room = takeSpace(data.size());
    if (!writeFully(file, data.constData(), room) || !file.flush())
        return fail(error, file.errorString());
    if (room < data.size())
        return fail(error, QStringLiteral("No space left on device"));
    file.close();
    if (file.error() != QFileDevice::NoError)
        return fail(error, file.errorString());
    // What the system reports on disk, not what the buffers accepted.
    if (QFileInfo(path).size() != data.size())
        return fail(error,
                    QStringLiteral("%1 of %2 bytes written").arg(QFileInfo(path).size()).arg(data.size()));
    return true;
}

bool copyAll(const QString &source, const QString &target, QString *error)
{
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly))
        return fail(error, in.errorString());
    const QByteArray data = in.readAll();
    if (in.error() != QFileDevice::NoError || data.size() != in.size())
        return fail(error, in.errorString());
    return writeAll(target, data, error);
}

} // namespace FileWriter
