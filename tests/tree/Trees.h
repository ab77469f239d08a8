#ifndef TRESK_TESTS_TREES_H
#define TRESK_TESTS_TREES_H

#include "MessageCapture.h"

#include <tresk/Summary.h>
#include <tresk/WorkflowTree.h>
#include <tresk/WorkflowstepCosts.h>

#include <QString>
#include <QStringList>

#include <map>
#include <utility>

/// Makes trees to compare, and prices for them.
namespace tresktest {

/// The step that @p text names: its title and, after colons, its tool and description.
tresk::Workflowstep stepOf(const QString& text);

/// The tree that @p text describes, children in brackets: "a(b,c(d)),e". Ids are given from left
/// to right, from @p firstId.
tresk::WorkflowTree treeOf(const char* text, int firstId = 0);

/// A tree of @p count steps titled "0", "1", ... all of them at the top.
tresk::WorkflowTree flatTree(int count);

/// Prices pairs of steps by their titles; other pairs cost @p otherwise.
class TitleCosts : public tresk::WorkflowstepCosts {
public:
    explicit TitleCosts(float otherwise = 0.0F)
        : m_otherwise(otherwise)
    {
    }

    TitleCosts& set(const char* title1, const char* title2, float cost);
    float costs(const tresk::Workflowstep& a, const tresk::Workflowstep& b) const override;

private:
    float m_otherwise;
    std::map<std::pair<QString, QString>, float> m_costs;
};

/// The debug lines of the library in @p capture; "other: ..." stands for any other message.
QStringList debugLines(const MessageCapture& capture);

} // namespace tresktest

#endif
