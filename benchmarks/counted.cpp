// Counts what the ways of a benchmark cost: PROGRAM TIMES ROW/WAY..., where what is not among its ways is left out.
// Each is run so many times; a line says how many blocks it allocated, and callgrind, if the program runs in it, writes
// a file of its instructions.

#include "ways.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <stop_token>
#include <thread>

#include <valgrind/callgrind.h>

namespace {

thread_local bool isMeasured = false;
thread_local std::uint64_t allocated = 0;

} // namespace

// Whatever allocates does so here, `new` too, but for blocks of another alignment.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

void* malloc(std::size_t size)
{
    allocated += isMeasured;
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    allocated += isMeasured;
    return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size)
{
    allocated += isMeasured;
    return __libc_realloc(block, size);
}
}

namespace tarn::benchmarks {

const bool isCounted = true;

Measured::Measured()
{
    isMeasured = true;
    CALLGRIND_TOGGLE_COLLECT;
}

Measured::~Measured()
{
    CALLGRIND_TOGGLE_COLLECT;
    isMeasured = false;
}

} // namespace tarn::benchmarks

int main(int argc, char** argv)
{
    using namespace tarn::benchmarks;
    if (argc < 2 || std::atoi(argv[1]) <= 0) {
        std::cerr << "usage: " << argv[0] << " TIMES ROW/WAY...\n";
        return EXIT_FAILURE;
    }
    // A program with one thread would be spared the atomic operations.
    const std::jthread other{[](const std::stop_token& stop) {
        while (!stop.stop_requested())
            std::this_thread::sleep_for(std::chrono::milliseconds{10});
    }};
    for (const auto& way : allWays()) {
        const auto name = way.row + '/' + way.name;
        if (std::find(argv + 2, argv + argc, name) == argv + argc)
            continue;
        allocated = 0;
        CALLGRIND_ZERO_STATS;
        way.run(static_cast<std::uint64_t>(std::atoi(argv[1])));
        CALLGRIND_DUMP_STATS_AT(name.c_str());
        std::cout << name << '\t' << allocated << '\n';
    }
}
