#include "Comparison.h"

#include <tresk/Path.h>
#include <tresk/WorkflowTree.h>

#include <QTest>

using tresk::FirstTree;
using tresk::Path;
using tresk::SecondTree;
using tresk::TreeId;
using tresk::WorkflowTree;
using tresktest::Comparison;
using tresktest::debugLines;
using tresktest::flatTree;
using tresktest::MessageCapture;
using tresktest::TitleCosts;
using tresktest::treeOf;

/// A pairing of the nodes of two trees, node by node.
class TestPath : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aNewPathPairsTheParentsOfTheRoots();
    void aNewPathOfNothing();
    void associateStepByStep();
    void aWrongParentIsPaidForAtOnceWhenBothParentsArePaired();
    void aWrongParentIsNotPaidForWhenAParentIsUndecided();
    void aFlagIsThatOfTheNextNode();
    void unmatchedNodesShareAnEntry();
    void halfOfTheLeftOverNodesIsClosed_data();
    void halfOfTheLeftOverNodesIsClosed();
    void leftOverNodesAreClosedInTheOrderOfTheTree();
    void leftOverNodesAndTheirParents();
    void invalidTrees();
    void copiesAreIndependent();
    void printsInTheOrderOfTheTable_data();
    void printsInTheOrderOfTheTable();
};

namespace {

QStringList printed(const Path& path)
{
    MessageCapture capture;
    path.printMe();
    return debugLines(capture);
}

/// The costs so far, as the path prints them.
QString costsOf(const Path& path)
{
    return printed(path).last();
}

QString costs(const char* number)
{
    return QStringLiteral("Costs: ") + QLatin1String(number);
}

/// The partners of the nodes 0, 1, ..., @p count - 1.
QList<int> partners(const Path& path, TreeId t, int count)
{
    QList<int> list;
    for (int id = 0; id < count; ++id)
        list.append(path.association(id, t));
    return list;
}

} // namespace

void TestPath::aNewPathPairsTheParentsOfTheRoots()
{
    const Comparison s(treeOf("a,b,c"), treeOf("x"));
    for (const TreeId t : {FirstTree, SecondTree}) {
        QCOMPARE(s.path.association(-1, t), -1);
        QVERIFY(!s.path.associated(-1, t));
        QCOMPARE(s.path.association(0, t), -2);
        QVERIFY(s.path.associated(0, t));
        QVERIFY(!s.path.parentChanged(0, t));
        // Their parent is none, which is paired with nothing.
        QVERIFY(s.path.parentChanged(-1, t));
    }
    QVERIFY(!s.path.reachedGoal());
    QCOMPARE(s.path.getCosts(), 34.0F);
    QCOMPARE(printed(s.path), (QStringList{QStringLiteral("-1 -> -1"), costs("0")}));
}

void TestPath::aNewPathOfNothing()
{
    const Comparison first(WorkflowTree(), treeOf("x,y"));
    QVERIFY(first.path.reachedGoal());
    QCOMPARE(first.path.getCosts(), 30.0F);
    QCOMPARE(costsOf(first.path), costs("0"));
    QCOMPARE(first.path.association(0, SecondTree), -2);
    const Comparison second(treeOf("x"), WorkflowTree());
    QVERIFY(!second.path.reachedGoal());
}

void TestPath::associateStepByStep()
{
    const TitleCosts pairCosts = TitleCosts(40.0F).set("a", "x", 3.0F).set("b", "y", 1.25F);
    Comparison s(treeOf("a(b,c)"), treeOf("x(y,z)"), pairCosts);
    s.path.associate(0, 0);
    QCOMPARE(costsOf(s.path), costs("3"));
    // b at 1.25, c at 15 at most.
    QCOMPARE(s.path.getCosts(), 19.25F);
    QCOMPARE(partners(s.path, FirstTree, 3), (QList<int>{0, -2, -2}));
    QCOMPARE(partners(s.path, SecondTree, 3), (QList<int>{0, -2, -2}));

    s.path.associate(1, 1);
    QCOMPARE(costsOf(s.path), costs("4.25"));
    QVERIFY(!s.path.reachedGoal());
    QVERIFY(!s.path.associated(1, FirstTree));
    QVERIFY(!s.path.parentChanged(1, FirstTree));

    s.path.associate(2, -3);
    QVERIFY(s.path.reachedGoal());
    // Two unmatched nodes.
    QCOMPARE(costsOf(s.path), costs("34.25"));
    QCOMPARE(s.path.getCosts(), 34.25F);
    QCOMPARE(partners(s.path, FirstTree, 3), (QList<int>{0, 1, -3}));
    QCOMPARE(partners(s.path, SecondTree, 3), (QList<int>{0, 1, -3}));
    QVERIFY(s.path.associated(2, FirstTree));
    QVERIFY(s.path.associated(2, SecondTree));
}

void TestPath::aWrongParentIsPaidForAtOnceWhenBothParentsArePaired()
{
    Comparison s(treeOf("a(b),c"), treeOf("x(y),z"));
    s.path.associate(0, 0);
    s.path.associate(1, 2);
    QCOMPARE(costsOf(s.path), costs("18"));
    QVERIFY(s.path.parentChanged(1, FirstTree));
    QVERIFY(s.path.parentChanged(2, SecondTree));
    s.path.associate(2, 1);
    QCOMPARE(costsOf(s.path), costs("32"));
    QVERIFY(s.path.parentChanged(1, SecondTree));
    QVERIFY(!s.path.parentChanged(0, SecondTree));
}

void TestPath::aWrongParentIsNotPaidForWhenAParentIsUndecided()
{
    // y2 is under z1, which is decided on after it.
    Comparison s(treeOf("a(b),c"), treeOf("x,z(y)"));
    s.path.associate(0, 0);
    s.path.associate(1, 2);
    s.path.associate(2, 1);
    QCOMPARE(costsOf(s.path), costs("12"));
    QVERIFY(s.path.parentChanged(1, FirstTree));
}

void TestPath::aFlagIsThatOfTheNextNode()
{
    // b1 is under a0, which is paired with nothing, so b's flag is set; at its place in the
    // table stands a0, which counts as changed.
    Comparison s(treeOf("a(b)"), treeOf("y"));
    s.path.associate(0, -3);
    s.path.associate(1, 0);
    QVERIFY(s.path.parentChanged(0, FirstTree));
    QVERIFY(!s.path.parentChanged(1, FirstTree));
    QCOMPARE(costsOf(s.path), costs("29"));

    // Without a flag nothing is paid, though a0 counts as changed here as well.
    Comparison flat(treeOf("a,b"), treeOf("y"));
    flat.path.associate(0, -3);
    flat.path.associate(1, 0);
    QVERIFY(flat.path.parentChanged(0, FirstTree));
    QCOMPARE(costsOf(flat.path), costs("19"));
}

void TestPath::unmatchedNodesShareAnEntry()
{
    Comparison s(treeOf("a,b,c"), treeOf("x"));
    s.path.associate(0, -3);
    QCOMPARE(s.path.association(-3, SecondTree), 0);
    s.path.associate(1, -3);
    QCOMPARE(s.path.association(-3, SecondTree), 1);
    QCOMPARE(s.path.association(-3, FirstTree), -2);
    QCOMPARE(s.path.association(0, FirstTree), -3);
    QCOMPARE(s.path.association(0, SecondTree), -2);
    QCOMPARE(costsOf(s.path), costs("30"));
}

void TestPath::halfOfTheLeftOverNodesIsClosed_data()
{
    QTest::addColumn<int>("leftOver");
    QTest::addColumn<int>("closed");

    QTest::newRow("none") << 0 << 0;
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("two") << 2 << 1;
    QTest::newRow("three") << 3 << 2;
    QTest::newRow("four") << 4 << 2;
    QTest::newRow("five") << 5 << 3;
}

void TestPath::halfOfTheLeftOverNodesIsClosed()
{
    QFETCH(const int, leftOver);
    QFETCH(const int, closed);
    Comparison s(treeOf("a"), flatTree(leftOver + 1));
    s.path.associate(0, 0);
    QList<int> expected{0};
    for (int i = 0; i < leftOver; ++i)
        expected.append(i < closed ? -3 : -2);
    QCOMPARE(partners(s.path, SecondTree, leftOver + 1), expected);
    for (int id = 1; id <= leftOver; ++id)
        QVERIFY(s.path.associated(id, SecondTree));
    // Each is paid for, and those that stay open count once more.
    QCOMPARE(costsOf(s.path), costs(QByteArray::number(4 + 15 * leftOver).constData()));
    QCOMPARE(s.path.getCosts(), 4.0F + 15.0F * float(leftOver + leftOver - closed));
}

void TestPath::leftOverNodesAreClosedInTheOrderOfTheTree()
{
    // The nodes stand as 17, 18, 19, 15, 16.
    Comparison s(treeOf("a"), treeOf("v,w,x,y,z", 15));
    s.path.associate(0, 18);
    QCOMPARE(s.path.association(17, SecondTree), -3);
    QCOMPARE(s.path.association(18, SecondTree), 0);
    QCOMPARE(s.path.association(19, SecondTree), -3);
    QCOMPARE(s.path.association(15, SecondTree), -2);
    QCOMPARE(s.path.association(16, SecondTree), -2);
}

void TestPath::leftOverNodesAndTheirParents()
{
    Comparison s(treeOf("a"), treeOf("x(y),z(w)"));
    s.path.associate(0, 2);
    QCOMPARE(partners(s.path, SecondTree, 4), (QList<int>{-3, -3, 0, -2}));
    // Nothing, as a first-tree node, reads as paired with the second tree's node 0.
    QVERIFY(s.path.parentChanged(0, SecondTree));
    QVERIFY(s.path.parentChanged(1, SecondTree));
    QVERIFY(!s.path.parentChanged(3, SecondTree));
}

void TestPath::invalidTrees()
{
    Comparison s(treeOf("a(b)"), treeOf("x,y"));
    s.path.associate(0, 0);
    s.path.associate(1, 1);
    QVERIFY(s.path.parentChanged(1, FirstTree) && s.path.parentChanged(1, SecondTree));
    for (const TreeId t : {TreeId(0), TreeId(3)}) {
        QCOMPARE(s.path.association(0, t), -2);
        QCOMPARE(s.path.association(-1, t), -2);
        QVERIFY(!s.path.associated(0, t));
        QVERIFY(!s.path.associated(9, t));
        QVERIFY(!s.path.parentChanged(1, t));
    }
}

void TestPath::copiesAreIndependent()
{
    Comparison s(treeOf("a,b"), treeOf("x,y"));
    s.path.associate(0, 1);
    Path copy(s.path);
    copy.associate(1, -3);
    QVERIFY(copy.reachedGoal());
    QCOMPARE(copy.association(0, SecondTree), -3);
    QVERIFY(!s.path.reachedGoal());
    QCOMPARE(s.path.association(0, SecondTree), -2);
    QCOMPARE(costsOf(s.path), costs("4"));

    s.path.associate(1, 0);
    QCOMPARE(copy.association(1, FirstTree), -3);
    QCOMPARE(costsOf(copy), costs("34"));
    copy = s.path;
    QCOMPARE(partners(copy, FirstTree, 2), (QList<int>{1, 0}));
    QCOMPARE(costsOf(copy), costs("8"));
}

void TestPath::printsInTheOrderOfTheTable_data()
{
    QTest::addColumn<int>("firstId");
    QTest::addColumn<int>("count");
    QTest::addColumn<QList<int>>("expected");

    const auto range = [](int from, int to) {
        QList<int> list;
        for (int id = from; id <= to; ++id)
            list.append(id);
        return list;
    };
    QTest::newRow("16 nodes") << 0 << 16 << range(-1, 15);
    QTest::newRow("17 nodes") << 0 << 17 << range(0, 5) + QList<int>{-1} + range(6, 16);
    QTest::newRow("a tree that was filled before") << 15 << 5 << QList<int>{-1, 17, 18, 19, 15, 16};
}

void TestPath::printsInTheOrderOfTheTable()
{
    QFETCH(const int, firstId);
    QFETCH(const int, count);
    QFETCH(const QList<int>, expected);
    WorkflowTree tree;
    for (int id = 0; id < firstId + count; ++id) {
        if (id == firstId)
            tree.clear();
        tree.addTreeNode(-1, {}, QString(), QString());
    }
    Comparison s(tree, treeOf("x"), TitleCosts(0.1F));
    QStringList lines;
    for (const int id : tree.nodeIds())
        s.path.associate(id, id == 16 ? 0 : -3);
    for (const int id : expected) {
        const int partner = id == 16 ? 0 : id == -1 ? -1 : -3;
        lines += QStringLiteral("%1 -> %2").arg(id).arg(partner);
    }
    const QStringList actual = printed(s.path);
    QCOMPARE(actual.mid(0, int(expected.size())), lines);
    QCOMPARE(actual.size(), expected.size() + 1);
}

QTEST_APPLESS_MAIN(TestPath)
#include "tst_path.moc"
