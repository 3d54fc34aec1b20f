#include "footprint.h"

#include <support/processentries.h>

#include <fstream>
#include <iostream>
#include <string>

#include <malloc.h>
#include <unistd.h>

// Sanitizers have an allocator of their own, and say so through this function of theirs.
extern "C" [[gnu::weak]] std::size_t __sanitizer_get_current_allocated_bytes(); // NOLINT(bugprone-reserved-identifier)

namespace tarn::soak {

namespace {

using tests::entriesOf;
using tests::threadsDownTo;

// What the allocator keeps for the threads, and what Qt and the standard library make when it is needed first. A leak
// of the smallest object with every tenth cycle is more within 10^6 of them.
constexpr std::size_t allowedBytes = std::size_t{1} << 20U;

constexpr std::size_t allowedResident = std::size_t{64} << 20U;

std::size_t allocatedBytes()
{
    if (__sanitizer_get_current_allocated_bytes)
        return __sanitizer_get_current_allocated_bytes();
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

std::size_t residentBytes()
{
    std::ifstream statm{"/proc/self/statm"};
    std::size_t size = 0;
    std::size_t resident = 0;
    statm >> size >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

} // namespace

Footprint footprint()
{
    return {allocatedBytes(), residentBytes(), entriesOf("task"), entriesOf("fd")};
}

void compare(Ledger& ledger, const Footprint& before, const Footprint& after)
{
    const auto check = [&](const char* what, std::size_t from, std::size_t to, std::size_t allowed) {
        std::cerr << "soak: " << what << ": " << from << " after the warm-up, " << to << " at the end\n";
        if (to > from + allowed)
            ledger.note(Breach::Leaked, std::to_string(to - from) + ' ' + what);
    };
    check("allocated bytes", before.bytes, after.bytes, allowedBytes);
    check("resident bytes", before.resident, after.resident, allowedResident);
    check("threads", before.threads, threadsDownTo(before.threads), 0);
    check("file descriptors", before.files, after.files, 0);
}

} // namespace tarn::soak
