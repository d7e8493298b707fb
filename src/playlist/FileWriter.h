#pragma once

#include <QByteArray>
#include <QString>

// Writes whole files and says when it could not: every byte is written and flushed and the
// size on disk is checked, so a full disk or a card pulled out is a failure with the system's
// reason, never a short file taken for a good one. Failures leave the target as far as it
// got; the caller decides what to remove.
namespace FileWriter {

bool writeAll(const QString &path, const QByteArray &data, QString *error);
bool copyAll(const QString &source, const QString &target, QString *error);

// A seam over the volume, for tests: from now on only `bytes` more may be written through
// this module; the write that needs more writes what fits and fails as a full disk does.
// A negative value lifts the limit.
void simulateFreeSpace(qint64 bytes);

} // namespace FileWriter
