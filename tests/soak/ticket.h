#pragma once

#include "handles.h"

#include <simulator/faults.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace tarn::soak {

/// What is to go wrong with an operation.
enum class Trouble {
    None,
    Throws, ///< the instrument throws
    Fails, ///< the instrument ends the request with an error
};

struct Mishap {
    Trouble trouble = Trouble::None;
    bool drops = false; ///< the controls
    simulator::Duration dropFor{};
    simulator::Duration delay{};
};

/// One operation that this thread makes through an adapter: what is to go wrong with it, and what was seen of it at the
/// border to the instrument. All of that happens on the thread that makes it.
class Ticket {
public:
    /// `handles` are those of the adapter.
    explicit Ticket(Handles& handles, const Mishap& mishap = {})
        : m_mishap{mishap}
        , m_handles{handles}
        , m_asksBefore{handles.begin()}
    {
        s_current = this;
    }
    Ticket(const Ticket&) = delete;
    Ticket& operator=(const Ticket&) = delete;
    ~Ticket()
    {
        s_current = nullptr;
        m_handles.end();
    }

    /// The one of this thread; null if it has none.
    [[nodiscard]] static Ticket* current() { return s_current; }

    /// The device was asked for a control and gave `answer`.
    void onAsked(const std::shared_ptr<void>& answer)
    {
        settleLastAnswer();
        ++asks;
        refusals += answer ? 0U : 1U;
        m_unused = answer;
        m_isUnused = answer != nullptr;
        needlessAsks += m_handles.answer(answer) ? 1U : 0U;
    }

    /// An operation has reached the instrument, which does with it what `decision` says.
    void onOperation(simulator::Faults::Decision& decision)
    {
        if (m_mishap.trouble == Trouble::Fails)
            decision.failure = simulator::Error::Io;
        m_isUnused = false;
        if (++operations != 1)
            return;
        decision.throws = m_mishap.trouble == Trouble::Throws;
        decision.drops = m_mishap.drops;
        decision.dropFor = m_mishap.dropFor;
        decision.delay = m_mishap.delay;
    }

    /// The operation has returned.
    void close() { settleLastAnswer(); }

    [[nodiscard]] Trouble trouble() const { return m_mishap.trouble; }

    /// Nobody has asked for the control since the operation began, although the handle had expired.
    [[nodiscard]] bool isAskMissing() const { return m_asksBefore == m_handles.asks(); }

    unsigned asks = 0;
    unsigned refusals = 0; ///< asks that were answered with nothing, or with a control that was dropped before its use
    unsigned needlessAsks = 0; ///< asks while the handle was alive
    unsigned operations = 0;
    unsigned emissions = 0;

private:
    void settleLastAnswer() { refusals += std::exchange(m_isUnused, false) && m_unused.expired() ? 1U : 0U; }

    const Mishap m_mishap;
    Handles& m_handles;
    const std::optional<std::uint64_t> m_asksBefore;
    std::weak_ptr<void> m_unused; ///< the last answer, if nothing has been done with it yet
    bool m_isUnused = false;
    static inline thread_local Ticket* s_current = nullptr;
};

} // namespace tarn::soak
