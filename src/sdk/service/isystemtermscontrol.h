#pragma once

#include <sdk/corrections/errorterms.h>
#include <sdk/frequencyplan.h>
#include <sdk/key.h>
#include <sdk/visibility.h>

#include <cstdint>

namespace sdk::service {

/// The system error terms that the instrument stores and corrects its measurements with.
///
/// Threads: thread-safe; at once. A write is accepted without a word; what becomes of it is told to
/// the observers. Writes are carried out one after the other, in the order in which they were asked
/// for.
class SDK_API ISystemTermsControl {
public:
    static constexpr Key key{0x1e7084d947290478}; ///< the device is asked for the control by it

    /// Why a write failed. The terms that were stored before stay.
    enum class Error : std::uint8_t {
        Unknown = 0, ///< none of the others
        NoTerms = 1, ///< no frequency or no port
        InvalidTerms = 2, ///< a trace of another length than the frequencies, a missing pair, a value not finite
        PortCountMismatch = 3, ///< not the number of ports that the instrument has
        FrequenciesNotAscending = 4, ///< a frequency is not above the one before it
        FrequencyOutOfRange = 5, ///< a frequency that the instrument does not reach
        PlanMismatch = 6, ///< the terms' frequencies are not the points of the plan
        TemperatureOutOfRange = 7, ///< not finite, or no temperature that the instrument works at
        OverrideNotSupported = 8, ///< a plan was given, and the instrument takes none
        WriteFailed = 9, ///< the instrument's memory reported a failure
    };

    /// Hears of every write, whoever asked for it. A write that is refused consists of
    /// `onErrorOccurred` alone. Every other begins with `onWriteStarted` and has exactly one end,
    /// either `onWriteFinished` or `onErrorOccurred`; the notifications of two writes never mix.
    ///
    /// A control that is dropped notifies no more; a write goes on nevertheless, and the observers of
    /// the control that is offered next hear the rest of it, in any case its end.
    ///
    /// Threads: called on a thread of the device's own choosing, one notification at a time, with no
    /// lock held.
    class SDK_API Observer {
    public:
        Observer() = default;
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;
        virtual ~Observer() = default;

        /// A write has been accepted and begins.
        virtual void onWriteStarted() = 0;

        /// `progress` is the part that is done, in per cent; it never falls during a write.
        virtual void onWriteProgressChanged(unsigned int progress) = 0;

        /// What was to be written is stored.
        virtual void onWriteFinished() = 0;

        /// The write was refused or has failed.
        virtual void onErrorOccurred(Error error) = 0;
    };

    ISystemTermsControl() = default;
    ISystemTermsControl(const ISystemTermsControl&) = delete;
    ISystemTermsControl& operator=(const ISystemTermsControl&) = delete;
    virtual ~ISystemTermsControl() = default;

    /// Registers `observer`, not owned. Registering one that is registered already changes
    /// nothing: it is still notified once per event.
    virtual void addObserver(Observer* observer) = 0;

    /// Ends a registration; does nothing for an observer that is not registered. Once it has
    /// returned, no notification of `observer` is running or will start, except for one that the
    /// calling thread itself is in the middle of. Never throws.
    ///
    /// Threads: thread-safe; blocks while a notification of `observer` runs on another thread.
    virtual void removeObserver(Observer* observer) = 0;

    /// The instrument's own frequency plan: the points at which it stores terms.
    [[nodiscard]] virtual FrequencyPlan frequencyPlan() = 0;

    /// The number of test ports that the terms cover. No adapter calls it; it holds its slot.
    [[nodiscard]] virtual std::uint32_t portCount() = 0;

    /// The number of points that there is room for. No adapter calls it; it holds its slot.
    [[nodiscard]] virtual std::uint32_t maximumPointCount() = 0;

    /// Asks for a write of `terms`, whose frequencies are the points of the instrument's own plan.
    /// They were measured at `time`, in seconds since the Unix epoch, with the instrument at
    /// `temperature`, in degrees Celsius.
    virtual void writeTerms(std::int64_t time, corrections::ErrorTerms terms, double temperature) = 0;

    /// Whether terms can be stored for another plan than the instrument's own.
    [[nodiscard]] virtual bool isFrequencyOverrideSupported() = 0;

    /// As `writeTerms`, for the points of `plan`.
    virtual void writeTermsForPlan(std::int64_t time, FrequencyPlan plan, corrections::ErrorTerms terms,
                                   double temperature)
        = 0;
};

} // namespace sdk::service
