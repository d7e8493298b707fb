#include "images/DateTaken.h"

#include <QFile>
#include <QtEndian>

#include <optional>

namespace DateTaken {

namespace {

constexpr qint64 kMaxExifBytes = 256 * 1024; // EXIF lives in one JPEG segment: at most 64 KB
constexpr int kMaxSegments = 4096;
constexpr int kMaxBoxes = 4096;
constexpr quint16 kExifPointerTag = 0x8769;
constexpr quint16 kDateTimeOriginalTag = 0x9003;
constexpr quint16 kAsciiType = 2;

// Reads the numbers of a TIFF block in its byte order; out of range reads give nothing.
class TiffReader
{
public:
    explicit TiffReader(const QByteArray &tiff)
        : m_tiff(tiff)
        , m_little(tiff.startsWith("II"))
    {
    }
    bool valid() const { return (m_little || m_tiff.startsWith("MM")) && u16(2) == 42; }
    std::optional<quint32> u32(qint64 at) const
    {
        if (at < 0 || at + 4 > m_tiff.size())
            return std::nullopt;
        const char *p = m_tiff.constData() + at;
        return m_little ? qFromLittleEndian<quint32>(p) : qFromBigEndian<quint32>(p);
    }
    std::optional<quint16> u16(qint64 at) const
    {
        if (at < 0 || at + 2 > m_tiff.size())
            return std::nullopt;
        const char *p = m_tiff.constData() + at;
        return m_little ? qFromLittleEndian<quint16>(p) : qFromBigEndian<quint16>(p);
    }
    // The offset of a tag's entry in the directory at ifd.
    std::optional<qint64> entry(qint64 ifd, quint16 tag) const
    {
        const std::optional<quint16> count = u16(ifd);
        for (int i = 0; count && i < *count; ++i) {
            const qint64 at = ifd + 2 + 12 * qint64(i);
            const std::optional<quint16> found = u16(at);
            if (!found)
                return std::nullopt;
            if (*found == tag)
                return at;
        }
        return std::nullopt;
    }
    QByteArray bytes(qint64 at, qint64 size) const
    {
        return at >= 0 && size >= 0 && at + size <= m_tiff.size() ? m_tiff.mid(at, size) : QByteArray();
    }

private:
    const QByteArray &m_tiff;
    bool m_little;
};

QByteArray exifFromJpeg(QFile &file)
{
    if (file.read(2) != QByteArray("\xFF\xD8", 2))
        return QByteArray();
    for (int segment = 0; segment < kMaxSegments; ++segment) {
        const QByteArray head = file.read(4);
        if (head.size() < 4 || uchar(head[0]) != 0xFF)
            return QByteArray();
        const uchar marker = uchar(head[1]);
        if (marker == 0xDA || marker == 0xD9)
            return QByteArray(); // the picture's data: EXIF comes before it
        const int length = qFromBigEndian<quint16>(head.constData() + 2) - 2;
        if (length < 0)
            return QByteArray();
        if (marker == 0xE1 && length > 6) {
            const QByteArray payload = file.read(length);
            if (payload.size() == length && payload.startsWith(QByteArray("Exif\0\0", 6)))
                return payload.mid(6);
            continue;
        }
        if (!file.seek(file.pos() + length))
            return QByteArray();
    }
    return QByteArray();
}

// One ISO base media box: its type and where its content lies in the file.
struct Box {
    QByteArray type;
    qint64 content = 0;
    qint64 end = 0;
};

std::optional<Box> readBox(QFile &file, qint64 at, qint64 limit)
{
    if (!file.seek(at))
        return std::nullopt;
    const QByteArray head = file.read(8);
    if (head.size() < 8)
        return std::nullopt;
    qint64 size = qFromBigEndian<quint32>(head.constData());
    qint64 content = at + 8;
    if (size == 1) {
        const QByteArray large = file.read(8);
        if (large.size() < 8)
            return std::nullopt;
        size = qint64(qFromBigEndian<quint64>(large.constData()));
        content += 8;
    } else if (size == 0) {
        size = limit - at; // to the end of what holds it
    }
    if (size < content - at || at + size > limit)
        return std::nullopt;
    return Box{head.mid(4, 4), content, at + size};
}

std::optional<Box> findBox(QFile &file, qint64 from, qint64 limit, const char *type)
{
    qint64 at = from;
    for (int i = 0; i < kMaxBoxes && at + 8 <= limit; ++i) {
        const std::optional<Box> box = readBox(file, at, limit);
        if (!box)
            return std::nullopt;
        if (box->type == type)
            return box;
        at = box->end;
    }
    return std::nullopt;
}

// A big-endian unsigned number of 0, 2, 4 or 8 bytes from bytes at pos, which moves past it.
std::optional<quint64> number(const QByteArray &bytes, qint64 *pos, int size)
{
    if (*pos + size > bytes.size())
        return std::nullopt;
    quint64 value = 0;
    for (int i = 0; i < size; ++i)
        value = (value << 8) | uchar(bytes[*pos + i]);
    *pos += size;
    return value;
}

// The id of the item of type "Exif" in an iinf box's content.
std::optional<quint32> exifItemId(const QByteArray &iinf)
{
    qint64 pos = 0;
    const std::optional<quint64> version = number(iinf, &pos, 1);
    pos += 3; // flags
    const std::optional<quint64> count = version ? number(iinf, &pos, *version == 0 ? 2 : 4) : std::nullopt;
    for (quint64 i = 0; count && i < *count && i < quint64(kMaxBoxes); ++i) {
        const qint64 start = pos;
        const std::optional<quint64> size = number(iinf, &pos, 4);
        if (!size || *size < 8 || start + qint64(*size) > iinf.size())
            return std::nullopt;
        const QByteArray infe = iinf.mid(start + 8, qint64(*size) - 8);
        pos = start + qint64(*size);
        if (iinf.mid(start + 4, 4) != "infe" || infe.size() < 4 || uchar(infe[0]) < 2)
            continue; // versions 0 and 1 carry no item type
        qint64 at = 4;
        const std::optional<quint64> id = number(infe, &at, uchar(infe[0]) == 2 ? 2 : 4);
        at += 2; // protection index
        if (id && infe.mid(at, 4) == "Exif")
            return quint32(*id);
    }
    return std::nullopt;
}

// Where an item's data lies in the file, from an iloc box's content (stored in the file, one
// extent).
std::optional<std::pair<qint64, qint64>> itemExtent(const QByteArray &iloc, quint32 item)
{
    qint64 pos = 0;
    const std::optional<quint64> version = number(iloc, &pos, 1);
    pos += 3;
    const std::optional<quint64> sizes = number(iloc, &pos, 2);
    if (!version || !sizes || *version > 2)
        return std::nullopt;
    const int offsetSize = int(*sizes >> 12) & 0xF, lengthSize = int(*sizes >> 8) & 0xF;
    const int baseSize = int(*sizes >> 4) & 0xF, indexSize = *version > 0 ? int(*sizes) & 0xF : 0;
    const std::optional<quint64> count = number(iloc, &pos, *version < 2 ? 2 : 4);
    for (quint64 i = 0; count && i < *count && i < quint64(kMaxBoxes); ++i) {
        const std::optional<quint64> id = number(iloc, &pos, *version < 2 ? 2 : 4);
        std::optional<quint64> method = quint64(0);
        if (*version > 0)
            method = number(iloc, &pos, 2);
        pos += 2; // data reference index
        const std::optional<quint64> base = number(iloc, &pos, baseSize);
        const std::optional<quint64> extents = number(iloc, &pos, 2);
        if (!id || !method || !base || !extents)
            return std::nullopt;
        std::optional<std::pair<qint64, qint64>> first;
        for (quint64 e = 0; e < *extents && e < quint64(kMaxBoxes); ++e) {
            pos += indexSize;
            const std::optional<quint64> offset = number(iloc, &pos, offsetSize);
            const std::optional<quint64> length = number(iloc, &pos, lengthSize);
            if (!offset || !length)
                return std::nullopt;
            if (e == 0)
                first = std::make_pair(qint64(*base + *offset), qint64(*length));
        }
        if (*id == item)
            return (*method & 0xF) == 0 && *extents == 1 ? first : std::nullopt;
    }
    return std::nullopt;
}

QByteArray exifFromHeif(QFile &file)
{
    const qint64 fileSize = file.size();
    const std::optional<Box> ftyp = readBox(file, 0, fileSize);
    if (!ftyp || ftyp->type != "ftyp")
        return QByteArray();
    const std::optional<Box> meta = findBox(file, ftyp->end, fileSize, "meta");
    if (!meta)
        return QByteArray();
    const qint64 children = meta->content + 4; // a full box: version and flags first
    const std::optional<Box> iinf = findBox(file, children, meta->end, "iinf");
    const std::optional<Box> iloc = findBox(file, children, meta->end, "iloc");
    if (!iinf || !iloc || iinf->end - iinf->content > kMaxExifBytes ||
        iloc->end - iloc->content > kMaxExifBytes)
        return QByteArray();
    file.seek(iinf->content);
    const std::optional<quint32> item = exifItemId(file.read(iinf->end - iinf->content));
    if (!item)
        return QByteArray();
    file.seek(iloc->content);
    const auto extent = itemExtent(file.read(iloc->end - iloc->content), *item);
    if (!extent || extent->second < 4 || extent->second > kMaxExifBytes || !file.seek(extent->first))
        return QByteArray();
    // The item begins with the offset of the TIFF header within the rest ("Exif\0\0" as a rule).
    const QByteArray data = file.read(extent->second);
    if (data.size() != extent->second)
        return QByteArray();
    const qint64 skip = qFromBigEndian<quint32>(data.constData());
    return skip <= data.size() - 4 ? data.mid(4 + skip) : QByteArray();
}

} // namespace

QDateTime fromTiff(const QByteArray &tiff)
{
    const TiffReader reader(tiff);
    if (!reader.valid())
        return QDateTime();
    const std::optional<quint32> ifd0 = reader.u32(4);
    const std::optional<qint64> pointer = ifd0 ? reader.entry(*ifd0, kExifPointerTag) : std::nullopt;
    const std::optional<quint32> exifIfd = pointer ? reader.u32(*pointer + 8) : std::nullopt;
    const std::optional<qint64> entry = exifIfd ? reader.entry(*exifIfd, kDateTimeOriginalTag) : std::nullopt;
    if (!entry || reader.u16(*entry + 2) != kAsciiType)
        return QDateTime();
    const std::optional<quint32> count = reader.u32(*entry + 4);
    if (!count || *count < 19)
        return QDateTime();
    // Up to four bytes sit in the entry itself; "YYYY:MM:DD HH:MM:SS" never does.
    const std::optional<quint32> at = reader.u32(*entry + 8);
    const QByteArray text = at ? reader.bytes(*at, 19) : QByteArray();
    QDateTime taken = QDateTime::fromString(QString::fromLatin1(text), QStringLiteral("yyyy:MM:dd HH:mm:ss"));
    return taken.isValid() ? taken : QDateTime();
}

QDateTime read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QDateTime();
    const QByteArray head = file.peek(12);
    const QByteArray tiff = head.startsWith("\xFF\xD8") ? exifFromJpeg(file)
                            : head.mid(4, 4) == "ftyp"  ? exifFromHeif(file)
                                                        : QByteArray();
    return fromTiff(tiff);
}

} // namespace DateTaken
