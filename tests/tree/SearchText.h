#ifndef TRESK_TESTS_SEARCHTEXT_H
#define TRESK_TESTS_SEARCHTEXT_H

#include "SearchModel.h"

#include <tresk/Path.h>
#include <tresk/WorkflowTree.h>
#include <tresk/WorkflowstepCosts.h>

#include <QString>

/// All that a search tells, as text.
namespace tresktest {

tresk::WorkflowTree treeOf(const ModelTree& model);

/// The prices of a problem.
class ModelCosts : public tresk::WorkflowstepCosts {
public:
    explicit ModelCosts(const ModelProblem& problem)
        : m_prices(problem.prices)
    {
    }
    float costs(const tresk::Workflowstep& a, const tresk::Workflowstep& b) const override;

private:
    std::vector<std::vector<float>> m_prices;
};

/// The problem itself, to be found again.
QString textOf(const ModelProblem& problem);

/// What the library finds for @p problem: the @p n best results with partners and changed parents
/// of all nodes, the costs of their paths to the bit, and all debug lines, popped paths among them.
QString found(const ModelProblem& problem, int n);
/// The same as the model has found it.
QString textOf(const ModelProblem& problem, const ModelFindings& findings);

/// All that @p path tells: partners, changed parents, costs to the bit, debug lines.
QString stateOf(const ModelProblem& problem, const tresk::Path& path);
QString stateOf(const ModelProblem& problem, const ModelPath& path);

} // namespace tresktest

#endif
