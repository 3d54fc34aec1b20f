#pragma once

#include <console/error.h>
#include <console/instrument.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace tarn::console {

/// How often a request is made while the instrument keeps dropping its controls, and a look at what a
/// change has done while it fails.
inline constexpr int attempts = 3;

/// Tells a request that the instrument refused from one during which it dropped the control: the
/// controls report either only as a failure.
class LossWatch {
public:
    /// Starts watching. Waits for a control that is away; throws as `Instrument::awaitControl`.
    LossWatch(const Instrument& instrument, std::uint64_t registryKey)
        : m_instrument{instrument}
        , m_registryKey{registryKey}
        , m_drops{instrument.lifecycle().drops()}
    {
        instrument.awaitControl(registryKey);
    }

    /// Whether the control has been dropped since.
    [[nodiscard]] bool isLost() const
    {
        return m_instrument.lifecycle().drops() != m_drops || !m_instrument.isThere(m_registryKey);
    }

private:
    const Instrument& m_instrument;
    const std::uint64_t m_registryKey;
    const std::uint64_t m_drops;
};

/// The error of an instrument that dropped its controls at every attempt to do `what`.
[[nodiscard]] inline Error lostEachTime(std::string_view what)
{
    return Error{ErrorCode::InstrumentLost,
                 "the instrument dropped its controls each time it was to " + std::string{what},
                 "nothing was changed; check the instrument and its connection, then try again"};
}

/// Runs `operation`, which must be quick, while the instrument holds on to the control. `what` is looked at or
/// changed ("LO leakage"). Throws as `Instrument::awaitControl`, and `Error` (`Failed`) when the control never
/// stays.
void whileThere(const Instrument& instrument, std::uint64_t registryKey, std::string_view what,
                const std::function<void()>& operation);

/// The same for `operation(control)`: a control that is away reads as nothing and takes no change.
template <class Control, class Operation>
void whileThere(const Instrument& instrument, std::uint64_t registryKey, std::string_view what, Operation operation)
{
    const auto control = instrument.control<Control>(registryKey);
    whileThere(instrument, registryKey, what, [&] { operation(*control); });
}

/// What an instrument is asked to do.
struct Question {
    std::string_view what; ///< "read its memory"
    Error failed; ///< what to throw if it cannot
};

/// The result of a request that changes nothing, so that it can be made again after a drop.
/// Throws the question's error when the instrument refuses, `Error` (`InstrumentLost`) when it is
/// lost.
template <class Control, class Request>
auto ask(const Instrument& instrument, const Question& question, Request request)
{
    const auto control = instrument.control<Control>();
    for (int attempt = 1;; ++attempt) {
        const LossWatch watch{instrument, Control::registryKey};
        auto outcome = request(*control);
        if (outcome)
            return std::move(outcome).value();
        if (!watch.isLost())
            throw question.failed;
        if (attempt == attempts)
            throw lostEachTime(question.what);
    }
}

} // namespace tarn::console
