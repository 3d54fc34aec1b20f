#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <utility>

namespace tarn::benchmarks {

/// How many blocks this thread has allocated with `new` so far.
[[nodiscard]] std::uint64_t allocations();

/// Makes `run` one way of doing what a row of the table is about: `library`, or a peer. Each benchmark is named
/// `row/way` and tells, beside its time, how many blocks one call allocates.
template <class Run>
void add(const std::string& row, const std::string& way, Run run)
{
    benchmark::RegisterBenchmark((row + '/' + way).c_str(), [run = std::move(run)](benchmark::State& state) {
        run(); // what is made once for all does not count
        const auto before = allocations();
        run();
        const auto made = allocations() - before;
        for ([[maybe_unused]] const auto iteration : state)
            run();
        state.counters["allocations"] = static_cast<double>(made);
    });
}

/// The same, where each call uses up what `prepare` makes, whose time does not count.
template <class Prepare, class Run>
void add(const std::string& row, const std::string& way, Prepare prepare, Run run)
{
    const auto measure = [prepare = std::move(prepare), run = std::move(run)](benchmark::State& state) {
        std::uint64_t made = 0;
        for ([[maybe_unused]] const auto iteration : state) {
            auto input = prepare();
            const auto before = allocations();
            const auto start = std::chrono::steady_clock::now();
            run(std::move(input));
            state.SetIterationTime(std::chrono::duration<double>{std::chrono::steady_clock::now() - start}.count());
            made = allocations() - before;
        }
        state.counters["allocations"] = static_cast<double>(made);
    };
    benchmark::RegisterBenchmark((row + '/' + way).c_str(), measure)->UseManualTime();
}

/// What a program of benchmarks does: runs those that `addAll` registers, interleaved, and reports medians. What the
/// command line says comes later and therefore counts.
int runAll(int argc, char** argv, void (*addAll)());

} // namespace tarn::benchmarks
