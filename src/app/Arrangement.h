#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

class QRandomGenerator;

// New orders for the table's rows: moving some of them, and the Arrange menu's sorts. Each
// gives the order as old row numbers (new row i shows old row order[i]), and every sort is
// stable: rows with equal keys keep their order.
namespace Arrangement {

// What the sorts look at for one row.
struct Key {
    QString name;       // the file name
    QDateTime taken;    // when the picture was taken (invalid: unknown)
    QDateTime fileDate; // when the file was last written
};

// rows (any order, no repeats) taken out and put back together, in table order, before row
// destination of the table as it is now (count: at the end).
QList<int> moved(int count, QList<int> rows, int destination);
// Each of rows one place up (step -1) or down (step 1), unless the edge or a row of its own
// group that cannot move stops it.
QList<int> stepped(int count, QList<int> rows, int step);
// By the date taken, earliest first; pictures without one after them, by file date.
QList<int> byDateTaken(const QList<Key> &keys);
// By file name in natural order (IMG_2 before IMG_10), letters' case aside.
QList<int> byName(const QList<Key> &keys);
QList<int> byFileDate(const QList<Key> &keys);
QList<int> reversed(int count);
QList<int> shuffled(int count, QRandomGenerator *random);

// Below zero when a comes before b in natural order, above zero after it, zero when equal.
int naturalCompare(const QString &a, const QString &b);

} // namespace Arrangement
