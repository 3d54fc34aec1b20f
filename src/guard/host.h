#pragma once

#include <guard/guard.h>
#include <guard/watchdog.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <utility>

namespace tarn::guard {

/// What the controls of one guarded device share. Thread-safe.
class Host {
public:
    explicit Host(Options options)
        : m_limit{std::clamp(options.limit, shortest, longest)}
        , m_observer{std::move(options.observer)}
    {
        Watchdog::instance().watch(m_limit);
    }

    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    ~Host() { Watchdog::instance().release(m_limit); }

    /// How long a request may take without progress.
    [[nodiscard]] std::chrono::milliseconds limit() const { return m_limit; }

    /// The device has come further with some operation.
    void onProgress() noexcept
    {
        m_progress.store(Watchdog::now(), std::memory_order_relaxed);
        if (m_observer)
            m_observer->onProgress();
    }

    [[nodiscard]] Watchdog::Ticks lastProgress() const { return m_progress.load(std::memory_order_relaxed); }

    void report(const BreachReport& report) const noexcept
    {
        if (m_observer)
            m_observer->onBreach(report);
    }

private:
    const std::chrono::milliseconds m_limit;
    const std::shared_ptr<IBreachObserver> m_observer;
    std::atomic<Watchdog::Ticks> m_progress = 0;
};

} // namespace tarn::guard
