#include <tresk/CostMatrix.h>
#include <tresk/Path.h>
#include <tresk/WorkflowTree.h>

#include "tree/HashOrder.h"
#include "tree/MissingParents.h"

#include <algorithm>
#include <cstdlib>

namespace tresk {

namespace {

/// The nearest ancestor of node @p id of @p tree that is not marked as paired with nothing.
int pairedAncestor(const WorkflowTree& tree, int id, const QHash<int, int>& associations)
{
    int ancestor = tree.parent(id);
    // Each ancestor has an entry of its own, unless they lead round in a circle.
    for (auto left = associations.size(); left > 0 && associations.value(ancestor, 0) == -3; --left)
        ancestor = tree.parent(ancestor);
    return ancestor;
}

/// The keys of @p assoc1 in the order in which a path has decided on them.
std::vector<int> decisionOrder(const QHash<int, int>& assoc1, const QList<int>& nodeIds)
{
    std::vector<int> order;
    QHash<int, int> others = assoc1;
    const auto take = [&](int key) {
        if (others.remove(key) > 0)
            order.push_back(key);
    };
    take(-1);
    for (const int id : nodeIds)
        take(id);
    QList<int> rest = others.keys();
    std::sort(rest.begin(), rest.end());
    for (const int key : qAsConst(rest))
        take(key);
    return order;
}

} // namespace

PathExpander::PathExpander(const WorkflowTree* tree1, const WorkflowTree* tree2,
                           const CostMatrix* costs)
    : m_tree1(tree1)
    , m_tree2(tree2)
    , m_costs(costs)
{
}

LinkedNodeIds PathExpander::nodeIds(TreeId t) const
{
    switch (t) {
    case FirstTree:
        return m_tree1->nodeIdsLinked();
    case SecondTree:
        return m_tree2->nodeIdsLinked();
    }
    return {};
}

float PathExpander::costForUnmatchedNodes(int n) const
{
    return m_costs->costsUnmatchedNode() * float(n);
}

float PathExpander::costForAssociation(int a, int b, const QHash<int, int>& assoc1,
                                       const QHash<int, int>& assoc2) const
{
    const float cost = m_costs->costs(a, b);
    const int parentA = m_tree1->parent(a);
    const int parentB = m_tree2->parent(b);
    const int partnerOfA = assoc1.value(parentA, -3);
    if (a == -3 || b == -3 || partnerOfA == -3 || assoc2.value(parentB, -3) == -3)
        return cost;
    if (parentA != -2 && parentB != -2 && partnerOfA == parentB)
        return cost;
    return cost + m_costs->costsWrongParent();
}

bool PathExpander::calcParentCostsLater(int a, int b, const QHash<int, int>& assoc1,
                                        const QHash<int, int>& assoc2) const
{
    // An undecided parent does not defer.
    return assoc1.value(m_tree1->parent(a), 0) == -3 || assoc2.value(m_tree2->parent(b), 0) == -3;
}

bool PathExpander::parentChanged(int a, const QHash<int, int>& assoc1,
                                 const QHash<int, int>& assoc2) const
{
    const int b = assoc1.value(a, 0);
    if (a == -2 || b == -2)
        return false;
    const int ancestorOfA = pairedAncestor(*m_tree1, a, assoc1);
    const int ancestorOfB = pairedAncestor(*m_tree2, b, assoc2);
    return assoc1.value(ancestorOfA, 0) != ancestorOfB;
}

float PathExpander::heuristicCosts(const LinkedNodeIds& open1, const LinkedNodeIds& open2) const
{
    const bool firstIsSmaller = open1.size() < open2.size();
    const LinkedNodeIds& smaller = firstIsSmaller ? open1 : open2;
    const LinkedNodeIds& larger = firstIsSmaller ? open2 : open1;
    float sum = m_costs->costsUnmatchedNode() * float(larger.size() - smaller.size());
    for (const int x : smaller) {
        float lowest = m_costs->costsUnmatchedNode();
        for (const int y : larger)
            lowest = std::min(lowest, firstIsSmaller ? m_costs->costs(x, y) : m_costs->costs(y, x));
        sum += lowest;
    }
    return sum;
}

float PathExpander::calcMissingParentCosts(const QHash<int, int>& assoc1,
                                           const QHash<int, int>& assoc2,
                                           const QHash<int, bool>& later) const
{
    return missingParentCosts(*this, decisionOrder(assoc1, m_tree1->nodeIds()), assoc1, assoc2,
                              later, m_costs->costsWrongParent());
}

float missingParentCosts(const PathExpander& expander, const std::vector<int>& decided,
                         const QHash<int, int>& assoc1, const QHash<int, int>& assoc2,
                         const QHash<int, bool>& later, float costsWrongParent)
{
    HashOrder order;
    for (const int key : decided)
        order.insert(key);
    const QList<int> keys = order.keys();
    float sum = 0.0F;
    for (int k = 0; k < keys.size(); ++k) {
        // The flag is that of the place, not that of the node at this place.
        if (later.value(k, false) && expander.parentChanged(keys.at(k), assoc1, assoc2))
            sum += costsWrongParent;
    }
    return sum;
}

} // namespace tresk
