#include <guard/call.h>

#include <guard/error.h>

#include <algorithm>

namespace tarn::guard {

void Call::prepare(const std::shared_ptr<Host>& host, sdk::Key control, std::string_view operation)
{
    if (m_hostAddress != host.get()) {
        m_host = host;
        m_hostAddress = host.get();
        m_limit = host->limit();
    }
    m_control = control;
    m_operation = operation;
    m_callersThread = thisThread();
    m_since = Watchdog::now();
    m_state.store((2 * holder) | static_cast<State>(Phase::Pending), std::memory_order_release);
}

void Call::free()
{
    if (claim(Phase::Dropped)) {
        report(Breach::Dropped, 0); // first, so that reports come in the order of what they tell
        fail(Error::Dropped);
    }
    recycle();
}

void Call::onThrew()
{
    if (claim(Phase::Threw))
        forget();
    auto state = m_state.fetch_or(awaited, std::memory_order_acquire) | awaited;
    while (isEnding(state)) {
        m_state.wait(state, std::memory_order_acquire);
        state = m_state.load(std::memory_order_acquire);
    }
    if (phaseOf(state) == Phase::Completed)
        report(Breach::CompletedAndThrew, moreCompletionsOf(state) + 1);
    letGo(returned);
}

std::chrono::milliseconds Call::look()
{
    if (!tryRetain())
        return longest;
    const auto host = m_host.lock(); // hears of everything, whatever it leads to
    if (host)
        m_since = std::max(m_since, host->lastProgress());
    const auto limit = m_limit;
    if (isOver(limit, m_since) && claim(Phase::TimingOut, holder)) {
        const bool isReturned = (m_state.load(std::memory_order_relaxed) & returned) != 0;
        end([&] {
            report(isReturned ? Breach::TimedOut : Breach::NotReturned, 0);
            fail(Error::TimedOut);
        });
    }
    release();
    return limit;
}

bool Call::tryRetain()
{
    auto state = m_state.load(std::memory_order_relaxed);
    while (phaseOf(state) == Phase::Pending && holdersOf(state) != 0) {
        if (m_state.compare_exchange_weak(state, state + holder, std::memory_order_acquire, std::memory_order_relaxed))
            return true;
    }
    return false;
}

void Call::report(Breach breach, unsigned completions) const noexcept
{
    if (const auto host = m_host.lock())
        host->report({breach, m_control, m_operation, completions});
}

void Call::reportCompletion()
{
    const auto before = m_state.fetch_add(completion, std::memory_order_acq_rel);
    if (phaseOf(before) != Phase::TimingOut) // then the time-out is told first, by a thread that may wait for this one
        reportCompletion(before, moreCompletionsOf(before) + 1);
}

void Call::reportCompletion(State state, unsigned more) const noexcept
{
    switch (phaseOf(state)) {
    case Phase::TimingOut:
    case Phase::TimedOut:
        return report(Breach::CompletedLate, more);
    case Phase::Threw:
        return report(Breach::CompletedAndThrew, more);
    default:
        return report(Breach::CompletedAgain, more + 1);
    }
}

} // namespace tarn::guard
