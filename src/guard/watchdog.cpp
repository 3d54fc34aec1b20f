#include <guard/watchdog.h>

#include <guard/call.h>

namespace tarn::guard {

Watchdog& Watchdog::instance()
{
    struct Stop {
        Stop() = default;
        Stop(const Stop&) = delete;
        Stop& operator=(const Stop&) = delete;
        ~Stop() { immortal<Watchdog>().stop(); }
    };
    auto& watchdog = immortal<Watchdog>();
    static const Stop atExit;
    return watchdog;
}

Watchdog::Watchdog()
    : m_thread{[this] { run(); }}
{
}

void Watchdog::stop()
{
    {
        const utils::MutexLock lock{m_mutex};
        m_stop = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void Watchdog::watch(std::chrono::milliseconds limit)
{
    {
        const utils::MutexLock lock{m_mutex};
        m_limits.insert(limit);
    }
    m_changed.notify_all();
}

void Watchdog::release(std::chrono::milliseconds limit)
{
    const utils::MutexLock lock{m_mutex};
    m_limits.erase(m_limits.find(limit));
    m_left = std::min(m_left, limit);
}

Call& Watchdog::add(std::unique_ptr<Call> call)
{
    const utils::MutexLock lock{m_mutex};
    return *m_calls.emplace_back(std::move(call));
}

std::size_t Watchdog::calls() const
{
    const utils::MutexLock lock{m_mutex};
    return m_calls.size();
}

void Watchdog::run()
{
    using Clock = std::chrono::steady_clock;
    auto lastLook = Clock::now();
    m_mutex.lock();
    while (!m_stop) {
        // No more than one interval counts: a request that began a moment ago takes the last look for its beginning.
        const auto look = Clock::now();
        const auto elapsed
            = std::min(std::chrono::duration_cast<std::chrono::milliseconds>(look - lastLook), interval());
        s_now.store(now() + static_cast<Ticks>(elapsed.count()), std::memory_order_relaxed);
        lastLook = look;
        lookAtAll();
        if (!m_stop) // may have been set, and told, while a call was looked at
            m_changed.wait_for(m_mutex, interval());
    }
    m_mutex.unlock();
}

void Watchdog::lookAtAll()
{
    m_left = longest;
    // NOLINTNEXTLINE(modernize-loop-convert): others may be added meanwhile
    for (std::size_t i = 0; i < m_calls.size(); ++i) {
        auto& call = *m_calls[i];
        m_mutex.unlock();
        const auto limit = call.look();
        m_mutex.lock();
        m_left = std::min(m_left, limit);
    }
}

std::chrono::milliseconds Watchdog::interval() const
{
    return lookInterval(m_limits.empty() ? m_left : std::min(m_left, *m_limits.begin()));
}

} // namespace tarn::guard
