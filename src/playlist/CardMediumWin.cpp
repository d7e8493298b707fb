#include "playlist/CardMedium.h"

#include <QCryptographicHash>
#include <QFile>

#include <io.h>
#include <windows.h>

namespace CardMedium {

namespace {
// A multiple of any sector size: unbuffered reads must be whole sectors into aligned memory.
constexpr DWORD kChunkBytes = 1 << 20;

QString systemError(DWORD code)
{
    wchar_t *text = nullptr;
    FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                       FORMAT_MESSAGE_IGNORE_INSERTS,
                   nullptr, code, 0, reinterpret_cast<LPWSTR>(&text), 0, nullptr);
    const QString message = text ? QString::fromWCharArray(text).trimmed() : QString::number(code);
    LocalFree(text);
    return message;
}
} // namespace

bool flush(QFile &file, QString *error)
{
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(file.handle()));
    if (!file.flush() || handle == INVALID_HANDLE_VALUE || !FlushFileBuffers(handle)) {
        if (error)
            *error = systemError(GetLastError());
        return false;
    }
    return true;
}

void dropCached(const QString &path)
{
    Q_UNUSED(path); // the read-back goes past the cache (FILE_FLAG_NO_BUFFERING)
}

QByteArray readHashed(const QString &path, const std::atomic_bool &cancel,
                      const std::function<void(qint64)> &advanced, QString *error)
{
    const HANDLE file =
        CreateFileW(reinterpret_cast<const wchar_t *>(path.utf16()), GENERIC_READ, FILE_SHARE_READ, nullptr,
                    OPEN_EXISTING, FILE_FLAG_NO_BUFFERING | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        if (error)
            *error = systemError(GetLastError());
        return {};
    }
    // Page-aligned, so sector-aligned.
    void *buffer = VirtualAlloc(nullptr, kChunkBytes, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    bool ok = buffer != nullptr;
    for (DWORD read = 0; ok && !cancel;) {
        ok = ReadFile(file, buffer, kChunkBytes, &read, nullptr) != 0;
        if (!ok || read == 0)
            break;
        hash.addData(QByteArrayView(static_cast<const char *>(buffer), qsizetype(read)));
        advanced(read);
    }
    const DWORD code = GetLastError();
    if (buffer)
        VirtualFree(buffer, 0, MEM_RELEASE);
    CloseHandle(file);
    if (!ok && error)
        *error = systemError(code);
    return ok && !cancel ? hash.result() : QByteArray();
}

} // namespace CardMedium
