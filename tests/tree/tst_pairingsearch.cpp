#include "MessageCapture.h"
#include "RandomPairings.h"
#include "Watched.h"

#include <tresk/Dijkstra.h>

#include "tree/PairingSearch.h"
#include "tree/Priority.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>

using tresk::Dijkstra;
using tresk::findPairings;
using tresk::FirstTree;
using tresk::FoundPaths;
using tresk::Path;
using tresk::SecondTree;
using tresktest::ComparedTrees;
using tresktest::isWatched;
using tresktest::MessageCapture;
using tresktest::ModelProblem;
using tresktest::Prices;
using tresktest::randomProblem;
using tresktest::RandomTrees;

Q_DECLARE_METATYPE(tresktest::Prices)

/// Compares what findPairings() finds with the plain search by paths.
class TestPairingSearch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsWhatThePlainSearchFinds_data();
    void findsWhatThePlainSearchFinds();
    void similarTreesOfMoreNodesThanBuckets();
    void treesWithoutNodes_data();
    void treesWithoutNodes();
    void atLeastOneIsFound_data();
    void atLeastOneIsFound();
    void pairingsOfEqualPriorityComeInTheSameOrder();
    void pricesOfAllSizes_data();
    void pricesOfAllSizes();
    void sumsThatAreRounded_data();
    void sumsThatAreRounded();
    void noMoreResultsThanCanBeKept();
    void nothingIsSureOfTheLowestPriority();
    void treesThatAreTooLargeForAssignments_data();
    void treesThatAreTooLargeForAssignments();
};

namespace {

using Paths = QList<QSharedPointer<Path>>;
using Pairing = std::vector<int>;

Pairing pairingOf(const ComparedTrees& trees, const Path& path)
{
    Pairing partners;
    const QList<int> ids = trees.tree1.nodeIds();
    for (const int id : ids)
        partners.push_back(path.association(id, FirstTree));
    return partners;
}

std::vector<int> prioritiesOf(const Paths& paths)
{
    std::vector<int> priorities;
    for (const QSharedPointer<Path>& path : paths)
        priorities.push_back(tresk::priorityOf(path->getCosts()));
    return priorities;
}

/// The pairings of each priority; a priority that may have more than these is left out.
std::map<int, std::set<Pairing>> completeGroups(const ComparedTrees& trees, const Paths& paths,
                                                int incomplete)
{
    std::map<int, std::set<Pairing>> groups;
    for (const QSharedPointer<Path>& path : paths)
        groups[tresk::priorityOf(path->getCosts())].insert(pairingOf(trees, *path));
    groups.erase(incomplete);
    return groups;
}

/// Whether floats may have rounded the costs of one of these to the other side of a whole number.
bool mayBeRounded(const Paths& paths)
{
    return std::any_of(paths.begin(), paths.end(), [](const QSharedPointer<Path>& path) {
        const float distance = std::abs(path->getCosts() - std::round(path->getCosts()));
        return distance > 0 && distance < 0.001F;
    });
}

bool haveLikeCosts(const Paths& paths1, const Paths& paths2)
{
    const auto areAlike = [](const QSharedPointer<Path>& a, const QSharedPointer<Path>& b) {
        return std::abs(a->getCosts() - b->getCosts()) < 1.002F;
    };
    return std::equal(paths1.begin(), paths1.end(), paths2.begin(), paths2.end(), areAlike);
}

/// The first difference between the @p n best of both searches; empty if there is none.
QString difference(ComparedTrees& trees, const Paths& plain, int n)
{
    Paths expected = plain;
    const bool areAll = plain.size() <= n;
    while (expected.size() > n)
        expected.removeLast();
    const FoundPaths found = findPairings(trees.tree1, trees.tree2, trees.matrix, trees.expander,
                                          n);
    if (!found.areSure)
        return QStringLiteral("others may cost %1").arg(found.lowestOther);
    if (mayBeRounded(plain) || mayBeRounded(found.paths))
        return haveLikeCosts(found.paths, expected) ? QString() : QStringLiteral("other costs");
    const std::vector<int> priorities = prioritiesOf(found.paths);
    if (priorities != prioritiesOf(expected))
        return QStringLiteral("%1 other priorities").arg(found.paths.size());
    std::set<Pairing> pairings;
    for (const QSharedPointer<Path>& path : found.paths) {
        if (!path->reachedGoal() || !pairings.insert(pairingOf(trees, *path)).second)
            return QStringLiteral("incomplete or twice");
    }
    // Where more have the priority of the last one, any of these will do.
    const bool lastIsShared = !areAll
        && tresk::priorityOf(plain.at(n)->getCosts()) == priorities.back();
    const int incomplete = lastIsShared ? priorities.back() : -1000000;
    if (completeGroups(trees, found.paths, incomplete)
        != completeGroups(trees, expected, incomplete))
        return QStringLiteral("other pairings");
    return {};
}

/// Trees with two nodes under each, of two kinds of step, which cost @p price with each other
/// and @p other with their own.
ModelProblem branchingProblem(int nodes, float price, float other)
{
    ModelProblem problem;
    for (int i = 0; i < nodes; ++i) {
        problem.tree1.parents.push_back(i == 0 ? -1 : (i - 1) / 2);
        problem.tree1.steps.push_back(int(i % 3 == 0));
    }
    problem.tree2 = problem.tree1;
    problem.prices = {{other, price}, {price, other}};
    return problem;
}

/// Whether the second tree's nodes 0 to @p count - 1, or nothing, are partners once at most.
bool arePartners(const Pairing& pairing, int count)
{
    std::set<int> partners;
    return std::all_of(pairing.begin(), pairing.end(), [&](int partner) {
        return partner == -3
            || (partner >= 0 && partner < count && partners.insert(partner).second);
    });
}

Paths plainSearch(ComparedTrees& trees, int n, int mostOpen)
{
    Dijkstra<Path> search;
    const Paths paths = search.findPaths(QSharedPointer<Path>::create(&trees.expander), n,
                                         mostOpen);
    return search.gaveUp() ? Paths() : paths;
}

} // namespace

void TestPairingSearch::findsWhatThePlainSearchFinds_data()
{
    QTest::addColumn<Prices>("prices");
    QTest::addColumn<int>("most");
    QTest::addColumn<int>("results");
    QTest::addColumn<int>("count");

    const std::pair<const char*, Prices> kinds[] = {
        {"prices of all kinds", Prices::AsRandomTrees},
        {"default prices", Prices::Default},
        {"prices in quarters", Prices::Quarters},
        {"prices in fractions", Prices::Fractions},
    };
    for (const auto& [name, prices] : kinds) {
        QTest::addRow("%s, all of up to 3 nodes", name) << prices << 3 << 1000 << 300;
        QTest::addRow("%s, some of up to 4 nodes", name) << prices << 4 << 12 << 500;
        QTest::addRow("%s, some of up to 6 nodes", name) << prices << 6 << 5 << 250;
        QTest::addRow("%s, the best of up to 6 nodes", name) << prices << 6 << 1 << 500;
        QTest::addRow("%s, the best of up to 8 nodes", name) << prices << 8 << 1 << 150;
    }
}

void TestPairingSearch::findsWhatThePlainSearchFinds()
{
    QFETCH(const Prices, prices);
    QFETCH(const int, most);
    QFETCH(const int, results);
    QFETCH(const int, count);

    const MessageCapture capture;
    RandomTrees random(quint32(most * 1000 + results * 10 + int(prices)));
    int compared = 0;
    for (int i = 0; i < count; ++i) {
        const ModelProblem problem = randomProblem(random, most, prices);
        const int n = results > 100 ? results : random.number(1, results);
        ComparedTrees trees(problem);
        const Paths plain = plainSearch(trees, n + 1, 4000);
        if (plain.isEmpty())
            continue;
        ++compared;
        const QString text = difference(trees, plain, n);
        QVERIFY2(text.isEmpty(),
                 qPrintable(textOf(problem) + QString::number(n) + QLatin1Char(' ') + text));
    }
    QVERIFY2(compared * 10 > count * 9, qPrintable(QString::number(compared)));
}

void TestPairingSearch::similarTreesOfMoreNodesThanBuckets()
{
    const MessageCapture capture;
    RandomTrees random(5);
    int compared = 0;
    const int count = 60;
    for (int i = 0; i < count; ++i) {
        const ModelProblem problem = random.similarTrees();
        const int n = random.number(1, 3);
        ComparedTrees trees(problem);
        const Paths plain = plainSearch(trees, n + 1, 4000);
        if (plain.isEmpty())
            continue;
        ++compared;
        const QString text = difference(trees, plain, n);
        QVERIFY2(text.isEmpty(), qPrintable(textOf(problem) + text));
    }
    QVERIFY2(compared * 2 > count, qPrintable(QString::number(compared)));
}

void TestPairingSearch::treesWithoutNodes_data()
{
    QTest::addColumn<int>("nodes1");
    QTest::addColumn<int>("nodes2");
    QTest::addColumn<int>("priority");

    // What stays open of the second tree counts once more.
    QTest::newRow("none in both") << 0 << 0 << 0;
    QTest::newRow("none in the first") << 0 << 3 << 15 * 3;
    QTest::newRow("none in the second") << 3 << 0 << 15 * 3;
}

void TestPairingSearch::treesWithoutNodes()
{
    QFETCH(const int, nodes1);
    QFETCH(const int, nodes2);
    QFETCH(const int, priority);

    ModelProblem problem;
    problem.tree1 = {0, std::vector<int>(std::size_t(nodes1), -1),
                     std::vector<int>(std::size_t(nodes1), 0)};
    problem.tree2 = {0, std::vector<int>(std::size_t(nodes2), -1),
                     std::vector<int>(std::size_t(nodes2), 0)};
    problem.prices = {{0.0F}};
    ComparedTrees trees(problem);
    const FoundPaths found = findPairings(trees.tree1, trees.tree2, trees.matrix, trees.expander,
                                          7);
    QCOMPARE(prioritiesOf(found.paths), std::vector<int>{priority});
    QVERIFY(found.areSure);
    const Path& path = *found.paths.first();
    QVERIFY(path.reachedGoal());
    for (int id = 0; id < nodes1; ++id)
        QCOMPARE(path.association(id, FirstTree), -3);
    // Nothing was decided, so nothing is marked either.
    for (int id = 0; id < nodes2; ++id)
        QCOMPARE(path.association(id, SecondTree), -2);
}

void TestPairingSearch::atLeastOneIsFound_data()
{
    QTest::addColumn<int>("n");
    QTest::addColumn<int>("count");

    // Two nodes each: 1 pairing without pairs, 4 with one, 2 with two.
    QTest::newRow("-1") << -1 << 1;
    QTest::newRow("0") << 0 << 1;
    QTest::newRow("1") << 1 << 1;
    QTest::newRow("6") << 6 << 6;
    QTest::newRow("7") << 7 << 7;
    QTest::newRow("more than there are") << 8 << 7;
    QTest::newRow("far more than there are") << 2147483647 << 7;
}

void TestPairingSearch::atLeastOneIsFound()
{
    QFETCH(const int, n);
    QFETCH(const int, count);

    ModelProblem problem;
    problem.tree1 = {0, {-1, -1}, {0, 1}};
    problem.tree2 = problem.tree1;
    problem.prices = {{0.0F, 50.0F}, {50.0F, 0.0F}};
    ComparedTrees trees(problem);
    const FoundPaths found = findPairings(trees.tree1, trees.tree2, trees.matrix, trees.expander,
                                          n);
    const std::vector<int> all{0, 30, 30, 75, 80, 80, 100};
    QCOMPARE(prioritiesOf(found.paths), std::vector<int>(all.begin(), all.begin() + count));
    QVERIFY(found.areSure);
}

void TestPairingSearch::pairingsOfEqualPriorityComeInTheSameOrder()
{
    RandomTrees random(12);
    for (int i = 0; i < (isWatched() ? 12 : 30); ++i) {
        const ModelProblem problem = randomProblem(random, 5, Prices::Default);
        std::vector<std::vector<Pairing>> orders;
        for (int run = 0; run < 2; ++run) {
            ComparedTrees trees(problem);
            const FoundPaths found = findPairings(trees.tree1, trees.tree2, trees.matrix,
                                                  trees.expander, 20);
            orders.emplace_back();
            for (const QSharedPointer<Path>& path : found.paths)
                orders.back().push_back(pairingOf(trees, *path));
        }
        QCOMPARE(orders[0], orders[1]);
    }
}

void TestPairingSearch::pricesOfAllSizes_data()
{
    QTest::addColumn<float>("price");

    QTest::newRow("NaN") << std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity();
    QTest::newRow("-infinite") << -std::numeric_limits<float>::infinity();
    QTest::newRow("largest") << std::numeric_limits<float>::max();
    QTest::newRow("1e30") << 1e30F;
    QTest::newRow("-1e30") << -1e30F;
}

void TestPairingSearch::pricesOfAllSizes()
{
    QFETCH(const float, price);

    // One for all pairs, or for some only.
    for (const float other : {price, 0.0F, 20.0F, 0.3F}) {
        ComparedTrees trees(branchingProblem(30, price, other));
        const FoundPaths found = findPairings(trees.tree1, trees.tree2, trees.matrix,
                                              trees.expander, 2);
        QCOMPARE(found.paths.size(), 2);
        std::set<Pairing> pairings;
        for (const QSharedPointer<Path>& path : found.paths) {
            QVERIFY(path->reachedGoal());
            const Pairing pairing = pairingOf(trees, *path);
            QVERIFY(arePartners(pairing, 30));
            pairings.insert(pairing);
        }
        QCOMPARE(int(pairings.size()), 2);
    }
}

void TestPairingSearch::sumsThatAreRounded_data()
{
    QTest::addColumn<float>("price");

    // Sixty of these are 6, 18 and 42, or the next float below or above.
    QTest::newRow("0.1") << 0.1F;
    QTest::newRow("0.3") << 0.3F;
    QTest::newRow("0.7") << 0.7F;
    QTest::newRow("1.1") << 1.1F;
}

/// There is no use in looking for sums that floats happen to round down.
void TestPairingSearch::sumsThatAreRounded()
{
    QFETCH(const float, price);

    ComparedTrees trees(branchingProblem(60, price, price));
    const FoundPaths found = findPairings(trees.tree1, trees.tree2, trees.matrix, trees.expander,
                                          1);
    QCOMPARE(found.paths.size(), 1);
    QVERIFY(found.areSure);
    QVERIFY(std::abs(found.paths.first()->getCosts() - 60 * price) < 0.01F);
}

void TestPairingSearch::noMoreResultsThanCanBeKept()
{
    if (isWatched())
        QSKIP("this takes much longer where it is watched");
    // There are far more pairings than that.
    ModelProblem problem;
    problem.tree1 = {0, std::vector<int>(30, -1), std::vector<int>(30, 0)};
    problem.tree2 = problem.tree1;
    problem.prices = {{50.1F}};
    ComparedTrees trees(problem);
    const FoundPaths found = findPairings(trees.tree1, trees.tree2, trees.matrix, trees.expander,
                                          1000 * 1000);
    QVERIFY(!found.areSure);
    QVERIFY(found.paths.size() > 100);
    // Each keeps the partners of 60 nodes, in much more than 4 KiB, and 128 MiB are allowed.
    QVERIFY(found.paths.size() < 32 * 1024);
    const std::vector<int> priorities = prioritiesOf(found.paths);
    QCOMPARE(priorities.front(), 15 * 30 + 15 * 30 + 15 * 15);
    QVERIFY(std::is_sorted(priorities.begin(), priorities.end()));
}

void TestPairingSearch::nothingIsSureOfTheLowestPriority()
{
    if (isWatched())
        QSKIP("this takes much longer where it is watched");
    // All pairings have it, and there are more than can be kept.
    ModelProblem problem;
    problem.tree1 = {0, std::vector<int>(30, -1), std::vector<int>(30, 0)};
    problem.tree2 = problem.tree1;
    problem.prices = {{-1e30F}};
    ComparedTrees trees(problem);
    const FoundPaths found = findPairings(trees.tree1, trees.tree2, trees.matrix, trees.expander,
                                          100 * 1000);
    QVERIFY(found.paths.size() < 100 * 1000);
    QVERIFY(!found.areSure);
    QCOMPARE(found.lowestOther, std::numeric_limits<int>::min());
}

void TestPairingSearch::treesThatAreTooLargeForAssignments_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("others");
    QTest::addColumn<int>("priority");
    QTest::addColumn<bool>("areSure");

    QTest::newRow("the same steps") << 0 << 1001 << 0 << true;
    QTest::newRow("other steps") << 1 << 1000 << 15 * 1001 + 15 * 1000 + 15 * 500 << true;
    QTest::newRow("more than can have the partner they want") << 0 << 1000 << 15 << false;
}

void TestPairingSearch::treesThatAreTooLargeForAssignments()
{
    QFETCH(const int, kind);
    QFETCH(const int, others);
    QFETCH(const int, priority);
    QFETCH(const bool, areSure);

    const auto count = std::size_t(others);
    ModelProblem problem;
    problem.tree1 = {0, std::vector<int>(1001, -1), std::vector<int>(1001, kind)};
    problem.tree2 = {0, std::vector<int>(count, -1), std::vector<int>(count, 0)};
    problem.prices = {{0.0F}, {50.0F}};
    ComparedTrees trees(problem);
    const FoundPaths found = findPairings(trees.tree1, trees.tree2, trees.matrix, trees.expander,
                                          1);
    QCOMPARE(prioritiesOf(found.paths), std::vector<int>{priority});
    QCOMPARE(found.areSure, areSure);
    QVERIFY(areSure || found.lowestOther < priority);
}

QTEST_APPLESS_MAIN(TestPairingSearch)
#include "tst_pairingsearch.moc"
