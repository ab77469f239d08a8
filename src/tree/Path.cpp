#include <tresk/Path.h>

#include <tresk/CostMatrix.h>
#include <tresk/WorkflowTree.h>

#include "core/Logging.h"
#include "tree/HashOrder.h"
#include "tree/MissingParents.h"
#include "tree/OpenCosts.h"
#include "tree/Priority.h"

#include <QDebug>

#include <vector>

namespace tresk {

namespace {

std::vector<int> openNodes(const QList<int>& ids, const QHash<int, int>& decided)
{
    std::vector<int> open;
    for (const int id : ids) {
        if (!decided.contains(id))
            open.push_back(id);
    }
    return open;
}

LinkedNodeIds linked(const std::vector<int>& ids)
{
    LinkedNodeIds list;
    for (const int id : ids)
        list.append(id);
    return list;
}

} // namespace

/// One step of a path: a pair, or the closing of what is left over of the second tree.
struct Path::Decision {
    int a = -2;
    int b = -2;
    bool later = false; ///< the wrong-parent cost is settled at the end
    bool closes = false;
    std::shared_ptr<const Decision> previous;

    Decision(int first, int second, bool settledLater, std::shared_ptr<const Decision> before)
        : a(first)
        , b(second)
        , later(settledLater)
        , previous(std::move(before))
    {
    }

    explicit Decision(std::shared_ptr<const Decision> before)
        : closes(true)
        , previous(std::move(before))
    {
    }

    ~Decision()
    {
        // One by one: a long path would end in as many calls inside of each other.
        std::shared_ptr<const Decision> last = std::move(previous);
        while (last && last.use_count() == 1) {
            std::shared_ptr<const Decision> before = std::move(
                const_cast<Decision&>(*last).previous);
            last = std::move(before);
        }
    }

    Decision(const Decision&) = delete;
    Decision& operator=(const Decision&) = delete;
};

/// All that was decided, in tables.
struct Path::State {
    explicit State(const Path& path)
    {
        std::vector<const Decision*> decisions;
        for (const Decision* d = path.m_last.get(); d; d = d->previous.get())
            decisions.push_back(d);
        associate(-1, -1);
        for (auto d = decisions.crbegin(); d != decisions.crend(); ++d) {
            if ((*d)->closes) {
                close(openNodes(path.m_expander->m_tree2->nodeIds(), assoc2));
            } else {
                associate((*d)->a, (*d)->b);
                later.insert((*d)->a, (*d)->later);
            }
        }
    }

    /// Marks the first half of @p leftOver as paired with nothing; the rest stays open, and so
    /// counts once more in the priority.
    void close(const std::vector<int>& leftOver)
    {
        for (std::size_t i = 0; i < (leftOver.size() + 1) / 2; ++i)
            assoc2.insert(leftOver[i], -3);
    }

    void associate(int a, int b)
    {
        if (!assoc1.contains(a))
            decided.push_back(a);
        assoc1.insert(a, b);
        assoc2.insert(b, a); // what is paired with nothing shares one entry
    }

    QHash<int, int> assoc1;
    QHash<int, int> assoc2;
    QHash<int, bool> later;
    std::vector<int> decided; ///< the keys of assoc1, in the order in which they came
};

Path::Path(PathExpander* expander)
    : m_expander(expander)
    , m_openCount(int(expander->m_tree1->nodeIds().size()))
{
}

void Path::associate(int a, int b)
{
    associate({{a, b}});
}

void Path::associate(const std::vector<std::pair<int, int>>& pairs)
{
    State state(*this);
    for (const auto& [a, b] : pairs) {
        if (!state.assoc1.contains(a) && m_expander->m_tree1->workflowStep(a))
            --m_openCount;
        decide(a, b, state);
        if (m_openCount == 0) {
            const auto leftOver = openNodes(m_expander->m_tree2->nodeIds(), state.assoc2);
            complete(state, int(leftOver.size()));
            state.close(leftOver);
        }
    }
}

/// Adds the pair to the path and to @p state, the path's own.
void Path::decide(int a, int b, State& state)
{
    state.associate(a, b);
    m_cost += m_expander->costForAssociation(a, b, state.assoc1, state.assoc2);
    const bool later = m_expander->calcParentCostsLater(a, b, state.assoc1, state.assoc2);
    state.later.insert(a, later);
    m_last = std::make_shared<const Decision>(a, b, later, std::move(m_last));
}

/// Pays for the @p leftOver nodes of the second tree, and for parents that can be told only now,
/// and closes the path.
void Path::complete(const State& state, int leftOver)
{
    m_cost += m_expander->costForUnmatchedNodes(leftOver);
    m_cost += missingParentCosts(*m_expander, state.decided, state.assoc1, state.assoc2,
                                 state.later, m_expander->m_costs->costsWrongParent());
    m_last = std::make_shared<const Decision>(std::move(m_last));
}

void Path::expand(PriorityQueue<QSharedPointer<Path>>& queue)
{
    State state(*this);
    std::vector<int> open1 = openNodes(m_expander->m_tree1->nodeIds(), state.assoc1);
    const std::vector<int> open2 = openNodes(m_expander->m_tree2->nodeIds(), state.assoc2);
    if (open1.empty())
        return;
    const int a = open1.front();
    open1.erase(open1.begin());
    const OpenCosts openCosts(*m_expander->m_costs, open1, open2);

    const auto pushSuccessor = [&](int b, State& with, float costsToCome) {
        const auto successor = QSharedPointer<Path>::create(*this);
        --successor->m_openCount;
        successor->decide(a, b, with);
        if (successor->m_openCount > 0) {
            queue.push(successor, priorityOf(costsToCome + successor->m_cost));
        } else {
            const int leftOver = int(open2.size()) - (b == -3 ? 0 : 1);
            successor->complete(with, leftOver);
            const float costsOfOpen = m_expander->costForUnmatchedNodes(leftOver / 2);
            queue.push(successor, priorityOf(costsOfOpen + successor->m_cost));
        }
    };
    for (std::size_t i = 0; i < open2.size(); ++i) {
        pushSuccessor(open2[i], state, openCosts.without(i));
        state.assoc2.remove(open2[i]);
    }
    pushSuccessor(-3, state, openCosts.withAll());
}

float Path::getCosts() const
{
    const State state(*this);
    const auto open = [](const WorkflowTree& tree, const QHash<int, int>& decided) {
        return linked(openNodes(tree.nodeIds(), decided));
    };
    return m_expander->heuristicCosts(open(*m_expander->m_tree1, state.assoc1),
                                      open(*m_expander->m_tree2, state.assoc2))
        + m_cost;
}

int Path::association(int id, TreeId t) const
{
    return associations(t).value(id, -2);
}

bool Path::associated(int id, TreeId t) const
{
    if (t != FirstTree && t != SecondTree)
        return false;
    return associations(t).value(id, -3) == -3;
}

bool Path::parentChanged(int id, TreeId t) const
{
    const State state(*this);
    if (t == FirstTree && state.assoc1.contains(id))
        return m_expander->parentChanged(id, state.assoc1, state.assoc2);
    if (t == SecondTree && state.assoc2.contains(id))
        return m_expander->parentChanged(state.assoc2.value(id), state.assoc1, state.assoc2);
    return false;
}

void Path::printMe() const
{
    const State state(*this);
    HashOrder order;
    for (const int id : state.decided)
        order.insert(id);
    const QList<int> ids = order.keys();
    for (const int id : ids)
        qCDebug(debugCategory) << id << "->" << state.assoc1.value(id);
    qCDebug(debugCategory) << "Costs:" << m_cost;
}

QHash<int, int> Path::associations(TreeId t) const
{
    const State state(*this);
    if (t == FirstTree)
        return state.assoc1;
    return t == SecondTree ? state.assoc2 : QHash<int, int>();
}

} // namespace tresk
