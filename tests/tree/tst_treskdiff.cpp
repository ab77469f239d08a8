#include "Trees.h"

#include <tresk/TreskDiff.h>
#include <tresk/WorkflowTree.h>
#include <tresk/WorkflowstepCosts.h>

#include <QTest>

#include <memory>

using tresk::FirstTree;
using tresk::SecondTree;
using tresk::TreeId;
using tresk::TreskDiff;
using tresk::TreskDiffResult;
using tresk::WorkflowstepCosts;
using tresk::WorkflowTree;
using tresktest::flatTree;
using tresktest::MessageCapture;
using tresktest::TitleCosts;
using tresktest::treeOf;

/// The difference of two trees.
class TestTreskDiff : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_capture = std::make_unique<MessageCapture>(); }
    void cleanup() { m_capture.reset(); }

    void identicalTrees_data();
    void identicalTrees();
    void aNodeOnlyInTheFirstTree();
    void aNodeOnlyInTheSecondTree();
    void aNodeUnderAnotherParent();
    void whatIsNoNode();
    void emptyTrees();
    void aSecondTreeAloneHasNoEntries();
    void resultsAreCheapestFirst();
    void lessThanOneResultIsOne();
    void aNewPricingCountsFromTheNextSearchOn();
    void thePenaltiesAreNotThoseOfThePricing();
    void holdsCopiesOfTheTrees();
    void searchesRepeatThemselves();
    void aResultOfItsOwnTables();

private:
    std::unique_ptr<MessageCapture> m_capture;
};

namespace {

/// The partners of the first tree's nodes 0, ..., @p count - 1.
QList<int> partners(const TreskDiffResult& result, int count)
{
    QList<int> list;
    for (int id = 0; id < count; ++id)
        list.append(result.association(id, FirstTree));
    return list;
}

/// Pairs are free, and other penalties are high.
class DearPenalties : public WorkflowstepCosts {
public:
    float costs(const tresk::Workflowstep& a, const tresk::Workflowstep& b) const override
    {
        return a.title == b.title ? 0.0F : 29.0F;
    }
    float wrongParentCosts() const override { return 1e6F; }
    float unmatchedNodeCosts() const override { return 1e6F; }
};

} // namespace

void TestTreskDiff::identicalTrees_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("firstId");

    QTest::newRow("one node") << QStringLiteral("a") << 0;
    QTest::newRow("flat") << QStringLiteral("a,b,c,d,e") << 0;
    QTest::newRow("nested") << QStringLiteral("a(b,c(d,e(f))),g(h)") << 0;
    QTest::newRow("filled before") << QStringLiteral("a(b,c(d,e(f))),g(h)") << 14;
    QTest::newRow("many") << QStringLiteral("a,b,c(d,e,f),g,h,i,j(k,l,m(n,o)),p,q,r,s,t,u") << 0;
}

void TestTreskDiff::identicalTrees()
{
    QFETCH(const QString, text);
    QFETCH(const int, firstId);
    const WorkflowTree tree = treeOf(text.toUtf8().constData(), firstId);
    WorkflowstepCosts costs;
    const QList<TreskDiffResult> results = TreskDiff(tree, tree, &costs).findBestMatches(1);
    QCOMPARE(results.size(), 1);
    for (const TreeId t : {FirstTree, SecondTree}) {
        for (const int id : tree.nodeIds()) {
            QCOMPARE(results.first().association(id, t), id);
            QVERIFY(!results.first().associated(id, t));
            QVERIFY(!results.first().parentChanged(id, t));
        }
        QCOMPARE(results.first().association(-1, t), -1);
    }
}

void TestTreskDiff::aNodeOnlyInTheFirstTree()
{
    WorkflowstepCosts costs;
    const auto result = TreskDiff(treeOf("a,b,c"), treeOf("a,c"), &costs).findBestMatch();
    QVERIFY(result);
    QCOMPARE(partners(*result, 3), (QList<int>{0, -3, 1}));
    QVERIFY(result->associated(1, FirstTree));
    QVERIFY(!result->associated(2, FirstTree));
    QCOMPARE(result->association(1, SecondTree), 2);
    // Nothing keeps the node that was paired with it last.
    QCOMPARE(result->association(-3, SecondTree), 1);
}

void TestTreskDiff::aNodeOnlyInTheSecondTree()
{
    WorkflowstepCosts costs;
    const auto result = TreskDiff(treeOf("a,c"), treeOf("a,b,c,d"), &costs).findBestMatch();
    QVERIFY(result);
    QCOMPARE(partners(*result, 2), (QList<int>{0, 2}));
    QCOMPARE(result->association(1, SecondTree), -3);
    QVERIFY(result->associated(1, SecondTree));
    // Of two nodes that are left over, one has no entry.
    QCOMPARE(result->association(3, SecondTree), -2);
    QVERIFY(result->associated(3, SecondTree));
    QVERIFY(!result->parentChanged(3, SecondTree));
}

void TestTreskDiff::aNodeUnderAnotherParent()
{
    WorkflowstepCosts costs;
    const auto result = TreskDiff(treeOf("a(c),b"), treeOf("a,b(c)"), &costs).findBestMatch();
    QVERIFY(result);
    QCOMPARE(partners(*result, 3), (QList<int>{0, 2, 1}));
    QVERIFY(result->parentChanged(1, FirstTree));
    QVERIFY(result->parentChanged(2, SecondTree));
    for (const int id : {0, 2})
        QVERIFY(!result->parentChanged(id, FirstTree));
    for (const int id : {0, 1})
        QVERIFY(!result->parentChanged(id, SecondTree));
}

void TestTreskDiff::whatIsNoNode()
{
    WorkflowstepCosts costs;
    const auto result = TreskDiff(treeOf("a(b)"), treeOf("a,b"), &costs).findBestMatch();
    for (const TreeId t : {FirstTree, SecondTree}) {
        QCOMPARE(result->association(7, t), -2);
        QVERIFY(result->associated(7, t));
        QVERIFY(!result->parentChanged(7, t));
        // The parent of the roots' parent is none.
        QVERIFY(result->parentChanged(-1, t));
    }
    QVERIFY(result->parentChanged(1, FirstTree));
    for (const TreeId t : {TreeId(0), TreeId(3)}) {
        QCOMPARE(result->association(0, t), -2);
        QVERIFY(!result->associated(0, t));
        QVERIFY(!result->associated(7, t));
        QVERIFY(!result->parentChanged(1, t));
    }
}

void TestTreskDiff::emptyTrees()
{
    WorkflowstepCosts costs;
    const TreskDiff diff(treeOf(""), treeOf(""), &costs);
    QCOMPARE(diff.findBestMatches(3).size(), 1);
    const auto result = diff.findBestMatch();
    QVERIFY(result);
    QCOMPARE(result->association(-1, FirstTree), -1);
    QCOMPARE(result->association(0, FirstTree), -2);
}

void TestTreskDiff::aSecondTreeAloneHasNoEntries()
{
    // The pairing was complete before anything could be left over.
    WorkflowstepCosts costs;
    const auto result = TreskDiff(treeOf(""), treeOf("a,b"), &costs).findBestMatch();
    QVERIFY(result);
    for (const int id : {0, 1}) {
        QCOMPARE(result->association(id, SecondTree), -2);
        QVERIFY(result->associated(id, SecondTree));
    }
    const auto other = TreskDiff(treeOf("a,b"), treeOf(""), &costs).findBestMatch();
    QCOMPARE(partners(*other, 2), (QList<int>{-3, -3}));
}

void TestTreskDiff::resultsAreCheapestFirst()
{
    TitleCosts costs =
        TitleCosts(28.0F).set("a", "x", 2.0F).set("a", "y", 1.0F).set("a", "z", 3.0F);
    const TreskDiff diff(treeOf("a"), treeOf("x,y,z"), &costs);
    const QList<int> partnersInOrder{1, 0, 2};
    for (int n = 1; n <= 3; ++n) {
        const QList<TreskDiffResult> results = diff.findBestMatches(n);
        QCOMPARE(results.size(), n);
        for (int i = 0; i < n; ++i)
            QCOMPARE(results.at(i).association(0, FirstTree), partnersInOrder.at(i));
    }
    const QList<TreskDiffResult> all = diff.findBestMatches(100);
    QCOMPARE(all.size(), 4);
    QCOMPARE(all.last().association(0, FirstTree), -3);
    QCOMPARE(diff.findBestMatch()->association(0, FirstTree), 1);
}

void TestTreskDiff::lessThanOneResultIsOne()
{
    WorkflowstepCosts costs;
    const TreskDiff diff(flatTree(3), flatTree(3), &costs);
    QCOMPARE(diff.findBestMatches(0).size(), 1);
    QCOMPARE(diff.findBestMatches(-1).size(), 1);
    QCOMPARE(partners(diff.findBestMatches(0).first(), 3), (QList<int>{0, 1, 2}));
}

void TestTreskDiff::aNewPricingCountsFromTheNextSearchOn()
{
    WorkflowstepCosts costs;
    TreskDiff diff(treeOf("a,b"), treeOf("a,b"), &costs);
    QCOMPARE(diff.costs(), &costs);
    const auto before = diff.findBestMatch();

    TitleCosts others = TitleCosts(10.0F).set("a", "b", 0.0F).set("b", "a", 0.0F);
    diff.setCosts(&others);
    QCOMPARE(diff.costs(), static_cast<WorkflowstepCosts*>(&others));
    QCOMPARE(partners(*diff.findBestMatch(), 2), (QList<int>{1, 0}));
    QCOMPARE(partners(*before, 2), (QList<int>{0, 1}));

    // The pricing is asked anew for every search.
    others.set("a", "a", -50.0F);
    QCOMPARE(partners(*diff.findBestMatch(), 2), (QList<int>{0, 1}));
    diff.setCosts(&costs);
    QCOMPARE(partners(*diff.findBestMatch(), 2), (QList<int>{0, 1}));
}

void TestTreskDiff::thePenaltiesAreNotThoseOfThePricing()
{
    DearPenalties costs;
    // A pair of unlike steps costs 29, two unmatched nodes 30.
    const TreskDiff unlike(treeOf("a"), treeOf("b"), &costs);
    QCOMPARE(unlike.findBestMatch()->association(0, FirstTree), 0);
    // With a wrong parent, it costs 39.
    const TreskDiff moved(treeOf("a(c),b"), treeOf("a,b(d)"), &costs);
    const auto result = moved.findBestMatch();
    QCOMPARE(result->association(0, FirstTree), 0);
    QCOMPARE(result->association(1, FirstTree), 2);
    const TreskDiff under(treeOf("a(c)"), treeOf("a,d"), &costs);
    QCOMPARE(partners(*under.findBestMatch(), 2), (QList<int>{0, -3}));
}

void TestTreskDiff::holdsCopiesOfTheTrees()
{
    WorkflowstepCosts costs;
    WorkflowTree tree = treeOf("a,b");
    TreskDiff diff(tree, tree, &costs);
    tree.clear();
    QCOMPARE(diff.tree1()->nodeIds(), (QList<int>{0, 1}));
    QCOMPARE(diff.tree2()->nodeIds(), (QList<int>{0, 1}));

    diff.setTree1(treeOf("b"));
    QCOMPARE(diff.findBestMatch()->association(0, FirstTree), 1);
    diff.setTree2(treeOf("x,y,b"));
    QCOMPARE(diff.findBestMatch()->association(0, FirstTree), 2);
    QCOMPARE(diff.tree1()->nodeIds().size(), 1);
    QCOMPARE(diff.tree2()->nodeIds().size(), 3);
    // What is held may be changed.
    diff.tree1()->addTreeNode(-1, tresktest::stepOf(QStringLiteral("y")), QString(), QString());
    QCOMPARE(partners(*diff.findBestMatch(), 2), (QList<int>{2, 1}));
}

void TestTreskDiff::searchesRepeatThemselves()
{
    TitleCosts costs(3.0F);
    const TreskDiff diff(flatTree(4), flatTree(4), &costs);
    const QList<TreskDiffResult> first = diff.findBestMatches(30);
    const QList<TreskDiffResult> second = diff.findBestMatches(30);
    QCOMPARE(first.size(), 30);
    for (int i = 0; i < 30; ++i)
        QCOMPARE(partners(first.at(i), 4), partners(second.at(i), 4));
}

void TestTreskDiff::aResultOfItsOwnTables()
{
    const TreskDiffResult result({{0, 5}, {1, -3}}, {{5, 0}, {6, -3}}, {{0, true}, {1, false}},
                                 {{5, false}, {6, true}});
    TreskDiffResult copy;
    QCOMPARE(copy.association(0, FirstTree), -2);
    QVERIFY(copy.associated(0, FirstTree) && !copy.parentChanged(0, FirstTree));
    copy = result;
    for (const TreskDiffResult& r : {result, copy, TreskDiffResult(copy)}) {
        QCOMPARE(r.association(0, FirstTree), 5);
        QCOMPARE(r.association(1, FirstTree), -3);
        QCOMPARE(r.association(5, FirstTree), -2);
        QCOMPARE(r.association(5, SecondTree), 0);
        QVERIFY(!r.associated(0, FirstTree) && r.associated(1, FirstTree));
        QVERIFY(!r.associated(5, SecondTree) && r.associated(6, SecondTree));
        QVERIFY(r.parentChanged(0, FirstTree) && !r.parentChanged(1, FirstTree));
        QVERIFY(!r.parentChanged(5, SecondTree) && r.parentChanged(6, SecondTree));
    }
}

QTEST_APPLESS_MAIN(TestTreskDiff)
#include "tst_treskdiff.moc"
