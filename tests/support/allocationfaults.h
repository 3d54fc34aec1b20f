#pragma once

namespace tarn::tests {

/// Lets allocations with `new` fail, of the program's and of its libraries alike. The program that is
/// linked with it has its own `operator new`.
struct AllocationFaults {
    /// From the `nth` allocation (from 1) that the calling thread makes from now on, lets that one
    /// fail or all that follow as well, until `disarm`.
    static void arm(int nth, bool forEver);

    /// Ends that. Whether an allocation has failed.
    static bool disarm();

    /// How many blocks are allocated and not freed, on all threads.
    [[nodiscard]] static long live();
};

} // namespace tarn::tests
