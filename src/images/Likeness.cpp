#include "images/Likeness.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <QtAlgorithms>
#include <cstdlib>

namespace {

constexpr int kNearColour = 24;      // the largest difference of a mean colour channel that is near
constexpr double kNearAspect = 1.06; // the largest ratio of two shapes that are near

QByteArray contentHash(const QString &path)
{
    // To tell copies apart, not to resist an attacker: a fast hash does.
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    QCryptographicHash hash(QCryptographicHash::Md5);
    return hash.addData(&file) ? hash.result() : QByteArray();
}

// The files' sizes and contents' hashes, each read once.
class FileFacts
{
public:
    qint64 size(const QString &path)
    {
        auto it = m_sizes.find(path);
        if (it == m_sizes.end())
            it = m_sizes.insert(path, QFileInfo(path).isFile() ? QFileInfo(path).size() : -1);
        return *it;
    }
    QByteArray hash(const QString &path)
    {
        auto it = m_hashes.find(path);
        if (it == m_hashes.end())
            it = m_hashes.insert(path, contentHash(path));
        return *it;
    }

private:
    QHash<QString, qint64> m_sizes;
    QHash<QString, QByteArray> m_hashes;
};

} // namespace

Likeness Likeness::of(const QImage &image)
{
    Likeness likeness;
    if (image.isNull())
        return likeness;
    const QImage cells = image.convertToFormat(QImage::Format_RGB32)
                             .scaled(9, 8, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    int red = 0;
    int green = 0;
    int blue = 0;
    for (int y = 0; y < 8; ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(cells.constScanLine(y));
        for (int x = 0; x < 9; ++x) {
            red += qRed(line[x]);
            green += qGreen(line[x]);
            blue += qBlue(line[x]);
        }
        for (int x = 0; x < 8; ++x) {
            if (qGray(line[x]) > qGray(line[x + 1]))
                likeness.bits |= quint64(1) << (y * 8 + x);
        }
    }
    likeness.mean = qRgb(red / 72, green / 72, blue / 72);
    likeness.aspect = double(image.width()) / image.height();
    likeness.valid = true;
    return likeness;
}

int Likeness::distance(const Likeness &other) const { return int(qPopulationCount(bits ^ other.bits)); }

bool Likeness::isNear(const Likeness &other) const
{
    const double shapes = aspect > other.aspect ? aspect / other.aspect : other.aspect / aspect;
    return valid && other.valid && shapes <= kNearAspect && distance(other) <= kNearBits &&
           std::abs(qRed(mean) - qRed(other.mean)) <= kNearColour &&
           std::abs(qGreen(mean) - qGreen(other.mean)) <= kNearColour &&
           std::abs(qBlue(mean) - qBlue(other.mean)) <= kNearColour;
}

namespace Duplicates {

bool sameBytes(const QString &a, const QString &b)
{
    const QFileInfo x(a);
    const QFileInfo y(b);
    if (!x.isFile() || !y.isFile() || x.size() != y.size())
        return false;
    const QByteArray hash = contentHash(a);
    return !hash.isEmpty() && hash == contentHash(b);
}

QList<Pair> find(const QList<Picture> &listed, const QList<Picture> &added, const std::atomic<bool> *stop)
{
    QList<Pair> pairs;
    QList<Picture> earlier = listed;
    FileFacts files;
    const auto sameFile = [&files](const QString &a, const QString &b) {
        const qint64 size = files.size(a);
        if (size < 0 || size != files.size(b))
            return false;
        const QByteArray hash = files.hash(a);
        return !hash.isEmpty() && hash == files.hash(b);
    };
    for (int i = 0; i < added.size() && !(stop && *stop); ++i) {
        const Picture &picture = added.at(i);
        Pair found;
        for (const Picture &before : std::as_const(earlier)) {
            if (before.path == picture.path || !picture.likeness.isNear(before.likeness))
                continue;
            // Exact copies decode alike: only those are read to compare their bytes.
            if (picture.likeness.bits == before.likeness.bits && sameFile(picture.path, before.path)) {
                found = Pair{i, before.path, true};
                break;
            }
            if (found.added < 0)
                found = Pair{i, before.path, false};
        }
        if (found.added >= 0)
            pairs << found;
        earlier << picture;
    }
    return pairs;
}

} // namespace Duplicates
