#include "Comparison.h"

#include <tresk/Path.h>
#include <tresk/WorkflowTree.h>

#include <QTest>

using tresk::LinkedNodeIds;
using tresk::TreeId;
using tresktest::Comparison;
using tresktest::flatTree;
using tresktest::TitleCosts;
using tresktest::treeOf;

using Pairs = QHash<int, int>;
using Flags = QHash<int, bool>;

Q_DECLARE_METATYPE(Pairs)
Q_DECLARE_METATYPE(Flags)

/// What pairings of the nodes of two trees cost, rule by rule.
class TestPathExpander : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nodesInTheOrderOfTheTrees();
    void unmatchedNodes();
    void associations_data();
    void associations();
    void parentsAreSettledLater_data();
    void parentsAreSettledLater();
    void parentsChange_data();
    void parentsChange();
    void estimates_data();
    void estimates();
    void estimatesTakeTheFirstTreeFirst();
    void estimatesAddUpInOrder();
    void missingParents_data();
    void missingParents();
    void missingParentsOfManyNodes();
};

namespace {

LinkedNodeIds ids(const QList<int>& list)
{
    LinkedNodeIds linked;
    for (const int id : list)
        linked.append(id);
    return linked;
}

} // namespace

void TestPathExpander::nodesInTheOrderOfTheTrees()
{
    const Comparison s(treeOf("a(b,c)"), treeOf("a,b,c(d)", 15));
    QVERIFY(s.expander.nodeIds(tresk::FirstTree) == ids({0, 1, 2}));
    QVERIFY(s.expander.nodeIds(tresk::SecondTree) == ids({17, 18, 15, 16}));
    QVERIFY(s.expander.nodeIds(TreeId(3)).isEmpty());
    QVERIFY(s.expander.nodeIds(TreeId(0)).isEmpty());
}

void TestPathExpander::unmatchedNodes()
{
    const Comparison s(treeOf("a"), treeOf("a"));
    QCOMPARE(s.expander.costForUnmatchedNodes(0), 0.0F);
    QCOMPARE(s.expander.costForUnmatchedNodes(1), 15.0F);
    QCOMPARE(s.expander.costForUnmatchedNodes(3), 45.0F);
}

void TestPathExpander::associations_data()
{
    QTest::addColumn<int>("a");
    QTest::addColumn<int>("b");
    QTest::addColumn<Pairs>("assoc1");
    QTest::addColumn<Pairs>("assoc2");
    QTest::addColumn<float>("expected");

    // Both trees are p0(q1), r2.
    const Pairs none;
    const Pairs roots{{-1, -1}};
    QTest::newRow("roots") << 0 << 0 << roots << roots << 4.0F;
    QTest::newRow("other roots") << 2 << 0 << roots << roots << 4.0F;
    QTest::newRow("no entries at all") << 0 << 0 << none << none << 4.0F;
    QTest::newRow("children of a pair") << 1 << 1 << Pairs{{0, 0}} << Pairs{{0, 0}} << 4.0F;
    QTest::newRow("both parents paired otherwise")
        << 1 << 1 << Pairs{{0, 2}} << Pairs{{0, 2}} << 14.0F;
    QTest::newRow("the first table decides on the pair")
        << 1 << 1 << Pairs{{0, 2}} << Pairs{{0, 0}} << 14.0F;
    QTest::newRow("the second table only says whether there is one")
        << 1 << 1 << Pairs{{0, 0}} << Pairs{{0, 2}} << 4.0F;
    QTest::newRow("first parent undecided") << 1 << 1 << roots << Pairs{{0, 2}} << 4.0F;
    QTest::newRow("second parent undecided") << 1 << 1 << Pairs{{0, 2}} << roots << 4.0F;
    QTest::newRow("first parent unmatched") << 1 << 1 << Pairs{{0, -3}} << Pairs{{0, 2}} << 4.0F;
    QTest::newRow("second parent unmatched") << 1 << 1 << Pairs{{0, 2}} << Pairs{{0, -3}} << 4.0F;
    QTest::newRow("child with root, parents paired otherwise")
        << 1 << 2 << Pairs{{-1, -1}, {0, 0}} << Pairs{{-1, -1}, {0, 0}} << 14.0F;
    QTest::newRow("root with child, parents paired otherwise")
        << 2 << 1 << Pairs{{-1, -1}, {0, 0}} << Pairs{{-1, -1}, {0, 0}} << 14.0F;
    QTest::newRow("child with root, parent undecided") << 1 << 2 << roots << roots << 4.0F;
    QTest::newRow("paired with nothing")
        << 1 << -3 << Pairs{{-1, -1}, {0, 2}} << Pairs{{-1, -1}, {0, 2}, {-2, 5}} << 15.0F;
    QTest::newRow("nothing") << -3 << 1 << Pairs{{-2, 5}} << Pairs{{0, 2}} << 15.0F;
    QTest::newRow("unknown first node, without an entry for its parent")
        << 9 << 0 << roots << roots << 15.0F;
    QTest::newRow("unknown first node, whose parent is none")
        << 9 << 0 << Pairs{{-2, -1}} << Pairs{{-1, -2}} << 25.0F;
    QTest::newRow("unknown second node, whose parent is none")
        << 0 << 9 << Pairs{{-1, -2}} << Pairs{{-2, -1}} << 25.0F;
    QTest::newRow("unknown nodes whose parents, none, are paired")
        << 9 << 9 << Pairs{{-2, -2}} << Pairs{{-2, -2}} << 25.0F;
}

void TestPathExpander::associations()
{
    QFETCH(const int, a);
    QFETCH(const int, b);
    QFETCH(const Pairs, assoc1);
    QFETCH(const Pairs, assoc2);
    QFETCH(const float, expected);
    const Comparison s(treeOf("p(q),r"), treeOf("p(q),r"));
    QCOMPARE(s.expander.costForAssociation(a, b, assoc1, assoc2), expected);
}

void TestPathExpander::parentsAreSettledLater_data()
{
    QTest::addColumn<int>("a");
    QTest::addColumn<int>("b");
    QTest::addColumn<Pairs>("assoc1");
    QTest::addColumn<Pairs>("assoc2");
    QTest::addColumn<bool>("expected");

    const Pairs none;
    QTest::newRow("undecided parents") << 1 << 1 << none << none << false;
    QTest::newRow("paired parents") << 1 << 1 << Pairs{{0, 0}} << Pairs{{0, 0}} << false;
    QTest::newRow("first parent unmatched") << 1 << 1 << Pairs{{0, -3}} << none << true;
    QTest::newRow("second parent unmatched") << 1 << 1 << none << Pairs{{0, -3}} << true;
    QTest::newRow("both") << 1 << 1 << Pairs{{0, -3}} << Pairs{{0, -3}} << true;
    QTest::newRow("one unmatched, one paired") << 1 << 1 << Pairs{{0, -3}} << Pairs{{0, 2}} << true;
    QTest::newRow("the nodes themselves unmatched")
        << 1 << 1 << Pairs{{1, -3}} << Pairs{{1, -3}} << false;
    QTest::newRow("roots") << 0 << 2 << Pairs{{-1, -1}} << Pairs{{-1, -1}} << false;
    QTest::newRow("paired with nothing, parent paired")
        << 1 << -3 << Pairs{{0, 0}} << Pairs{{0, -3}} << false;
    QTest::newRow("paired with nothing like its parent")
        << 1 << -3 << Pairs{{0, -3}} << Pairs{{-3, 0}} << true;
    QTest::newRow("the parent of nothing is none") << 1 << -3 << none << Pairs{{-2, -3}} << true;
}

void TestPathExpander::parentsAreSettledLater()
{
    QFETCH(const int, a);
    QFETCH(const int, b);
    QFETCH(const Pairs, assoc1);
    QFETCH(const Pairs, assoc2);
    QFETCH(const bool, expected);
    const Comparison s(treeOf("p(q),r"), treeOf("p(q),r"));
    QCOMPARE(s.expander.calcParentCostsLater(a, b, assoc1, assoc2), expected);
}

void TestPathExpander::parentsChange_data()
{
    QTest::addColumn<int>("a");
    QTest::addColumn<Pairs>("assoc1");
    QTest::addColumn<Pairs>("assoc2");
    QTest::addColumn<bool>("expected");

    // Both trees are p0(q1(r2)), s3.
    const Pairs none;
    const Pairs roots{{-1, -1}};
    const Pairs same{{-1, -1}, {0, 0}, {1, 1}, {2, 2}, {3, 3}};
    for (int a = 0; a < 4; ++a)
        QTest::addRow("%d is under the same parent", a) << a << same << same << false;
    QTest::newRow("under another parent")
        << 1 << Pairs{{-1, -1}, {0, 3}, {1, 1}} << Pairs{{0, 2}, {1, 1}} << true;
    QTest::newRow("only the first table is asked for the pair")
        << 1 << Pairs{{0, 0}, {1, 1}} << Pairs{{0, 3}} << false;
    QTest::newRow("a child with a root")
        << 1 << Pairs{{-1, -1}, {0, 0}, {1, 3}} << Pairs{{-1, -1}, {0, 0}, {3, 1}} << true;
    QTest::newRow("unmatched parents are skipped")
        << 2 << Pairs{{0, 0}, {1, -3}, {2, 2}} << Pairs{{0, 0}, {1, -3}, {2, 2}} << false;
    QTest::newRow("an unmatched first parent is skipped")
        << 2 << Pairs{{0, 0}, {1, -3}, {2, 1}} << Pairs{{0, 0}, {1, 2}} << false;
    QTest::newRow("an unmatched second parent is skipped")
        << 1 << Pairs{{0, 0}, {1, 2}} << Pairs{{0, 0}, {1, -3}, {2, 1}} << false;
    QTest::newRow("the only entry of a table is skipped")
        << 0 << Pairs{{-1, -1}, {0, 1}} << Pairs{{0, -3}} << false;
    QTest::newRow("unmatched ancestors are skipped up to the parent of the roots")
        << 2 << Pairs{{-1, -1}, {0, -3}, {1, -3}, {2, 3}} << roots << false;
    QTest::newRow("an unmatched parent and another ancestor")
        << 2 << Pairs{{0, 3}, {1, -3}, {2, 2}} << Pairs{{0, -3}, {1, -3}, {2, 2}} << true;
    QTest::newRow("an undecided second parent is not skipped")
        << 2 << Pairs{{0, 0}, {1, -3}, {2, 2}} << Pairs{{0, 0}} << true;
    QTest::newRow("an undecided first parent reads as paired with node 0")
        << 2 << Pairs{{2, 1}} << none << false;
    QTest::newRow("an undecided first parent and a parent that is not node 0")
        << 2 << Pairs{{2, 2}} << none << true;
    QTest::newRow("an undecided node reads as paired with node 0") << 3 << roots << roots << false;
    QTest::newRow("an undecided node whose parent is paired with another than that of node 0")
        << 1 << Pairs{{0, 0}} << none << true;
    QTest::newRow("paired with nothing") << 0 << Pairs{{-1, -1}, {0, -3}} << roots << true;
    QTest::newRow("no partner") << 0 << Pairs{{-1, -1}, {0, -2}} << roots << false;
    QTest::newRow("none") << -2 << Pairs{{-2, 1}} << none << false;
    QTest::newRow("the parent of the roots") << -1 << roots << roots << true;
    QTest::newRow("nothing reads as paired with node 0") << -3 << roots << roots << true;
    QTest::newRow("an unknown node whose parent, none, is paired with node 0's")
        << 9 << Pairs{{-2, -1}} << roots << false;
}

void TestPathExpander::parentsChange()
{
    QFETCH(const int, a);
    QFETCH(const Pairs, assoc1);
    QFETCH(const Pairs, assoc2);
    QFETCH(const bool, expected);
    const Comparison s(treeOf("p(q(r)),s"), treeOf("p(q(r)),s"));
    QCOMPARE(s.expander.parentChanged(a, assoc1, assoc2), expected);
}

void TestPathExpander::estimates_data()
{
    QTest::addColumn<QList<int>>("open1");
    QTest::addColumn<QList<int>>("open2");
    QTest::addColumn<float>("expected");

    // a0 is at 1 from x0 and at 40 from the others, b1 at 3 and 2 from x0 and y1, c2 at 40 from
    // all.
    const QList<int> none;
    QTest::newRow("nothing open") << none << none << 0.0F;
    QTest::newRow("first tree only") << QList<int>{0, 1, 2} << none << 45.0F;
    QTest::newRow("second tree only") << none << QList<int>{0, 1} << 30.0F;
    QTest::newRow("one of each") << QList<int>{0} << QList<int>{0} << 1.0F;
    QTest::newRow("no pair costs more than an unmatched node")
        << QList<int>{0} << QList<int>{1} << 15.0F;
    QTest::newRow("the first list is smaller") << QList<int>{1} << QList<int>{0, 1} << 17.0F;
    QTest::newRow("the second list is smaller") << QList<int>{0, 1} << QList<int>{0} << 16.0F;
    // By the first list: 1 + 15. By the second: 1 + 15, from a0 and none.
    QTest::newRow("partners may serve twice") << QList<int>{0, 1} << QList<int>{0, 2} << 16.0F;
    // By the first list, this would be 1 + 2.
    QTest::newRow("of two equally long lists, the second counts")
        << QList<int>{0, 1} << QList<int>{0, 0} << 2.0F;
    QTest::newRow("unknown nodes") << QList<int>{8} << QList<int>{9, 7} << 30.0F;
}

void TestPathExpander::estimates()
{
    QFETCH(const QList<int>, open1);
    QFETCH(const QList<int>, open2);
    QFETCH(const float, expected);
    const TitleCosts costs =
        TitleCosts(40.0F).set("a", "x", 1.0F).set("b", "x", 3.0F).set("b", "y", 2.0F);
    const Comparison s(treeOf("a,b,c"), treeOf("x,y,z"), costs);
    QCOMPARE(s.expander.heuristicCosts(ids(open1), ids(open2)), expected);
}

void TestPathExpander::estimatesTakeTheFirstTreeFirst()
{
    const TitleCosts costs = TitleCosts(12.0F).set("a", "b", 1.0F);
    const Comparison s(treeOf("a,b"), treeOf("a,b"), costs);
    QCOMPARE(s.expander.heuristicCosts(ids({0}), ids({1})), 1.0F);
    QCOMPARE(s.expander.heuristicCosts(ids({1}), ids({0})), 12.0F);
    QCOMPARE(s.expander.heuristicCosts(ids({0}), ids({0, 1})), 16.0F);
    QCOMPARE(s.expander.heuristicCosts(ids({0, 1}), ids({1})), 16.0F);
    QCOMPARE(s.expander.heuristicCosts(ids({0, 1}), ids({0})), 27.0F);
}

void TestPathExpander::estimatesAddUpInOrder()
{
    const float tiny = 4e-7F; // lost beside 14.9, unless there are two of them
    const TitleCosts costs =
        TitleCosts(90.0F).set("a", "x", tiny).set("b", "y", tiny).set("c", "z", 14.9F);
    const Comparison s(treeOf("a,b,c"), treeOf("x,y,z,u,v"), costs);
    const float upwards = (tiny + tiny) + 14.9F;
    const float downwards = (14.9F + tiny) + tiny;
    QVERIFY(upwards > downwards);
    QVERIFY(s.expander.heuristicCosts(ids({2, 1, 0}), ids({1, 0, 2})) == upwards);
    QVERIFY(s.expander.heuristicCosts(ids({0, 1, 2}), ids({2, 0, 1})) == downwards);
    QVERIFY(s.expander.heuristicCosts(ids({0, 1, 2}), ids({0, 1, 2, 3, 4}))
            == ((15.0F * 2 + tiny) + tiny) + 14.9F);
}

void TestPathExpander::missingParents_data()
{
    QTest::addColumn<Flags>("later");
    QTest::addColumn<float>("expected");

    // Listed are -1, 0, 1, 2, of which -1, 1 and 2 count as changed.
    QTest::newRow("no flags") << Flags() << 0.0F;
    QTest::newRow("flags that are not set") << Flags{{0, false}, {2, false}} << 0.0F;
    QTest::newRow("the first place is that of the parent of the roots")
        << Flags{{0, true}} << 10.0F;
    QTest::newRow("the second place is that of node 0") << Flags{{1, true}} << 0.0F;
    QTest::newRow("the third place is that of node 1") << Flags{{2, true}} << 10.0F;
    QTest::newRow("the fourth place is that of node 2") << Flags{{3, true}} << 10.0F;
    QTest::newRow("there is no fifth place") << Flags{{4, true}} << 0.0F;
    QTest::newRow("there is no place -1") << Flags{{-1, true}} << 0.0F;
    QTest::newRow("all nodes") << Flags{{0, true}, {1, true}, {2, true}} << 20.0F;
    QTest::newRow("all places") << Flags{{0, true}, {1, true}, {2, true}, {3, true}} << 30.0F;
}

void TestPathExpander::missingParents()
{
    QFETCH(const Flags, later);
    QFETCH(const float, expected);
    const Comparison s(treeOf("p(q(r))"), treeOf("p(q(r))"));
    const Pairs assoc1{{2, 2}, {1, -3}, {0, 0}, {-1, -1}};
    const Pairs assoc2{{0, 0}, {2, 2}, {-1, -1}, {-3, 1}};
    QVERIFY(s.expander.parentChanged(-1, assoc1, assoc2));
    QVERIFY(!s.expander.parentChanged(0, assoc1, assoc2));
    QVERIFY(s.expander.parentChanged(1, assoc1, assoc2));
    QVERIFY(s.expander.parentChanged(2, assoc1, assoc2));
    QCOMPARE(s.expander.calcMissingParentCosts(assoc1, assoc2, later), expected);
}

void TestPathExpander::missingParentsOfManyNodes()
{
    const Comparison s(flatTree(17), flatTree(17));
    Pairs same{{-1, -1}};
    for (int id = 0; id < 17; ++id)
        same.insert(id, id);
    // With as many entries, -1 stands between 5 and 6; it is the only one that counts as changed.
    for (int place = 0; place < 18; ++place) {
        QCOMPARE(s.expander.calcMissingParentCosts(same, same, {{place, true}}),
                 place == 6 ? 10.0F : 0.0F);
    }
    // The same for one entry less, where -1 still stands first.
    same.remove(16);
    QCOMPARE(s.expander.calcMissingParentCosts(same, same, {{0, true}}), 10.0F);
    QCOMPARE(s.expander.calcMissingParentCosts(same, same, {{6, true}}), 0.0F);
}

QTEST_APPLESS_MAIN(TestPathExpander)
#include "tst_pathexpander.moc"
