#include <simulator/faults.h>

#include <utility>

namespace tarn::simulator {

namespace {

bool isDue(std::uint64_t count, std::uint64_t every)
{
    return every != 0 && count % every == 0;
}

} // namespace

DeviceFault::DeviceFault()
    : std::runtime_error{"simulated instrument: the operation was told to throw"}
{
}

Faults::Faults(const FaultPlan& plan, std::uint64_t seed)
    : m_plan{plan}
    , m_random{seed}
{
}

void Faults::setPlan(const FaultPlan& plan)
{
    const utils::MutexLock lock{m_mutex};
    m_plan = plan;
    m_operations = 0;
    m_requests = 0;
    m_longOperations = 0;
    letGo();
}

void Faults::endHanging()
{
    const utils::MutexLock lock{m_mutex};
    m_plan.hangEvery = 0;
    letGo();
}

void Faults::setArbiter(Arbiter arbiter)
{
    m_arbiter = std::move(arbiter);
}

Faults::Decision Faults::nextCall()
{
    return decide(&Faults::next);
}

Faults::Decision Faults::nextRequest()
{
    return decide(&Faults::request);
}

Faults::Decision Faults::nextLongOperation()
{
    return decide(&Faults::longOperation);
}

int Faults::hanging() const
{
    const utils::MutexLock lock{m_mutex};
    return m_hanging;
}

bool Faults::isWriteProtected() const
{
    const utils::MutexLock lock{m_mutex};
    return m_plan.writeProtect;
}

Faults::Decision Faults::decide(Decision (Faults::*decision)())
{
    Decision decided;
    {
        const utils::MutexLock lock{m_mutex};
        decided = (this->*decision)();
        if (decided.hangs)
            hang();
    }
    if (m_arbiter)
        m_arbiter(decided);
    return decided;
}

Faults::Decision Faults::longOperation()
{
    auto decision = request();
    ++m_longOperations;
    if (isDue(m_longOperations, m_plan.powerLossEvery))
        decision.interruption = Error::PowerLoss;
    else if (isDue(m_longOperations, m_plan.unplugEvery))
        decision.interruption = Error::Disconnected;
    return decision;
}

Faults::Decision Faults::request()
{
    auto decision = next();
    ++m_requests;
    if (decision.throws)
        return decision;
    decision.failure = std::exchange(m_plan.failNext, {});
    if (decision.failure.value() == 0 && isDue(m_requests, m_plan.failEvery))
        decision.failure = m_plan.failure;
    if (isDue(m_requests, m_plan.misbehaveEvery))
        decision.misbehaviour = m_plan.misbehaviour;
    return decision;
}

Faults::Decision Faults::next()
{
    Decision decision;
    ++m_operations;
    decision.throws = isDue(m_operations, m_plan.throwEvery);
    if (decision.throws)
        return decision;
    decision.hangs = isDue(m_operations, m_plan.hangEvery);
    decision.drops = isDue(m_operations, m_plan.dropEvery) || happens(m_plan.dropChance);
    decision.dropFor = m_plan.dropFor;
    if (isDue(m_operations, m_plan.delayEvery))
        decision.delay = m_plan.delay;
    decision.lateness = m_plan.delay;
    return decision;
}

void Faults::hang()
{
    const auto released = m_released;
    ++m_hanging;
    while (m_released == released)
        m_release.wait(m_mutex);
    --m_hanging;
}

void Faults::letGo()
{
    ++m_released;
    m_release.notify_all();
}

bool Faults::happens(double chance)
{
    // The standard distributions may differ from library to library, the generator does not.
    return chance > 0.0 && static_cast<double>(m_random() >> 11) * 0x1p-53 < chance;
}

} // namespace tarn::simulator
