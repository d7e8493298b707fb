#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <functional>

class QFile;

// What the copy to a card does so that its read-back checks the card and not the computer's
// cache of it. A seam over the operating system:
// - Linux and other POSIX systems (CardMediumPosix.cpp): fsync() after the write, then
//   posix_fadvise(POSIX_FADV_DONTNEED) drops the file's cached pages where the system has it
//   (Linux), and on macOS the read-back is made with F_NOCACHE; the read-back is then an
//   ordinary read, which has to go to the card.
// - Windows (CardMediumWin.cpp): FlushFileBuffers() after the write, and the read-back opened
//   with FILE_FLAG_NO_BUFFERING, past the system's cache.
namespace CardMedium {

// Makes what was written to file reach the card; the system's reason in error on a fault.
bool flush(QFile &file, QString *error);
// Lets go of the computer's cached copy of the file at path (closed), where the system allows.
void dropCached(const QString &path);
// The SHA-256 of the file at path read from the card itself; empty on a fault (error says
// which) or a cancel. advanced is told each chunk's size.
QByteArray readHashed(const QString &path, const std::atomic_bool &cancel,
                      const std::function<void(qint64)> &advanced, QString *error);

} // namespace CardMedium
