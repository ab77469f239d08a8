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
    /// Whether these are the cheapest, and there are as many as were wanted, or no more.
    bool areSure = true;
    int lowestOther = 0; ///< otherwise: what others cost at least
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
/// Time and memory are limited: when some of either is used up, what was found so far stands. There
/// is always at least one path. Where floats are rounded, a pairing that costs less than a whole
/// number by no more than the rounding may be passed over for one that costs it.
FoundPaths findPairings(const WorkflowTree& tree1, const WorkflowTree& tree2,
                        const CostMatrix& matrix, PathExpander& expander, int n);

} // namespace tresk

#endif
