#include "RandomPairings.h"
#include "Watched.h"

#include "tree/ExpectedCharges.h"
#include "tree/OptionalMatching.h"
#include "tree/PartialPairing.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

using tresk::alone;
using tresk::OptionalMatching;
using tresk::PairingProblem;
using tresk::PartialPairing;
using tresk::Path;
using tresktest::ComparedTrees;
using tresktest::isWatched;
using tresktest::ModelProblem;
using tresktest::ModelTree;
using tresktest::Prices;
using tresktest::randomProblem;
using tresktest::RandomTrees;

/// Compares what partial pairings and their matchings estimate with all that they can become.
class TestPartialPairing : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingBecomesCheaperThanEstimated_data();
    void nothingBecomesCheaperThanEstimated();
    void neitherDoesAnythingInDeepTrees_data();
    void neitherDoesAnythingInDeepTrees();
    void matchingsAreTheCheapest_data();
    void matchingsAreTheCheapest();
    void completePairingsCostWhatTheirPathsCost();
};

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

struct Trial {
    Trial(const ModelProblem& model)
        : trees(model)
        , problem(trees.tree1, trees.tree2, trees.matrix)
        , ids1(trees.tree1.nodeIds())
        , ids2(trees.tree2.nodeIds())
    {
    }

    /// What the complete @p pairing costs as a path.
    double exactCosts(const PartialPairing& pairing)
    {
        Path path(&trees.expander);
        for (int row = 0; row < problem.rows; ++row) {
            const int column = pairing.partners()[std::size_t(row)];
            path.associate(ids1.at(row), column == alone ? -3 : ids2.at(column));
        }
        return double(path.getCosts());
    }
    /// How far estimates may be off, by rounding and by what decides between equal costs.
    double tolerance(double costs) const
    {
        const double ofFloats = 1.2e-7 * (problem.rows + problem.columns + 1);
        return problem.grain / 2 + ofFloats * (std::abs(costs) + 100);
    }

    ComparedTrees trees;
    PairingProblem problem;
    QList<int> ids1;
    QList<int> ids2;
};

/// Two trees, of which the first has nodes: a path without any is never completed.
ModelProblem problemWithRows(RandomTrees& random, int most, Prices prices)
{
    for (;;) {
        const ModelProblem problem = randomProblem(random, most, prices);
        if (!problem.tree1.parents.empty())
            return problem;
    }
}

/// Two trees of the given parents.
ModelProblem problemOfShapes(RandomTrees& random, const std::vector<int>& parents1,
                             const std::vector<int>& parents2, Prices prices)
{
    for (;;) {
        ModelProblem problem = randomProblem(random, 5, prices);
        if (problem.tree1.parents.size() != parents1.size()
            || problem.tree2.parents.size() != parents2.size())
            continue;
        problem.tree1.parents = parents1;
        problem.tree2.parents = parents2;
        problem.tree1.firstId = 0; // others are not looked up at their places
        return problem;
    }
}

/// All that the first open row of @p pairing can be paired with.
std::vector<int> choices(const PartialPairing& pairing)
{
    std::vector<int> columns{alone};
    for (int column = 0; column < pairing.problem().columns; ++column) {
        if (pairing.isOpenColumn(column))
            columns.push_back(column);
    }
    return columns;
}

/// Expects the partner of @p row under some column, if that can be expected, and pays in advance
/// for the ancestors that are paired with it.
void expectColumn(RandomTrees& random, PairingProblem& problem, std::size_t row)
{
    const int charging = problem.chargingRow[row];
    if (charging == tresk::unknown || problem.parentRow[row] != charging || problem.columns == 0)
        return;
    std::vector<int> ancestors;
    int above = problem.parentRow[std::size_t(charging)];
    for (; above >= 0; above = problem.parentRow[std::size_t(above)])
        ancestors.push_back(above);
    if (above != tresk::atTop || ancestors.empty())
        return;
    const int column = random.number(0, problem.columns - 1);
    problem.expectedColumn[row] = column;
    for (const int ancestor : ancestors)
        problem.prices[std::size_t(ancestor * problem.columns + column)] -=
            problem.expectedCharge[row];
}

/// Expects some of the charges that may be expected, at random or as the search does.
void expectCharges(RandomTrees& random, PairingProblem& problem)
{
    const int kind = random.number(0, 3);
    if (kind == 3) {
        const PartialPairing nothing(problem);
        tresk::expectCharges(problem, nothing, OptionalMatching(nothing));
        return;
    }
    for (std::size_t row = 0; row < problem.expectedCharge.size(); ++row) {
        if (problem.chargingRow[row] != tresk::unknown && kind > 0)
            problem.expectedCharge[row] = kind == 1 ? problem.wrongParentCost
                                                    : 0.5 * double(random.number(0, 20));
        if (kind > 0 && random.number(0, 1) == 0)
            expectColumn(random, problem, row);
    }
}

/// The first estimate of what follows from @p pairing that is too high; empty if there is none.
/// @p lowest becomes the lowest exact costs.
QString wrongEstimate(Trial& trial, const PartialPairing& pairing, const OptionalMatching& matching,
                      double& lowest)
{
    const double estimate = pairing.decidedCosts() + matching.costs();
    lowest = infinite;
    if (pairing.isComplete()) {
        lowest = trial.exactCosts(pairing);
    } else {
        const int row = pairing.firstOpenRow();
        for (const int column : choices(pairing)) {
            PartialPairing next = pairing;
            next.decide(column);
            OptionalMatching mended = matching;
            mended.update(next);
            double costs = 0;
            const QString wrong = wrongEstimate(trial, next, mended, costs);
            if (!wrong.isEmpty())
                return wrong;
            lowest = std::min(lowest, costs);
            const double with = pairing.decidedCosts() + matching.costsWith(pairing, row, column);
            if (with > costs + trial.tolerance(costs))
                return QStringLiteral("costsWith %1 of row %2, column %3: %4 exceeds %5")
                    .arg(pairing.firstOpenRow())
                    .arg(row)
                    .arg(column)
                    .arg(with)
                    .arg(costs);
            if (next.decidedCosts() + mended.costs() < estimate - trial.tolerance(costs))
                return QStringLiteral("row %1, column %2: fell").arg(row).arg(column);
        }
    }
    if (estimate > lowest + trial.tolerance(lowest))
        return QStringLiteral("after %1 rows: %2 exceeds %3")
            .arg(pairing.firstOpenRow())
            .arg(estimate)
            .arg(lowest);
    return {};
}

/// The same of @p model with some charges expected, and the model itself.
QString wrongEstimateOf(RandomTrees& random, const ModelProblem& model)
{
    Trial trial(model);
    expectCharges(random, trial.problem);
    const PartialPairing nothing(trial.problem);
    double lowest = 0;
    const QString wrong = wrongEstimate(trial, nothing, OptionalMatching(nothing), lowest);
    return wrong.isEmpty() ? wrong : textOf(model) + wrong;
}

/// The lowest costs of the rows from @p row on; tries all.
double lowestCosts(const PartialPairing& pairing, int row, std::vector<char>& isTaken)
{
    if (row == pairing.problem().rows) {
        const auto leftOver = std::count(isTaken.begin(), isTaken.end(), 0);
        return pairing.aloneColumnCost() * double(leftOver)
            - (leftOver % 2 == 1 ? pairing.oddDiscount() : 0);
    }
    double lowest = pairing.aloneRowCost(row) + lowestCosts(pairing, row + 1, isTaken);
    for (int column = 0; column < pairing.problem().columns; ++column) {
        if (isTaken[std::size_t(column)] != 0)
            continue;
        isTaken[std::size_t(column)] = 1;
        lowest = std::min(lowest,
                          pairing.pairCost(row, column) + lowestCosts(pairing, row + 1, isTaken));
        isTaken[std::size_t(column)] = 0;
    }
    return lowest;
}

/// What the rows and columns cost that are open in @p pairing, as @p matching pairs them.
double costsOfSolution(const PartialPairing& pairing, const OptionalMatching& matching)
{
    double sum = 0;
    int leftOver = 0;
    for (int column = 0; column < pairing.problem().columns; ++column)
        leftOver += int(pairing.isOpenColumn(column));
    for (int row = pairing.firstOpenRow(); row < pairing.problem().rows; ++row) {
        const int column = matching.columnOf(row);
        if (column != alone) {
            if (!pairing.isOpenColumn(column))
                return infinite;
            --leftOver;
        }
        sum += column == alone ? pairing.aloneRowCost(row) : pairing.pairCost(row, column);
    }
    return sum + pairing.aloneColumnCost() * leftOver
        - (leftOver % 2 == 1 ? pairing.oddDiscount() : 0);
}

void addRowsOfPrices()
{
    QTest::addColumn<int>("prices");

    QTest::newRow("prices of all kinds") << int(Prices::AsRandomTrees);
    QTest::newRow("default prices") << int(Prices::Default);
    QTest::newRow("prices in quarters") << int(Prices::Quarters);
    QTest::newRow("prices in fractions") << int(Prices::Fractions);
}

} // namespace

void TestPartialPairing::nothingBecomesCheaperThanEstimated_data()
{
    addRowsOfPrices();
}

void TestPartialPairing::nothingBecomesCheaperThanEstimated()
{
    QFETCH(const int, prices);

    RandomTrees random(quint32(prices) + 1);
    for (int i = 0; i < (isWatched() ? 60 : 160); ++i) {
        const QString wrong = wrongEstimateOf(
            random, problemWithRows(random, i < 140 ? 4 : 5, Prices(prices)));
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    }
}

void TestPartialPairing::neitherDoesAnythingInDeepTrees_data()
{
    addRowsOfPrices();
}

void TestPartialPairing::neitherDoesAnythingInDeepTrees()
{
    QFETCH(const int, prices);

    // Of each, a child of a nested row is looked up for another one, or a grandchild is.
    const std::vector<std::vector<int>> shapes = {
        {-1, 0, 1, 1}, {-1, 0, 1, 1, 1}, {-1, 0, 1, 2, 1}, {-1, 0, 0, 2, 2}, {-1, 0, 1, 2, 2}};
    const std::vector<std::vector<int>> otherShapes = {
        {-1, 0, 1}, {-1, 0, 0}, {-1, 0, 1, 1}, {-1, 0, 1, 2}, {-1, -1, 1, 1}, {-1, 0, 0, 1}};
    RandomTrees random(quint32(prices) + 11);
    for (int i = 0; i < (isWatched() ? 6 : 15); ++i) {
        for (const std::vector<int>& shape : shapes) {
            const std::vector<int>& otherShape = otherShapes[std::size_t(random.number(0, 5))];
            const ModelProblem model = problemOfShapes(random, shape, otherShape, Prices(prices));
            const QString wrong = wrongEstimateOf(random, model);
            QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
        }
    }
}

void TestPartialPairing::matchingsAreTheCheapest_data()
{
    addRowsOfPrices();
}

void TestPartialPairing::matchingsAreTheCheapest()
{
    QFETCH(const int, prices);

    RandomTrees random(quint32(prices) + 100);
    for (int i = 0; i < (isWatched() ? 60 : 160); ++i) {
        const ModelProblem model = problemWithRows(random, 6, Prices(prices));
        Trial trial(model);
        expectCharges(random, trial.problem);
        PartialPairing pairing(trial.problem);
        OptionalMatching mended(pairing);
        for (;;) {
            std::vector<char> isTaken;
            for (int column = 0; column < trial.problem.columns; ++column)
                isTaken.push_back(char(!pairing.isOpenColumn(column)));
            const double lowest = lowestCosts(pairing, pairing.firstOpenRow(), isTaken);
            const OptionalMatching fresh(pairing);
            for (const OptionalMatching* const matching : {&fresh, &std::as_const(mended)}) {
                QVERIFY2(std::abs(matching->costs() - lowest) < 1e-4, qPrintable(textOf(model)));
                QVERIFY2(std::abs(costsOfSolution(pairing, *matching) - lowest) < 1e-4,
                         qPrintable(textOf(model)));
            }
            if (pairing.isComplete())
                break;
            const std::vector<int> columns = choices(pairing);
            pairing.decide(columns[std::size_t(random.number(0, int(columns.size()) - 1))]);
            mended.update(pairing);
        }
    }
}

void TestPartialPairing::completePairingsCostWhatTheirPathsCost()
{
    RandomTrees random(31);
    int compared = 0;
    const int rounds = isWatched() ? 800 : 2000;
    for (int i = 0; i < rounds; ++i) {
        const ModelProblem model = problemWithRows(random, 8,
                                                   i % 2 == 0 ? Prices::Default : Prices::Quarters);
        // Parents that are in no tree cost what only the path knows.
        const auto isUnusual = [](const ModelTree& tree) {
            return std::any_of(tree.parents.begin(), tree.parents.end(),
                               [&](int parent) { return parent != -1 && !tree.contains(parent); });
        };
        if (isUnusual(model.tree1) || isUnusual(model.tree2))
            continue;
        ++compared;
        Trial trial(model);
        PartialPairing pairing(trial.problem);
        while (!pairing.isComplete()) {
            const std::vector<int> columns = choices(pairing);
            const bool isAlone = random.number(0, 3) == 0;
            const int last = int(columns.size()) - 1;
            pairing.decide(columns[std::size_t(isAlone ? 0 : random.number(0, last))]);
        }
        const double exact = trial.exactCosts(pairing);
        // Less than half of a quarter only decides between equal costs.
        QVERIFY2(std::abs(pairing.costsOfAll() - exact) < 0.124, qPrintable(textOf(model)));
    }
    QVERIFY(compared > rounds / 2);
}

QTEST_APPLESS_MAIN(TestPartialPairing)
#include "tst_partialpairing.moc"
