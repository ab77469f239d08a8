#include <tresk/CostMatrix.h>

#include <tresk/WorkflowTree.h>
#include <tresk/WorkflowstepCosts.h>

#include "core/Logging.h"

#include <QDebug>

namespace tresk {

namespace {

QHash<int, int> placesOf(const QList<int>& ids)
{
    QHash<int, int> places;
    for (int i = 0; i < ids.size(); ++i)
        places.insert(ids.at(i), i);
    return places;
}

} // namespace

CostMatrix::CostMatrix(const WorkflowTree& tree1, const WorkflowTree& tree2,
                       const WorkflowstepCosts* costs)
    : m_ids1(tree1.nodeIds())
    , m_ids2(tree2.nodeIds())
    , m_rows(placesOf(m_ids1))
    , m_columns(placesOf(m_ids2))
{
    m_costs.reserve(std::size_t(m_ids1.size()) * std::size_t(m_ids2.size()));
    for (const int i : qAsConst(m_ids1)) {
        for (const int j : qAsConst(m_ids2))
            m_costs.push_back(costs->costs(*tree1.workflowStep(i), *tree2.workflowStep(j)));
    }
}

float CostMatrix::costs(int i, int j) const
{
    const int atRow = row(i);
    const int atColumn = column(j);
    return atRow < 0 || atColumn < 0 ? m_unmatchedNode : at(atRow, atColumn);
}

void CostMatrix::printMe() const
{
    for (const int i : m_ids1) {
        for (const int j : m_ids2)
            qCDebug(debugCategory).nospace() << "QPair(" << i << "," << j << ") " << costs(i, j);
    }
}

} // namespace tresk
