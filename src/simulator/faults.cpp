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

bool Faults::isWriteProtected() const
{
    const utils::MutexLock lock{m_mutex};
    return m_plan.writeProtect;
}

Faults::Decision Faults::decide(Decision (Faults::*plan)())
{
    Decision decision;
    {
        const utils::MutexLock lock{m_mutex};
        decision = (this->*plan)();
    }
    if (m_arbiter)
        m_arbiter(decision);
    return decision;
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
    return decision;
}

Faults::Decision Faults::next()
{
    ++m_operations;
    if (isDue(m_operations, m_plan.throwEvery))
        return {.throws = true, .drops = false, .dropFor = {}, .delay = {}, .failure = {}, .interruption = {}};
    return {
        .throws = false,
        .drops = isDue(m_operations, m_plan.dropEvery) || happens(m_plan.dropChance),
        .dropFor = m_plan.dropFor,
        .delay = isDue(m_operations, m_plan.delayEvery) ? m_plan.delay : Duration{},
        .failure = {},
        .interruption = {},
    };
}

bool Faults::happens(double chance)
{
    // The standard distributions may differ from library to library, the generator does not.
    return chance > 0.0 && static_cast<double>(m_random() >> 11) * 0x1p-53 < chance;
}

} // namespace tarn::simulator
