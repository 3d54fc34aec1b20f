#include "ways.h"

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <stop_token>
#include <thread>
#include <vector>

namespace {

thread_local std::uint64_t made = 0;

void* allocate(std::size_t size)
{
    ++made;
    if (void* const block = std::malloc(size > 0 ? size : 1)) // NOLINT(cppcoreguidelines-no-malloc)
        return block;
    throw std::bad_alloc{};
}

} // namespace

void* operator new(std::size_t size)
{
    return allocate(size);
}

void* operator new[](std::size_t size)
{
    return allocate(size);
}

void operator delete(void* block) noexcept
{
    std::free(block); // NOLINT(cppcoreguidelines-no-malloc)
}

void operator delete[](void* block) noexcept
{
    std::free(block); // NOLINT(cppcoreguidelines-no-malloc)
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block); // NOLINT(cppcoreguidelines-no-malloc)
}

void operator delete[](void* block, std::size_t) noexcept
{
    std::free(block); // NOLINT(cppcoreguidelines-no-malloc)
}

namespace tarn::benchmarks {

std::uint64_t allocations()
{
    return made;
}

int runAll(int argc, char** argv, void (*addAll)())
{
    // A program with one thread would be spared the atomic operations.
    const std::jthread other{[](const std::stop_token& stop) {
        while (!stop.stop_requested())
            std::this_thread::sleep_for(std::chrono::milliseconds{100});
    }};
    char interleaved[] = "--benchmark_enable_random_interleaving=true";
    char repetitions[] = "--benchmark_repetitions=9";
    char seconds[] = "--benchmark_min_time=0.05";
    char aggregates[] = "--benchmark_report_aggregates_only=true";
    std::vector<char*> arguments{argv[0], interleaved, repetitions, seconds, aggregates};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int argumentCount = static_cast<int>(arguments.size());
    benchmark::Initialize(&argumentCount, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(argumentCount, arguments.data()))
        return EXIT_FAILURE;
    addAll();
    return benchmark::RunSpecifiedBenchmarks() > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace tarn::benchmarks
