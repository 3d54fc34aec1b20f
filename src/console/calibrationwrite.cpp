#include <console/calibrationwrite.h>

#include <fmt/format.h>

#include <condition_variable>
#include <mutex>
#include <utility>

namespace tarn::console {

struct CalibrationWrite::State {
    /// A write that was under way already may be heard as well. It is none of ours until ours has
    /// started, which goes unheard while the controls are away.
    [[nodiscard]] bool isOurs() const { return hasStarted || hasMissed; }

    std::mutex mutex;
    std::condition_variable changed;
    bool hasStarted = false;
    bool hasMissed = false;
    bool mayBeAway = true;
    std::optional<WriteEnd> end;
};

CalibrationWrite::CalibrationWrite(const Instrument& instrument, std::uint64_t registryKey,
                                   std::function<void(LongRequest::Progress)> onProgress)
    : m_instrument{instrument}
    , m_registryKey{registryKey}
    , m_onProgress{std::move(onProgress)}
    , m_state{std::make_shared<State>()}
    , m_connection{QObject::connect(&instrument.lifecycle(), &LifecycleWatch::changed, [state = m_state] {
        const std::scoped_lock lock{state->mutex};
        state->hasMissed = true;
        state->mayBeAway = true;
        state->changed.notify_all();
    })}
{
}

CalibrationWrite::~CalibrationWrite()
{
    QObject::disconnect(m_connection);
}

WriteEnd CalibrationWrite::wait()
{
    auto& [mutex, changed, hasStarted, hasMissed, mayBeAway, end] = *m_state;
    std::unique_lock lock{mutex};
    for (;;) {
        changed.wait(lock, [&] { return end || mayBeAway; });
        if (end)
            return *end;
        mayBeAway = false;
        lock.unlock();
        try {
            m_instrument.awaitControl(m_registryKey);
            lock.lock();
        } catch (const Error&) {
            lock.lock();
            return end.value_or(std::unexpected{WriteFailure{std::nullopt, hasStarted}});
        }
    }
}

void CalibrationWrite::started()
{
    const std::scoped_lock lock{m_state->mutex};
    m_state->hasStarted = true;
}

void CalibrationWrite::progress(std::uint32_t percent)
{
    {
        const std::scoped_lock lock{m_state->mutex};
        if (!m_state->isOurs())
            return;
        m_state->hasStarted = true;
    }
    m_onProgress({.total = 100, .done = percent});
}

void CalibrationWrite::finished()
{
    const std::scoped_lock lock{m_state->mutex};
    if (m_state->end || !m_state->isOurs())
        return;
    m_state->end.emplace();
    m_state->changed.notify_all();
}

void CalibrationWrite::failed(std::string reason)
{
    const std::scoped_lock lock{m_state->mutex};
    if (m_state->end)
        return;
    m_state->end = std::unexpected{WriteFailure{std::move(reason), m_state->hasStarted}};
    m_state->changed.notify_all();
}

Error writeFailed(const Change& change, const WriteFailure& failure, const std::optional<LongRequest::Progress>& last)
{
    if (!failure.reason)
        return changeLost(change, last);
    if (!failure.hasStarted)
        return Error{ErrorCode::Failed,
                     fmt::format("{} was refused by the instrument: {}; it began nothing, so {} should be as before",
                                 change.doing, *failure.reason, change.target),
                     "mend what the error is about; check that the instrument is not protected against writing"};
    return Error{ErrorCode::Failed,
                 fmt::format("{} failed at {} %: {}; {} should be as before", change.doing, last ? last->done : 0,
                             *failure.reason, change.target),
                 change.advice};
}

} // namespace tarn::console
