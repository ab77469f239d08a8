#include "TreeComparison.h"

#include "Assignment.h"
#include "PairedRuns.h"

#include <tresk/CostMatrix.h>
#include <tresk/Path.h>
#include <tresk/PriorityQueue.h>
#include <tresk/TreskDiff.h>
#include <tresk/WorkflowstepCosts.h>

#include "tree/PairingSearch.h"

#include <QLoggingCategory>
#include <QRegularExpression>

#include <sys/resource.h>

using namespace tresk;

namespace treskbench {

namespace {

constexpr int mostOpenPaths = 400000; // as TreskDiff has it

double peakMebibytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024;
}

/// The number of paths that the plain search pops. @p gaveUp tells whether it has found nothing.
int poppedPaths(PathExpander& expander, bool& gaveUp)
{
    PriorityQueue<QSharedPointer<Path>> queue;
    queue.push(QSharedPointer<Path>::create(&expander), 0);
    gaveUp = false;
    for (int popped = 1;; ++popped) {
        const QSharedPointer<Path> path = queue.pop().first;
        if (path->reachedGoal())
            return popped;
        path->expand(queue);
        gaveUp = queue.size() > mostOpenPaths;
        if (gaveUp)
            return popped;
    }
}

/// The difference of the two numbers in a message: what was found costs, and others may cost.
int gapIn(const QString& message)
{
    const QRegularExpression twoNumbers(QStringLiteral("(-?[0-9]+)\\D*?(-?[0-9]+)"));
    const QRegularExpressionMatch match = twoNumbers.match(message);
    return match.captured(1).toInt() - match.captured(2).toInt();
}

} // namespace

void compareTrees(benchmark::State& state, const WorkflowTree& first, const WorkflowTree& second)
{
    QLoggingCategory::setFilterRules(QStringLiteral("tresk.debug=false"));
    WorkflowstepCosts costs;
    const TreskDiff diff(first, second, &costs);
    int gap = 0;
    QObject::connect(&diff, &TreskDiff::log, &diff,
                     [&](const QString& message) { gap = gapIn(message); });
    const auto findMatch = [&] {
        if (!diff.findBestMatch())
            qFatal("no result");
    };
    const CostMatrix matrix(first, second, &costs);
    const int steps = int(first.nodeIds().size());
    const auto assignment = [&] {
        benchmark::DoNotOptimize(
            assignmentCost(steps, [&](int i, int j) { return double(matrix.costs(i, j)); }));
    };
    runPairs(state, inProcess(findMatch), inProcess(assignment));
    state.counters["peak_MiB"] = peakMebibytes();
    state.counters["gap"] = gap;
    PathExpander expander(&first, &second, &matrix);
    bool gaveUp = false;
    state.counters["popped"] = poppedPaths(expander, gaveUp);
    state.counters["expanded"] = gaveUp ? findPairings(first, second, matrix, expander, 1).expanded
                                        : 0;
}

} // namespace treskbench
