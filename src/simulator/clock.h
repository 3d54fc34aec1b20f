#pragma once

#include <simulator/export.h>
#include <utils/mutex.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <optional>
#include <vector>

namespace tarn::simulator {

/// Simulated time, counted from the moment when the clock was made, and differences of it.
using Duration = std::chrono::nanoseconds;

/// What a thread waits on: notified when something changed that it waits for.
struct Waiter {
    utils::Mutex mutex;
    std::condition_variable_any changed;
};

/// The time by which an instrument lives. Thread-safe.
class TARN_DEVICE_SIMULATOR_EXPORT Clock {
public:
    Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;
    virtual ~Clock() = default;

    [[nodiscard]] virtual Duration now() const = 0;

    /// Waits until `waiter` is notified or the clock has reached `until`; without `until`, for the
    /// notification alone. May return earlier. The caller holds the mutex and has attached the
    /// waiter.
    virtual void wait(Waiter& waiter, std::optional<Duration> until) TARN_REQUIRES(waiter.mutex) = 0;

    /// Makes the clock notify `waiter` whenever it jumps, for as long as the waiter lives.
    virtual void attach(const std::shared_ptr<Waiter>& waiter) = 0;

    /// Blocks the calling thread for `duration`.
    void sleep(Duration duration);
};

/// Real time: never jumps.
class TARN_DEVICE_SIMULATOR_EXPORT SteadyClock final : public Clock {
public:
    [[nodiscard]] Duration now() const override;
    void wait(Waiter& waiter, std::optional<Duration> until) override;
    void attach(const std::shared_ptr<Waiter>& /*waiter*/) override { }

private:
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

/// Time that stands still until it is told to go on, for tests. One clock may drive several
/// instruments.
class TARN_DEVICE_SIMULATOR_EXPORT ManualClock final : public Clock {
public:
    [[nodiscard]] Duration now() const override;
    void wait(Waiter& waiter, std::optional<Duration> until) override;
    void attach(const std::shared_ptr<Waiter>& waiter) override;

    /// Moves the time on and wakes whoever waits for it. Does not wait for what they do then.
    void advance(Duration duration);

private:
    mutable utils::Mutex m_mutex;
    Duration m_now TARN_GUARDED_BY(m_mutex){};
    std::vector<std::weak_ptr<Waiter>> m_waiters TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::simulator
