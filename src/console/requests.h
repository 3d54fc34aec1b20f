#pragma once

#include <console/error.h>
#include <console/instrument.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace tarn::console {

/// How often a request is made while the instrument keeps dropping its controls, and a look at what a
/// change has done while it fails.
inline constexpr int attempts = 3;

/// Tells a request that the instrument refused from one that it did not answer.
class AnswerWatch {
public:
    /// Starts watching.
    explicit AnswerWatch(const Instrument& instrument)
        : m_instrument{instrument}
    {
    }

    /// Makes a request. What it gives or throws, unless it fails after it was not answered in time: throws the `Error`
    /// that `tooLate` makes of that.
    template <class Request, class TooLate>
    [[nodiscard]] std::invoke_result_t<Request> inTime(Request request, TooLate tooLate) const
    {
        try {
            auto outcome = request();
            if (outcome || !isTimedOut())
                return outcome;
        } catch (...) {
            if (!isTimedOut())
                throw;
        }
        throw tooLate();
    }

    /// Whether the instrument has given a request up since.
    [[nodiscard]] bool isGivenUp() const { return m_instrument.unansweredRequests().dropped != m_before.dropped; }

private:
    [[nodiscard]] bool isTimedOut() const { return m_instrument.unansweredRequests().timedOut != m_before.timedOut; }

    const Instrument& m_instrument;
    const Breaches::Counts m_before = m_instrument.unansweredRequests();
};

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

    /// What has become of the request; nothing if it was answered.
    [[nodiscard]] const AnswerWatch& answers() const { return m_answers; }

    /// Whether the control has been dropped since.
    [[nodiscard]] bool isLost() const
    {
        return m_instrument.lifecycle().drops() != m_drops || !m_instrument.isThere(m_registryKey);
    }

private:
    const Instrument& m_instrument;
    const std::uint64_t m_registryKey;
    const std::uint64_t m_drops;
    const AnswerWatch m_answers{m_instrument};
};

/// The error of an instrument that dropped its controls at every attempt to do `what`.
[[nodiscard]] inline Error lostEachTime(std::string_view what)
{
    return Error{ErrorCode::InstrumentLost,
                 "the instrument dropped its controls each time it was to " + std::string{what},
                 "nothing was changed; check the instrument and its connection, then try again"};
}

/// The error of an instrument that did not answer when it was asked for `what`, which changes nothing.
[[nodiscard]] inline Error notAnswered(std::string_view what)
{
    return unanswered(" when it was to " + std::string{what}, "nothing was changed");
}

/// What an instrument says when it gives a request up; continues a message.
inline constexpr auto gaveUp = "the instrument gave the request up without an answer";

/// `failed`, by an instrument that gave the request up.
[[nodiscard]] inline Error givenUp(const Error& failed)
{
    return Error{failed.code(), failed.message() + "; " + gaveUp, failed.hint()};
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
/// lost or does not answer. `request` is not limited in time by this.
template <class Control, class Request>
auto askInTime(const Instrument& instrument, const Question& question, Request request)
{
    const auto control = instrument.control<Control>();
    for (int attempt = 1;; ++attempt) {
        const LossWatch watch{instrument, Control::registryKey};
        auto outcome
            = watch.answers().inTime([&] { return request(*control); }, [&] { return notAnswered(question.what); });
        if (outcome)
            return std::move(outcome).value();
        if (!watch.isLost())
            throw watch.answers().isGivenUp() ? givenUp(question.failed) : question.failed;
        if (attempt == attempts)
            throw lostEachTime(question.what);
    }
}

/// The same with a `request` that takes no longer than it may.
template <class Control, class Request>
auto ask(const Instrument& instrument, const Question& question, Request request)
{
    return askInTime<Control>(instrument, question, [&](Control& control) {
        const DeviceCall call;
        return request(control);
    });
}

} // namespace tarn::console
