#ifndef TRESK_PATH_H
#define TRESK_PATH_H

#include <tresk/Export.h>
#include <tresk/PriorityQueue.h>
#include <tresk/TreeId.h>

#include <QHash>
#include <QSharedPointer>

#include <memory>
#include <utility>
#include <vector>

namespace tresk {

class CostMatrix;
class WorkflowTree;

/// Knows two trees and what it costs to pair their nodes; owns neither.
///
/// Pairings are given as two tables: first-tree nodes with their partners, and the other way
/// round. The partner -3 means that a node is paired with nothing.
class TRESK_EXPORT PathExpander {
public:
    /// All three, none of which may be null, have to outlive it.
    PathExpander(const WorkflowTree* tree1, const WorkflowTree* tree2, const CostMatrix* costs);

    /// The nodes of tree @p t in the order of WorkflowTree::nodeIds(); empty for another value.
    LinkedNodeIds nodeIds(TreeId t) const;
    /// What @p n nodes cost that are paired with nothing.
    float costForUnmatchedNodes(int n) const;
    /// The cost of pairing @p a with @p b (or -3), and that of a wrong parent unless their parents
    /// are paired with each other. Where a parent is undecided or paired with nothing, no such cost
    /// arises.
    float costForAssociation(int a, int b, const QHash<int, int>& assoc1,
                             const QHash<int, int>& assoc2) const;
    /// Whether the wrong-parent cost of this pair can only be told at the end, since a parent is
    /// paired with nothing.
    bool calcParentCostsLater(int a, int b, const QHash<int, int>& assoc1,
                              const QHash<int, int>& assoc2) const;
    /// Whether the nearest ancestors of @p a and of its partner that are paired with anything are
    /// not paired with each other.
    bool parentChanged(int a, const QHash<int, int>& assoc1, const QHash<int, int>& assoc2) const;
    /// A lower estimate of what pairing the nodes @p open1 and @p open2 will cost.
    float heuristicCosts(const LinkedNodeIds& open1, const LinkedNodeIds& open2) const;
    /// The wrong-parent costs that are settled at the end. The flags in @p later are looked up by
    /// the place of a node in @p assoc1, not by its id. (Places are those of a table into which -1
    /// and then the first tree's nodes were put; see WorkflowTree::nodeIds().)
    float calcMissingParentCosts(const QHash<int, int>& assoc1, const QHash<int, int>& assoc2,
                                 const QHash<int, bool>& later) const;

private:
    friend class Path;

    const WorkflowTree* m_tree1;
    const WorkflowTree* m_tree2;
    const CostMatrix* m_costs;
};

/// A pairing of the nodes of two trees that may not be complete yet.
///
/// Small, and cheap to copy: what was decided is shared with the path that it was made from.
class TRESK_EXPORT Path {
public:
    /// A path on which nothing is decided but that the parents of the roots, -1, belong together.
    /// @p expander has to outlive it.
    explicit Path(PathExpander* expander);

    /// Pairs first-tree node @p a with second-tree node @p b, or with nothing (-3). With the last
    /// node of the first tree the pairing is complete: what is left of the second tree is paid
    /// for, and the first half of it, rounded up, is marked as paired with nothing.
    void associate(int a, int b);
    /// The same for all @p pairs in order, each a first-tree node and its partner.
    void associate(const std::vector<std::pair<int, int>>& pairs);
    /// Pushes a copy for every partner that the first undecided node of the first tree can have,
    /// nothing last; its priority is getCosts() without the fraction.
    void expand(PriorityQueue<QSharedPointer<Path>>& queue);
    /// Whether all nodes of the first tree are decided.
    bool reachedGoal() const { return m_openCount == 0; }
    /// The costs so far and a lower estimate of what is to come.
    float getCosts() const;
    /// The partner of node @p id of tree @p t: -3 if it is paired with nothing, -2 if it is not
    /// decided or @p t is no tree.
    int association(int id, TreeId t) const;
    /// Whether node @p id of tree @p t is *without* a partner: undecided, or paired with nothing.
    /// False if @p t is no tree.
    bool associated(int id, TreeId t) const;
    /// PathExpander::parentChanged() of node @p id of tree @p t, or of its partner in the first
    /// tree; false if it is not decided or @p t is no tree.
    bool parentChanged(int id, TreeId t) const;
    /// Writes the pairs of the first tree's nodes and the costs so far to the debug channel.
    void printMe() const;

    /// The pairing as tables, -1 with -1 included.
    QHash<int, int> associations(TreeId t) const;

private:
    struct Decision;
    struct State;

    void decide(int a, int b, State& state);
    void complete(const State& state, int leftOver);

    PathExpander* m_expander;
    std::shared_ptr<const Decision> m_last; ///< what was decided, last first
    int m_openCount; ///< undecided nodes of the first tree
    float m_cost = 0.0F; ///< so far
};

} // namespace tresk

#endif
