#ifndef TRESK_TESTS_WORKERS_H
#define TRESK_TESTS_WORKERS_H

#include "DamageDocuments.h"
#include "Mutation.h"

#include <QVector>

namespace tresktest {

/// What came of the variants of one document.
struct DamageCount {
    int variants = 0;
    int failures = 0;
    int valid = 0; ///< sections and files found to be valid
    int invalid = 0;
    int slowestMilliseconds = -1; ///< of processor time
    int slowest = -1; ///< index of that variant
};

/// Examines the variants of @p document that @p mutations make, in @p jobs processes at once, with
/// files in @p folder. What fails is printed as it is found.
///
/// A variant at which a process dies, or takes longer than a second of processor time, is a failure
/// as others are: the next process goes on behind it.
DamageCount examineInProcesses(const DamageDocument& document, const QVector<Mutation>& mutations,
                               int jobs, const QString& folder);

} // namespace tresktest

#endif
