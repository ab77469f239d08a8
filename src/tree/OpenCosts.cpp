#include "tree/OpenCosts.h"

#include <algorithm>

namespace tresk {

OpenCosts::OpenCosts(const CostMatrix& matrix, const std::vector<int>& open1,
                     const std::vector<int>& open2)
    : m_unmatched(matrix.costsUnmatchedNode())
    , m_lowest1(open1.size(), Lowest{m_unmatched, noPlace, m_unmatched})
    , m_lowest2(open2.size(), m_unmatched)
{
    std::vector<int> columns(open2.size());
    std::transform(open2.begin(), open2.end(), columns.begin(),
                   [&](int id) { return matrix.column(id); });
    for (std::size_t i = 0; i < open1.size(); ++i) {
        const int row = matrix.row(open1[i]);
        Lowest& lowest = m_lowest1[i];
        for (std::size_t j = 0; row >= 0 && j < columns.size(); ++j) {
            if (columns[j] < 0)
                continue;
            const float cost = matrix.at(row, columns[j]);
            m_lowest2[j] = std::min(m_lowest2[j], cost);
            if (cost < lowest.cost)
                lowest = {cost, j, lowest.cost};
            else
                lowest.costElsewhere = std::min(lowest.costElsewhere, cost);
        }
    }
}

float OpenCosts::without(std::size_t taken) const
{
    return costs(taken);
}

float OpenCosts::withAll() const
{
    return costs(noPlace);
}

float OpenCosts::costs(std::size_t taken) const
{
    const int size1 = int(m_lowest1.size());
    const int size2 = int(m_lowest2.size()) - (taken == noPlace ? 0 : 1);
    float sum = m_unmatched * float(std::abs(size1 - size2));
    if (size1 < size2) {
        for (const Lowest& lowest : m_lowest1)
            sum += lowest.place == taken ? lowest.costElsewhere : lowest.cost;
    } else {
        for (std::size_t j = 0; j < m_lowest2.size(); ++j) {
            if (j != taken)
                sum += m_lowest2[j];
        }
    }
    return sum;
}

} // namespace tresk
