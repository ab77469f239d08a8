#ifndef TRESK_TESTS_LARGEHISTORIES_H
#define TRESK_TESTS_LARGEHISTORIES_H

#include <tresk/WorkflowTree.h>

#include <vector>

namespace tresktest {

/// Two histories to compare.
struct Histories {
    tresk::WorkflowTree first;
    tresk::WorkflowTree second;
};

/// The parents of the steps 0, 1, ... by their numbers; -1 for those at the top.
using Parents = std::vector<int>;

Parents flatParents(int count);
/// Each under the one before.
Parents chainedParents(int count);
/// Steps in groups of @p size, under the first one of their group, which is under the first one of
/// the group before; every third group begins anew at the top.
Parents groupedParents(int count, int size);
/// @p children under each step.
Parents branchingParents(int count, int children);
/// Each under any one before it.
Parents randomParents(int count, unsigned seed);

/// @p count steps in each, all at the top, done with the same tool, none of which is in both.
Histories unrelatedHistories(int count);
/// Steps in groups of five that are the same. Half of the groups are in one of the histories only,
/// a quarter have another description in the second one, and the rest are in both.
Histories mixedHistories(const Parents& parents1, const Parents& parents2);
/// The same step again and again.
Histories equalSteps(const Parents& parents1, const Parents& parents2);

} // namespace tresktest

#endif
