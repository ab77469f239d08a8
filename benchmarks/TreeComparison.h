#ifndef TRESK_BENCHMARKS_TREECOMPARISON_H
#define TRESK_BENCHMARKS_TREECOMPARISON_H

#include <tresk/WorkflowTree.h>

#include <benchmark/benchmark.h>

namespace treskbench {

/// Finds the best match of two trees of the same size, beside a cubic assignment solver for the
/// same prices. Also reports the paths that the plain search pops until it is done or gives up
/// ("popped"), the partial pairings that are looked at beyond that ("expanded"), how far from the
/// best the result may be ("gap"), and the peak memory of the process so far ("peak_MiB").
void compareTrees(benchmark::State& state, const tresk::WorkflowTree& first,
                  const tresk::WorkflowTree& second);

} // namespace treskbench

#endif
