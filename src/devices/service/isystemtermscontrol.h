#pragma once

#include <devices/service/export.h>
#include <utils/association.h>
#include <vna/errorterms.h>
#include <vna/frequencysegment.h>

#include <QDateTime>

#include <cstdint>
#include <vector>

namespace tarn::devices::service {

/// The system error terms that the instrument stores and corrects its measurements with.
///
/// Exceptions of the device pass through.
///
/// Threads: thread-safe; calls through.
class TARN_DEVICES_SERVICE_EXPORT ISystemTermsControl {
public:
    static constexpr std::uint64_t registryKey = 0x10b13a8fe293bf50; ///< of its entry in the host's registry

    /// Why a write failed. The terms that were stored before stay.
    enum class Error {
        Failed = 0, ///< none of the others
        NoTerms = 1, ///< no frequency or no port
        InvalidTerms = 2, ///< terms that are incomplete or not finite
        PortCountMismatch = 3, ///< not the number of ports that the instrument has
        FrequenciesNotAscending = 4, ///< a frequency is not above the one before it
        FrequencyOutOfRange = 5, ///< a frequency that the instrument does not reach
        PlanMismatch = 6, ///< the terms' frequencies are not the points of the plan
        TemperatureOutOfRange = 7, ///< not finite, or no temperature that the instrument works at
        OverrideNotSupported = 8, ///< a plan was given, and the instrument takes none
        WriteFailed = 9, ///< the instrument's memory reported a failure
    };

    /// Hears of every write, whoever asked for it. A write that is refused consists of
    /// `onErrorOccurred` alone; every other begins with `onWriteStarted` and ends with either
    /// `onWriteFinished` or `onErrorOccurred`.
    ///
    /// Threads: called on a thread of the device, with the mutex of the list of observers held: an
    /// observer must not add or remove one from inside.
    class TARN_DEVICES_SERVICE_EXPORT Observer {
    public:
        Observer() = default;
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;
        virtual ~Observer() = default;

        /// A write has been accepted and begins.
        virtual void onWriteStarted() = 0;

        /// `progress` is the part that is done, in per cent, as the instrument reports it.
        virtual void onWriteProgressChanged(std::uint32_t progress) = 0;

        /// What was to be written is stored.
        virtual void onWriteFinished() = 0;

        /// The write was refused or has failed.
        virtual void onErrorOccurred(Error error) = 0;
    };

    ISystemTermsControl() = default;
    ISystemTermsControl(const ISystemTermsControl&) = delete;
    ISystemTermsControl& operator=(const ISystemTermsControl&) = delete;
    virtual ~ISystemTermsControl() = default;

    /// The instrument's own frequency plan, whose points the terms belong to; empty while the
    /// instrument does not offer the control.
    [[nodiscard]] virtual std::vector<vna::FrequencySegment> frequencyPlan() const = 0;

    /// Asks the instrument to write `terms`, which were measured at `time` (kept in whole seconds)
    /// with the instrument at `temperature` (in degrees Celsius). What becomes of it the observers
    /// hear; while the instrument does not offer the control, nothing happens and nobody hears.
    virtual void requestWriteTerms(QDateTime time, double temperature, const vna::ErrorTerms& terms) = 0;

    /// Whether terms can be written for another plan than the instrument's own; `false` while the
    /// instrument does not offer the control.
    [[nodiscard]] virtual bool isFrequencyOverrideSupported() const = 0;

    /// As above, for the points of `plan`. An empty plan writes nothing: the instrument is not
    /// asked for the control and nobody hears.
    virtual void requestWriteTerms(QDateTime time, double temperature, std::vector<vna::FrequencySegment> plan,
                                   const vna::ErrorTerms& terms)
        = 0;

    /// Appends `observer`, whether or not the instrument offers the control. Added twice, it is
    /// notified twice. It stays through any number of drops and offers.
    ///
    /// Threads: thread-safe; blocks while observers are notified on another thread.
    virtual void addObserver(utils::Association<Observer> observer) = 0;

    /// Removes every entry of `observer`, which is not called any more once this has returned.
    ///
    /// Threads: thread-safe; blocks while observers are notified on another thread.
    virtual void removeObserver(utils::Association<Observer> observer) = 0;
};

} // namespace tarn::devices::service
