#include "tree/OptionalMatching.h"

#include "tree/PartialPairing.h"

#include <algorithm>
#include <limits>

namespace tresk {

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double rounding = 1e-7; // smaller differences of costs do not count

std::size_t at(int place)
{
    return std::size_t(place);
}

} // namespace

/// Rows seen from the columns' side, or the other way round.
template <bool FromRows>
class OptionalMatching::Side {
public:
    Side(OptionalMatching& matching, const PartialPairing& pairing)
        : m_pairing(pairing)
        , prices(FromRows ? matching.m_rowPrices : matching.m_columnPrices)
        , otherPrices(FromRows ? matching.m_columnPrices : matching.m_rowPrices)
        , mates(FromRows ? matching.m_columnOf : matching.m_rowOf)
        , otherMates(FromRows ? matching.m_rowOf : matching.m_columnOf)
    {
    }

    double cost(int own, int other) const
    {
        return FromRows ? m_pairing.pairCost(own, other) : m_pairing.pairCost(other, own);
    }
    double aloneCost(int own) const
    {
        return FromRows ? m_pairing.aloneRowCost(own) : m_pairing.aloneColumnCost();
    }
    bool isOpenOther(int other) const
    {
        return FromRows ? m_pairing.isOpenColumn(other) : other >= m_pairing.firstOpenRow();
    }

private:
    const PartialPairing& m_pairing;

public:
    std::vector<double>& prices;
    std::vector<double>& otherPrices;
    std::vector<int>& mates;
    std::vector<int>& otherMates;
};

/// A search for the cheapest way to pair some of the own side, by taking partners from others that
/// then take others or are left alone.
template <bool FromRows>
class OptionalMatching::PathSearch {
public:
    PathSearch(OptionalMatching& matching, const PartialPairing& pairing)
        : m_side(matching, pairing)
        , m_distances(m_side.otherPrices.size(), infinite)
        , m_from(m_side.otherPrices.size(), alone)
        , m_reached(m_side.prices.size(), infinite)
        , m_isStart(m_side.prices.size(), false)
    {
        for (int other = 0; other < int(m_side.otherPrices.size()); ++other) {
            if (m_side.isOpenOther(other))
                m_open.push_back(other);
        }
    }

    /// The way may begin at @p own, at this cost.
    void addStart(int own, double distance)
    {
        m_isStart[at(own)] = true;
        reach(own, distance);
    }
    /// The way must not end with a partner that was alone.
    void keepOthersAlone() { m_endsAtOthers = false; }
    /// The way must not end with one of the own side left alone.
    void keepOwnPaired() { m_endsAtOwn = false; }

    /// Finds the way, if it costs less than @p limit, and returns what it costs; else @p limit.
    double run(double limit)
    {
        m_limit = limit;
        while (!m_open.empty()) {
            const auto nearest = std::min_element(m_open.begin(), m_open.end(), [&](int a, int b) {
                return m_distances[at(a)] < m_distances[at(b)];
            });
            const int other = *nearest;
            const double distance = m_distances[at(other)];
            if (distance >= std::min(m_endCost, m_limit))
                break;
            m_open.erase(nearest);
            const int own = m_side.otherMates[at(other)];
            if (own == alone && m_endsAtOthers) {
                m_endCost = distance;
                m_endOther = other;
                break;
            }
            m_settled.push_back(other);
            if (own != alone && distance < m_reached[at(own)]) {
                m_isStart[at(own)] = false;
                reach(own, distance);
            }
        }
        return std::min(m_endCost, m_limit);
    }

    /// Adjusts the prices to a way of cost @p length, so that all that is on it costs nothing
    /// extra.
    void adjustPrices(double length)
    {
        for (std::size_t own = 0; own < m_reached.size(); ++own) {
            if (m_reached[own] < length)
                m_side.prices[own] += length - m_reached[own];
        }
        for (const int other : m_settled)
            m_side.otherPrices[at(other)] -= length - m_distances[at(other)];
    }

    /// Pairs along the way that was found.
    void apply(std::vector<int>& mates, std::vector<int>& otherMates) const
    {
        int other = m_endOther;
        if (other == alone) {
            other = mates[at(m_endOwn)];
            mates[at(m_endOwn)] = alone;
            if (m_isStart[at(m_endOwn)]) {
                release(other, otherMates);
                return;
            }
        }
        for (;;) {
            const int own = m_from[at(other)];
            const int before = mates[at(own)];
            mates[at(own)] = other;
            otherMates[at(other)] = own;
            if (m_isStart[at(own)]) {
                release(before, otherMates);
                return;
            }
            other = before;
        }
    }

private:
    void reach(int own, double distance)
    {
        m_reached[at(own)] = distance;
        const double price = m_side.prices[at(own)];
        const double leaving = distance + m_side.aloneCost(own) - price;
        if (m_endsAtOwn && leaving < m_endCost) {
            m_endCost = leaving;
            m_endOwn = own;
        }
        for (const int other : m_open) {
            const double extra = m_side.cost(own, other) - price - m_side.otherPrices[at(other)];
            const double way = distance + std::max(extra, 0.0);
            if (way < m_distances[at(other)]) {
                m_distances[at(other)] = way;
                m_from[at(other)] = own;
            }
        }
    }

    static void release(int other, std::vector<int>& otherMates)
    {
        if (other != alone)
            otherMates[at(other)] = alone;
    }

    Side<FromRows> m_side;
    std::vector<double> m_distances; ///< of the other side
    std::vector<int> m_from; ///< of the other side: who takes it
    std::vector<double> m_reached; ///< of the own side
    std::vector<bool> m_isStart; ///< of the own side: reached first, not because its mate is taken
    std::vector<int> m_open; ///< of the other side, not settled yet
    std::vector<int> m_settled;
    bool m_endsAtOthers = true;
    bool m_endsAtOwn = true;
    double m_limit = infinite;
    double m_endCost = infinite;
    int m_endOther = alone;
    int m_endOwn = alone;
};

OptionalMatching::OptionalMatching(const PartialPairing& pairing)
    : m_columnPrices(at(pairing.problem().columns), pairing.aloneColumnCost())
    , m_columnOf(at(pairing.problem().rows), alone)
    , m_rowOf(at(pairing.problem().columns), alone)
{
    for (int row = 0; row < pairing.problem().rows; ++row) {
        double price = pairing.aloneRowCost(row);
        for (int column = 0; column < pairing.problem().columns; ++column)
            price = std::min(price, pairing.pairCost(row, column) - pairing.aloneColumnCost());
        m_rowPrices.push_back(price);
    }
    update(pairing);
}

void OptionalMatching::update(const PartialPairing& pairing)
{
    const int rows = pairing.problem().rows;
    const auto part = [this](int row, int column) {
        m_columnOf[at(row)] = alone;
        m_rowOf[at(column)] = alone;
    };
    for (int row = 0; row < rows; ++row) {
        const int column = m_columnOf[at(row)];
        if (column == alone)
            continue;
        const double paid = m_rowPrices[at(row)] + m_columnPrices[at(column)];
        if (row < pairing.firstOpenRow() || !pairing.isOpenColumn(column)
            || pairing.pairCost(row, column) > paid + rounding)
            part(row, column);
    }
    mend(pairing);
    chooseParity(pairing);
}

/// Finds partners for those that lost theirs, or whose costs of staying alone have grown.
void OptionalMatching::mend(const PartialPairing& pairing)
{
    m_evenCosts = 0;
    for (int row = pairing.firstOpenRow(); row < pairing.problem().rows; ++row) {
        const double lacking = pairing.aloneRowCost(row) - m_rowPrices[at(row)];
        if (m_columnOf[at(row)] == alone && lacking > rounding)
            addWay<true>(pairing, row);
    }
    for (int column = 0; column < pairing.problem().columns; ++column) {
        const double lacking = pairing.aloneColumnCost() - m_columnPrices[at(column)];
        if (pairing.isOpenColumn(column) && m_rowOf[at(column)] == alone && lacking > rounding)
            addWay<false>(pairing, column);
    }
    for (int row = pairing.firstOpenRow(); row < pairing.problem().rows; ++row)
        m_evenCosts += m_rowPrices[at(row)];
    for (int column = 0; column < pairing.problem().columns; ++column)
        m_evenCosts += pairing.isOpenColumn(column) ? m_columnPrices[at(column)] : 0;
}

template <bool FromRows>
void OptionalMatching::addWay(const PartialPairing& pairing, int start)
{
    PathSearch<FromRows> search(*this, pairing);
    search.addStart(start, 0);
    search.adjustPrices(search.run(infinite));
    search.apply(FromRows ? m_columnOf : m_rowOf, FromRows ? m_rowOf : m_columnOf);
}

/// Takes into account that columns of an odd number cost less than the price of each. The cheapest
/// solution with one pair more or less is one shortest path away.
void OptionalMatching::chooseParity(const PartialPairing& pairing)
{
    m_solution = m_columnOf;
    int leftOver = 0;
    for (int column = 0; column < pairing.problem().columns; ++column)
        leftOver += pairing.isOpenColumn(column) && m_rowOf[at(column)] == alone ? 1 : 0;
    if (leftOver % 2 == 1) {
        m_costs = m_evenCosts - pairing.oddDiscount();
        return;
    }
    m_costs = m_evenCosts;
    PathSearch<true> more(*this, pairing);
    PathSearch<true> fewer(*this, pairing);
    more.keepOwnPaired();
    fewer.keepOthersAlone();
    for (int row = pairing.firstOpenRow(); row < pairing.problem().rows; ++row) {
        const int column = m_columnOf[at(row)];
        if (column == alone)
            more.addStart(row, 0);
        else
            fewer.addStart(row, pairing.aloneColumnCost() - m_columnPrices[at(column)]);
    }
    const double costOfMore = more.run(pairing.oddDiscount());
    const double costOfFewer = fewer.run(costOfMore);
    if (costOfFewer >= pairing.oddDiscount())
        return;
    m_costs += costOfFewer - pairing.oddDiscount();
    std::vector<int> rowOf = m_rowOf;
    (costOfFewer < costOfMore ? fewer : more).apply(m_solution, rowOf);
}

double OptionalMatching::slack(const PartialPairing& pairing, int row, int column) const
{
    const double cost = column == alone
        ? pairing.aloneRowCost(row)
        : pairing.pairCost(row, column) - m_columnPrices[at(column)];
    return std::max(cost - m_rowPrices[at(row)], 0.0);
}

double OptionalMatching::costsWith(const PartialPairing& pairing, int row, int column) const
{
    return m_evenCosts + slack(pairing, row, column) - pairing.oddDiscount();
}

} // namespace tresk
