#include "StepPairs.h"

#include "HistoryTree.h"

#include <algorithm>

namespace tresk::cli {

bool StepPairs::areSame() const
{
    return onlyFirst.isEmpty() && onlySecond.isEmpty()
        && std::all_of(pairs.begin(), pairs.end(),
                       [](const StepPair& pair) { return pair.changes.isEmpty() && !pair.moved; });
}

StepPairs stepPairs(const HistoryTree& first, const HistoryTree& second,
                    const TreskDiffResult& result)
{
    StepPairs groups;
    const QList<int> firstIds = first.tree().nodeIds();
    for (const int id : firstIds) {
        const int partner = result.association(id, FirstTree);
        if (partner < 0) {
            groups.onlyFirst += id;
            continue;
        }
        groups.pairs.append(
            {id, partner,
             changesBetween(*first.tree().workflowStep(id), *second.tree().workflowStep(partner)),
             result.parentChanged(id, FirstTree)});
    }
    const QList<int> secondIds = second.tree().nodeIds();
    for (const int id : secondIds) {
        if (result.association(id, SecondTree) < 0)
            groups.onlySecond += id;
    }
    return groups;
}

} // namespace tresk::cli
