#ifndef TRESK_TRESKDIFF_H
#define TRESK_TRESKDIFF_H

#include <tresk/LogSource.h>
#include <tresk/TreeId.h>
#include <tresk/WorkflowTree.h>

#include <QHash>
#include <QList>
#include <QSharedPointer>

namespace tresk {

class CostMatrix;
class Path;
class PathExpander;
class WorkflowstepCosts;

/// How the steps of two trees correspond.
class TRESK_EXPORT TreskDiffResult {
public:
    TreskDiffResult() = default;
    /// From each tree's nodes with their partners (-3: none), and whether their parents changed.
    TreskDiffResult(const QHash<int, int>& assoc1, const QHash<int, int>& assoc2,
                    const QHash<int, bool>& changed1, const QHash<int, bool>& changed2);

    /// The partner of node @p id of tree @p t: -3 if it has none, -2 if there is no entry for it
    /// or @p t is no tree.
    int association(int id, TreeId t) const;
    /// Whether node @p id of tree @p t is *without* a partner. False if @p t is no tree.
    bool associated(int id, TreeId t) const;
    /// Whether node @p id of tree @p t hangs under another parent than its partner. False if there
    /// is no entry for it or @p t is no tree.
    bool parentChanged(int id, TreeId t) const;

private:
    QHash<int, int> m_association1;
    QHash<int, int> m_association2;
    QHash<int, bool> m_parentChanged1;
    QHash<int, bool> m_parentChanged2;
};

/// Finds out how the steps of two trees correspond, at the lowest cost: pairs of unlike steps,
/// steps without a counterpart and steps under another parent cost.
class TRESK_EXPORT TreskDiff : public LogSource {
    Q_OBJECT

public:
    /// Compares copies of @p tree1 and @p tree2. @p costs, which must not be null, is not owned and
    /// has to live as long as it is used.
    TreskDiff(const WorkflowTree& tree1, const WorkflowTree& tree2, WorkflowstepCosts* costs);
    ~TreskDiff() override;

    /// @{
    /// What is compared, as given to the constructor. The trees are owned by this object and valid
    /// as long as it lives.
    void setTree1(const WorkflowTree& tree);
    void setTree2(const WorkflowTree& tree);
    void setCosts(WorkflowstepCosts* costs);
    WorkflowTree* tree1() { return &m_tree1; }
    WorkflowTree* tree2() { return &m_tree2; }
    WorkflowstepCosts* costs() { return m_costs; }
    /// @}

    /// The @p n cheapest pairings (1 or more), cheapest first; fewer where there are no more.
    ///
    /// A Dijkstra search over Paths finds them, unless the trees have so little in common that more
    /// than 400000 paths, about 64 MB, are open or found. Then another exact search takes over,
    /// which has a better estimate of what is still to pay: by assignments. Of pairings that cost
    /// the same (a Path's priority counts) it takes and lists those first that follow the cheapest
    /// assignment, and prefers steps whose parents and children are alike. Either way the result is
    /// the same in every process.
    ///
    /// The second search is limited too: to about 128 MB and some seconds of work, and to trees of
    /// about 1000 steps each, beyond which each step gets the cheapest partner in turn. Then the
    /// best pairings found so far are returned, and a message of type 1 says what the last of them
    /// costs and what others may cost.
    QList<TreskDiffResult> findBestMatches(int n) const;
    /// The cheapest pairing; null if there is none.
    QSharedPointer<TreskDiffResult> findBestMatch() const;

private:
    QList<QSharedPointer<Path>> findPaths(const CostMatrix& matrix, PathExpander& expander,
                                          int n) const;
    static TreskDiffResult convertPath(const Path& path, const PathExpander& expander);

    WorkflowTree m_tree1;
    WorkflowTree m_tree2;
    WorkflowstepCosts* m_costs;
};

} // namespace tresk

#endif
