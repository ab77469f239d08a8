#ifndef TRESK_TREE_MISSINGPARENTS_H
#define TRESK_TREE_MISSINGPARENTS_H

#include <QHash>

#include <vector>

namespace tresk {

class PathExpander;

/// PathExpander::calcMissingParentCosts() where the order in which the keys of @p assoc1 were
/// decided on is known.
float missingParentCosts(const PathExpander& expander, const std::vector<int>& decided,
                         const QHash<int, int>& assoc1, const QHash<int, int>& assoc2,
                         const QHash<int, bool>& later, float costsWrongParent);

} // namespace tresk

#endif
