#ifndef TRESK_APPS_STEPPAIRS_H
#define TRESK_APPS_STEPPAIRS_H

#include "StepChanges.h"

#include <tresk/TreskDiff.h>

#include <QList>

namespace tresk::cli {

class HistoryTree;

/// Two steps that correspond, by their ids in their trees.
struct StepPair {
    int first;
    int second;
    QList<Change> changes;
    bool moved; ///< they hang under steps that do not correspond
};

/// What a way of pairing the steps of two histories comes to. Steps are in the order of the trees.
struct StepPairs {
    QList<StepPair> pairs;
    QList<int> onlyFirst;
    QList<int> onlySecond;

    /// Whether it shows no difference at all.
    bool areSame() const;
};

StepPairs stepPairs(const HistoryTree& first, const HistoryTree& second,
                    const TreskDiffResult& result);

} // namespace tresk::cli

#endif
