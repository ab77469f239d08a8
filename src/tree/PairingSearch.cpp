#include "tree/PairingSearch.h"

#include <tresk/WorkflowTree.h>

#include "tree/ExpectedCharges.h"
#include "tree/GreedyPairing.h"
#include "tree/OptionalMatching.h"
#include "tree/PairingImprovement.h"
#include "tree/PartialPairing.h"
#include "tree/Priority.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <queue>

namespace tresk {

namespace {

/// For partial pairings and results.
constexpr std::size_t mostBytes = std::size_t(128) * 1024 * 1024;
constexpr int bytesOfNode = 100; ///< in a result
/// Pairs of nodes, for each partial pairing.
constexpr qint64 mostWork = qint64(2000) * 1000 * 1000;
/// Rows by rows and columns, for which assignments are solved: the numbers that a path of decisions
/// keeps.
constexpr qint64 largestProblem = qint64(2) * 1000 * 1000;
constexpr int completeEvery = 64; ///< of the partial pairings, one is followed to its end

/// A partial pairing that was looked at.
struct Expanded {
    std::shared_ptr<const Expanded> before; ///< null at the start
    int column; ///< the last decision
    OptionalMatching matching;
    double bound; ///< what it costs at least
};

/// A decision that may be taken next.
struct Candidate {
    double bound; ///< what it costs at least, as far as is known
    int depth; ///< number of decisions
    int number; ///< in the order in which they were found
    std::shared_ptr<const Expanded> before;
    int column;
    std::shared_ptr<const Expanded> expanded; ///< null if it was not looked at yet
};

struct ComesLater {
    bool operator()(const Candidate& a, const Candidate& b) const
    {
        if (a.bound < b.bound || b.bound < a.bound)
            return a.bound > b.bound;
        return a.depth != b.depth ? a.depth < b.depth : a.number > b.number;
    }
};

struct Result {
    int priority;
    std::vector<int> columns;
    QSharedPointer<Path> path;
};

class Search {
public:
    Search(const WorkflowTree& tree1, const WorkflowTree& tree2, const CostMatrix& matrix,
           PathExpander& expander, int n)
        : m_ids1(tree1.nodeIds())
        , m_ids2(tree2.nodeIds())
        , m_expander(expander)
        , m_problem(tree1, tree2, matrix)
        , m_wanted(std::size_t(std::max(n, 1)))
    {
    }

    void run();
    FoundPaths findings() const;

private:
    void start();
    void search();
    PartialPairing pairingOf(const std::shared_ptr<const Expanded>& expanded) const;
    void follow(Candidate candidate, bool toItsEnd);
    std::shared_ptr<const Expanded> expand(const Candidate& candidate);
    std::vector<Candidate> successors(const std::shared_ptr<const Expanded>& expanded);
    void push(const Candidate& candidate);
    void record(const PartialPairing& pairing);
    bool isTooDear(double bound) const;

    QList<int> m_ids1;
    QList<int> m_ids2;
    PathExpander& m_expander;
    PairingProblem m_problem;
    std::size_t m_wanted;
    std::priority_queue<Candidate, std::vector<Candidate>, ComesLater> m_candidates;
    std::vector<Result> m_results; ///< cheapest first, not more than wanted
    std::vector<int> m_improved; ///< recorded before the search came across it
    int m_number = 0;
    int m_expanded = 0;
    std::size_t m_bytes = 0;
};

void Search::run()
{
    const PartialPairing nothing(m_problem);
    if (nothing.isComplete()) {
        record(nothing);
    } else if (qint64(m_problem.rows) * (m_problem.rows + m_problem.columns) > largestProblem) {
        const GreedyPairing greedy = greedyPairing(m_problem);
        record(greedy.pairing);
        push({greedy.bound, 0, 0, nullptr, alone, nullptr});
    } else {
        start();
        search();
    }
}

/// Finds a first pairing by following the assignments, and makes it better if it can be.
void Search::start()
{
    m_problem.preferLikeSubtrees();
    PartialPairing nothing(m_problem);
    OptionalMatching matching(nothing);
    for (int round = 0; round < 3; ++round) {
        expectCharges(m_problem, nothing, matching);
        nothing = PartialPairing(m_problem);
        matching.update(nothing);
    }
    const double bound = matching.costs();
    const auto expanded = std::make_shared<const Expanded>(
        Expanded{nullptr, alone, std::move(matching), bound});
    follow({bound, 0, 0, nullptr, alone, expanded}, true);
    if (isTooDear(bound))
        return;
    const PartialPairing improved = improvedPairing(m_problem, m_results.front().columns);
    if (improved.partners() != m_results.front().columns)
        record(improved);
    m_improved = improved.partners();
}

void Search::search()
{
    const qint64 work = qint64(m_problem.rows) * m_problem.columns;
    while (!m_candidates.empty() && m_bytes < mostBytes && m_expanded * work < mostWork) {
        const Candidate next = m_candidates.top();
        if (isTooDear(next.bound))
            return;
        m_candidates.pop();
        follow(next, m_results.size() < m_wanted || m_expanded % completeEvery == 0);
    }
}

FoundPaths Search::findings() const
{
    FoundPaths found;
    found.expanded = m_expanded;
    for (const Result& result : m_results)
        found.paths.append(result.path);
    found.areSure = m_candidates.empty() || isTooDear(m_candidates.top().bound);
    if (!found.areSure)
        found.lowestOther = priorityOf(float(std::floor(m_candidates.top().bound)));
    return found;
}

PartialPairing Search::pairingOf(const std::shared_ptr<const Expanded>& expanded) const
{
    std::vector<int> columns;
    for (const Expanded* e = expanded.get(); e->before; e = e->before.get())
        columns.push_back(e->column);
    PartialPairing pairing(m_problem);
    for (auto column = columns.crbegin(); column != columns.crend(); ++column)
        pairing.decide(*column);
    return pairing;
}

/// Looks at @p candidate and puts what follows from it among the candidates; if it is to be
/// followed to its end, the best of that is taken at once, until a pairing is complete.
void Search::follow(Candidate candidate, bool toItsEnd)
{
    for (;;) {
        const bool isNew = !candidate.expanded;
        if (isNew)
            candidate.expanded = expand(candidate);
        if (!candidate.expanded)
            return;
        candidate.bound = candidate.expanded->bound;
        if (isTooDear(candidate.bound))
            return;
        const bool othersAreCheaper = !m_candidates.empty()
            && m_candidates.top().bound < candidate.bound;
        if (isNew && othersAreCheaper && !toItsEnd) {
            push(candidate);
            return;
        }
        std::vector<Candidate> next = successors(candidate.expanded);
        const auto best = std::min_element(
            next.begin(), next.end(),
            [](const Candidate& a, const Candidate& b) { return ComesLater()(b, a); });
        for (auto other = next.begin(); other != next.end(); ++other) {
            if (other != best || !toItsEnd)
                push(*other);
        }
        if (!toItsEnd || best == next.end())
            return;
        candidate = *best;
    }
}

/// Takes the decision and finds out what it costs at least. Null if it completes the pairing.
std::shared_ptr<const Expanded> Search::expand(const Candidate& candidate)
{
    ++m_expanded;
    PartialPairing pairing = pairingOf(candidate.before);
    pairing.decide(candidate.column);
    if (pairing.isComplete()) {
        record(pairing);
        return nullptr;
    }
    OptionalMatching matching = candidate.before->matching;
    matching.update(pairing);
    const double bound = std::max(candidate.bound, pairing.decidedCosts() + matching.costs());
    m_bytes += sizeof(Expanded) + std::size_t(m_problem.rows + m_problem.columns) * 14;
    return std::make_shared<const Expanded>(
        Expanded{candidate.before, candidate.column, std::move(matching), bound});
}

/// The decisions that can be taken next, that of the assignment first, and nothing last.
std::vector<Candidate> Search::successors(const std::shared_ptr<const Expanded>& expanded)
{
    const PartialPairing pairing = pairingOf(expanded);
    const int row = pairing.firstOpenRow();
    const OptionalMatching& matching = expanded->matching;
    const int assigned = matching.columnOf(row);
    std::vector<Candidate> next;
    const auto add = [&](int column, double bound) {
        if (!isTooDear(bound))
            next.push_back({bound, row + 1, ++m_number, expanded, column, nullptr});
    };
    const auto addOther = [&](int column) {
        const double costs = pairing.decidedCosts() + matching.costsWith(pairing, row, column);
        if (column != assigned)
            add(column, std::max(expanded->bound, costs));
    };
    add(assigned, expanded->bound);
    for (int column = 0; column < m_problem.columns; ++column) {
        if (pairing.isOpenColumn(column))
            addOther(column);
    }
    addOther(alone);
    return next;
}

void Search::push(const Candidate& candidate)
{
    m_bytes += sizeof(Candidate);
    m_candidates.push(candidate);
}

/// Adds a complete pairing to the results if it belongs there.
void Search::record(const PartialPairing& pairing)
{
    const bool isKnown = !m_improved.empty() && pairing.partners() == m_improved;
    if (isKnown || isTooDear(pairing.costsOfAll()))
        return;
    std::vector<std::pair<int, int>> pairs;
    for (int row = 0; row < m_problem.rows; ++row) {
        const int column = pairing.partners()[std::size_t(row)];
        pairs.emplace_back(m_ids1.at(row), column == alone ? -3 : m_ids2.at(column));
    }
    const auto path = QSharedPointer<Path>::create(&m_expander);
    path->associate(pairs);
    const int priority = priorityOf(path->getCosts());
    const auto place = std::upper_bound(
        m_results.begin(), m_results.end(), priority,
        [](int value, const Result& result) { return value < result.priority; });
    m_results.insert(place, {priority, pairing.partners(), path});
    if (m_results.size() > m_wanted)
        m_results.pop_back();
    else
        m_bytes += std::size_t(m_problem.rows + m_problem.columns) * bytesOfNode;
}

/// Whether nothing that costs at least @p bound can be better than the results.
bool Search::isTooDear(double bound) const
{
    if (m_results.size() < m_wanted)
        return false;
    const int worst = m_results.back().priority;
    if (worst == std::numeric_limits<int>::min())
        return true;
    // The fraction of a priority is cut off towards 0.
    const double better = worst > 0 ? worst - m_problem.grain : worst - 1.0;
    return bound > better + m_problem.tolerance(worst);
}

} // namespace

FoundPaths findPairings(const WorkflowTree& tree1, const WorkflowTree& tree2,
                        const CostMatrix& matrix, PathExpander& expander, int n)
{
    Search search(tree1, tree2, matrix, expander, n);
    search.run();
    return search.findings();
}

} // namespace tresk
