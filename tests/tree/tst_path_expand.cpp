#include "Comparison.h"

#include <tresk/Path.h>
#include <tresk/PriorityQueue.h>

#include <QTest>

#include <limits>
#include <utility>

using tresk::FirstTree;
using tresk::Path;
using tresk::PriorityQueue;
using tresk::SecondTree;
using tresktest::Comparison;
using tresktest::TitleCosts;
using tresktest::treeOf;

/// The successors of a path, and their priorities.
class TestPathExpand : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void expandsIntoAllPartnersAndNone();
    void equalSuccessorsComeInTheOrderOfTheHeap();
    void prioritiesLoseTheirFraction_data();
    void prioritiesLoseTheirFraction();
};

void TestPathExpand::expandsIntoAllPartnersAndNone()
{
    const TitleCosts pairCosts = TitleCosts(40.0F).set("a", "x", 3.0F).set("a", "y", 11.0F);
    Comparison s(treeOf("a,b"), treeOf("x,y"), pairCosts);
    PriorityQueue<QSharedPointer<Path>> queue;
    s.path.expand(queue);
    QCOMPARE(queue.size(), 3);
    const QList<QPair<int, int>> expected{{0, 18}, {1, 26}, {-3, 45}};
    for (const auto& [partner, priority] : expected) {
        const auto [path, actual] = queue.pop();
        QCOMPARE(actual, priority);
        QCOMPARE(path->association(0, FirstTree), partner);
        QCOMPARE(path->association(1, FirstTree), -2);
        QCOMPARE(path->getCosts(), float(priority));
        QVERIFY(!path->reachedGoal());
    }
    QCOMPARE(s.path.association(0, FirstTree), -2);

    // The last node of the first tree: what is left of the second is paid for.
    s.path.associate(0, 0);
    s.path.expand(queue);
    const auto [nothing, lowest] = queue.pop();
    QCOMPARE(lowest, 33);
    QCOMPARE(nothing->association(1, FirstTree), -3);
    QCOMPARE(nothing->association(1, SecondTree), -3);
    QVERIFY(nothing->reachedGoal());
    const auto [pair, highest] = queue.pop();
    QCOMPARE(highest, 43);
    QCOMPARE(pair->association(1, FirstTree), 1);
    QVERIFY(queue.isEmpty());
}

void TestPathExpand::equalSuccessorsComeInTheOrderOfTheHeap()
{
    Comparison s(treeOf("a"), treeOf("v,w,x,y", 15), TitleCosts(30.0F));
    PriorityQueue<QSharedPointer<Path>> queue;
    s.path.expand(queue);

    // A partner leaves 3 of 4, one of which stays open: 30 + 3 * 15 + 15. No partner leaves 4, two
    // of which stay open: 15 + 4 * 15 + 2 * 15.
    PriorityQueue<int> expected;
    for (const int id : {17, 18, 15, 16})
        expected.push(id, 90);
    expected.push(-3, 105);
    QCOMPARE(queue.size(), expected.size());
    while (!expected.isEmpty()) {
        const auto [path, priority] = queue.pop();
        QCOMPARE(std::make_pair(path->association(0, FirstTree), priority), expected.pop());
    }
}

void TestPathExpand::prioritiesLoseTheirFraction_data()
{
    QTest::addColumn<float>("cost");
    QTest::addColumn<int>("priority");

    QTest::newRow("0") << 0.0F << 0;
    QTest::newRow("below 1") << 0.99F << 0;
    QTest::newRow("above 1") << 1.01F << 1;
    QTest::newRow("above -1") << -0.99F << 0;
    QTest::newRow("below -1") << -1.99F << -1;
    QTest::newRow("-2") << -2.0F << -2;
    const int lowest = std::numeric_limits<int>::min();
    QTest::newRow("the lowest int") << -2147483648.0F << lowest;
    QTest::newRow("more than an int") << 2147483648.0F << lowest;
    QTest::newRow("less than an int") << -3e9F << lowest;
}

void TestPathExpand::prioritiesLoseTheirFraction()
{
    QFETCH(const float, cost);
    QFETCH(const int, priority);
    Comparison s(treeOf("a"), treeOf("x"), TitleCosts(cost));
    PriorityQueue<QSharedPointer<Path>> queue;
    s.path.expand(queue);
    const auto [path, actual] = queue.pop();
    QCOMPARE(actual, priority);
    QVERIFY(path->getCosts() == cost);
}

QTEST_APPLESS_MAIN(TestPathExpand)
#include "tst_path_expand.moc"
