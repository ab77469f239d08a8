#ifndef TRESK_TESTS_RANDOMTREES_H
#define TRESK_TESTS_RANDOMTREES_H

#include "SearchModel.h"

#include <QtGlobal>

#include <functional>

namespace tresktest {

/// Makes pairs of trees to compare: flat and nested ones, with few different steps, with ids that
/// do not begin at 0, with parents that come after their children or are none; at prices that are
/// alike, odd or negative.
class RandomTrees {
public:
    explicit RandomTrees(quint32 seed);
    /// Has @p below choose numbers from 0 to one less than its argument.
    explicit RandomTrees(const std::function<int(int)>& below);

    /// Two trees of up to @p most nodes each.
    ModelProblem problem(int most);
    /// Two trees of 14 to 24 nodes, that have most of them in common.
    ModelProblem similarTrees();

    int number(int from, int to) { return from + m_below(to - from + 1); }

private:
    bool oneIn(int count) { return m_below(count) == 0; }
    ModelTree tree(int nodes);
    float price(int kind);
    std::vector<std::vector<float>> prices();

    std::function<int(int)> m_below;
};

} // namespace tresktest

#endif
