#pragma once

#include <guard/guard.h>
#include <guard/watchdog.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <utility>

namespace tarn::guard {

/// What the controls of one guarded device share. Thread-safe.
class Host {
public:
    explicit Host(Options options)
        : m_options{std::move(options)}
    {
        Watchdog::instance().watch(m_options.limit);
    }

    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    ~Host() { Watchdog::instance().release(m_options.limit); }

    /// The device has come further with some operation.
    void onProgress() noexcept
    {
        m_progress.store(Watchdog::now(), std::memory_order_relaxed);
        if (m_options.observer)
            m_options.observer->onProgress();
    }

    /// Whether a request that was made at `start` has taken longer than it may. Never too early: `start` and the last
    /// progress lie up to one look before what they stand for.
    [[nodiscard]] bool isOverdue(Watchdog::Ticks start) const
    {
        const auto since = std::max(start, m_progress.load(std::memory_order_relaxed));
        const auto patience = m_options.limit + lookInterval(m_options.limit);
        return Watchdog::now() > since + static_cast<Watchdog::Ticks>(patience.count());
    }

    void report(const BreachReport& report) const noexcept
    {
        if (m_options.observer)
            m_options.observer->onBreach(report);
    }

private:
    const Options m_options;
    std::atomic<Watchdog::Ticks> m_progress = 0;
};

} // namespace tarn::guard
