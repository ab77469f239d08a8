#ifndef TRESK_TREE_PAIRINGSEARCH_H
#define TRESK_TREE_PAIRINGSEARCH_H

#include <tresk/Path.h>

#include <QList>
#include <QSharedPointer>

namespace tresk {

class CostMatrix;
class WorkflowTree;

/// What a PairingSearch has found.
struct FoundPaths {
    QList<QSharedPointer<Path>> paths; ///< complete, cheapest first
    int expanded = 0; ///< number of partial pairings that were looked at
    /// By how much a pairing could be cheaper that is not among them; 0 if there is none.
    int gap = 0;
};

/// Finds the @p n cheapest pairings of two trees, or all if there are fewer, by the priorities that
/// complete paths have. The paths are made on @p expander, which knows the trees and @p matrix.
///
/// Best-first, as the search by paths is, but with a lower estimate that is the cheapest assignment
/// of all that is not decided, so that it comes through where that one would open millions of
/// paths. Among partial pairings that look equally cheap the one with more decisions comes first,
/// then the one that follows the assignment, then the one found first. So pairings of equal
/// priority are found in the same order in every process.
///
/// Time and memory are limited: after a fixed amount of work, what was found so far stands, and the
/// gap says how good it is. There is always at least one path.
FoundPaths findPairings(const WorkflowTree& tree1, const WorkflowTree& tree2,
                        const CostMatrix& matrix, PathExpander& expander, int n);

} // namespace tresk

#endif
