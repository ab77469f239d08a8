#include "tree/PartialPairing.h"

#include <algorithm>

namespace tresk {

namespace {

/// The parents that are paired from the start: the one of all nodes at the top.
std::vector<int> knownAtStart(const std::vector<int>& parents)
{
    std::vector<int> known;
    known.reserve(parents.size());
    for (const int parent : parents)
        known.push_back(parent == atTop ? atTop : unknown);
    return known;
}

} // namespace

PartialPairing::PartialPairing(const PairingProblem& problem)
    : m_problem(&problem)
    , m_rowOf(std::size_t(problem.columns), alone)
    , m_parentPartner(knownAtStart(problem.parentRow))
    , m_ancestorPartner(m_parentPartner)
    , m_pairedParent(knownAtStart(problem.parentColumn))
    , m_aloneCost(std::size_t(problem.rows), problem.aloneCost)
    , m_isCharged(std::size_t(problem.rows), 0)
    , m_expectedParent(std::size_t(problem.rows), unknown)
    , m_expectedCharges(std::size_t(problem.rows), 0.0)
    , m_givenBack(problem.expectedCharge)
{
    m_partners.reserve(std::size_t(problem.rows));
    for (int row = 0; row < problem.rows; ++row)
        m_expectedCharges[std::size_t(row)] = expectedCharges(row);
}

/// What it costs at least in addition to pair the open @p row with nothing.
double PartialPairing::expectedCharges(int row) const
{
    double sum = 0;
    for (const int child : m_problem->childRows[std::size_t(row)]) {
        const int charged = m_problem->chargedRow[std::size_t(child)];
        if (charged == atTop || charged == row)
            sum += m_problem->wrongParentCost;
        else if (charged > row)
            sum += m_problem->expectedCharge[std::size_t(charged)];
    }
    return sum;
}

void PartialPairing::decide(int column)
{
    const int row = firstOpenRow();
    // Now it is certain what is charged.
    for (const int child : m_problem->childRows[std::size_t(row)]) {
        const int charged = m_problem->chargedRow[std::size_t(child)];
        if (charged <= row)
            continue;
        const auto c = std::size_t(charged);
        if (m_problem->expectedColumn[c] != unknown
            && hasPairedAncestor(row, m_problem->expectedColumn[c]))
            m_costs += m_problem->expectedCharge[c];
        m_givenBack[c] = 0;
    }
    if (column == alone)
        leaveAlone(row);
    else
        pairWith(row, column);
}

double PartialPairing::costsOfAll() const
{
    const auto leftOver = std::count(m_rowOf.begin(), m_rowOf.end(), alone);
    return m_costs + aloneColumnCost() * double(leftOver) - (leftOver % 2 == 1 ? oddDiscount() : 0);
}

/// Whether an ancestor of @p row is paired with @p column.
bool PartialPairing::hasPairedAncestor(int row, int column) const
{
    const int partner = m_rowOf[std::size_t(column)];
    if (partner == alone)
        return false;
    int ancestor = m_problem->parentRow[std::size_t(row)];
    while (ancestor > partner) // parents stand before their children
        ancestor = m_problem->parentRow[std::size_t(ancestor)];
    return ancestor == partner;
}

void PartialPairing::leaveAlone(int row)
{
    const auto r = std::size_t(row);
    m_costs += m_aloneCost[r];
    m_partners.push_back(alone);
    for (const int child : m_problem->childRows[r]) {
        setAncestor(child, m_ancestorPartner[r]);
        charge(m_problem->chargedRow[std::size_t(child)]);
    }
}

void PartialPairing::pairWith(int row, int column)
{
    const auto r = std::size_t(row);
    m_costs += pairCost(row, column);
    m_partners.push_back(column);
    m_rowOf[std::size_t(column)] = row;
    for (const int child : m_problem->childRows[r]) {
        m_parentPartner[std::size_t(child)] = column;
        setAncestor(child, column);
    }
    for (const int child : m_problem->childColumns[std::size_t(column)])
        m_pairedParent[std::size_t(child)] = column;
}

void PartialPairing::setAncestor(int row, int partner)
{
    const auto r = std::size_t(row);
    m_ancestorPartner[r] = partner;
    if (m_isCharged[r] != 0)
        m_expectedParent[r] = partner;
}

/// A row is the child of one that is paired with nothing; @p charged is the one that is looked up
/// for it.
void PartialPairing::charge(int charged)
{
    if (charged == unknown)
        return;
    const double cost = m_problem->wrongParentCost;
    if (charged == atTop) { // its parent counts as changed
        m_costs += cost;
        return;
    }
    const auto r = std::size_t(charged);
    const int expected = m_ancestorPartner[r];
    if (charged >= firstOpenRow()) {
        m_isCharged[r] = 1;
        m_expectedParent[r] = expected;
        m_aloneCost[r] += cost;
        return;
    }
    const int column = m_partners[r];
    const bool changed = column == alone
        || (expected != unknown && expected != m_problem->parentColumn[std::size_t(column)]);
    if (changed)
        m_costs += cost;
}

} // namespace tresk
