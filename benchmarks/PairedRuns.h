#ifndef TRESK_BENCHMARKS_PAIREDRUNS_H
#define TRESK_BENCHMARKS_PAIREDRUNS_H

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

/// Measuring against a peer, so that what is measured holds on a machine whose speed drifts:
/// both run in turn, and the ratio is taken pair by pair.
namespace treskbench {

/// Something to be timed: does it once and returns the seconds of processor time it took.
using Timed = std::function<double()>;

/// Times a piece of code of this process.
Timed inProcess(const std::function<void()>& code);
/// Times a whole process, its start included. What it prints is thrown away; a command that
/// cannot be started or that fails ends the benchmark.
Timed wholeProcess(const std::vector<std::string>& command);

/// Runs @p ours and @p peer in turn, each once before it counts. Reports the time of ours
/// and, as counters, the median of the peer's seconds ("peer_s") and of the ratios of ours to
/// the peer's ("ratio").
void runPairs(benchmark::State& state, const Timed& ours, const Timed& peer);

} // namespace treskbench

#endif
