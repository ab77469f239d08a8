#ifndef TRESK_TREE_PARTIALPAIRING_H
#define TRESK_TREE_PARTIALPAIRING_H

#include "tree/PairingProblem.h"

#include <vector>

namespace tresk {

/// A pairing of which the first rows are decided, and what the others cost at least.
///
/// The costs of open rows and columns include what follows from the decisions for certain. So they
/// never exceed what will be paid, and only grow as more is decided.
class PartialPairing {
public:
    explicit PartialPairing(const PairingProblem& problem);

    /// Pairs the first open row with the open @p column, or with nothing (alone).
    void decide(int column);

    const PairingProblem& problem() const { return *m_problem; }
    /// The partners of the decided rows.
    const std::vector<int>& partners() const { return m_partners; }
    int firstOpenRow() const { return int(m_partners.size()); }
    bool isComplete() const { return firstOpenRow() == m_problem->rows; }
    bool isOpenColumn(int column) const { return m_rowOf[std::size_t(column)] == alone; }

    /// What the decisions have cost so far.
    double decidedCosts() const { return m_costs; }
    /// The same and what all open columns cost, left over. The price of a complete pairing.
    double costsOfAll() const;
    /// What it costs at least to pair an open row with an open column.
    double pairCost(int row, int column) const
    {
        const auto r = std::size_t(row);
        const auto c = std::size_t(column);
        double cost = m_problem->price(row, column);
        if (m_parentPartner[r] != unknown && m_pairedParent[c] != unknown
            && m_parentPartner[r] != m_pairedParent[c])
            cost += m_problem->wrongParentCost;
        if (m_expectedParent[r] != unknown && m_expectedParent[r] != m_problem->parentColumn[c])
            cost += m_problem->wrongParentCost;
        if (m_givenBack[r] > 0 && mayHaveRightParent(row, column))
            cost -= m_givenBack[r];
        return cost;
    }
    /// What it costs to pair an open row with nothing.
    double aloneRowCost(int row) const
    {
        return m_aloneCost[std::size_t(row)] + m_expectedCharges[std::size_t(row)];
    }
    /// Whether, if the row that charges @p row were paired with nothing, pairing @p row with
    /// @p column could still not be a change of parent.
    bool mayHaveRightParent(int row, int column) const
    {
        const int charging = m_problem->chargingRow[std::size_t(row)];
        const int parent = m_problem->parentColumn[std::size_t(column)];
        const bool staysAtTop = m_problem->parentRow[std::size_t(row)] == charging
            && m_problem->parentRow[std::size_t(charging)] == atTop;
        if (staysAtTop)
            return parent == atTop;
        return parent != m_problem->expectedColumn[std::size_t(row)] || parent == unknown;
    }
    /// What a column costs that is left over, as if it were the same for each: those of an odd
    /// number cost oddDiscount() less together.
    double aloneColumnCost() const { return 1.5 * m_problem->aloneCost; }
    double oddDiscount() const { return 0.5 * m_problem->aloneCost; }

private:
    double expectedCharges(int row) const;
    bool hasPairedAncestor(int row, int column) const;
    void leaveAlone(int row);
    void pairWith(int row, int column);
    void setAncestor(int row, int partner);
    void charge(int charged);

    const PairingProblem* m_problem;
    std::vector<int> m_partners;
    std::vector<int> m_rowOf; ///< of columns
    std::vector<int> m_parentPartner; ///< of rows: their parents' columns, where paired
    std::vector<int> m_ancestorPartner; ///< of rows: the column of the nearest paired ancestor
    std::vector<int> m_pairedParent; ///< of columns: their parents, where paired
    std::vector<double> m_aloneCost; ///< of rows
    std::vector<char> m_isCharged; ///< of rows: a change of parent is charged at the end
    std::vector<int> m_expectedParent; ///< of these: the parent of a partner without that charge
    std::vector<double> m_expectedCharges; ///< of rows: what their children's rows may cost
    std::vector<double> m_givenBack; ///< of rows, of the expected charges
    double m_costs = 0;
};

} // namespace tresk

#endif
