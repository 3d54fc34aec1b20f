#pragma once

namespace tarn::tests {

/// Watches how the code of this program locks mutexes, and can make one fail. It sees the calls
/// that are compiled into the program, not those of shared libraries. Per thread.
///
/// A thread that locks a mutex which it holds gets the error of a deadlock instead of one.
struct MutexProbe {
    /// How many mutexes the calling thread has locked so far.
    [[nodiscard]] static int locks();

    /// How many of them it holds.
    [[nodiscard]] static int held();

    /// Lets `successes` more locks of the calling thread succeed and the one after them fail.
    static void failAfter(int successes);

    struct Hooks {
        void (*pass)() = nullptr; ///< called before each lock and after each unlock
        /// Called, as often as it takes, instead of waiting for a mutex that another thread holds. It answers whether
        /// it makes sense to go on; if not, the lock fails with the error of a deadlock.
        bool (*wait)() = nullptr;
    };

    /// What the calling thread does from now on when it locks and unlocks.
    static void hook(Hooks hooks);
};

/// How many mutexes `operation` locks on the calling thread.
template <class Operation>
[[nodiscard]] int locksOf(Operation operation)
{
    const int before = MutexProbe::locks();
    operation();
    return MutexProbe::locks() - before;
}

} // namespace tarn::tests
