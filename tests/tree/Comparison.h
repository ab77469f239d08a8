#ifndef TRESK_TESTS_COMPARISON_H
#define TRESK_TESTS_COMPARISON_H

#include "Trees.h"

#include <tresk/CostMatrix.h>
#include <tresk/Path.h>
#include <tresk/WorkflowTree.h>

namespace tresktest {

/// Two trees, whose pairs cost 4 each unless said otherwise, and an empty path on them.
struct Comparison {
    Comparison(const tresk::WorkflowTree& first, const tresk::WorkflowTree& second,
               const TitleCosts& costs = TitleCosts(4.0F))
        : tree1(first)
        , tree2(second)
        , matrix(tree1, tree2, &costs)
        , expander(&tree1, &tree2, &matrix)
        , path(&expander)
    {
    }
    Comparison(const Comparison&) = delete;
    Comparison& operator=(const Comparison&) = delete;

    tresk::WorkflowTree tree1;
    tresk::WorkflowTree tree2;
    tresk::CostMatrix matrix;
    tresk::PathExpander expander;
    tresk::Path path;
};

} // namespace tresktest

#endif
