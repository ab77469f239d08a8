#ifndef TRESK_WORKFLOWSTEPCOSTS_H
#define TRESK_WORKFLOWSTEPCOSTS_H

#include <tresk/Export.h>

namespace tresk {

struct Workflowstep;

/// What it costs to pair two steps in a comparison of trees. Derive from it for other prices.
class TRESK_EXPORT WorkflowstepCosts {
public:
    /// @{
    /// The usual prices; there is nothing to set.
    WorkflowstepCosts() = default;
    WorkflowstepCosts(const WorkflowstepCosts&) = default;
    WorkflowstepCosts& operator=(const WorkflowstepCosts&) = default;
    virtual ~WorkflowstepCosts();
    /// @}

    /// 50 for different titles, 30 for different tools and 20 for different descriptions, added
    /// up. Case counts; null and empty are the same. Nothing else is looked at.
    virtual float costs(const Workflowstep& a, const Workflowstep& b) const;
    /// 18. Comparisons use CostMatrix::costsWrongParent() instead.
    virtual float wrongParentCosts() const;
    /// 15. Comparisons use CostMatrix::costsUnmatchedNode() instead.
    virtual float unmatchedNodeCosts() const;
};

} // namespace tresk

#endif
