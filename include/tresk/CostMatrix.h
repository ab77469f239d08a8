#ifndef TRESK_COSTMATRIX_H
#define TRESK_COSTMATRIX_H

#include <tresk/Export.h>

#include <QHash>
#include <QList>

#include <vector>

namespace tresk {

class WorkflowTree;
class WorkflowstepCosts;

/// The costs of all pairs of nodes of two trees, asked once, and two fixed penalties.
class TRESK_EXPORT CostMatrix {
public:
    /// Asks @p costs, which must not be null, for every pair; keeps neither it nor the trees.
    CostMatrix(const WorkflowTree& tree1, const WorkflowTree& tree2,
               const WorkflowstepCosts* costs);

    /// The cost of pairing node @p i of the first tree with node @p j of the second; that of an
    /// unmatched node if there is no such pair.
    float costs(int i, int j) const;
    /// What a pair costs in addition whose parents are not paired with each other: 10, whatever
    /// the pricing of the steps says.
    float costsWrongParent() const { return m_wrongParent; }
    /// What a node costs that is paired with nothing: 15, likewise.
    float costsUnmatchedNode() const { return m_unmatchedNode; }
    /// Writes a debug line for each pair, first tree by first tree's node.
    void printMe() const;

private:
    friend class OpenCosts;

    int row(int i) const { return m_rows.value(i, -1); }
    int column(int j) const { return m_columns.value(j, -1); }
    float at(int row, int column) const
    {
        return m_costs[std::size_t(row) * std::size_t(m_ids2.size()) + std::size_t(column)];
    }

    QList<int> m_ids1;
    QList<int> m_ids2;
    QHash<int, int> m_rows; ///< places of the first tree's nodes
    QHash<int, int> m_columns; ///< places of the second tree's nodes
    std::vector<float> m_costs; ///< row by row
    float m_unmatchedNode = 15.0F;
    float m_wrongParent = 10.0F;
};

} // namespace tresk

#endif
