#ifndef TRESK_TREE_OPENCOSTS_H
#define TRESK_TREE_OPENCOSTS_H

#include <tresk/CostMatrix.h>

#include <vector>

namespace tresk {

/// PathExpander::heuristicCosts() for all successors of a path at once: for the nodes of the first
/// tree that will be open, and those of the second that are open now, with and without each one of
/// them. Adds in the same order, so that the results are the same to the bit.
class OpenCosts {
public:
    OpenCosts(const CostMatrix& matrix, const std::vector<int>& open1,
              const std::vector<int>& open2);

    /// The costs without the second-tree node at place @p taken.
    float without(std::size_t taken) const;
    /// The costs with all of them.
    float withAll() const;

private:
    static constexpr std::size_t noPlace = std::size_t(-1);

    /// The lowest costs of a first-tree node, each at most those of an unmatched one.
    struct Lowest {
        float cost;
        std::size_t place; ///< of the second-tree node
        float costElsewhere; ///< with any other
    };

    float costs(std::size_t taken) const;

    float m_unmatched;
    std::vector<Lowest> m_lowest1; ///< of the first tree's nodes
    std::vector<float> m_lowest2; ///< of the second tree's nodes
};

} // namespace tresk

#endif
