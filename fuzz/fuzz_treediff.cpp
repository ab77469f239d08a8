// Chooses two small trees and prices by the input and looks for their cheapest pairings: by the
// comparison of trees, by the search for large differences, and among all pairings there are.

#include "ByteSource.h"
#include "FuzzTarget.h"
#include "RandomPairings.h"
#include "SearchText.h"

#include <tresk/TreskDiff.h>

#include "tree/PairingSearch.h"
#include "tree/Priority.h"

#include <QLoggingCategory>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>

using tresk::FirstTree;
using tresk::SecondTree;
using tresktest::ComparedTrees;
using tresktest::ModelFindings;
using tresktest::ModelPath;
using tresktest::ModelProblem;
using tresktest::Prices;

namespace {

constexpr int mostNodes = 4; // 209 pairings
constexpr int mostPopped = 400;

/// The partners of the first tree's nodes, in their order.
using Pairing = std::vector<int>;
using Pairings = std::map<Pairing, float>;

template <typename Tree, typename Result>
Pairing pairingOf(const ModelProblem& problem, const Result& result)
{
    Pairing partners;
    for (const int id : problem.tree1.ids())
        partners.push_back(result.association(id, Tree(FirstTree)));
    return partners;
}

/// Adds all that @p path can become, with their costs.
void addPairings(const ModelProblem& problem, const ModelPath& path, Pairings& all)
{
    if (path.reachedGoal()) {
        all[pairingOf<int>(problem, path)] = path.getCosts();
        return;
    }
    std::vector<int> partners = path.open2;
    partners.push_back(-3);
    for (const int partner : partners) {
        ModelPath next(path);
        next.associate(path.open1.front(), partner);
        addPairings(problem, next, all);
    }
}

bool isInQuarters(float costs)
{
    return costs * 4.0F == std::round(costs * 4.0F);
}

/// Checks that @p found are the @p n cheapest of @p all in their order, each once. Costs count
/// without their fractions; where floats are rounded, a whole number may lie between equal ones.
void checkCheapest(const std::vector<Pairing>& found, const Pairings& all, int n)
{
    std::vector<float> costs;
    for (const auto& entry : all)
        costs.push_back(entry.second);
    std::sort(costs.begin(), costs.end());
    const bool areExact = std::all_of(costs.begin(), costs.end(), isInQuarters);
    TRESK_REQUIRE(found.size() == std::min(costs.size(), std::size_t(std::max(n, 1))));

    Pairings left = all;
    for (std::size_t i = 0; i < found.size(); ++i) {
        const auto entry = left.find(found[i]);
        TRESK_REQUIRE(entry != left.end());
        const int priority = tresk::priorityOf(entry->second);
        TRESK_REQUIRE(std::abs(priority - tresk::priorityOf(costs[i])) <= int(!areExact));
        left.erase(entry);
    }
}

/// Checks that partners are each other's partners, and that what is out of the trees has none.
void checkPartners(const ModelProblem& problem, const tresk::TreskDiffResult& result)
{
    TRESK_REQUIRE(result.association(-1, FirstTree) == -1);
    TRESK_REQUIRE(result.association(-1, SecondTree) == -1);
    for (const int id : problem.tree1.ids()) {
        const int partner = result.association(id, FirstTree);
        TRESK_REQUIRE(result.associated(id, FirstTree) == (partner < 0));
        TRESK_REQUIRE(partner == -3 || result.association(partner, SecondTree) == id);
    }
    for (const int id : problem.tree2.ids()) {
        const int partner = result.association(id, SecondTree);
        TRESK_REQUIRE(partner < 0 || result.association(partner, FirstTree) == id);
    }
}

void checkDiff(const ModelProblem& problem, const ComparedTrees& trees, const Pairings& all, int n)
{
    tresktest::ModelCosts costs(problem);
    const tresk::TreskDiff diff(trees.tree1, trees.tree2, &costs);
    std::vector<Pairing> found;
    const QList<tresk::TreskDiffResult> results = diff.findBestMatches(n);
    for (const tresk::TreskDiffResult& result : results) {
        checkPartners(problem, result);
        found.push_back(pairingOf<tresk::TreeId>(problem, result));
    }
    checkCheapest(found, all, n);
    TRESK_REQUIRE(pairingOf<tresk::TreeId>(problem, *diff.findBestMatch()) == found.front());
}

void checkPairingSearch(const ModelProblem& problem, ComparedTrees& trees, const Pairings& all,
                        int n)
{
    const tresk::FoundPaths result = findPairings(trees.tree1, trees.tree2, trees.matrix,
                                                  trees.expander, n);
    TRESK_REQUIRE(result.areSure);
    std::vector<Pairing> found;
    for (const auto& path : result.paths) {
        TRESK_REQUIRE(path->reachedGoal());
        found.push_back(pairingOf<tresk::TreeId>(problem, *path));
        const auto expected = all.find(found.back());
        TRESK_REQUIRE(expected != all.end());
        TRESK_REQUIRE(!(path->getCosts() < expected->second)
                      && !(path->getCosts() > expected->second));
    }
    checkCheapest(found, all, n);
}

void runTreeDiff(const QByteArray& input)
{
    tresk_fuzz::ByteSource source(input);
    const auto prices = Prices(source.below(4));
    const int n = source.below(20) - 1;
    tresktest::RandomTrees random([&source](int count) { return source.below(count); });
    const ModelProblem problem = randomProblem(random, mostNodes, prices);

    Pairings all;
    addPairings(problem, ModelPath(problem), all);
    ComparedTrees trees(problem);
    checkDiff(problem, trees, all, n);
    checkPairingSearch(problem, trees, all, n);

    const ModelFindings findings = search(problem, n, mostPopped);
    if (!findings.isComplete)
        return;
    QLoggingCategory::setFilterRules(QStringLiteral("tresk.debug=true"));
    TRESK_REQUIRE(tresktest::found(problem, n) == textOf(problem, findings));
    QLoggingCategory::setFilterRules(QStringLiteral("tresk.debug=false"));
}

const tresk_fuzz::Target target("treediff", runTreeDiff);

} // namespace
