#include "TableOrder.h"

#include "tree/HashOrder.h"

#include <QRandomGenerator>
#include <QSet>
#include <QTest>

#include <limits>
#include <numeric>

using tresk::HashOrder;
using tresktest::tableOrder;

/// The order in which tables of nodes are gone through.
class TestHashOrder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tables_data();
    void tables();
    void orderOfInsertionCountsWithinABucket();
    void growthMovesBucketByBucket();
    void keysLeaveTheTableAsItIs();
    void growsWhenAnEntryFindsAllBucketsTaken_data();
    void growsWhenAnEntryFindsAllBucketsTaken();
    void randomKeysAreAsInAReplay_data();
    void randomKeysAreAsInAReplay();
    void treesAndAssociationsAreAsInAReplay();
};

namespace {

QList<int> orderOf(const QList<int>& inserted)
{
    HashOrder order;
    for (const int key : inserted)
        order.insert(key);
    return order.keys();
}

QList<int> replayed(const QList<int>& inserted)
{
    const std::vector<int> order = tableOrder(std::vector<int>(inserted.begin(), inserted.end()));
    QList<int> list;
    for (const int key : order)
        list.append(key);
    return list;
}

/// @p from, ..., @p to.
QList<int> range(int from, int to)
{
    QList<int> list;
    for (int key = from; key <= to; ++key)
        list.append(key);
    return list;
}

} // namespace

void TestHashOrder::tables_data()
{
    QTest::addColumn<QList<int>>("inserted");
    QTest::addColumn<QList<int>>("expected");

    QTest::newRow("empty") << QList<int>() << QList<int>();
    QTest::newRow("one key") << QList<int>{5} << QList<int>{5};
    QTest::newRow("an association of five nodes") << range(-1, 4) << range(-1, 4);
    QTest::newRow("an association of 16 nodes") << range(-1, 15) << range(-1, 15);
    QTest::newRow("an association of 17 nodes")
        << range(-1, 16) << range(0, 5) + QList<int>{-1} + range(6, 16);
    QTest::newRow("17 nodes") << range(0, 16) << range(0, 16);
    QTest::newRow("18 nodes") << range(0, 17) << range(0, 17);
    QTest::newRow("nodes of a tree that was filled before")
        << range(15, 19) << QList<int>{17, 18, 19, 15, 16};
    QTest::newRow("descending") << QList<int>{4, 3, 2, 1, 0} << range(0, 4);
    // 2^32 is 1 above a multiple of 17.
    QTest::newRow("negative keys") << QList<int>{-1, -2, -3} << QList<int>{-1, -3, -2};
    QTest::newRow("-1 is no more than a key of the first bucket")
        << QList<int>{0, -1, 17} << QList<int>{0, -1, 17};
    QTest::newRow("the ends of int")
        << QList<int>{std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), 8}
        << QList<int>{std::numeric_limits<int>::max(), 8, std::numeric_limits<int>::min()};
}

void TestHashOrder::tables()
{
    QFETCH(const QList<int>, inserted);
    QFETCH(const QList<int>, expected);
    QCOMPARE(orderOf(inserted), expected);
    QCOMPARE(replayed(inserted), expected);
}

void TestHashOrder::orderOfInsertionCountsWithinABucket()
{
    QCOMPARE(orderOf({1, 18, 35, 0}), (QList<int>{0, 1, 18, 35}));
    QCOMPARE(orderOf({35, 0, 1, 18}), (QList<int>{0, 35, 1, 18}));
}

void TestHashOrder::growthMovesBucketByBucket()
{
    // 74 and 37 share the first of 37 buckets. With 17 of them, 37 is in bucket 3 and 74 in
    // bucket 6, so that 37 is moved first though it came later.
    const QList<int> others{1, 2, 4, 5, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};
    QCOMPARE(orderOf(QList<int>{74, 37} + others + QList<int>{18}).mid(0, 2), (QList<int>{37, 74}));
    // What comes after the growth is appended.
    QCOMPARE(orderOf(others + QList<int>{18, 19, 74, 37}).mid(0, 2), (QList<int>{74, 37}));
}

void TestHashOrder::keysLeaveTheTableAsItIs()
{
    HashOrder order;
    for (const int key : range(-1, 40)) {
        order.insert(key);
        QCOMPARE(order.keys(), replayed(range(-1, key)));
        QCOMPARE(order.keys(), order.keys());
    }
}

void TestHashOrder::growsWhenAnEntryFindsAllBucketsTaken_data()
{
    QTest::addColumn<int>("buckets");
    QTest::addColumn<int>("next");

    const QList<int> counts{17, 37, 67, 131, 257, 521, 1031, 2053, 4099, 8209, 16411, 32771, 65537};
    for (int i = 0; i + 1 < counts.size(); ++i)
        QTest::addRow("%d", counts.at(i)) << counts.at(i) << counts.at(i + 1);
}

void TestHashOrder::growsWhenAnEntryFindsAllBucketsTaken()
{
    QFETCH(const int, buckets);
    QFETCH(const int, next);

    // The key that is one round of the buckets above 0 stands behind 0, before 1.
    QList<int> keys = range(0, buckets - 2) + QList<int>{buckets};
    QCOMPARE(orderOf(keys).mid(0, 3), (QList<int>{0, buckets, 1}));
    // With one more key, it has a bucket to itself, and another one comes round.
    keys.append(next);
    const QList<int> grown = orderOf(keys);
    QCOMPARE(grown.mid(0, 3), (QList<int>{0, next, 1}));
    QCOMPARE(grown.last(), buckets);
}

void TestHashOrder::randomKeysAreAsInAReplay_data()
{
    QTest::addColumn<int>("sequences");
    QTest::addColumn<int>("most");
    QTest::addColumn<int>("lowest");
    QTest::addColumn<int>("highest");

    QTest::newRow("few keys") << 3000 << 20 << -10 << 60;
    QTest::newRow("more keys") << 300 << 150 << -300 << 300;
    QTest::newRow("many keys") << 5 << 5000 << -10000 << 10000;
    QTest::newRow("far apart") << 500 << 80 << std::numeric_limits<int>::min()
                               << std::numeric_limits<int>::max() - 1;
}

void TestHashOrder::randomKeysAreAsInAReplay()
{
    QFETCH(const int, sequences);
    QFETCH(const int, most);
    QFETCH(const int, lowest);
    QFETCH(const int, highest);

    QRandomGenerator random(11);
    for (int i = 0; i < sequences; ++i) {
        QList<int> inserted;
        QSet<int> known;
        for (int left = random.bounded(most + 1); left > 0; --left) {
            const auto span = static_cast<quint64>(qint64(highest) - lowest + 1);
            const auto key = static_cast<int>(lowest + qint64(random.generate64() % span));
            if (!known.contains(key))
                inserted.append(key);
            known.insert(key);
        }
        QCOMPARE(orderOf(inserted), replayed(inserted));
    }
}

void TestHashOrder::treesAndAssociationsAreAsInAReplay()
{
    for (int first = 0; first < 40; ++first) {
        for (int count = 0; count < 80; ++count) {
            const QList<int> nodes = range(first, first + count - 1);
            QCOMPARE(orderOf(nodes), replayed(nodes));
            const QList<int> association = QList<int>{-1} + nodes;
            QCOMPARE(orderOf(association), replayed(association));
        }
    }
}

QTEST_APPLESS_MAIN(TestHashOrder)
#include "tst_hashorder.moc"
