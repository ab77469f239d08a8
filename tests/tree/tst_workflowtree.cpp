#include <tresk/WorkflowTree.h>

#include <QTest>

#include <algorithm>
#include <limits>

using tresk::Workflowstep;
using tresk::WorkflowTree;
using tresk::WorkflowTreeNode;

namespace {

Workflowstep titled(const QString& title)
{
    Workflowstep step;
    step.title = title;
    return step;
}

int add(WorkflowTree& tree, int parent, const QString& title = QString())
{
    return tree.addTreeNode(parent, titled(title), QStringLiteral("doc"), QStringLiteral("disk"));
}

QList<int> range(int first, int behind)
{
    QList<int> ids;
    for (int id = first; id < behind; ++id)
        ids.append(id);
    return ids;
}

/// Ids that follow one another in a table of @p buckets, which is at least as many as the ids:
/// each has a bucket of its own.
QList<int> inBuckets(QList<int> ids, int buckets)
{
    std::sort(ids.begin(), ids.end(), [=](int a, int b) { return a % buckets < b % buckets; });
    return ids;
}

} // namespace

/// Trees whose nodes are added one by one.
class TestWorkflowTree : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void metaObject();
    void nodeOfNoTree();
    void nodeKeepsItsValues();
    void emptyTree();
    void idsCountUp();
    void valuesOfANode();
    void unknownIds_data();
    void unknownIds();
    void childrenInOrderOfAdding();
    void rootIsTheFirstAtTheTop();
    void withoutANodeAtTheTop();
    void serializedLevelByLevel();
    void serializedUnderTheRootAlone();
    void serializedWithoutRoot();
    void idsAscendInANewTree_data();
    void idsAscendInANewTree();
    void clearKeepsCounting();
    void orderAfterClear_data();
    void orderAfterClear();
    void rootAfterClear();
    void linkedIds();
    void copyIsIndependent();
    void assignment();
    void listenersAreNotCopied();
    void constructorConnectsListener();
};

void TestWorkflowTree::metaObject()
{
    QCOMPARE(WorkflowTree::staticMetaObject.className(), "tresk::WorkflowTree");
    QCOMPARE(WorkflowTree::staticMetaObject.superClass()->className(), "tresk::LogSource");
}

void TestWorkflowTree::nodeOfNoTree()
{
    const WorkflowTreeNode node;
    QCOMPARE(node.nodeId(), -2);
    QCOMPARE(node.parentId(), -2);
    QCOMPARE(node.treskfile(), QString());
    QCOMPARE(node.fileOnDisk(), QString());
}

void TestWorkflowTree::nodeKeepsItsValues()
{
    const WorkflowTreeNode node(7, -1, titled(QStringLiteral("step")), QStringLiteral("doc"),
                                QStringLiteral("disk"));
    const WorkflowTreeNode copy = node;
    QCOMPARE(copy.nodeId(), 7);
    QCOMPARE(copy.parentId(), -1);
    QCOMPARE(copy.step().title, QStringLiteral("step"));
    QCOMPARE(copy.treskfile(), QStringLiteral("doc"));
    QCOMPARE(copy.fileOnDisk(), QStringLiteral("disk"));
}

void TestWorkflowTree::emptyTree()
{
    const WorkflowTree tree;
    QCOMPARE(tree.root(), -2);
    QVERIFY(tree.nodeIds().isEmpty());
    QVERIFY(tree.nodeIdsLinked().isEmpty());
    QVERIFY(tree.serializedTree().isEmpty());
    QVERIFY(tree.children(-1).isEmpty());
}

void TestWorkflowTree::idsCountUp()
{
    WorkflowTree tree;
    for (int id = 0; id < 50; ++id)
        QCOMPARE(add(tree, id / 2 - 1), id);
}

void TestWorkflowTree::valuesOfANode()
{
    WorkflowTree tree;
    const int top = tree.addTreeNode(-1, titled(QStringLiteral("top")), QStringLiteral("a.tresk"),
                                     QStringLiteral("a.pdf"));
    const int under = tree.addTreeNode(top, titled(QStringLiteral("under")),
                                       QStringLiteral("b.tresk"), QStringLiteral("b.tmp"));
    QCOMPARE(tree.parent(top), -1);
    QCOMPARE(tree.parent(under), top);
    QVERIFY(tree.workflowStep(top));
    QCOMPARE(tree.workflowStep(top)->title, QStringLiteral("top"));
    QCOMPARE(tree.workflowStep(under)->title, QStringLiteral("under"));
    QCOMPARE(tree.treskfile(top), QStringLiteral("a.tresk"));
    QCOMPARE(tree.treskfile(under), QStringLiteral("b.tresk"));
    QCOMPARE(tree.fileOnDisk(top), QStringLiteral("a.pdf"));
    QCOMPARE(tree.fileOnDisk(under), QStringLiteral("b.tmp"));
    QVERIFY(!tree.treskParser(top)); // no document has been opened
}

void TestWorkflowTree::unknownIds_data()
{
    QTest::addColumn<int>("id");
    QTest::newRow("parent of a root") << -1;
    QTest::newRow("no node") << -2;
    QTest::newRow("from before clearing") << 0;
    QTest::newRow("next") << 3;
    QTest::newRow("largest") << std::numeric_limits<int>::max();
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
}

void TestWorkflowTree::unknownIds()
{
    QFETCH(int, id);
    WorkflowTree tree;
    add(tree, -1);
    tree.clear();
    add(tree, -1);
    add(tree, 1);
    QCOMPARE(tree.parent(id), -2);
    QVERIFY(!tree.workflowStep(id));
    QCOMPARE(tree.treskfile(id), QString());
    QCOMPARE(tree.fileOnDisk(id), QString());
    QVERIFY(!tree.treskParser(id));
    if (id != -1) // under it stand the nodes at the top
        QVERIFY(tree.children(id).isEmpty());
}

void TestWorkflowTree::childrenInOrderOfAdding()
{
    WorkflowTree tree;
    const int a = add(tree, -1);
    const int b = add(tree, -1);
    const int bFirst = add(tree, b);
    const int aFirst = add(tree, a);
    const int bSecond = add(tree, b);
    QCOMPARE(tree.children(-1), (QList<int>{a, b}));
    QCOMPARE(tree.children(a), QList<int>{aFirst});
    QCOMPARE(tree.children(b), (QList<int>{bFirst, bSecond}));
    QVERIFY(tree.children(aFirst).isEmpty());
}

void TestWorkflowTree::rootIsTheFirstAtTheTop()
{
    WorkflowTree tree;
    add(tree, 2); // its parent comes later
    add(tree, 0);
    const int top = add(tree, -1);
    add(tree, -1);
    QCOMPARE(tree.root(), top);
}

void TestWorkflowTree::withoutANodeAtTheTop()
{
    WorkflowTree tree;
    add(tree, 5);
    add(tree, -2);
    QCOMPARE(tree.root(), -2);
    QCOMPARE(tree.nodeIds(), range(0, 2));
}

void TestWorkflowTree::serializedLevelByLevel()
{
    WorkflowTree tree;
    const int root = add(tree, -1);
    const int a = add(tree, root);
    const int aa = add(tree, a);
    const int aaa = add(tree, aa);
    const int b = add(tree, root);
    const int ba = add(tree, b);
    const int ab = add(tree, a);
    QCOMPARE(tree.serializedTree(), (QList<int>{root, a, b, aa, ab, ba, aaa}));
}

void TestWorkflowTree::serializedUnderTheRootAlone()
{
    WorkflowTree tree;
    const int root = add(tree, -1);
    const int sibling = add(tree, -1);
    add(tree, sibling);
    const int under = add(tree, root);
    QCOMPARE(tree.serializedTree(), (QList<int>{root, under}));
}

void TestWorkflowTree::serializedWithoutRoot()
{
    WorkflowTree tree;
    add(tree, 1);
    add(tree, 0);
    QVERIFY(tree.serializedTree().isEmpty());
}

void TestWorkflowTree::idsAscendInANewTree_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {1, 16, 17, 18, 37, 38, 67, 68, 131, 132, 1000})
        QTest::addRow("%d", count) << count;
}

void TestWorkflowTree::idsAscendInANewTree()
{
    QFETCH(int, count);
    WorkflowTree tree;
    for (int i = 0; i < count; ++i)
        add(tree, -1);
    QCOMPARE(tree.nodeIds(), range(0, count));
}

void TestWorkflowTree::clearKeepsCounting()
{
    WorkflowTree tree;
    add(tree, -1);
    add(tree, 0);
    tree.clear();
    QCOMPARE(tree.root(), -2);
    QVERIFY(tree.nodeIds().isEmpty());
    QVERIFY(tree.children(-1).isEmpty());
    QVERIFY(tree.children(0).isEmpty());
    QCOMPARE(add(tree, -1), 2);
    QCOMPARE(add(tree, 2), 3);
    QCOMPARE(tree.nodeIds(), (QList<int>{2, 3}));
    QCOMPARE(tree.children(2), QList<int>{3});
    tree.clear();
    tree.clear();
    QCOMPARE(add(tree, -1), 4);
}

void TestWorkflowTree::orderAfterClear_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("count");
    QTest::addColumn<QList<int>>("expected");
    QTest::newRow("within the buckets") << 3 << 5 << range(3, 8);
    QTest::newRow("over the last bucket") << 15 << 5 << QList<int>{17, 18, 19, 15, 16};
    QTest::newRow("all buckets") << 10 << 17 << range(17, 27) + range(10, 17);
    QTest::newRow("after growth") << 10 << 18 << range(10, 28);
    QTest::newRow("after growth over the last bucket") << 30 << 18 << range(37, 48) + range(30, 37);
    QTest::newRow("67 buckets") << 60 << 50 << inBuckets(range(60, 110), 67);
    QTest::newRow("67 buckets, all taken") << 100 << 67 << inBuckets(range(100, 167), 67);
    QTest::newRow("131 buckets") << 100 << 68 << inBuckets(range(100, 168), 131);
    QTest::newRow("1031 buckets") << 777 << 600 << inBuckets(range(777, 1377), 1031);
}

void TestWorkflowTree::orderAfterClear()
{
    QFETCH(int, first);
    QFETCH(int, count);
    QFETCH(QList<int>, expected);
    WorkflowTree tree;
    for (int i = 0; i < first; ++i)
        add(tree, -1);
    tree.clear();
    for (int i = 0; i < count; ++i)
        add(tree, -1);
    QCOMPARE(tree.nodeIds(), expected);
}

void TestWorkflowTree::rootAfterClear()
{
    // The first in the order of all ids, not the one that was added first.
    WorkflowTree tree;
    for (int i = 0; i < 15; ++i)
        add(tree, -1);
    tree.clear();
    for (int i = 0; i < 4; ++i)
        add(tree, -1);
    QCOMPARE(tree.nodeIds(), (QList<int>{17, 18, 15, 16}));
    QCOMPARE(tree.root(), 17);
    QCOMPARE(tree.children(-1), range(15, 19));
    QCOMPARE(tree.serializedTree(), QList<int>{17});
}

void TestWorkflowTree::linkedIds()
{
    WorkflowTree tree;
    for (int i = 0; i < 20; ++i)
        add(tree, i - 1);
    tree.clear();
    for (int i = 0; i < 16; ++i)
        add(tree, -1);
    QList<int> linked;
    for (const int id : tree.nodeIdsLinked())
        linked.append(id);
    QCOMPARE(linked, range(34, 36) + range(20, 34));
    QCOMPARE(tree.nodeIds(), linked);
}

void TestWorkflowTree::copyIsIndependent()
{
    WorkflowTree tree;
    add(tree, -1, QStringLiteral("shared"));
    WorkflowTree copy(tree);
    QCOMPARE(add(tree, 0, QStringLiteral("of the tree")), 1);
    QCOMPARE(add(copy, 0, QStringLiteral("of the copy")), 1);
    QCOMPARE(tree.workflowStep(1)->title, QStringLiteral("of the tree"));
    QCOMPARE(copy.workflowStep(1)->title, QStringLiteral("of the copy"));
    tree.clear();
    QCOMPARE(copy.nodeIds(), range(0, 2));
    QCOMPARE(copy.workflowStep(0)->title, QStringLiteral("shared"));
    QCOMPARE(copy.children(0), QList<int>{1});
}

void TestWorkflowTree::assignment()
{
    WorkflowTree tree;
    add(tree, -1, QStringLiteral("kept"));
    WorkflowTree other;
    for (int i = 0; i < 5; ++i)
        add(other, -1);
    other = tree;
    QCOMPARE(other.nodeIds(), QList<int>{0});
    QCOMPARE(other.workflowStep(0)->title, QStringLiteral("kept"));
    QCOMPARE(add(other, -1), 1); // it counts on from where the assigned one was
    const WorkflowTree& same = other;
    other = same;
    QCOMPARE(other.nodeIds(), range(0, 2));
    QCOMPARE(tree.nodeIds(), QList<int>{0});
}

class TextListener : public QObject {
    Q_OBJECT

public:
    QStringList texts;

public Q_SLOTS:
    void log(const QString& text) { texts.append(text); }
};

void TestWorkflowTree::listenersAreNotCopied()
{
    TextListener listener;
    const WorkflowTree tree(&listener);
    WorkflowTree copy(tree);
    Q_EMIT copy.log(QStringLiteral("of the copy"), 1);
    QVERIFY(listener.texts.isEmpty());
}

void TestWorkflowTree::constructorConnectsListener()
{
    TextListener listener;
    WorkflowTree tree(&listener);
    Q_EMIT tree.log(QStringLiteral("text"), 1);
    QCOMPARE(listener.texts, QStringList(QStringLiteral("text")));
}

QTEST_GUILESS_MAIN(TestWorkflowTree)

#include "tst_workflowtree.moc"
