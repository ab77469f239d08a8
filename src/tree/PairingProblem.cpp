#include "tree/PairingProblem.h"

#include <tresk/CostMatrix.h>
#include <tresk/WorkflowTree.h>

#include "tree/HashOrder.h"

#include <algorithm>
#include <cmath>

namespace tresk {

namespace {

constexpr double largestPrice = 1e9;
// So many prices, up to so large, add up to what floats hold in quarters.
constexpr double largestRoundPrice = 1000;
constexpr int mostRoundPrices = 4000;

QHash<int, int> placesOf(const QList<int>& ids)
{
    QHash<int, int> places;
    places.insert(-1, atTop);
    for (int i = 0; i < ids.size(); ++i)
        places.insert(ids.at(i), i);
    return places;
}

/// The places of the parents of all nodes of @p tree.
std::vector<int> parentsOf(const WorkflowTree& tree, const QHash<int, int>& places)
{
    std::vector<int> parents;
    const QList<int> ids = tree.nodeIds();
    for (const int id : ids)
        parents.push_back(places.value(tree.parent(id), unknown));
    return parents;
}

/// The rows by whose places in the table of decisions their changes of parent are looked up.
QList<int> rowsInTable(const QList<int>& ids, const QHash<int, int>& places)
{
    HashOrder order;
    order.insert(-1);
    for (const int id : ids)
        order.insert(id);
    QList<int> rows;
    const QList<int> keys = order.keys();
    for (const int key : keys)
        rows.append(places.value(key));
    return rows;
}

} // namespace

double PairingProblem::tolerance(double sum) const
{
    const double ofOneFloat = 1.2e-7;
    return grain > 0 ? grain / 2 : -ofOneFloat * (std::abs(sum) + 100);
}

PairingProblem::PairingProblem(const WorkflowTree& tree1, const WorkflowTree& tree2,
                               const CostMatrix& matrix)
    : aloneCost(double(matrix.costsUnmatchedNode()))
    , wrongParentCost(double(matrix.costsWrongParent()))
{
    const QList<int> ids1 = tree1.nodeIds();
    const QList<int> ids2 = tree2.nodeIds();
    rows = int(ids1.size());
    columns = int(ids2.size());
    setPrices(ids1, ids2, matrix);
    const QHash<int, int> places = placesOf(ids1);
    parentRow = parentsOf(tree1, places);
    parentColumn = parentsOf(tree2, placesOf(ids2));
    setChildren();
    setCharges(ids1, places);
}

void PairingProblem::setPrices(const QList<int>& ids1, const QList<int>& ids2,
                               const CostMatrix& matrix)
{
    if (rows + columns > mostRoundPrices)
        grain = 0;
    prices.reserve(std::size_t(rows) * std::size_t(columns));
    for (const int a : ids1) {
        for (const int b : ids2) {
            const auto price = double(matrix.costs(a, b));
            if (!(std::abs(price) <= largestRoundPrice) || std::floor(price * 4) < price * 4)
                grain = 0;
            // Others cannot be added up; the order of results is none then.
            prices.push_back(std::isnan(price) ? 0
                                               : std::clamp(price, -largestPrice, largestPrice));
        }
    }
}

void PairingProblem::setChildren()
{
    childRows.resize(std::size_t(rows));
    for (int row = 0; row < rows; ++row) {
        int& parent = parentRow[std::size_t(row)];
        if (parent >= row)
            parent = unknown; // it is not decided yet when this row is
        if (parent >= 0)
            childRows[std::size_t(parent)].push_back(row);
    }
    childColumns.resize(std::size_t(columns));
    for (int column = 0; column < columns; ++column) {
        const int parent = parentColumn[std::size_t(column)];
        if (parent >= 0)
            childColumns[std::size_t(parent)].push_back(column);
    }
}

void PairingProblem::setCharges(const QList<int>& ids1, const QHash<int, int>& places)
{
    chargedRow.assign(std::size_t(rows), unknown);
    chargingRow.assign(std::size_t(rows), unknown);
    expectedCharge.assign(std::size_t(rows), 0.0);
    expectedColumn.assign(std::size_t(rows), unknown);
    const QList<int> table = rowsInTable(ids1, places);
    for (int row = 0; row < rows; ++row) {
        const int parent = parentRow[std::size_t(row)];
        const int charged = table.value(ids1.at(row), unknown);
        chargedRow[std::size_t(row)] = charged;
        if (charged > parent && parent >= 0)
            chargingRow[std::size_t(charged)] = parent;
    }
}

void PairingProblem::preferLikeSubtrees()
{
    if (!(grain > 0))
        return;
    const auto width = std::size_t(columns);
    const double dearest = 2.5 * aloneCost; // of a pair that is not better left alone
    std::vector<double> unlike(prices.size());
    for (int row = rows - 1; row >= 0; --row) {
        const std::vector<int>& children = childRows[std::size_t(row)];
        for (int column = columns - 1; column >= 0; --column) {
            const std::vector<int>& others = childColumns[std::size_t(column)];
            const std::size_t most = std::max(children.size(), others.size());
            double sum = std::clamp(price(row, column), 0.0, dearest) / dearest
                + double(most - children.size());
            for (const int child : children) {
                double least = 1;
                for (const int other : others)
                    least = std::min(least,
                                     unlike[std::size_t(child) * width + std::size_t(other)]);
                sum += least;
            }
            unlike[std::size_t(row) * width + std::size_t(column)] = sum / double(most + 1);
        }
    }
    const double most = 0.2 * grain / rows;
    for (int row = 0; row < rows; ++row) {
        const int parent1 = parentRow[std::size_t(row)];
        for (int column = 0; column < columns; ++column) {
            const std::size_t place = std::size_t(row) * width + std::size_t(column);
            const int parent2 = parentColumn[std::size_t(column)];
            double unlikeParents = parent1 == atTop && parent2 == atTop ? 0 : 1;
            if (parent1 >= 0 && parent2 >= 0)
                unlikeParents = unlike[std::size_t(parent1) * width + std::size_t(parent2)];
            prices[place] += most * (unlike[place] + unlikeParents);
        }
    }
}

} // namespace tresk
