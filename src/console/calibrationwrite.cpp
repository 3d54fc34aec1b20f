#include <console/calibrationwrite.h>

#include <fmt/format.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace tarn::console {

struct CalibrationWrite::State {
    /// Every write is heard, whoever asked for it, but one after the other in the order in which they
    /// were asked for. So the end of one that was under way before is not ours, and neither is
    /// anything until ours has started, which goes unheard while the controls are away.
    [[nodiscard]] bool isOurs() const { return hasStarted || (hasMissed && !isAnothers); }

    /// Locks the state for something that was heard.
    [[nodiscard]] std::unique_lock<std::mutex> hear()
    {
        std::unique_lock lock{mutex};
        silence = 0;
        return lock;
    }

    std::mutex mutex;
    std::condition_variable changed;
    bool isRequested = false;
    bool isAnothers = false; ///< a write that is none of ours is under way
    bool hasStarted = false;
    bool hasMissed = false;
    bool mayBeAway = true;
    int silence = 0; ///< for how many eighths of the limit
    std::optional<WriteEnd> end;
};

CalibrationWrite::CalibrationWrite(const Instrument& instrument, std::uint64_t registryKey,
                                   std::function<void(LongRequest::Progress)> onProgress)
    : m_instrument{instrument}
    , m_registryKey{registryKey}
    , m_onProgress{std::move(onProgress)}
    , m_state{std::make_unique<State>()}
{
    instrument.lifecycle().add(*this);
}

CalibrationWrite::~CalibrationWrite()
{
    m_instrument.lifecycle().remove(*this);
}

void CalibrationWrite::onLifecycleChanged()
{
    const bool isAway = m_instrument.lifecycle().isAway();
    const std::scoped_lock lock{m_state->mutex}; // it says nothing of the write
    if (isAway && m_state->isRequested)
        m_state->hasMissed = true;
    m_state->mayBeAway = true;
    m_state->changed.notify_all();
}

void CalibrationWrite::requested()
{
    const auto lock = m_state->hear();
    m_state->isRequested = true;
}

WriteEnd CalibrationWrite::wait()
{
    using Clock = std::chrono::steady_clock;
    // In parts, as a part in which the program is stopped counts no more than another. The first may be short.
    const auto part = Clock::duration{m_instrument.limit()} / 8;
    std::unique_lock lock{m_state->mutex};
    for (auto endOfPart = Clock::now() + part;;) {
        if (const auto& end = m_state->end)
            return *end;
        if (m_state->silence > 8)
            return std::unexpected{WriteFailure{std::nullopt, m_state->hasStarted, true}};
        if (!std::exchange(m_state->mayBeAway, false))
            m_state->changed.wait_until(lock, endOfPart);
        else if (!isBack(lock))
            return m_state->end.value_or(std::unexpected{WriteFailure{std::nullopt, m_state->hasStarted}});
        if (Clock::now() >= endOfPart) {
            ++m_state->silence;
            endOfPart = Clock::now() + part;
        }
    }
}

bool CalibrationWrite::isBack(std::unique_lock<std::mutex>& lock) const
{
    lock.unlock();
    bool isBack = true;
    try {
        m_instrument.awaitControl(m_registryKey);
    } catch (const Error&) {
        isBack = false;
    }
    lock.lock();
    return isBack;
}

void CalibrationWrite::started()
{
    const auto lock = m_state->hear();
    (m_state->isRequested ? m_state->hasStarted : m_state->isAnothers) = true;
}

void CalibrationWrite::progress(std::uint32_t percent)
{
    {
        const auto lock = m_state->hear();
        const bool isOurs = m_state->isOurs();
        (isOurs ? m_state->hasStarted : m_state->isAnothers) = true;
        if (!isOurs)
            return;
    }
    m_onProgress({.total = 100, .done = percent});
}

void CalibrationWrite::finished()
{
    const auto lock = m_state->hear();
    if (m_state->isOurs())
        endWith({});
    else
        m_state->isAnothers = false;
}

void CalibrationWrite::failed(std::string reason)
{
    const auto lock = m_state->hear();
    const bool isRefusal = m_state->isRequested && !m_state->isAnothers;
    if (m_state->isOurs() || isRefusal)
        endWith(std::unexpected{WriteFailure{std::move(reason), m_state->hasStarted}});
    else
        m_state->isAnothers = false;
}

void CalibrationWrite::endWith(WriteEnd end)
{
    if (m_state->end)
        return;
    m_state->end = std::move(end);
    m_state->changed.notify_all();
}

Error writeFailed(const Change& change, const WriteFailure& failure, const std::optional<LongRequest::Progress>& last)
{
    if (!failure.reason)
        return failure.isSilent ? changeUnanswered(change, last) : changeLost(change, last);
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
