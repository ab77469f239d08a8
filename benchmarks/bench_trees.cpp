// Trees of steps: reading them from documents, and comparing them.

#include "Data.h"
#include "PairedRuns.h"
#include "TreeComparison.h"

#include <tresk/SummaryCreator.h>
#include <tresk/TreskParser.h>
#include <tresk/WorkflowTree.h>

using namespace treskbench;
using namespace tresk;

namespace {

void readTree(benchmark::State& state)
{
    const QString document = writeNestedHistory(QStringLiteral("nested.pdf"), 100, 10);
    const auto tree = [&] {
        WorkflowTree read;
        read.treeFromTreskFile(document);
        if (read.nodeIds().size() != 1001)
            qFatal("wrong tree");
    };
    // What any reader has to do: inflate the embedded documents.
    const auto contents = [&] {
        TreskParser parser;
        if (!parser.open(document))
            qFatal("cannot read benchmark data");
        for (int i = 0; i < parser.getNumFiles(); ++i)
            benchmark::DoNotOptimize(parser.getFileContent(i));
    };
    runPairs(state, inProcess(tree), inProcess(contents));
}
BENCHMARK(readTree)
    ->Name("tree of 1000 steps in 100 embedded documents / inflating these in memory")
    ->UseManualTime()
    ->Iterations(9);

enum Kind {
    Distinct, ///< two histories of the same steps, which are all different
    Equal ///< two histories of one step again and again
};

WorkflowTree history(int steps, Kind kind)
{
    WorkflowTree tree;
    for (int i = 0; i < steps; ++i) {
        Workflowstep step;
        step.title = kind == Distinct ? QStringLiteral("step %1").arg(i) : QStringLiteral("step");
        tree.addTreeNode(-1, step, QString(), QString());
    }
    return tree;
}

void compare(benchmark::State& state, Kind kind)
{
    const int steps = int(state.range(0));
    compareTrees(state, history(steps, kind), history(steps, kind));
}

void compareDistinct(benchmark::State& state)
{
    compare(state, Distinct);
}
BENCHMARK(compareDistinct)
    ->Name("comparing equal histories of distinct steps / cubic assignment, by steps")
    ->Arg(10)
    ->Arg(50)
    ->Arg(100)
    ->Arg(200)
    ->Arg(400)
    ->UseManualTime()
    ->Iterations(3);

void compareEqual(benchmark::State& state)
{
    compare(state, Equal);
}
BENCHMARK(compareEqual)
    ->Name("comparing histories of one step again and again / cubic assignment, by steps")
    ->Arg(10)
    ->Arg(20)
    ->Arg(50)
    ->UseManualTime()
    ->Iterations(3);

} // namespace

BENCHMARK_MAIN();
