#pragma once

namespace tarn::tests {

/// Watches how the code of this program locks mutexes, and can make one fail. It sees the calls
/// that are compiled into the program, not those of shared libraries. Per thread.
struct MutexProbe {
    /// How many mutexes the calling thread has locked so far.
    [[nodiscard]] static int locks();

    /// How many of them it holds.
    [[nodiscard]] static int held();

    /// Lets `successes` more locks of the calling thread succeed and the one after them fail.
    static void failAfter(int successes);
};

} // namespace tarn::tests
