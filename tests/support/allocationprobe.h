#pragma once

#include <cstddef>

namespace tarn::tests {

/// Counts the large blocks of memory that the code of this program allocates with `new`, on all
/// threads. It sees the calls that are compiled into the program, not those of shared libraries.
struct AllocationProbe {
    /// What counts as large, in bytes: more than anything but an image needs.
    static constexpr std::size_t large = 1'000'000;

    /// How many such blocks have been allocated so far.
    [[nodiscard]] static int largeBlocks();

    /// Calls `watch`, unless it is null, with the size of every such block that is allocated.
    static void watchAllocations(void (*watch)(std::size_t size));

    /// Calls `watch`, unless it is null, whenever the program gives such a block back.
    static void watchFrees(void (*watch)());
};

} // namespace tarn::tests
