#pragma once

#include <utils/mutex.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace tarn::guard {

class Call;

// What the limit of a request lies between.
constexpr std::chrono::milliseconds shortest{1};
constexpr std::chrono::milliseconds longest = std::chrono::years{10};

/// An object for the whole program, also for what is destroyed after everything else.
template <class Type>
[[nodiscard]] Type& immortal()
{
    static auto* const object = new Type; // NOLINT(cppcoreguidelines-owning-memory)
    return *object;
}

/// Looks at all requests of the program now and then, and ends those that take too long. Thread-safe.
class Watchdog {
public:
    using Ticks = std::uint64_t; ///< milliseconds of a clock that is cheap to read and goes slow, never fast

    /// The only one. Looks from the first call on, until the program has left `main`.
    static Watchdog& instance();

    Watchdog();
    ~Watchdog() = delete;

    /// The time, as of the last look.
    [[nodiscard]] static Ticks now() { return s_now.load(std::memory_order_relaxed); }

    /// Looks often enough for requests that may take `limit`, until `release`.
    void watch(std::chrono::milliseconds limit);
    void release(std::chrono::milliseconds limit);

    /// Takes over a call that it will look at for as long as the program runs.
    Call& add(std::unique_ptr<Call> call);

    /// How many calls there are: at most as many as there were at a time.
    [[nodiscard]] std::size_t calls() const;

    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    void run();
    void stop();

    /// How long to wait until the next look.
    [[nodiscard]] std::chrono::milliseconds interval() const TARN_REQUIRES(m_mutex);

    /// Ends what takes too long.
    void lookAtAll() TARN_REQUIRES(m_mutex);

    static inline std::atomic<Ticks> s_now = 1;

    mutable utils::Mutex m_mutex;
    std::condition_variable_any m_changed;
    bool m_stop TARN_GUARDED_BY(m_mutex) = false;
    std::multiset<std::chrono::milliseconds> m_limits TARN_GUARDED_BY(m_mutex);
    /// Of the requests that the last look has left, and of those that may have been made since and are no longer among
    /// `m_limits`: the shortest.
    std::chrono::milliseconds m_left TARN_GUARDED_BY(m_mutex) = longest;
    std::vector<std::unique_ptr<Call>> m_calls TARN_GUARDED_BY(m_mutex);
    std::thread m_thread;
};

/// Of `limit`: how far apart the looks are.
[[nodiscard]] constexpr std::chrono::milliseconds lookInterval(std::chrono::milliseconds limit)
{
    return std::max(limit / 16, std::chrono::milliseconds{1});
}

/// Whether more than `limit` has passed since `start`. Never too early: `start` lies up to one look before what it
/// stands for.
[[nodiscard]] inline bool isOver(std::chrono::milliseconds limit, Watchdog::Ticks start)
{
    return Watchdog::now() > start + static_cast<Watchdog::Ticks>((limit + lookInterval(limit)).count());
}

} // namespace tarn::guard
