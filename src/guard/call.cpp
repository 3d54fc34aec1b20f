#include <guard/call.h>

#include <guard/error.h>

namespace tarn::guard {

void Call::prepare(const std::shared_ptr<Host>& host, sdk::Key control, std::string_view operation)
{
    if (m_hostAddress != host.get()) {
        m_host = host;
        m_hostAddress = host.get();
    }
    m_control = control;
    m_operation = operation;
    m_start = Watchdog::now();
    m_lateCompletions.store(0, std::memory_order_relaxed);
    m_isReturned.store(false, std::memory_order_relaxed);
    m_holders.store(2, std::memory_order_relaxed);
    setPhase(Phase::Pending);
}

void Call::free()
{
    if (claim())
        endUnanswered(Phase::Dropped, Error::Dropped, Breach::Dropped);
    recycle();
}

void Call::onThrew()
{
    if (claim())
        setPhase(Phase::Threw);
    m_phase.wait(Phase::Ending, std::memory_order_acquire);
    if (m_phase.load(std::memory_order_acquire) == Phase::Completed)
        report(Breach::CompletedAndThrew, 1);
    release();
}

void Call::look()
{
    if (m_phase.load(std::memory_order_acquire) != Phase::Pending || !tryRetain())
        return;
    const auto host = m_host.lock();
    if (host && host->isOverdue(m_start) && claim())
        endUnanswered(Phase::TimedOut, Error::TimedOut,
                      m_isReturned.load(std::memory_order_relaxed) ? Breach::TimedOut : Breach::NotReturned);
    release();
}

bool Call::tryRetain()
{
    auto holders = m_holders.load(std::memory_order_relaxed);
    while (holders != 0) {
        if (m_holders.compare_exchange_weak(holders, holders + 1, std::memory_order_acquire, std::memory_order_relaxed))
            return true;
    }
    return false;
}

void Call::endUnanswered(Phase phase, std::error_code error, Breach breach)
{
    end(phase, [&] {
        report(breach, 0); // first, so that reports come in the order of what they tell
        fail(error);
    });
}

void Call::report(Breach breach, unsigned completions) const noexcept
{
    if (const auto host = m_host.lock())
        host->report({breach, m_control, m_operation, completions});
}

void Call::reportCompletion()
{
    const auto late = m_lateCompletions.fetch_add(1, std::memory_order_relaxed) + 1;
    m_phase.wait(Phase::Ending, std::memory_order_acquire);
    switch (m_phase.load(std::memory_order_acquire)) {
    case Phase::TimedOut:
        return report(Breach::CompletedLate, late);
    case Phase::Threw:
        return report(Breach::CompletedAndThrew, late);
    default:
        return report(Breach::CompletedAgain, late + 1);
    }
}

} // namespace tarn::guard
