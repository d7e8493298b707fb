#pragma once

#include <QByteArray>
#include <QString>

class QFileDevice;

// Writes whole files and says when it could not: every byte is written and flushed and the
// size on disk is checked, so a full disk or a card pulled out is a failure with the system's
// reason, never a short file taken for a good one. Failures leave the target as far as it
// got; the caller decides what to remove.
namespace FileWriter {

bool writeAll(const QString &path, const QByteArray &data, QString *error);
// Writes size bytes to an open file. A write the system cuts short (a full disk takes what fits
// without a word) is tried again for the rest, so that a failure carries the system's reason
// ("No space left on device") in the file's errorString().
bool writeFully(QFileDevice &file, const char *data, qint64 size);
bool copyAll(const QString &source, const QString &target, QString *error);

// A seam over the volume, for tests: from now on only `bytes` more may be written through
// this module; the write that needs more writes what fits and fails as a full disk does.
// A negative value lifts the limit.
void simulateFreeSpace(qint64 bytes);

} // namespace FileWriter
