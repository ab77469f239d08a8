#ifndef TRESK_TREE_OPTIONALMATCHING_H
#define TRESK_TREE_OPTIONALMATCHING_H

#include <cstddef>
#include <vector>

namespace tresk {

class PartialPairing;

/// The cheapest way to pair the open rows and columns of a PartialPairing, or to leave them alone,
/// by its costs as they are now.
///
/// Kept with the prices of rows and columns that prove it to be the cheapest (a solution of the
/// dual problem), so that it is soon mended after a further decision: by shortest paths from the
/// rows and columns concerned, each in quadratic time (the Hungarian method).
class OptionalMatching {
public:
    /// For @p pairing, of which nothing is decided.
    explicit OptionalMatching(const PartialPairing& pairing);

    /// Mends it after further decisions on the pairing that it was made for.
    void update(const PartialPairing& pairing);

    /// What the open rows and columns cost at least.
    double costs() const { return m_costs; }
    /// How much the open @p row and @p column, or @p row and nothing, cost more than is paid for
    /// them.
    double slack(const PartialPairing& pairing, int row, int column) const;
    /// What they cost at least if the open @p row is paired with @p column, or with nothing.
    double costsWith(const PartialPairing& pairing, int row, int column) const;
    /// The column of the open @p row in a solution that costs costs(); alone if it has none.
    int columnOf(int row) const { return m_solution[std::size_t(row)]; }

private:
    template <bool FromRows>
    class Side;
    template <bool FromRows>
    class PathSearch;

    void mend(const PartialPairing& pairing);
    template <bool FromRows>
    void addWay(const PartialPairing& pairing, int start);
    void chooseParity(const PartialPairing& pairing);

    std::vector<double> m_rowPrices;
    std::vector<double> m_columnPrices;
    std::vector<int> m_columnOf; ///< of rows, where all columns that are left over cost the same
    std::vector<int> m_rowOf; ///< of columns, likewise
    std::vector<int> m_solution; ///< of rows, by what columns that are left over cost together
    double m_evenCosts = 0; ///< of m_columnOf
    double m_costs = 0; ///< of m_solution
};

} // namespace tresk

#endif
