#include "app/Arrangement.h"

#include <QRandomGenerator>

#include <algorithm>
#include <numeric>
#include <random>

namespace Arrangement {

namespace {

QList<int> identity(int count)
{
    QList<int> order(qMax(0, count));
    std::iota(order.begin(), order.end(), 0);
    return order;
}

template <typename Less> QList<int> stableBy(int count, Less less)
{
    QList<int> order = identity(count);
    std::stable_sort(order.begin(), order.end(), less);
    return order;
}

// The run of digits (or of other characters) of text starting at from.
QStringView chunkAt(const QString &text, int from)
{
    const bool digits = text.at(from).isDigit();
    int end = from;
    while (end < text.size() && text.at(end).isDigit() == digits)
        ++end;
    return QStringView(text).mid(from, end - from);
}

int compareNumbers(QStringView a, QStringView b)
{
    // Leading zeros aside, the longer number is the larger; then digit by digit.
    const auto trimmed = [](QStringView digits) {
        int zeros = 0;
        while (zeros < digits.size() - 1 && digits.at(zeros) == QLatin1Char('0'))
            ++zeros;
        return digits.mid(zeros);
    };
    const QStringView x = trimmed(a);
    const QStringView y = trimmed(b);
    if (x.size() != y.size())
        return x.size() < y.size() ? -1 : 1;
    for (int i = 0; i < x.size(); ++i) {
        if (x.at(i) != y.at(i))
            return x.at(i).digitValue() < y.at(i).digitValue() ? -1 : 1;
    }
    return 0;
}

} // namespace

int naturalCompare(const QString &a, const QString &b)
{
    int i = 0;
    int j = 0;
    while (i < a.size() && j < b.size()) {
        const QStringView x = chunkAt(a, i);
        const QStringView y = chunkAt(b, j);
        const bool numbers = x.at(0).isDigit() && y.at(0).isDigit();
        const int order = numbers ? compareNumbers(x, y) : x.compare(y, Qt::CaseInsensitive);
        if (order != 0)
            return order;
        i += int(x.size());
        j += int(y.size());
    }
    if (i < a.size() || j < b.size())
        return i < a.size() ? 1 : -1;
    // Equal but for case or leading zeros: a fixed order all the same.
    return a.compare(b);
}

QList<int> moved(int count, QList<int> rows, int destination)
{
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    rows.erase(std::remove_if(rows.begin(), rows.end(), [count](int row) { return row < 0 || row >= count; }),
               rows.end());
    destination = qBound(0, destination, count);
    QList<int> rest;
    rest.reserve(count);
    int insertAt = 0;
    for (int row = 0; row < count; ++row) {
        if (row == destination)
            insertAt = int(rest.size());
        if (!std::binary_search(rows.begin(), rows.end(), row))
            rest << row;
    }
    if (destination == count)
        insertAt = int(rest.size());
    QList<int> order = rest.mid(0, insertAt);
    order << rows << rest.mid(insertAt);
    return order;
}

QList<int> stepped(int count, QList<int> rows, int step)
{
    QList<int> order = identity(count);
    QList<bool> moving(count, false);
    for (int row : std::as_const(rows)) {
        if (row >= 0 && row < count)
            moving[row] = true;
    }
    // Up: from the top, each moving row swaps with a row above it that stays. Down: mirrored.
    const bool up = step < 0;
    for (int k = 0; k < count; ++k) {
        const int row = up ? k : count - 1 - k;
        const int other = up ? row - 1 : row + 1;
        if (!moving.at(row) || other < 0 || other >= count || moving.at(other))
            continue;
        std::swap(order[row], order[other]);
        std::swap(moving[row], moving[other]);
    }
    return order;
}

QList<int> byDateTaken(const QList<Key> &keys)
{
    return stableBy(int(keys.size()), [&keys](int a, int b) {
        const Key &x = keys.at(a);
        const Key &y = keys.at(b);
        if (x.taken.isValid() != y.taken.isValid())
            return x.taken.isValid();
        if (x.taken.isValid())
            return x.taken < y.taken;
        return x.fileDate < y.fileDate;
    });
}

QList<int> byName(const QList<Key> &keys)
{
    return stableBy(int(keys.size()),
                    [&keys](int a, int b) { return naturalCompare(keys.at(a).name, keys.at(b).name) < 0; });
}

QList<int> byFileDate(const QList<Key> &keys)
{
    return stableBy(int(keys.size()),
                    [&keys](int a, int b) { return keys.at(a).fileDate < keys.at(b).fileDate; });
}

QList<int> reversed(int count)
{
    QList<int> order = identity(count);
    std::reverse(order.begin(), order.end());
    return order;
}

QList<int> shuffled(int count, QRandomGenerator *random)
{
    QList<int> order = identity(count);
    std::shuffle(order.begin(), order.end(), *random);
    return order;
}

} // namespace Arrangement
