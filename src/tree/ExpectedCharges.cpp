#include "tree/ExpectedCharges.h"

#include "tree/OptionalMatching.h"
#include "tree/PartialPairing.h"

#include <algorithm>

namespace tresk {

namespace {

class Expectation {
public:
    Expectation(PairingProblem& problem, const PartialPairing& pairing,
                const OptionalMatching& matching)
        : m_problem(problem)
        , m_pairing(pairing)
        , m_matching(matching)
    {
    }

    /// Expects as much as possible for @p row, which is looked up for a child of @p charging.
    void expect(int row, int charging)
    {
        double& charge = m_problem.expectedCharge[std::size_t(row)];
        int& column = m_problem.expectedColumn[std::size_t(row)];
        const bool isFirst = charge == 0;
        if (isFirst)
            column = columnToExpect(row, charging);
        double more = std::min(m_problem.wrongParentCost - charge, roomForPartners(row));
        if (column != unknown) {
            const auto others = m_problem.childRows[std::size_t(charging)].size();
            more = std::min(more,
                            roomForAncestors(charging, column) / double(isFirst ? others : 1));
        }
        if (more <= 0) {
            if (isFirst)
                column = unknown;
            return;
        }
        charge += more;
        if (column != unknown)
            giveToAncestors(charging, column, more);
    }

private:
    int parentOf(int row) const { return m_problem.parentRow[std::size_t(row)]; }

    /// The column above the one that the matching pairs @p row with, if there is any and rows above
    /// @p charging could be paired with it.
    int columnToExpect(int row, int charging) const
    {
        int top = parentOf(charging);
        if (top < 0 || parentOf(row) != charging)
            return unknown;
        while (top >= 0)
            top = parentOf(top);
        const int column = m_matching.columnOf(row);
        if (top != atTop || column == alone)
            return unknown;
        const int above = m_problem.parentColumn[std::size_t(column)];
        return above >= 0 ? above : unknown;
    }

    /// How much can be given back to all partners of @p row that may have the right parent.
    double roomForPartners(int row) const
    {
        double room = m_problem.wrongParentCost;
        for (int column = 0; column < m_problem.columns && room > 0; ++column) {
            if (m_pairing.mayHaveRightParent(row, column))
                room = std::min(room, roomFor(row, column));
        }
        return room;
    }

    /// How much can be given back to all pairs of rows above @p row with @p column.
    double roomForAncestors(int row, int column) const
    {
        double room = m_problem.wrongParentCost * m_problem.rows;
        for (int above = parentOf(row); above >= 0; above = parentOf(above))
            room = std::min(room, roomFor(above, column));
        return room;
    }

    /// One pair more must not pay either, which the matching finds out separately.
    double roomFor(int row, int column) const
    {
        return m_matching.slack(m_pairing, row, column) - m_pairing.oddDiscount();
    }

    void giveToAncestors(int row, int column, double cost)
    {
        const auto width = std::size_t(m_problem.columns);
        for (int above = parentOf(row); above >= 0; above = parentOf(above))
            m_problem.prices[std::size_t(above) * width + std::size_t(column)] -= cost;
    }

    PairingProblem& m_problem;
    const PartialPairing& m_pairing;
    const OptionalMatching& m_matching;
};

} // namespace

void expectCharges(PairingProblem& problem, const PartialPairing& pairing,
                   const OptionalMatching& matching)
{
    Expectation expectation(problem, pairing, matching);
    for (int row = 0; row < problem.rows; ++row) {
        const int charging = problem.chargingRow[std::size_t(row)];
        if (charging != unknown)
            expectation.expect(row, charging);
    }
}

} // namespace tresk
