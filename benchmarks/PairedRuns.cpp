#include "PairedRuns.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace treskbench {

namespace {

double processorSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

double seconds(const timeval& time)
{
    return double(time.tv_sec) + double(time.tv_usec) * 1e-6;
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

[[noreturn]] void giveUp(const std::string& command)
{
    std::fprintf(stderr, "benchmark: %s failed\n", command.c_str());
    std::exit(1);
}

double runProcess(const std::vector<std::string>& command)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int error = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(),
                                   environ);
    posix_spawn_file_actions_destroy(&actions);

    int status = 0;
    rusage usage{};
    if (error != 0 || wait4(child, &status, 0, &usage) != child)
        giveUp(command.front());
    if (!WIFEXITED(status) || WEXITSTATUS(status) > 1) // 1 is grep's word for nothing found
        giveUp(command.front());
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

} // namespace

Timed inProcess(const std::function<void()>& code)
{
    return [code] {
        const double start = processorSeconds();
        code();
        return processorSeconds() - start;
    };
}

Timed wholeProcess(const std::vector<std::string>& command)
{
    return [command] { return runProcess(command); };
}

void runPairs(benchmark::State& state, const Timed& ours, const Timed& peer)
{
    peer();
    ours();
    std::vector<double> peerTimes;
    std::vector<double> ratios;
    for ([[maybe_unused]] auto _ : state) {
        const double ourTime = ours();
        const double peerTime = peer();
        state.SetIterationTime(ourTime);
        peerTimes.push_back(peerTime);
        ratios.push_back(ourTime / peerTime);
    }
    state.counters["peer_s"] = median(peerTimes);
    state.counters["ratio"] = median(ratios);
}

} // namespace treskbench
