#pragma once

#include <console/interruptwarning.h>
#include <console/longrequest.h>
#include <console/requests.h>
#include <console/verify.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn::console {

/// A change of the instrument, in the words that messages are made of.
struct Change {
    std::string doing; ///< "writing the memory"
    std::string target; ///< what may be changed afterwards: "the memory"
    std::string leftBehind; ///< what an interruption may leave: "the memory may be left partly written"
    std::string advice; ///< the way out of that
    std::optional<OperationName> progress = std::nullopt; ///< how its progress is shown, if it has any
};

/// The instrument has refused, or failed, after `last` was notified.
[[nodiscard]] Error changeFailed(const Change& change, const std::optional<LongRequest::Progress>& last);

/// The instrument was lost after `last` was notified.
[[nodiscard]] Error changeLost(const Change& change, const std::optional<LongRequest::Progress>& last);

/// The instrument did not answer in time after `last` was notified.
[[nodiscard]] Error changeUnanswered(const Change& change, const std::optional<LongRequest::Progress>& last);

/// The request ended with an exception of the device, `what`.
[[nodiscard]] Error changeBroken(const Change& change, std::string_view what);

/// Watches over a request that changes the instrument. Once such a request has been made, a control
/// that does not come back leaves its outcome unknown.
[[nodiscard]] inline LossWatch watchChange(const Change& change, const Instrument& instrument,
                                           std::uint64_t registryKey, bool isFirst)
{
    try {
        return LossWatch{instrument, registryKey};
    } catch (const Error& error) {
        if (isFirst || error.code() != ErrorCode::InstrumentLost)
            throw;
        throw changeLost(change, {});
    }
}

/// Makes a request that changes the instrument, `request(control, longRequest)`, which runs on
/// another thread. It is made again after a drop as long as the instrument has not notified any
/// progress of it. Ctrl-C goes to `warning`.
///
/// Throws `Error`: `Failed` when the instrument refuses or its software throws or gives up, `InstrumentLost`
/// when it is lost or does not answer; each says what is known.
template <class Control, class Request>
void make(const Change& change, const Instrument& instrument, const Output& output, InterruptWarning& warning,
          Request request)
{
    warning.setConsequences(change.leftBehind, change.advice);
    const auto control = instrument.control<Control>();
    for (int attempt = 1;; ++attempt) {
        const auto watch = watchChange(change, instrument, Control::registryKey, attempt == 1);
        LongRequest longRequest{output, change.progress, &warning};
        const auto limited = [&] {
            const DeviceCall call;
            return request(*control, longRequest);
        };
        const auto attended = [&] {
            try {
                return longRequest.run(limited);
            } catch (...) {
                throw changeBroken(change, caughtError().message());
            }
        };
        if (watch.answers().inTime(attended, [&] { return changeUnanswered(change, longRequest.last()); }))
            return;
        if (!watch.isLost())
            throw watch.answers().isGivenUp() ? changeBroken(change, gaveUp) : changeFailed(change, longRequest.last());
        if (longRequest.last() || attempt == attempts)
            throw changeLost(change, longRequest.last());
    }
}

/// Reads back what was changed: `isChanged` asks the instrument, on another thread. Ctrl-C goes to
/// `warning`. Throws as `verify`.
template <class Check>
void confirm(const Change& change, const Output& output, InterruptWarning& warning, std::string_view done,
             Check isChanged)
{
    warning.setConsequences(std::string{done} + " but not compared", change.advice);
    verify(done, change.advice, [&] {
        LongRequest attended{output, std::nullopt, &warning};
        return attended.run(isChanged);
    });
}

} // namespace tarn::console
