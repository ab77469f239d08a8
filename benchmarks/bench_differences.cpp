// Comparing histories that have little in common.

#include "Data.h"
#include "LargeHistories.h"
#include "TreeComparison.h"

#include <algorithm>

using namespace treskbench;
using namespace tresktest;

namespace {

void compare(benchmark::State& state, const Histories& histories)
{
    compareTrees(state, histories.first, histories.second);
}

void bySteps(benchmark::internal::Benchmark* benchmark)
{
    for (const int steps : {5, 10, 20, 40, 80, 160, 200}) {
        if (steps <= std::max(20, scaled(200)))
            benchmark->Arg(steps);
    }
    benchmark->UseManualTime()->Iterations(3);
}

void unrelated(benchmark::State& state)
{
    compare(state, unrelatedHistories(int(state.range(0))));
}
BENCHMARK(unrelated)->Name("unrelated histories / cubic assignment, by steps")->Apply(bySteps);

void mixedInGroups(benchmark::State& state)
{
    const Parents parents = groupedParents(int(state.range(0)), 5);
    compare(state, mixedHistories(parents, parents));
}
BENCHMARK(mixedInGroups)
    ->Name("half unrelated, a quarter changed, in nested groups / cubic assignment, by steps")
    ->Apply(bySteps);

void mixedInTrees(benchmark::State& state)
{
    const Parents parents = branchingParents(int(state.range(0)), 3);
    compare(state, mixedHistories(parents, parents));
}
BENCHMARK(mixedInTrees)
    ->Name("half unrelated, a quarter changed, three under each / cubic assignment, by steps")
    ->Apply(bySteps);

void mixedAnywhere(benchmark::State& state)
{
    const int steps = int(state.range(0));
    compare(state, mixedHistories(randomParents(steps, 1), randomParents(steps, 2)));
}
BENCHMARK(mixedAnywhere)
    ->Name("half unrelated, a quarter changed, under other parents / cubic assignment, by steps")
    ->Apply(bySteps);

} // namespace

BENCHMARK_MAIN();
