#pragma once

#include <guard/host.h>

#include <atomic>
#include <memory>
#include <string_view>
#include <system_error>

namespace tarn::guard {

/// One request under way: decides who may end it. Calls are used again and never destroyed, so that the watchdog can
/// look at any of them at any time.
///
/// Those who hold a call are its caller, while the operation has not returned, and the copies of the completion that
/// the device has. Once there are none the call is free again.
class Call {
public:
    Call() = default;
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    virtual ~Call() = default;

    void retain() { m_holders.fetch_add(1, std::memory_order_relaxed); }

    /// Ends the request as dropped if nobody is left who could end it.
    void release()
    {
        if (m_holders.fetch_sub(1, std::memory_order_acq_rel) == 1)
            free();
    }

    /// The operation has returned; the caller lets go.
    void onReturned()
    {
        m_isReturned.store(true, std::memory_order_relaxed);
        release();
    }

    /// The operation has thrown; the caller lets go. When this returns, no completion is running or will start.
    void onThrew();

    /// Ends the request if it has taken too long. On the watchdog's thread.
    void look();

protected:
    /// Makes a free call one for a new request, which can be ended from now on. Two hold it: the caller, and the
    /// completion that it is about to make.
    void prepare(const std::shared_ptr<Host>& host, sdk::Key control, std::string_view operation);

    /// The device completes the request: `step` calls the caller's completion, unless the request has ended.
    template <class Step>
    void complete(Step step)
    {
        if (claim())
            end(Phase::Completed, step);
        else
            reportCompletion();
    }

private:
    /// As wide as what a thread can wait for without a detour.
    enum class Phase : int {
        Idle, ///< never used
        Pending,
        Ending, ///< somebody calls the caller's completion
        Completed,
        TimedOut,
        Threw,
        Dropped,
    };

    /// Calls the caller's completion with `error`.
    virtual void fail(std::error_code error) = 0;

    /// Lets go of the caller's completion; the call is free from now on.
    virtual void recycle() = 0;

    [[nodiscard]] bool tryRetain();

    /// Whether the request is the calling thread's to end.
    [[nodiscard]] bool claim()
    {
        auto expected = m_phase.load(std::memory_order_relaxed);
        return expected == Phase::Pending
            && m_phase.compare_exchange_strong(expected, Phase::Ending, std::memory_order_acq_rel,
                                               std::memory_order_relaxed);
    }

    /// Nobody holds the call any more.
    void free();

    void setPhase(Phase phase) { m_phase.store(phase, std::memory_order_release); }

    /// Ends the request that is the calling thread's to end by `step`, whether or not it throws.
    template <class Step>
    void end(Phase phase, Step step)
    {
        const Ending ending{*this, phase};
        step();
    }

    class Ending {
    public:
        Ending(Call& call, Phase phase)
            : m_call{call}
            , m_phase{phase}
        {
        }
        Ending(const Ending&) = delete;
        Ending& operator=(const Ending&) = delete;
        ~Ending()
        {
            m_call.setPhase(m_phase);
            m_call.m_phase.notify_all();
        }

    private:
        Call& m_call;
        const Phase m_phase;
    };

    /// Ends the request that is the calling thread's to end, as the device does not.
    void endUnanswered(Phase phase, std::error_code error, Breach breach);

    void report(Breach breach, unsigned completions) const noexcept;
    void reportCompletion();

    std::atomic<Phase> m_phase = Phase::Idle;
    std::atomic<unsigned> m_holders = 0;
    std::atomic<unsigned> m_lateCompletions = 0;
    std::atomic<bool> m_isReturned = false;
    Watchdog::Ticks m_start = 0;
    sdk::Key m_control{};
    std::string_view m_operation;
    std::weak_ptr<Host> m_host;
    const Host* m_hostAddress
        = nullptr; ///< of `m_host`, to compare; nothing else comes to stand there while it is held
};

} // namespace tarn::guard
