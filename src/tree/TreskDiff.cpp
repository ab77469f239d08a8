#include <tresk/TreskDiff.h>

#include <tresk/CostMatrix.h>
#include <tresk/Dijkstra.h>
#include <tresk/Path.h>

#include "tree/PairingSearch.h"
#include "tree/Priority.h"

namespace tresk {

namespace {

constexpr int mostOpenPaths = 400000; // about 64 MB

/// What to look up for tree @p t: @p first, @p second or, for another value, neither.
template <typename Table>
const Table* tableOf(TreeId t, const Table& first, const Table& second)
{
    if (t == FirstTree)
        return &first;
    return t == SecondTree ? &second : nullptr;
}

} // namespace

TreskDiffResult::TreskDiffResult(const QHash<int, int>& assoc1, const QHash<int, int>& assoc2,
                                 const QHash<int, bool>& changed1, const QHash<int, bool>& changed2)
    : m_association1(assoc1)
    , m_association2(assoc2)
    , m_parentChanged1(changed1)
    , m_parentChanged2(changed2)
{
}

int TreskDiffResult::association(int id, TreeId t) const
{
    const auto* const table = tableOf(t, m_association1, m_association2);
    return table ? table->value(id, -2) : -2;
}

bool TreskDiffResult::associated(int id, TreeId t) const
{
    const auto* const table = tableOf(t, m_association1, m_association2);
    return table && table->value(id, -3) == -3;
}

bool TreskDiffResult::parentChanged(int id, TreeId t) const
{
    const auto* const table = tableOf(t, m_parentChanged1, m_parentChanged2);
    return table && table->value(id, false);
}

TreskDiff::TreskDiff(const WorkflowTree& tree1, const WorkflowTree& tree2, WorkflowstepCosts* costs)
    : m_tree1(tree1)
    , m_tree2(tree2)
    , m_costs(costs)
{
}

TreskDiff::~TreskDiff() = default;

void TreskDiff::setTree1(const WorkflowTree& tree)
{
    m_tree1 = tree;
}

void TreskDiff::setTree2(const WorkflowTree& tree)
{
    m_tree2 = tree;
}

void TreskDiff::setCosts(WorkflowstepCosts* costs)
{
    m_costs = costs;
}

QList<TreskDiffResult> TreskDiff::findBestMatches(int n) const
{
    const CostMatrix matrix(m_tree1, m_tree2, m_costs);
    PathExpander expander(&m_tree1, &m_tree2, &matrix);
    const QList<QSharedPointer<Path>> paths = findPaths(matrix, expander, n);
    QList<TreskDiffResult> results;
    for (const QSharedPointer<Path>& path : paths)
        results.append(convertPath(*path, expander));
    return results;
}

/// The paths of the @p n cheapest pairings, by the plain search if that can afford it.
QList<QSharedPointer<Path>> TreskDiff::findPaths(const CostMatrix& matrix, PathExpander& expander,
                                                 int n) const
{
    {
        Dijkstra<Path> search;
        const auto start = QSharedPointer<Path>::create(&expander);
        const QList<QSharedPointer<Path>> paths = search.findPaths(start, n, mostOpenPaths);
        if (!search.gaveUp())
            return paths;
    }
    FoundPaths found = findPairings(m_tree1, m_tree2, matrix, expander, n);
    if (!found.areSure) {
        const QString costs = QString::number(priorityOf(found.paths.last()->getCosts()));
        const QString others = QString::number(found.lowestOther);
        const QString message = found.paths.size() < n
            ? tr(
                "The histories differ too much to find more pairings: the last one found costs %1, "
                "others may cost from %2 on")
            : tr("The histories differ too much to be sure of the cheapest pairing: the one found "
                 "costs %1, others may cost from %2 on");
        Q_EMIT const_cast<TreskDiff*>(this)->log(message.arg(costs, others), 1);
    }
    return found.paths;
}

QSharedPointer<TreskDiffResult> TreskDiff::findBestMatch() const
{
    const QList<TreskDiffResult> results = findBestMatches(1);
    if (results.isEmpty())
        return {};
    return QSharedPointer<TreskDiffResult>::create(results.first());
}

TreskDiffResult TreskDiff::convertPath(const Path& path, const PathExpander& expander)
{
    const QHash<int, int> first = path.associations(FirstTree);
    const QHash<int, int> second = path.associations(SecondTree);
    QHash<int, bool> changes1;
    for (auto entry = first.begin(); entry != first.end(); ++entry)
        changes1.insert(entry.key(), expander.parentChanged(entry.key(), first, second));
    QHash<int, bool> changes2;
    for (auto entry = second.begin(); entry != second.end(); ++entry)
        changes2.insert(entry.key(), expander.parentChanged(entry.value(), first, second));
    return {first, second, changes1, changes2};
}

} // namespace tresk
