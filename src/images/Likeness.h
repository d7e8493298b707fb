#pragma once

#include <QImage>
#include <QList>
#include <QMetaType>

#include <QString>
#include <atomic>

// What a picture looks like, in a few bytes, for finding the same photo twice: a difference
// hash (64 bits: is each of 9 x 8 grey cells brighter than its right neighbour) and the mean
// colour, both taken from a small decode the adding makes anyway. A copy of a photo, re-encoded,
// resized or slightly edited, differs from it in a few bits and hardly in colour; another photo
// in many. Exact copies are told by their bytes (same size, same content hash).
struct Likeness {
    quint64 bits = 0;
    QRgb mean = 0;
    double aspect = 0; // width / height
    bool valid = false;

    static Likeness of(const QImage &image);
    // Near: of nearly the same shape, at most kNearBits bits and a little colour apart.
    bool isNear(const Likeness &other) const;
    int distance(const Likeness &other) const;
    static constexpr int kNearBits = 10;
};

Q_DECLARE_METATYPE(Likeness)

// The pictures of an adding that are the same photo as a picture listed before (or earlier in
// the same adding): exact copies (other path, same bytes) and near ones.
namespace Duplicates {

struct Picture {
    QString path;
    Likeness likeness;
};

struct Pair {
    int added = -1;   // index into the added pictures
    QString original; // the path of the picture it repeats
    bool exact = false;
};

// Each added picture is paired with the first earlier one it repeats, an exact copy before a
// near one. Only files that look alike and have the same size are read, each once, to compare
// their contents' hashes. Runs on any thread; stops early (with what it found) once stop is set.
QList<Pair> find(const QList<Picture> &listed, const QList<Picture> &added,
                 const std::atomic<bool> *stop = nullptr);
// Whether two files hold the same bytes (sizes first, then a hash of the contents).
bool sameBytes(const QString &a, const QString &b);

} // namespace Duplicates
