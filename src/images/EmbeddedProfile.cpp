#include "images/EmbeddedProfile.h"

#include <QFile>
#include <QMap>
#include <QtEndian>

#include <optional>

namespace EmbeddedProfile {

namespace {

// A compressed PNG profile is rarely over a few kilobytes (a large table-based one over a
// hundred); this bound keeps a hostile one, which zlib can make expand a thousandfold, from
// taking more than a few hundred megabytes while it is unpacked.
constexpr qint64 kMaxCompressedBytes = 256 * 1024;
constexpr int kMaxSegments = 4096;

// What a file says: no profile (nullopt), or one (empty when it cannot be taken).
using Found = std::optional<QByteArray>;

QByteArray readExactly(QFile &file, qint64 size)
{
    if (size < 0 || size > kMaxBytes)
        return QByteArray();
    const QByteArray bytes = file.read(size);
    return bytes.size() == size ? bytes : QByteArray();
}

quint32 bigEndian32(const QByteArray &bytes, int at)
{
    return qFromBigEndian<quint32>(bytes.constData() + at);
}

Found fromJpeg(QFile &file)
{
    const QByteArray tag("ICC_PROFILE\0", 12);
    QMap<int, QByteArray> chunks;
    int expected = 0;
    for (int segment = 0; segment < kMaxSegments; ++segment) {
        const QByteArray head = file.read(2);
        if (head.size() < 2 || uchar(head[0]) != 0xFF)
            break;
        const uchar marker = uchar(head[1]);
        if (marker == 0xFF) { // fill byte: the marker follows
            file.seek(file.pos() - 1);
            continue;
        }
        if (marker == 0xDA || marker == 0xD9)
            break; // the picture's data begins: no profile segment comes after it
        if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7))
            continue; // markers without a length
        const QByteArray lengthBytes = file.read(2);
        if (lengthBytes.size() < 2)
            break;
        const int length = qFromBigEndian<quint16>(lengthBytes.constData()) - 2;
        if (length < 0)
            break;
        if (marker != 0xE2 || length < tag.size() + 2) {
            if (!file.seek(file.pos() + length))
                break;
            continue;
        }
        const QByteArray payload = file.read(length);
        if (payload.size() < length)
            break;
        if (!payload.startsWith(tag))
            continue;
        const int number = uchar(payload[tag.size()]);
        expected = uchar(payload[tag.size() + 1]);
        chunks.insert(number, payload.mid(tag.size() + 2));
    }
    // Chunks are numbered 1..count; all of them make the profile.
    if (chunks.isEmpty())
        return std::nullopt;
    if (expected == 0 || chunks.size() != expected || chunks.firstKey() != 1 || chunks.lastKey() != expected)
        return QByteArray();
    QByteArray profile;
    for (const QByteArray &chunk : std::as_const(chunks))
        profile += chunk;
    return profile.size() <= kMaxBytes ? profile : QByteArray();
}

Found fromPng(QFile &file)
{
    file.seek(8); // the signature
    for (int chunk = 0; chunk < kMaxSegments; ++chunk) {
        const QByteArray head = file.read(8);
        if (head.size() < 8)
            break;
        const qint64 length = bigEndian32(head, 0);
        const QByteArray type = head.mid(4, 4);
        if (type == "IDAT" || type == "IEND")
            break; // the profile chunk comes before the picture's data
        if (type != "iCCP") {
            if (!file.seek(file.pos() + length + 4)) // the data and its CRC
                break;
            continue;
        }
        if (length > kMaxCompressedBytes)
            return QByteArray();
        const QByteArray data = readExactly(file, length);
        // A name of 1-79 bytes, its terminating zero, the method (0: zlib), the stream.
        const int nameEnd = int(data.indexOf('\0'));
        if (nameEnd < 1 || nameEnd + 2 > data.size() || data[nameEnd + 1] != 0)
            return QByteArray();
        // qUncompress wants the size first: room for any profile taken, grown only for a
        // hostile stream.
        QByteArray stream(4, '\0');
        qToBigEndian<quint32>(quint32(kMaxBytes), stream.data());
        stream += data.mid(nameEnd + 2);
        const QByteArray profile = qUncompress(stream);
        return profile.size() <= kMaxBytes ? profile : QByteArray();
    }
    return std::nullopt;
}

Found fromTiff(QFile &file, const QByteArray &header)
{
    const bool little = header.startsWith("II");
    const auto u16 = [little](const QByteArray &bytes, int at) {
        return little ? qFromLittleEndian<quint16>(bytes.constData() + at)
                      : qFromBigEndian<quint16>(bytes.constData() + at);
    };
    const auto u32 = [little](const QByteArray &bytes, int at) {
        return little ? qFromLittleEndian<quint32>(bytes.constData() + at)
                      : qFromBigEndian<quint32>(bytes.constData() + at);
    };
    if (u16(header, 2) != 42 || !file.seek(u32(header, 4)))
        return std::nullopt; // BigTIFF (43) and damaged headers
    const QByteArray countBytes = file.read(2);
    if (countBytes.size() < 2)
        return std::nullopt;
    const int entries = u16(countBytes, 0);
    const QByteArray directory = file.read(qint64(entries) * 12);
    if (directory.size() < entries * 12)
        return std::nullopt;
    constexpr quint16 kIccTag = 34675;
    for (int i = 0; i < entries; ++i) {
        const int at = i * 12;
        if (u16(directory, at) != kIccTag)
            continue;
        const qint64 size = u32(directory, at + 4);
        if (size <= 4)
            return directory.mid(at + 8, int(size));
        return file.seek(u32(directory, at + 8)) ? readExactly(file, size) : QByteArray();
    }
    return std::nullopt;
}

Found fromWebp(QFile &file)
{
    file.seek(12); // "RIFF", its size, "WEBP"
    for (int chunk = 0; chunk < kMaxSegments; ++chunk) {
        const QByteArray head = file.read(8);
        if (head.size() < 8)
            break;
        const qint64 size = qFromLittleEndian<quint32>(head.constData() + 4);
        const QByteArray type = head.left(4);
        if (type == "ICCP")
            return readExactly(file, size);
        if (type == "VP8 " || type == "VP8L" || type == "ANIM" || type == "ANMF")
            break;                                      // the profile chunk comes before the picture's data
        if (!file.seek(file.pos() + size + (size & 1))) // chunks are padded to an even size
            break;
    }
    return std::nullopt;
}

Found fromFile(QFile &file)
{
    const QByteArray header = file.read(12);
    if (header.size() < 12)
        return std::nullopt;
    if (uchar(header[0]) == 0xFF && uchar(header[1]) == 0xD8) {
        file.seek(2);
        return fromJpeg(file);
    }
    if (header.startsWith("\x89PNG\r\n\x1a\n"))
        return fromPng(file);
    if (header.startsWith("II") || header.startsWith("MM"))
        return fromTiff(file, header);
    if (header.startsWith("RIFF") && header.mid(8, 4) == "WEBP")
        return fromWebp(file);
    return std::nullopt;
}

} // namespace

QByteArray read(const QString &path, bool *unreadable)
{
    QFile file(path);
    const Found found = file.open(QIODevice::ReadOnly) ? fromFile(file) : std::nullopt;
    if (unreadable)
        *unreadable = found && found->isEmpty();
    return found.value_or(QByteArray());
}

} // namespace EmbeddedProfile
