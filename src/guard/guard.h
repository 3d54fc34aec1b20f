#pragma once

#include <guard/export.h>
#include <sdk/ivna.h>
#include <sdk/key.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string_view>

/// A layer that a host can put between itself and a device that may break the contract: it keeps a caller from waiting
/// for ever, and from being called back when nobody waits any more.
namespace tarn::guard {

/// What a device did with a request against the contract of `sdk::Completion`.
enum class Breach : std::uint8_t {
    CompletedAgain, ///< called the completion once more
    CompletedLate, ///< called it after the time-out
    CompletedAndThrew, ///< called it, and the operation threw
    Dropped, ///< gave all its copies of it up uncalled: the caller got `Error::Dropped`
    TimedOut, ///< has not called it within the limit: the caller got `Error::TimedOut`
    NotReturned, ///< as `TimedOut`, and the operation itself has not returned: the call stays in the device
};

/// One breach. The request is named by the interface's key and the operation.
struct BreachReport {
    Breach breach; ///< what the device did
    sdk::Key control; ///< the key of the control's interface
    std::string_view operation; ///< "readFile"; lasts as long as the program
    unsigned completions; ///< of this request so far, this one included
};

/// Learns of breaches, and of what keeps a request from being one.
class TARN_GUARD_EXPORT IBreachObserver {
public:
    IBreachObserver() = default;
    IBreachObserver(const IBreachObserver&) = delete;
    IBreachObserver& operator=(const IBreachObserver&) = delete;
    virtual ~IBreachObserver() = default;

    /// A request that the guard ends has not ended yet: its caller waits for this to return.
    ///
    /// On the guard's own thread a blocking call of an adapter waits for ever if the device stays silent, and with it
    /// all time-outs of the program. `exit()` must not be called there: it joins that thread.
    ///
    /// Threads: called on the thread that noticed, one of the device, the caller's or the guard's own, by several at a
    /// time, with no lock of the guard held, but with what the device holds where it completes a request, or gives it
    /// up.
    virtual void onBreach(const BreachReport& report) noexcept = 0;

    /// An operation of the memory (`IMemoryOperationsControl`) or a write of the serial number
    /// (`IMemorySerialNumberControl`) has come further. No other progress is observed.
    ///
    /// Threads: called on the thread that tells of it, with no lock of the guard held.
    virtual void onProgress() noexcept { }
};

/// How a device is guarded.
struct Options {
    /// How long a request may take without progress that `onProgress` tells of, whichever request makes it. It is
    /// noticed up to an eighth of it later, below 16 ms up to 2 ms, or more on a busy computer and beside a guarded
    /// device with a much shorter limit: of the time, what lies between two looks counts as one interval at the most.
    /// Less than a millisecond counts as one, more than ten years as ten.
    std::chrono::milliseconds limit = std::chrono::seconds{30};

    std::shared_ptr<IBreachObserver> observer; ///< may be null
};

/// `device` (never null) behind a guard. It hands out the controls of `device`; in those whose requests end in a
/// completion the first completion of a request wins, and a request that is not completed ends with an `Error`. All
/// other calls reach the control as they are, and all other controls are the device's own.
///
/// A handle to a guarded control lives and dies with the device's control. Guarded controls can be used after the
/// guarded device has gone, as far as those of `device` can.
///
/// A completion must not be null, and must not throw: where the guard ends the request, that can terminate the program.
/// One that runs on the guard's own thread must not do what `IBreachObserver::onBreach` must not do there.
///
/// Throws `std::system_error` if the guard's thread cannot be started.
///
/// Threads: thread-safe; calls through, to observe `device`. The first call starts the guard's thread. What it returns
/// is thread-safe, as `device` is; to let go of it blocks while `device` notifies it on another thread. A request that
/// is held up inside the device stays held up: the observer learns of it, and what the device completes later is
/// harmless. Any other call that is held up stays so, and nobody learns of it.
[[nodiscard]] TARN_GUARD_EXPORT std::shared_ptr<sdk::IVna> guarded(std::shared_ptr<sdk::IVna> device, Options options);

} // namespace tarn::guard
