// Finding the same photo twice: exact copies by their bytes, near ones (re-encoded, resized) by
// what they look like in the decode an adding makes; other photos are not taken for them.
#include "images/DecodeQueue.h"
#include "images/Likeness.h"

#include "TestFiles.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestLikeness : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void reEncodedAndResizedCopiesAreNear();
    void otherPhotosAreNot();
    void exactCopiesAreToldByTheirBytes();
    void solidPicturesOfOtherColoursAreNotNear();

private:
    QString saved(const QString &name, const QImage &image, int quality = 90);
    static Likeness likenessOf(const QString &path);

    QTemporaryDir m_dir;
    QImage m_photo;
};

void TestLikeness::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_photo = TestFiles::photoLikeImage(1200, 900, 1);
}

QString TestLikeness::saved(const QString &name, const QImage &image, int quality)
{
    const QString path = m_dir.filePath(name);
    if (!image.save(path, nullptr, quality))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

Likeness TestLikeness::likenessOf(const QString &path)
{
    // As an adding has it: from its one decode.
    return DecodeQueue::decode({path, DecodeQueue::Work::Decode}).likeness;
}

void TestLikeness::reEncodedAndResizedCopiesAreNear()
{
    const Likeness original = likenessOf(saved("original.jpg", m_photo, 95));
    QVERIFY(original.valid);
    const Likeness low = likenessOf(saved("low.jpg", m_photo, 40));
    const Likeness small = likenessOf(
        saved("small.png", m_photo.scaled(600, 450, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    QVERIFY2(original.isNear(low), qPrintable(QString::number(original.distance(low))));
    QVERIFY2(original.isNear(small), qPrintable(QString::number(original.distance(small))));
}

void TestLikeness::otherPhotosAreNot()
{
    const Likeness original = likenessOf(saved("original.jpg", m_photo, 95));
    for (quint32 seed = 2; seed < 12; ++seed) {
        const Likeness other = likenessOf(
            saved(QStringLiteral("other_%1.jpg").arg(seed), TestFiles::photoLikeImage(1200, 900, seed)));
        QVERIFY2(
            !original.isNear(other),
            qPrintable(QStringLiteral("seed %1: %2 bits apart").arg(seed).arg(original.distance(other))));
    }
}

void TestLikeness::exactCopiesAreToldByTheirBytes()
{
    const QString original = saved("original.jpg", m_photo, 95);
    const QString copy = m_dir.filePath("copy of original.jpg");
    QFile::remove(copy);
    QVERIFY(QFile::copy(original, copy));
    const QString low = saved("low.jpg", m_photo, 40);
    const QString other = saved("other.jpg", TestFiles::photoLikeImage(1200, 900, 5));
    QVERIFY(Duplicates::sameBytes(original, copy));
    QVERIFY(!Duplicates::sameBytes(original, low));

    const QList<Duplicates::Picture> listed = {{original, likenessOf(original)}};
    const QList<Duplicates::Picture> added = {
        {other, likenessOf(other)}, {copy, likenessOf(copy)}, {low, likenessOf(low)}};
    const QList<Duplicates::Pair> pairs = Duplicates::find(listed, added);
    QCOMPARE(pairs.size(), 2);
    QCOMPARE(pairs[0].added, 1);
    QCOMPARE(pairs[0].original, original);
    QVERIFY(pairs[0].exact);
    QCOMPARE(pairs[1].added, 2);
    QVERIFY(!pairs[1].exact);
}

void TestLikeness::solidPicturesOfOtherColoursAreNotNear()
{
    const Likeness red = Likeness::of(TestFiles::solidImage(40, 30, Qt::red));
    const Likeness blue = Likeness::of(TestFiles::solidImage(40, 30, Qt::blue));
    QCOMPARE(red.distance(blue), 0); // alike in shape: nothing but flat
    QVERIFY(!red.isNear(blue));
    QVERIFY(red.isNear(Likeness::of(TestFiles::solidImage(400, 300, Qt::red))));
}

QTEST_GUILESS_MAIN(TestLikeness)
#include "tst_Likeness.moc"
