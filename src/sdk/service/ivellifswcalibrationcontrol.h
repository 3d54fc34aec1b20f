#pragma once

#include <sdk/frequencyplan.h>
#include <sdk/key.h>
#include <sdk/visibility.h>

#include <cstdint>
#include <vector>

namespace sdk::service {

/// The factory calibration of the intermediate-frequency (IF) switches in the receivers of a Vell
/// instrument.
///
/// Threads: thread-safe; at once. A write is accepted without a word; what becomes of it is told to
/// the observers. Writes are carried out one after the other, in the order in which they were asked
/// for.
class SDK_API IVellIfswCalibrationControl {
public:
    static constexpr Key key{0xa8c748bb3b2c656f}; ///< the device is asked for the control by it

    /// Why a write failed. The data that was stored before stays.
    enum class Error : std::uint8_t {
        Unknown = 0, ///< none of the others
        NoData = 1, ///< no frequency, or a receiver without ratios or linearities
        PlanMismatch = 2, ///< the frequencies are not the points of the plan, in ascending order
        ValueOutOfRange = 3, ///< a value that is not finite or that the instrument cannot store
        WriteFailed = 4, ///< the instrument's memory reported a failure
    };

    /// The response of a receiver in one position of its IF switch, relative to that in the
    /// reference position.
    struct IfswRatio {
        double intermediateFrequency; ///< at which the positions were compared, in hertz
        double magnitude; ///< linear, 1 for no difference
        double phase; ///< in degrees

        friend bool operator==(const IfswRatio&, const IfswRatio&) = default;
    };

    /// How far a receiver deviates from a linear response at one level.
    struct IfswLinearity {
        double level; ///< at the receiver, in dBm
        double magnitudeError; ///< in dB
        double phaseError; ///< in degrees

        friend bool operator==(const IfswLinearity&, const IfswLinearity&) = default;
    };

    /// What was measured of one receiver.
    struct ReceiverCalibration {
        std::vector<IfswRatio> ratios; ///< of the positions of its IF switch
        std::vector<IfswLinearity> linearities; ///< at the levels that were measured

        friend bool operator==(const ReceiverCalibration&, const ReceiverCalibration&) = default;
    };

    /// What a calibration of the IF switches consists of.
    struct IfswCalibrationData {
        std::vector<double> frequencies; ///< at which the receivers were measured, in hertz
        ReceiverCalibration reference; ///< receiver R: the outgoing wave
        ReceiverCalibration reflection; ///< receiver A: the reflected wave
        ReceiverCalibration transmission; ///< receiver B: the transmitted wave

        friend bool operator==(const IfswCalibrationData&, const IfswCalibrationData&) = default;
    };

    /// Hears of every write, whoever asked for it. A write that is refused consists of `onError`
    /// alone. Every other begins with `onWriteStarted` and has exactly one end, either
    /// `onWriteFinished` or `onError`; the notifications of two writes never mix.
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
        virtual void onError(Error error) = 0;
    };

    IVellIfswCalibrationControl() = default;
    IVellIfswCalibrationControl(const IVellIfswCalibrationControl&) = delete;
    IVellIfswCalibrationControl& operator=(const IVellIfswCalibrationControl&) = delete;
    virtual ~IVellIfswCalibrationControl() = default;

    /// Registers `observer`, not owned. Registering one that is registered already changes
    /// nothing: it is still notified once per event.
    virtual void addObserver(Observer* observer) = 0;

    /// Ends a registration; does nothing for an observer that is not registered. Once it has
    /// returned, no notification of `observer` is running or will start, except for one that the
    /// calling thread itself is in the middle of. Never throws.
    ///
    /// Threads: thread-safe; blocks while a notification of `observer` runs on another thread.
    virtual void removeObserver(Observer* observer) = 0;

    /// The points at which the receivers are to be measured.
    [[nodiscard]] virtual FrequencyPlan frequencyPlan() = 0;

    /// Asks for a write of `data`.
    virtual void saveCalibrationData(IfswCalibrationData data) = 0;
};

} // namespace sdk::service
