#ifndef TRESK_TESTS_RANDOMPAIRINGS_H
#define TRESK_TESTS_RANDOMPAIRINGS_H

#include "RandomTrees.h"
#include "SearchText.h"

#include <tresk/CostMatrix.h>
#include <tresk/Path.h>

#include <vector>

/// Random pairs of trees whose pairings are searched for.
namespace tresktest {

enum class Prices {
    AsRandomTrees, ///< as RandomTrees has them
    Default, ///< the default ones, of steps with few titles, tools and descriptions
    Quarters, ///< of each pair another one, some of them negative
    Fractions ///< likewise, with sums that are rounded
};

/// Two trees of up to @p most nodes each.
ModelProblem randomProblem(RandomTrees& random, int most, Prices prices);

/// The trees of a problem as the library has them, with their matrix.
struct ComparedTrees {
    explicit ComparedTrees(const ModelProblem& problem);
    ComparedTrees(const tresk::WorkflowTree& first, const tresk::WorkflowTree& second,
                  const tresk::WorkflowstepCosts& costs);
    ComparedTrees(const ComparedTrees&) = delete;
    ComparedTrees& operator=(const ComparedTrees&) = delete;

    tresk::WorkflowTree tree1;
    tresk::WorkflowTree tree2;
    tresk::CostMatrix matrix;
    tresk::PathExpander expander;
};

} // namespace tresktest

#endif
