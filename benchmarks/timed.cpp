// Times the ways of a benchmark: each is a benchmark `row/way` of Google Benchmark, run interleaved with the others,
// three times. scripts/bench runs the program five times and takes the medians of all.

#include "ways.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <climits>
#include <cstdlib>
#include <random>
#include <stop_token>
#include <thread>
#include <vector>

#include <malloc.h>

namespace tarn::benchmarks {
namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point begin;
std::chrono::duration<double> elapsed{};

/// Of the same code on the same data one run may take a quarter longer than another, for where their blocks happen to
/// lie. Each repetition therefore begins with another free place, and scripts/bench runs each program several times.
void measure(benchmark::State& state, const Way& way)
{
    static std::minstd_rand random{std::random_device{}()};
    const std::vector<char> shift(random() % 4096);
    consume(shift);
    while (state.KeepRunningBatch(state.max_iterations)) {
        elapsed = {};
        way.run(static_cast<std::uint64_t>(state.max_iterations));
        state.SetIterationTime(elapsed.count());
    }
}

} // namespace

const bool isCounted = false;

Measured::Measured()
{
    begin = Clock::now();
}

Measured::~Measured()
{
    elapsed += Clock::now() - begin;
}

} // namespace tarn::benchmarks

int main(int argc, char** argv)
{
    using namespace tarn::benchmarks;
    // What is freed stays with the program, as in one that has run for long; but for the largest blocks, which each
    // time come from the system. Else it depends on the order of what is freed who pays for that.
    ::mallopt(M_MMAP_THRESHOLD, 32 << 20);
    ::mallopt(M_TRIM_THRESHOLD, INT_MAX);
    // A program with one thread would be spared the atomic operations.
    const std::jthread other{[](const std::stop_token& stop) {
        while (!stop.stop_requested())
            std::this_thread::sleep_for(std::chrono::milliseconds{100});
    }};
    // What the command line says comes later and therefore counts.
    char interleaved[] = "--benchmark_enable_random_interleaving=true";
    char repetitions[] = "--benchmark_repetitions=3";
    char seconds[] = "--benchmark_min_time=0.05";
    std::vector<char*> arguments{argv[0], interleaved, repetitions, seconds};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int argumentCount = static_cast<int>(arguments.size());
    benchmark::Initialize(&argumentCount, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(argumentCount, arguments.data()))
        return EXIT_FAILURE;
    const std::vector<char> shift(std::random_device{}() % 4096);
    consume(shift);
    const auto ways = allWays();
    for (const auto& way : ways) {
        auto* const timed = benchmark::RegisterBenchmark((way.row + '/' + way.name).c_str(), &measure, way);
        timed->UseManualTime();
        if (way.times != 0)
            timed->Iterations(static_cast<benchmark::IterationCount>(way.times));
    }
    return benchmark::RunSpecifiedBenchmarks() > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
