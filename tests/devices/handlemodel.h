#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <unordered_set>
#include <utility>
#include <vector>

/// `ReacquiringControl::lock()` as a small model: what each thread has in hand and each step that another thread can
/// come between. Controls are numbers; 0 is none.
namespace tarn::tests::model {

/// What could be wrong with an implementation. The model must notice each.
enum class Flaw {
    None,
    HoldsTheMutexWhileItAsks,
    HoldsTheMutexWhileItCalls,
    ReturnsWithoutUnlocking,
    KeepsAStrongHandle,
    LetsTheOwnerGoBeforeTheCall,
    ChecksThenPromotes, ///< in two steps
    AsksForALiveControl,
    AsksAgainAfterAFailure,
    RemembersAFailure,
    DoesNotStore,
};

enum class Step : std::uint8_t {
    LockAndCopy,
    Unlock,
    Promote,
    TakeOwner, ///< no step of its own unless promoting is two
    Ask,
    Answer,
    PromoteFresh,
    LockAndStore,
    UnlockStored,
    Call,
    Return,
};

using Control = std::uint8_t;

/// A thread in the middle of an operation.
struct Thread {
    Step next = Step::LockAndCopy;
    std::uint8_t done = 0; ///< operations
    Control handle = 0; ///< weak
    Control owner = 0; ///< strong
    Control control = 0; ///< what it calls
    bool holdsMutex = false;
    bool hasFailed = false; ///< to promote the cached handle
    std::uint8_t asked = 0;
    std::uint8_t begun = 0; ///< how far the device was when the operation began
};

/// The device's own steps: it drops its control and offers another, twice.
constexpr std::array<Control, 5> offers{1, 0, 2, 0, 3};
constexpr std::uint8_t lastOffer = offers.size() - 1;

struct State {
    std::array<Thread, 3> threads;
    Control cached = 0;
    std::uint8_t device = 0; ///< an index of `offers`

    [[nodiscard]] Control offered() const { return offers.at(device); }

    [[nodiscard]] bool isMutexFree() const { return std::ranges::none_of(threads, &Thread::holdsMutex); }

    /// Whether an operation keeps `control` alive.
    [[nodiscard]] bool isUsed(Control wanted) const
    {
        return std::ranges::any_of(threads, [wanted](const Thread& thread) { return thread.owner == wanted; });
    }

    /// The whole state in a number, the same for two that differ only in who is who.
    [[nodiscard]] std::uint64_t key() const
    {
        std::array<std::uint64_t, 3> words{};
        std::ranges::transform(threads, words.begin(), [](const Thread& thread) {
            std::uint64_t word = static_cast<std::uint64_t>(thread.next);
            const auto add = [&word](unsigned int bits, unsigned int value) { word = word << bits | value; };
            add(2, thread.done);
            add(2, thread.handle);
            add(2, thread.owner);
            add(2, thread.control);
            add(1, thread.holdsMutex);
            add(1, thread.hasFailed);
            add(2, thread.asked);
            add(3, thread.begun);
            return word;
        });
        std::ranges::sort(words);
        constexpr unsigned int wordBits = 19;
        std::uint64_t result = std::uint64_t{device} << 2 | cached;
        for (const auto word : words)
            result = result << wordBits | word;
        return result;
    }
};

/// Walks through every state that can be reached, each once.
class Exploration {
public:
    Exploration(std::uint8_t operations, Flaw flaw)
        : m_operations{operations}
        , m_flaw{flaw}
    {
    }

    /// Begins with a handle that is empty, and with one that is live; stops at the first rule that is broken.
    void explore()
    {
        for (const Control cached : {Control{0}, offers.front()})
            visit(State{.threads = {}, .cached = cached});
        while (!m_open.empty() && !m_broken) {
            const State state = m_open.back();
            m_open.pop_back();
            leave(state);
        }
    }

    [[nodiscard]] std::size_t states() const { return m_seen.size(); }
    [[nodiscard]] std::size_t steps() const { return m_steps; }

    /// The rule that is broken, in words; null if none is.
    [[nodiscard]] const char* broken() const { return m_broken; }

private:
    void visit(const State& state)
    {
        if (m_seen.insert(state.key()).second)
            m_open.push_back(state);
    }

    /// Takes every step that is possible now.
    void leave(const State& state)
    {
        const auto stepsBefore = m_steps;
        if (state.device != lastOffer) {
            State next = state;
            ++next.device;
            ++m_steps;
            visit(next);
        }
        for (std::size_t i = 0; i != state.threads.size(); ++i) {
            State next = state;
            if (state.threads.at(i).done != m_operations && canStep(state, state.threads.at(i))) {
                step(next, next.threads.at(i));
                ++m_steps;
                visit(next);
            }
        }
        checkAlways(state);
        if (m_steps != stepsBefore)
            return;
        rule(std::ranges::all_of(state.threads, [this](const Thread& thread) { return thread.done == m_operations; }),
             "nobody waits for ever");
        checkAtTheEnd(state);
    }

    static bool canStep(const State& state, const Thread& thread)
    {
        return (thread.next != Step::LockAndCopy && thread.next != Step::LockAndStore) || state.isMutexFree();
    }

    [[nodiscard]] bool isAlive(const State& state, Control control) const
    {
        return control != 0
            && (state.offered() == control || state.isUsed(control)
                || (m_flaw == Flaw::KeepsAStrongHandle && state.cached == control));
    }

    void step(State& state, Thread& thread)
    {
        switch (thread.next) {
        case Step::LockAndCopy:
            thread.begun = state.device;
            thread.holdsMutex = true;
            thread.handle = state.cached;
            thread.next = Step::Unlock;
            return;
        case Step::Unlock:
            thread.holdsMutex = m_flaw == Flaw::HoldsTheMutexWhileItAsks || m_flaw == Flaw::HoldsTheMutexWhileItCalls;
            thread.next = Step::Promote;
            return;
        case Step::Promote:
            return promote(state, thread);
        case Step::TakeOwner:
            rule(isAlive(state, thread.handle), "a control that is destroyed does not come back");
            thread.owner = thread.control = thread.handle;
            thread.next = Step::Call;
            return;
        case Step::Ask:
            rule(!thread.holdsMutex, "the mutex is not held while the device is asked");
            ++thread.asked;
            thread.owner = state.offered(); // for as long as the device takes to answer
            thread.next = Step::Answer;
            return;
        case Step::Answer:
            thread.handle = std::exchange(thread.owner, Control{0});
            thread.next = Step::PromoteFresh;
            return;
        case Step::PromoteFresh:
            return promoteFresh(state, thread);
        case Step::LockAndStore:
            thread.holdsMutex = true;
            if (m_flaw != Flaw::DoesNotStore)
                state.cached = thread.handle;
            thread.next = Step::UnlockStored;
            return;
        case Step::UnlockStored:
            thread.holdsMutex = m_flaw == Flaw::ReturnsWithoutUnlocking && thread.control == 0;
            return beginCall(state, thread);
        case Step::Call:
            return beginCall(state, thread);
        case Step::Return:
            rule(isAlive(state, thread.control), "no operation calls a control that is destroyed");
            return end(state, thread);
        }
    }

    void promote(State& state, Thread& thread)
    {
        const bool isLive = isAlive(state, thread.handle);
        thread.hasFailed = !isLive;
        if (!isLive || m_flaw == Flaw::AsksForALiveControl) {
            thread.holdsMutex = m_flaw == Flaw::HoldsTheMutexWhileItAsks;
            thread.next = m_flaw == Flaw::RemembersAFailure && thread.handle == 0 ? Step::Call : Step::Ask;
            return;
        }
        thread.holdsMutex = m_flaw == Flaw::HoldsTheMutexWhileItCalls;
        thread.next = Step::TakeOwner;
        if (m_flaw != Flaw::ChecksThenPromotes)
            step(state, thread);
    }

    void promoteFresh(const State& state, Thread& thread) const
    {
        if (isAlive(state, thread.handle))
            thread.owner = thread.control = thread.handle;
        thread.next = thread.control == 0 && m_flaw == Flaw::AsksAgainAfterAFailure && thread.asked == 1
            ? Step::Ask
            : Step::LockAndStore;
    }

    void beginCall(State& state, Thread& thread)
    {
        if (thread.control == 0)
            return end(state, thread);
        if (m_flaw == Flaw::LetsTheOwnerGoBeforeTheCall)
            thread.owner = 0;
        rule(!thread.holdsMutex, "the mutex is not held while the control is called");
        rule(isAlive(state, thread.control), "no operation calls a control that is destroyed");
        thread.next = Step::Return;
    }

    void end(const State& state, Thread& thread)
    {
        rule(thread.asked == (thread.hasFailed ? 1 : 0), "the device is asked exactly once for each failed promotion");
        const bool wasOffered = thread.begun == state.device && state.offered() != 0;
        rule(!wasOffered || thread.control != 0, "an operation finds a control that is offered all the while");
        rule(!wasOffered || thread.asked == 0 || thread.control == state.offered(),
             "an operation that asks uses the control that is offered");
        const auto done = static_cast<std::uint8_t>(thread.done + 1);
        thread = Thread{.done = done, .holdsMutex = thread.holdsMutex};
    }

    void checkAlways(const State& state)
    {
        for (Control control = 1; control <= offers.back(); ++control)
            rule(control == state.offered() || state.isUsed(control) || !isAlive(state, control),
                 "a control lives no longer than the device and the operations keep it");
        rule(std::ranges::count_if(state.threads, &Thread::holdsMutex) <= 1, "one thread holds the mutex");
    }

    /// Everybody has finished: two more operations, one after the other.
    void checkAtTheEnd(State state)
    {
        for (const int questions : {1, 0}) {
            Thread& later = state.threads.front() = Thread{};
            while (later.done == 0 && !m_broken) {
                rule(canStep(state, later), "nobody waits for ever");
                rule(later.asked <= questions, "a handle that was asked for is used again");
                if (later.next == Step::Return)
                    rule(later.control == state.offered(), "a later operation uses the new control");
                step(state, later);
            }
        }
    }

    void rule(bool isKept, const char* words)
    {
        if (!isKept && !m_broken)
            m_broken = words;
    }

    const std::uint8_t m_operations;
    const Flaw m_flaw;
    std::unordered_set<std::uint64_t> m_seen;
    std::vector<State> m_open;
    std::size_t m_steps = 0;
    const char* m_broken = nullptr;
};

} // namespace tarn::tests::model
