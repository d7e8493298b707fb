#include "playlist/CardMedium.h"

#include <QCryptographicHash>
#include <QFile>

#include <fcntl.h>
#include <unistd.h>

namespace CardMedium {

namespace {
constexpr qint64 kChunkBytes = 1 << 20;
} // namespace

bool flush(QFile &file, QString *error)
{
    if (!file.flush() || ::fsync(file.handle()) != 0) {
        if (error)
            *error = file.error() != QFileDevice::NoError ? file.errorString() : qt_error_string(errno);
        return false;
    }
    return true;
}

void dropCached(const QString &path)
{
#if defined(POSIX_FADV_DONTNEED)
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    if (fd < 0)
        return;
    ::posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
    ::close(fd);
#else
    Q_UNUSED(path); // macOS: the read-back bypasses the cache instead (F_NOCACHE)
#endif
}

QByteArray readHashed(const QString &path, const std::atomic_bool &cancel,
                      const std::function<void(qint64)> &advanced, QString *error)
{
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        if (error)
            *error = source.errorString();
        return {};
    }
#if defined(F_NOCACHE)
    ::fcntl(source.handle(), F_NOCACHE, 1);
#endif
    QCryptographicHash hash(QCryptographicHash::Sha256);
    while (!source.atEnd()) {
        if (cancel)
            return {};
        const QByteArray chunk = source.read(kChunkBytes);
        if (chunk.isEmpty() && source.error() != QFileDevice::NoError) {
            if (error)
                *error = source.errorString();
            return {};
        }
        hash.addData(chunk);
        advanced(chunk.size());
    }
    return hash.result();
}

} // namespace CardMedium
