#pragma once

#include <guard/host.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string_view>
#include <system_error>

namespace tarn::guard {

/// One request under way: decides who may end it. Calls are used again and never destroyed, so that the watchdog can
/// look at any of them at any time.
///
/// Those who hold a call are its caller, while the operation has not returned, the copies of the completion that the
/// device has, and who calls the caller's completion, unless that is within the operation. Once there are none the call
/// is free again.
class Call {
public:
    Call() = default;
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    virtual ~Call() = default;

    void retain() { m_state.fetch_add(holder, std::memory_order_relaxed); }

    /// Ends the request as dropped if nobody is left who could end it.
    void release()
    {
        const auto state = m_state.load(std::memory_order_acquire);
        if (holdersOf(state) == 2 && phaseOf(state) != Phase::Pending && isWithinOperation(state))
            m_state.store(state - holder, std::memory_order_relaxed); // the other one is further up on this stack
        else
            letGo(0);
    }

    /// The operation has returned; the caller lets go.
    void onReturned() { letGo(returned); }

    /// The operation has thrown; the caller lets go. When this returns, no completion is running or will start.
    void onThrew();

    /// Ends the request if it has taken too long. How long it may take if it is still under way; otherwise `longest`.
    /// On the watchdog's thread.
    std::chrono::milliseconds look();

protected:
    /// Makes a free call one for a new request, which can be ended from now on. Two hold it: the caller, and the
    /// completion that it is about to make.
    void prepare(const std::shared_ptr<Host>& host, sdk::Key control, std::string_view operation);

    /// The device completes the request: `step` calls the caller's completion, unless the request has ended. Within the
    /// operation nothing is left to do afterwards: the caller, further up on this stack, holds the call, and is the
    /// only one who may wait for the end of `step`.
    template <class Step>
    void complete(Step step)
    {
        if (isWithinOperation(m_state.load(std::memory_order_relaxed))) {
            if (claim(Phase::Completed))
                return step();
        } else if (claim(Phase::Completing, holder)) {
            return end(step);
        }
        reportCompletion();
    }

private:
    /// How far the request has come. `Completing` and `TimingOut` are those whose end an exception has to wait for:
    /// each is followed by the one in which the caller's completion has been called.
    enum class Phase : std::uint8_t { Idle, Pending, Threw, Dropped, Completing, Completed, TimingOut, TimedOut };

    /// Everything that threads compete for in one word: from the lowest bit on the phase, whether the operation is
    /// over, whether somebody waits for the end of the phase, how many hold the call, and how often the device has
    /// completed the request once more.
    using State = std::uint64_t;
    static constexpr State phases = 0b111;
    static constexpr State returned = 1U << 3U;
    static constexpr State awaited = 1U << 4U;
    static constexpr State holder = 1U << 5U;
    static constexpr State completion = State{1} << 32U;

    [[nodiscard]] static Phase phaseOf(State state) { return static_cast<Phase>(state & phases); }
    [[nodiscard]] static unsigned holdersOf(State state) { return static_cast<unsigned>(state % completion / holder); }
    [[nodiscard]] static unsigned moreCompletionsOf(State state) { return static_cast<unsigned>(state / completion); }
    [[nodiscard]] static bool isEnding(State state)
    {
        return phaseOf(state) == Phase::Completing || phaseOf(state) == Phase::TimingOut;
    }

    /// Calls the caller's completion with `error`, and lets go of it.
    virtual void fail(std::error_code error) = 0;

    /// Lets go of the caller's completion.
    virtual void forget() = 0;

    /// The call is free from now on.
    virtual void recycle() = 0;

    [[nodiscard]] bool tryRetain();

    void letGo(State change)
    {
        const auto state = m_state.load(std::memory_order_acquire);
        if (holdersOf(state) == 1 && phaseOf(state) != Phase::Pending) // nobody else can come to hold it
            return recycle();
        if (holdersOf(m_state.fetch_add(change - holder, std::memory_order_acq_rel)) == 1)
            free();
    }

    /// Whether the calling thread is in the middle of the operation.
    [[nodiscard]] bool isWithinOperation(State state) const
    {
        return (state & returned) == 0 && m_callersThread == thisThread();
    }

    /// Something of the thread, to compare.
    [[nodiscard]] static const void* thisThread()
    {
        static thread_local const char ofThread = 0;
        return &ofThread;
    }

    /// Whether the request is the calling thread's to end; it is in `phase` then, and held by `holders` more.
    [[nodiscard]] bool claim(Phase phase, State holders = 0)
    {
        auto state = m_state.load(std::memory_order_relaxed);
        while (phaseOf(state) == Phase::Pending) {
            const auto claimed = ((state & ~phases) | static_cast<State>(phase)) + holders;
            if (m_state.compare_exchange_weak(state, claimed, std::memory_order_acq_rel, std::memory_order_relaxed))
                return true;
        }
        return false;
    }

    /// Nobody holds the call any more.
    void free();

    /// Ends the request that is the calling thread's to end, and held by it, by `step`, whether or not that throws.
    template <class Step>
    void end(Step step)
    {
        const Ending ending{*this};
        step();
    }

    class Ending {
    public:
        explicit Ending(Call& call)
            : m_call{call}
        {
        }
        Ending(const Ending&) = delete;
        Ending& operator=(const Ending&) = delete;
        ~Ending() { m_call.finish(); }

    private:
        Call& m_call;
    };

    /// The caller's completion has been called.
    void finish()
    {
        auto state = m_state.load(std::memory_order_acquire);
        for (unsigned reported = 0;;) {
            while (phaseOf(state) == Phase::TimingOut && reported != moreCompletionsOf(state))
                reportCompletion(state, ++reported);
            if (m_state.compare_exchange_weak(state, state + 1 - holder, std::memory_order_acq_rel,
                                              std::memory_order_acquire))
                break;
        }
        if ((state & awaited) != 0)
            m_state.notify_all();
        if (holdersOf(state) == 1)
            recycle();
    }

    void report(Breach breach, unsigned completions) const noexcept;
    void reportCompletion();
    void reportCompletion(State state, unsigned more) const noexcept;

    std::atomic<State> m_state = 0;
    const void* m_callersThread = nullptr;
    Watchdog::Ticks m_since = 0; ///< when the request was made, or the last progress that a look found
    std::chrono::milliseconds m_limit{};
    sdk::Key m_control{};
    std::string_view m_operation;
    std::weak_ptr<Host> m_host;
    const Host* m_hostAddress
        = nullptr; ///< of `m_host`, to compare; nothing else comes to stand there while it is held
};

} // namespace tarn::guard
