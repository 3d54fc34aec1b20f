#include <simulator/operations.h>

#include <algorithm>
#include <future>

namespace tarn::simulator {

namespace {

constexpr Duration forGood = std::chrono::years{100}; ///< longer than any instrument lives

/// The end of an operation that is to throw although it will be completed.
void throwAfter(const Faults::Decision& fault)
{
    if (fault.misbehaviour == Misbehaviour::ThrowLate)
        throw DeviceFault{};
}

} // namespace

/// What goes wrong with an operation; nothing if the instrument's own thread asks for it.
Faults::Decision Operations::decide(Faults::Decision (Faults::*next)())
{
    const auto fault = m_executor.isCurrent() ? Faults::Decision{} : (m_faults.*next)();
    if (fault.throws)
        throw DeviceFault{};
    return fault;
}

void Operations::disturbCall()
{
    const auto fault = decide(&Faults::nextCall);
    if (fault.drops)
        m_executor.post({}, [this, fault] { m_drop(fault.dropFor); }, Executor::AtStop::Discard);
    if (fault.delay > Duration{})
        m_clock->sleep(fault.delay);
}

void Operations::start(Finish finish)
{
    const auto fault = decide(&Faults::nextRequest);
    submit(m_latency + fault.delay, [this, fault, finish = std::move(finish)]() mutable {
        if (fault.drops)
            drop(fault.dropFor);
        report(fault, finish(fault.failure));
    });
    throwAfter(fault);
}

void Operations::submit(Duration delay, Executor::Task task)
{
    if (m_mode == CompletionMode::Thread) {
        m_executor.post(delay, std::move(task));
        return;
    }
    if (delay > Duration{} && !m_executor.isCurrent())
        m_clock->sleep(delay);
    task();
}

/// The only way by which the end of a request reaches whoever made it: here the instrument misbehaves.
void Operations::report(const Faults::Decision& fault, Report report)
{
    switch (fault.misbehaviour) {
    case Misbehaviour::None:
        return report();
    case Misbehaviour::Twice:
        report();
        return report();
    case Misbehaviour::Drop:
        return;
    case Misbehaviour::DropControls:
        return drop(fault.dropFor);
    case Misbehaviour::Keep:
        return m_executor.post(forGood, std::move(report), Executor::AtStop::Discard);
    case Misbehaviour::AtEnd:
        return m_executor.post(forGood, std::move(report));
    case Misbehaviour::Late:
    case Misbehaviour::ThrowLate:
        return m_executor.post(fault.lateness, std::move(report));
    }
}

/// A long operation on its way.
struct Operations::Run {
    std::shared_ptr<LongOperation> operation;
    Faults::Decision fault;
    std::function<void(std::error_code)> complete;
    Duration time{}; ///< when the next piece is done
    std::uint32_t done = 0;
    bool isDue = false; ///< of one that waits: its latency is over
    bool hasTurn = false; ///< no other one runs
    bool isDisturbed = false; ///< as far as it is to be
};

std::shared_ptr<Operations::Run> Operations::makeRun(std::shared_ptr<LongOperation> operation)
{
    auto run = std::make_shared<Run>();
    run->fault = decide(&Faults::nextLongOperation);
    run->complete = [this, &run = *run](std::error_code result) { report(run, result); };
    run->operation = std::move(operation);
    return run;
}

void Operations::report(const Run& run, std::error_code result)
{
    report(run.fault, [operation = run.operation, result] { operation->complete(result); });
}

void Operations::request(std::shared_ptr<LongOperation> operation)
{
    const auto run = makeRun(std::move(operation));
    const auto fault = run->fault;
    if (m_mode == CompletionMode::Thread)
        m_executor.post(m_latency + fault.delay, [this, run] { carryOut(run); });
    else if (m_executor.isCurrent()) // nobody to wait for
        carryOutHere(*run);
    else
        carryOutAndWait(run);
    throwAfter(fault);
}

void Operations::carryOutHere(Run& run)
{
    for (bool isRunning = begin(run); isRunning;)
        isRunning = goOn(run);
}

void Operations::carryOutAndWait(const std::shared_ptr<Run>& run)
{
    std::promise<std::error_code> result;
    run->complete = [&result](std::error_code code) { result.set_value(code); };
    m_executor.post(m_latency + run->fault.delay, [this, run] { carryOut(run); });
    report(*run, result.get_future().get());
}

void Operations::enqueue(std::shared_ptr<LongOperation> operation)
{
    const auto run = makeRun(std::move(operation));
    {
        const utils::MutexLock lock{m_mutex};
        m_waiting.push_back(run);
    }
    m_executor.post(m_latency + run->fault.delay, [this, run] {
        {
            const utils::MutexLock lock{m_mutex};
            run->isDue = true;
        }
        carryOutNext();
    });
    throwAfter(run->fault);
}

/// Carries out the first one that waits, if it can be its turn.
void Operations::carryOutNext()
{
    if (const auto run = takeNext())
        carryOut(run);
}

/// The memory device is free again. The caller reports an end next, which comes first, and after which the instrument
/// may be gone.
void Operations::release()
{
    m_isBusy = false;
    m_executor.post({}, [this] { carryOutNext(); });
}

std::shared_ptr<Operations::Run> Operations::takeNext()
{
    const utils::MutexLock lock{m_mutex};
    if (m_waiting.empty() || !m_waiting.front()->isDue || m_isBusy.exchange(true))
        return nullptr;
    auto run = std::move(m_waiting.front());
    m_waiting.pop_front();
    run->hasTurn = true;
    return run;
}

void Operations::carryOut(const std::shared_ptr<Run>& run)
{
    if (begin(*run))
        schedule(run);
}

/// True: there is work to do.
bool Operations::begin(Run& run)
{
    auto refusal = run.fault.failure;
    if (refusal.value() == 0) {
        run.hasTurn = run.hasTurn || !m_isBusy.exchange(true);
        refusal = run.hasTurn ? run.operation->begin() : Error::Busy;
        m_busyRefusals += run.hasTurn ? 0U : 1U;
    }
    if (refusal.value() != 0) {
        if (run.hasTurn)
            release();
        if (run.fault.drops)
            drop(run.fault.dropFor);
        run.complete(refusal);
        return false;
    }
    run.time = m_clock->now();
    run.operation->notify(0);
    return true;
}

/// Does a piece of the work. True: there is more.
bool Operations::goOn(Run& run)
{
    auto& operation = *run.operation;
    const auto next = run.done + std::min(operation.piece(), operation.total() - run.done);
    if (!run.isDisturbed && next > operation.total() / 2) {
        run.isDisturbed = true;
        if (run.fault.interruption.value() != 0)
            return end(run, run.fault.interruption);
        if (run.fault.drops)
            drop(run.fault.dropFor);
    }
    if (const auto failure = operation.work(run.done, next))
        return end(run, failure);
    run.done = next;
    operation.notify(run.done);
    return run.done < operation.total() || end(run, {});
}

/// False, as there is no more to do.
bool Operations::end(Run& run, std::error_code result)
{
    result = run.operation->close(result);
    release();
    if (run.fault.interruption.value() != 0 && result == run.fault.interruption) {
        if (result == Error::PowerLoss)
            m_losePower();
        drop(run.fault.dropFor);
    }
    run.complete(result);
    return false;
}

void Operations::schedule(const std::shared_ptr<Run>& run)
{
    const auto& operation = *run->operation;
    const auto next = run->done + std::min(operation.piece(), operation.total() - run->done);
    run->time += operation.time(run->done, next);
    m_executor.postAt(std::max(run->time, m_clock->now()), [this, run] {
        if (goOn(*run))
            schedule(run);
    });
}

void Operations::reoffer()
{
    if (m_mode == CompletionMode::Inline && m_executor.isCurrent())
        m_executor.post({}, [this] { m_drop({}); }, Executor::AtStop::Discard);
    else
        drop({});
}

/// Nothing once the executor has stopped: the device may be gone then.
void Operations::drop(Duration away)
{
    m_executor.run([this, away] { m_drop(away); }, Executor::AtStop::Discard);
}

} // namespace tarn::simulator
