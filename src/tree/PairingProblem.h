#ifndef TRESK_TREE_PAIRINGPROBLEM_H
#define TRESK_TREE_PAIRINGPROBLEM_H

#include <QHash>
#include <QList>

#include <cstddef>
#include <vector>

namespace tresk {

class CostMatrix;
class WorkflowTree;

/// Stands for a partner: paired with nothing.
constexpr int alone = -1;
/// Stands for a parent: the node is at the top of its tree.
constexpr int atTop = -1;
/// Stands for a parent: there is none that matters, or it cannot be told yet.
constexpr int unknown = -2;

/// Two trees and their prices by places. Rows are the nodes of the first tree in the order in which
/// a Path decides on them, columns those of the second.
struct PairingProblem {
    PairingProblem(const WorkflowTree& tree1, const WorkflowTree& tree2, const CostMatrix& matrix);

    /// Makes pairs dearer whose subtrees and parents are not alike, by so little that it only
    /// decides between equal costs. Where floats are rounded it does nothing.
    void preferLikeSubtrees();

    double price(int row, int column) const
    {
        return prices[std::size_t(row) * std::size_t(columns) + std::size_t(column)];
    }

    /// How far sums of prices near @p sum may be off: because of what only decides between equal
    /// costs or, where floats are rounded, because of that; then the lower one counts.
    double tolerance(double sum) const;

    int rows;
    int columns;
    std::vector<double> prices; ///< row by row
    double aloneCost;
    double wrongParentCost;
    /// All costs are multiples of it, where they can be added up without rounding; else 0.
    double grain = 0.25;
    std::vector<int> parentRow; ///< of rows; unknown unless decided before them
    std::vector<int> parentColumn; ///< of columns
    std::vector<std::vector<int>> childRows; ///< the rows of which a row is the parent
    std::vector<std::vector<int>> childColumns; ///< the columns of which a column is the parent

    /// Of a row whose parent is paired with nothing: the row whose change of parent is charged for
    /// it. It is another one, as PathExpander::calcMissingParentCosts() has it. Or, if there is
    /// none, atTop where the charge is certain and unknown where there is no charge.
    std::vector<int> chargedRow;
    /// The other way round: the row whose parent charges this one; unknown if there is none.
    std::vector<int> chargingRow;
    /// What expectCharges() has chosen, of rows that may be charged: the part of the charge that is
    /// expected, and the column under which their partner is expected; unknown if that is open.
    std::vector<double> expectedCharge;
    std::vector<int> expectedColumn;

private:
    void setPrices(const QList<int>& ids1, const QList<int>& ids2, const CostMatrix& matrix);
    void setChildren();
    void setCharges(const QList<int>& ids1, const QHash<int, int>& places);
};

} // namespace tresk

#endif
