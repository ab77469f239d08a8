#include "RandomTrees.h"
#include "SearchModel.h"
#include "SearchText.h"

#include <tresk/CostMatrix.h>
#include <tresk/Path.h>

#include <QTest>

using tresk::CostMatrix;
using tresk::Path;
using tresk::PathExpander;
using tresktest::ModelCosts;
using tresktest::ModelFindings;
using tresktest::ModelPath;
using tresktest::ModelProblem;
using tresktest::ModelTree;
using tresktest::RandomTrees;
using tresktest::stateOf;
using tresktest::textOf;

/// Compares the search with a plain one: all results, their costs to the bit, the numbers of
/// popped paths and all debug lines.
class TestTreeDiffLiteral : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void randomTrees_data();
    void randomTrees();
    void similarTreesOfMoreNodesThanBuckets();
    void estimatesLeadTheSearch();
    void nodesInAnyOrder();
};

void TestTreeDiffLiteral::randomTrees_data()
{
    QTest::addColumn<int>("most");
    QTest::addColumn<int>("results");
    QTest::addColumn<int>("count");

    QTest::newRow("all results of up to 3 nodes") << 3 << 1000 << 400;
    QTest::newRow("the best of up to 4 nodes") << 4 << 1 << 800;
    QTest::newRow("some of up to 4 nodes") << 4 << 6 << 400;
    QTest::newRow("some of up to 6 nodes") << 6 << 4 << 100;
}

void TestTreeDiffLiteral::randomTrees()
{
    QFETCH(const int, most);
    QFETCH(const int, results);
    QFETCH(const int, count);

    RandomTrees random(quint32(most * 1000 + results));
    int compared = 0;
    for (int i = 0; i < count; ++i) {
        const ModelProblem problem = random.problem(most);
        const int n = random.number(results == 1 ? 1 : -1, results);
        const ModelFindings findings = search(problem, n, 400);
        if (!findings.isComplete)
            continue;
        ++compared;
        const QString expected = textOf(problem, findings);
        const QString actual = found(problem, n);
        QVERIFY2(actual == expected,
                 qPrintable(textOf(problem) + actual + QStringLiteral("\nexpected\n") + expected));
    }
    QVERIFY2(compared * 10 > count * 9, qPrintable(QString::number(compared)));
}

void TestTreeDiffLiteral::similarTreesOfMoreNodesThanBuckets()
{
    RandomTrees random(3);
    int compared = 0;
    const int count = 30;
    for (int i = 0; i < count; ++i) {
        const ModelProblem problem = random.similarTrees();
        const int n = random.number(1, 2);
        const ModelFindings findings = search(problem, n, 300);
        if (!findings.isComplete)
            continue;
        ++compared;
        const QString expected = textOf(problem, findings);
        const QString actual = found(problem, n);
        QVERIFY2(actual == expected,
                 qPrintable(textOf(problem) + actual + QStringLiteral("\nexpected\n") + expected));
    }
    QVERIFY2(compared * 2 > count, qPrintable(QString::number(compared)));
}

void TestTreeDiffLiteral::estimatesLeadTheSearch()
{
    // Of two equal trees of distinct steps, no path is popped but those of the result.
    ModelProblem problem;
    for (int i = 0; i < 20; ++i) {
        problem.tree1.parents.push_back(i - 1);
        problem.tree1.steps.push_back(i);
    }
    problem.tree2 = problem.tree1;
    problem.prices.assign(20, std::vector<float>(20, 100.0F));
    for (std::size_t i = 0; i < 20; ++i)
        problem.prices[i][i] = 0.0F;
    const ModelFindings findings = search(problem, 1, 1000);
    QCOMPARE(findings.popped, std::vector<int>{21});
    QCOMPARE(found(problem, 1), textOf(problem, findings));
}

void TestTreeDiffLiteral::nodesInAnyOrder()
{
    RandomTrees random(9);
    for (int i = 0; i < 200; ++i) {
        const ModelProblem problem = random.problem(6);
        const tresk::WorkflowTree tree1 = treeOf(problem.tree1);
        const tresk::WorkflowTree tree2 = treeOf(problem.tree2);
        const ModelCosts costs(problem);
        const CostMatrix matrix(tree1, tree2, &costs);
        PathExpander expander(&tree1, &tree2, &matrix);
        Path path(&expander);
        ModelPath model(problem);
        // Nodes may come twice; some are unknown, or share a place of the table with others.
        const auto anyNode = [&](const ModelTree& tree) {
            const int node = random.number(-1, int(tree.parents.size()));
            return node < 0 ? -1 : tree.firstId + node + 17 * int(random.number(0, 9) == 0);
        };
        for (int steps = random.number(0, 9); steps > 0; --steps) {
            const int a = anyNode(problem.tree1);
            const int b = random.number(0, 2) == 0 ? -3 : anyNode(problem.tree2);
            path.associate(a, b);
            model.associate(a, b);
            const QString actual = stateOf(problem, path);
            const QString expected = stateOf(problem, model);
            QVERIFY2(actual == expected,
                     qPrintable(textOf(problem) + QStringLiteral("%1 with %2\n").arg(a).arg(b)
                                + actual + QStringLiteral("\nexpected\n") + expected));
        }
    }
}

QTEST_APPLESS_MAIN(TestTreeDiffLiteral)
#include "tst_treediff_literal.moc"
