#pragma once

#include "ledger.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <vector>

namespace tarn::soak {

/// Ends the program, as nothing can be taken apart any more, if a thread stays where it is for a minute; and says
/// where.
class Watch {
public:
    /// `threads` use the controls, and there are two more.
    Watch(Ledger& ledger, std::size_t threads)
        : m_ledger{ledger}
        , m_threads(threads + 2)
    {
    }

    /// The number of the thread that makes the instrument come and go.
    [[nodiscard]] std::size_t coming() const { return m_threads.size() - 2; }

    /// Of the one that begins everything and brings it to rest.
    [[nodiscard]] std::size_t main() const { return m_threads.size() - 1; }

    /// The thread of this number goes on, with `what`, which must live on.
    void goOn(std::size_t thread, const char* what)
    {
        m_threads[thread].what = what;
        ++m_threads[thread].steps;
    }

    /// It has nothing to do.
    void rest(std::size_t thread) { goOn(thread, nullptr); }

private:
    struct Thread {
        std::atomic<const char*> what = nullptr;
        std::atomic<std::uint64_t> steps = 0;
    };

    void watch(const std::stop_token& stop);
    [[noreturn]] void giveUp(std::size_t thread, const char* what);

    Ledger& m_ledger;
    std::vector<Thread> m_threads;
    std::jthread m_watcher{[this](const std::stop_token& stop) { watch(stop); }};
};

} // namespace tarn::soak
