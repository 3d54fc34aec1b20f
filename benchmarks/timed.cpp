// Times the ways of a benchmark: each is a benchmark `row/way` of Google Benchmark, and comes six times, each time
// next to the others of its row. scripts/bench runs the program five times and holds against each other what stood
// together.

#include "ways.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <random>
#include <stop_token>
#include <thread>
#include <utility>
#include <vector>

#include <malloc.h>

namespace tarn::benchmarks {
namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point begin;
std::chrono::duration<double> elapsed{};

/// Of the same code on the same data one run may take a quarter longer than another, for where their blocks happen to
/// lie: `shift` bytes further on. Those that are compared have the same.
void measure(benchmark::State& state, const Way& way, std::size_t shift)
{
    const std::vector<char> taken(shift);
    consume(taken);
    while (state.KeepRunningBatch(state.max_iterations)) {
        elapsed = {};
        way.run(static_cast<std::uint64_t>(state.max_iterations));
        state.SetIterationTime(elapsed.count());
    }
}

void add(const Way& way, std::size_t shift)
{
    auto* const timed = benchmark::RegisterBenchmark((way.row + '/' + way.name).c_str(), &measure, way, shift);
    timed->UseManualTime();
    if (way.times != 0)
        timed->Iterations(static_cast<benchmark::IterationCount>(way.times));
}

/// The ways of each row, in the order of the rows.
std::vector<std::vector<Way>> rows()
{
    std::vector<std::vector<Way>> rows;
    for (auto& way : allWays()) {
        const auto row = std::ranges::find(rows, way.row, [](const auto& ways) { return ways.front().row; });
        (row == rows.end() ? rows.emplace_back() : *row).push_back(std::move(way));
    }
    return rows;
}

/// In a row anybody may come first, or after anybody: who does may pay for what the one before has left in the caches.
void addAll()
{
    constexpr auto longestShift = 4096U;
    std::minstd_rand random{std::random_device{}()};
    auto all = rows();
    for (int round = 0; round != 6; ++round) {
        for (auto& ways : all) {
            const auto shift = random() % longestShift;
            std::ranges::shuffle(ways, random);
            for (const auto& way : ways)
                add(way, shift);
        }
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
    char seconds[] = "--benchmark_min_time=0.02";
    std::vector<char*> arguments{argv[0], seconds};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int argumentCount = static_cast<int>(arguments.size());
    benchmark::Initialize(&argumentCount, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(argumentCount, arguments.data()))
        return EXIT_FAILURE;
    addAll();
    return benchmark::RunSpecifiedBenchmarks() > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
