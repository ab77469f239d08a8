#include "MessageCapture.h"
#include "SearchModel.h"
#include "SearchText.h"

#include <tresk/CostMatrix.h>
#include <tresk/Dijkstra.h>
#include <tresk/Path.h>

#include <QTest>

#include <algorithm>

using tresk::CostMatrix;
using tresk::Dijkstra;
using tresk::FirstTree;
using tresk::Path;
using tresk::PathExpander;
using tresk::WorkflowTree;
using tresktest::MessageCapture;
using tresktest::ModelCosts;
using tresktest::ModelPath;
using tresktest::ModelProblem;
using tresktest::ModelTree;

/// Compares the best result of all pairs of small trees with all pairings that there are.
class TestTreeDiffSmallTrees : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theBestResultIsTheCheapestPairing_data();
    void theBestResultIsTheCheapestPairing();
    void theTreesAreAllThereAre();
};

namespace {

/// All trees of up to @p most nodes, parents before children, with the steps 0, ..., @p steps - 1.
std::vector<ModelTree> allTrees(int most, int steps)
{
    std::vector<ModelTree> trees(1);
    for (std::size_t i = 0; i < trees.size(); ++i) {
        const ModelTree smaller = trees[i];
        const int next = int(smaller.parents.size());
        if (next == most)
            continue;
        for (int parent = -1; parent < next; ++parent) {
            for (int step = 0; step < steps; ++step) {
                trees.push_back(smaller);
                trees.back().parents.push_back(parent);
                trees.back().steps.push_back(step);
            }
        }
    }
    return trees;
}

/// The lowest costs of all pairings that @p path can become.
float lowestCosts(const ModelPath& path)
{
    if (path.reachedGoal())
        return path.getCosts();
    const int a = path.open1.front();
    ModelPath unmatched(path);
    unmatched.associate(a, -3);
    float lowest = lowestCosts(unmatched);
    for (const int b : path.open2) {
        ModelPath pair(path);
        pair.associate(a, b);
        lowest = std::min(lowest, lowestCosts(pair));
    }
    return lowest;
}

/// The costs of the pairing of @p path, anew.
float costsAnew(const ModelProblem& problem, const Path& path)
{
    ModelPath model(problem);
    for (const int a : problem.tree1.ids())
        model.associate(a, path.association(a, FirstTree));
    return model.getCosts();
}

} // namespace

void TestTreeDiffSmallTrees::theBestResultIsTheCheapestPairing_data()
{
    QTest::addColumn<int>("most");
    QTest::addColumn<int>("steps");
    QTest::addColumn<float>("price");

    // Beside two unmatched nodes, at 30, an unlike pair is cheaper unless its parent is wrong;
    // always cheaper; as cheap; dearer.
    QTest::newRow("steps with other descriptions") << 3 << 2 << 20.0F;
    QTest::newRow("steps at a price between") << 3 << 2 << 5.0F;
    QTest::newRow("steps with other tools") << 2 << 2 << 30.0F;
    QTest::newRow("steps with other titles") << 2 << 2 << 50.0F;
    QTest::newRow("three steps") << 2 << 3 << 20.0F;
}

void TestTreeDiffSmallTrees::theBestResultIsTheCheapestPairing()
{
    QFETCH(const int, most);
    QFETCH(const int, steps);
    QFETCH(const float, price);

    const std::vector<ModelTree> trees = allTrees(most, steps);
    ModelProblem problem;
    problem.prices.assign(std::size_t(steps), std::vector<float>(std::size_t(steps), price));
    for (std::size_t i = 0; i < std::size_t(steps); ++i)
        problem.prices[i][i] = 0.0F;
    const ModelCosts costs(problem);

    const MessageCapture capture;
    for (const ModelTree& first : trees) {
        // All steps are equally far from each other, so it may be any.
        if (!first.steps.empty() && first.steps.front() != 0)
            continue;
        problem.tree1 = first;
        const WorkflowTree tree1 = treeOf(first);
        for (const ModelTree& second : trees) {
            problem.tree2 = second;
            const WorkflowTree tree2 = treeOf(second);
            const CostMatrix matrix(tree1, tree2, &costs);
            PathExpander expander(&tree1, &tree2, &matrix);
            const auto paths = Dijkstra<Path>().findPaths(QSharedPointer<Path>::create(&expander),
                                                          1);
            QCOMPARE(paths.size(), 1);
            const float lowest = lowestCosts(ModelPath(problem));
            const float best = paths.first()->getCosts();
            QVERIFY2(!(best < lowest) && !(best > lowest), qPrintable(textOf(problem)));
            const float anew = costsAnew(problem, *paths.first());
            QVERIFY2(!(best < anew) && !(best > anew), qPrintable(textOf(problem)));
        }
    }
}

void TestTreeDiffSmallTrees::theTreesAreAllThereAre()
{
    // One without nodes, one way to hang a node, two to hang two, six to hang three.
    QCOMPARE(int(allTrees(3, 1).size()), 1 + 1 + 2 + 6);
    QCOMPARE(int(allTrees(3, 2).size()), 1 + 1 * 2 + 2 * 4 + 6 * 8);
    QCOMPARE(int(allTrees(2, 3).size()), 1 + 1 * 3 + 2 * 9);
}

QTEST_APPLESS_MAIN(TestTreeDiffSmallTrees)
#include "tst_treediff_smalltrees.moc"
