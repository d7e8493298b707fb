// The orders the table's rows can be put in: moves, steps and sorts.
#include "app/Arrangement.h"

#include <QRandomGenerator>
#include <QTest>

class TestArrangement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void movedRowsKeepTheirOrderAtTheirDestination();
    void steppedRowsStopAtTheEdge();
    void naturalOrderReadsNumbersAsNumbers();
    void sortsAreStable();
    void shuffleIsAPermutation();
};

void TestArrangement::movedRowsKeepTheirOrderAtTheirDestination()
{
    using Arrangement::moved;
    QCOMPARE(moved(5, {3, 1}, 0), (QList<int>{1, 3, 0, 2, 4}));
    QCOMPARE(moved(5, {0}, 5), (QList<int>{1, 2, 3, 4, 0}));
    QCOMPARE(moved(5, {1, 2}, 2), (QList<int>{0, 1, 2, 3, 4})); // dropped on itself
    QCOMPARE(moved(5, {1, 2}, 4), (QList<int>{0, 3, 1, 2, 4}));
    QCOMPARE(moved(3, {7, -1}, 1), (QList<int>{0, 1, 2})); // rows that are not there
}

void TestArrangement::steppedRowsStopAtTheEdge()
{
    using Arrangement::stepped;
    QCOMPARE(stepped(4, {0, 2}, -1), (QList<int>{0, 2, 1, 3}));
    QCOMPARE(stepped(4, {0, 1}, -1), (QList<int>{0, 1, 2, 3}));
    QCOMPARE(stepped(4, {1, 3}, 1), (QList<int>{0, 2, 1, 3}));
    QCOMPARE(stepped(4, {2}, 1), (QList<int>{0, 1, 3, 2}));
}

void TestArrangement::naturalOrderReadsNumbersAsNumbers()
{
    using Arrangement::naturalCompare;
    QVERIFY(naturalCompare("IMG_2.jpg", "IMG_10.jpg") < 0);
    QVERIFY(naturalCompare("img_2.jpg", "IMG_10.jpg") < 0);
    QVERIFY(naturalCompare("IMG_0002.jpg", "IMG_3.jpg") < 0);
    QVERIFY(naturalCompare("a", "a1") < 0);
    QVERIFY(naturalCompare("photo 9 b", "photo 9 a") > 0);
    QVERIFY(naturalCompare("x", "x") == 0);
    QVERIFY(naturalCompare("99999999999999999999", "100000000000000000000") < 0); // beyond 64 bits
}

void TestArrangement::sortsAreStable()
{
    const QDateTime day(QDate(2024, 1, 1), QTime(12, 0));
    const QList<Arrangement::Key> keys = {
        {"b", day, day}, {"a", {}, day.addDays(1)}, {"c", day, day}, {"d", {}, day}};
    QCOMPARE(Arrangement::byDateTaken(keys), (QList<int>{0, 2, 3, 1}));
    QCOMPARE(Arrangement::byFileDate(keys), (QList<int>{0, 2, 3, 1}));
    QCOMPARE(Arrangement::byName(keys), (QList<int>{1, 0, 2, 3}));
    QCOMPARE(Arrangement::reversed(3), (QList<int>{2, 1, 0}));
}

void TestArrangement::shuffleIsAPermutation()
{
    QRandomGenerator random(7);
    QList<int> order = Arrangement::shuffled(50, &random);
    QVERIFY(order != Arrangement::reversed(50));
    std::sort(order.begin(), order.end());
    QList<int> expected = Arrangement::reversed(50);
    std::reverse(expected.begin(), expected.end());
    QCOMPARE(order, expected);
}

QTEST_GUILESS_MAIN(TestArrangement)
#include "tst_Arrangement.moc"
