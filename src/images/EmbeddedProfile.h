#pragma once

#include <QByteArray>
#include <QString>

// The ICC profile a picture file carries, read from the file's own structure without decoding
// its pixels: JPEG (APP2 "ICC_PROFILE" segments, joined in order), PNG (iCCP), TIFF (tag
// 34675) and WebP (ICCP). For the profiles that Qt's readers do not take, so that another
// engine can still honour them. Empty when the file holds none, is of another type, or is
// damaged. A profile the file declares but that cannot be taken (larger than kMaxBytes, cut
// short, or in parts that do not add up) gives nothing and sets unreadable.
namespace EmbeddedProfile {

constexpr qint64 kMaxBytes = 4 * 1024 * 1024;

QByteArray read(const QString &path, bool *unreadable = nullptr);

} // namespace EmbeddedProfile
