#include <simulator/clock.h>

namespace tarn::simulator {

void Clock::sleep(Duration duration)
{
    const auto until = now() + duration;
    const auto waiter = std::make_shared<Waiter>();
    attach(waiter);
    const utils::MutexLock lock{waiter->mutex};
    while (now() < until)
        wait(*waiter, until);
}

Duration SteadyClock::now() const
{
    return std::chrono::steady_clock::now() - m_start;
}

void SteadyClock::wait(Waiter& waiter, std::optional<Duration> until)
{
    if (until)
        waiter.changed.wait_for(waiter.mutex, *until - now());
    else
        waiter.changed.wait(waiter.mutex);
}

Duration ManualClock::now() const
{
    const utils::MutexLock lock{m_mutex};
    return m_now;
}

void ManualClock::wait(Waiter& waiter, std::optional<Duration> until)
{
    if (!until || now() < *until)
        waiter.changed.wait(waiter.mutex);
}

void ManualClock::attach(const std::shared_ptr<Waiter>& waiter)
{
    const utils::MutexLock lock{m_mutex};
    std::erase_if(m_waiters, [](const auto& known) { return known.expired(); });
    m_waiters.push_back(waiter);
}

void ManualClock::advance(Duration duration)
{
    std::vector<std::weak_ptr<Waiter>> waiters;
    {
        const utils::MutexLock lock{m_mutex};
        m_now += duration;
        waiters = m_waiters;
    }
    for (const auto& known : waiters) {
        if (const auto waiter = known.lock()) {
            // Whoever has looked at the old time holds this mutex until it waits.
            const utils::MutexLock lock{waiter->mutex};
            waiter->changed.notify_all();
        }
    }
}

} // namespace tarn::simulator
