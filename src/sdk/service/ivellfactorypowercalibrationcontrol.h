#pragma once

#include <sdk/frequencyplan.h>
#include <sdk/key.h>
#include <sdk/visibility.h>

#include <cstdint>
#include <vector>

namespace sdk::service {

/// The factory power calibration of a Vell instrument: what a power meter at the test port read
/// over frequency and level.
///
/// Threads: thread-safe; at once. A write is accepted without a word; what becomes of it is told to
/// the observers. Writes are carried out one after the other, in the order in which they were asked
/// for.
class SDK_API IVellFactoryPowerCalibrationControl {
public:
    static constexpr Key key{0x4797d9e37c985d85}; ///< the device is asked for the control by it

    /// Why a write failed. The data that was stored before stays.
    enum class Error : std::uint8_t {
        Unknown = 0, ///< none of the others
        NoData = 1, ///< no point
        PlanMismatch = 2, ///< the points' frequencies are not those of the plan, in ascending order
        ValueOutOfRange = 3, ///< a value, also the temperature, that is not finite or cannot be stored
        WriteFailed = 4, ///< the instrument's memory reported a failure
    };

    /// One measurement. The points of one frequency, one per level, follow each other.
    struct PowerCalPoint {
        double frequency; ///< in hertz
        float nominalPower; ///< that the source was set to, in dBm
        float measuredPower; ///< that the power meter read at the test port, in dBm
        bool isSourceAmplifierOn; ///< whether the source's amplifier was in the path
        bool isSourceAttenuatorOn; ///< whether the source's step attenuator was in the path
        float sourceAttenuation; ///< of that attenuator as measured, in dB
        bool isReceiverAttenuatorOn; ///< whether the receiver's step attenuator was in the path
        float receiverAttenuation; ///< of that attenuator as measured, in dB
        float receiverPower; ///< that the reference receiver read, in dBm

        friend bool operator==(const PowerCalPoint&, const PowerCalPoint&) = default;
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

    IVellFactoryPowerCalibrationControl() = default;
    IVellFactoryPowerCalibrationControl(const IVellFactoryPowerCalibrationControl&) = delete;
    IVellFactoryPowerCalibrationControl& operator=(const IVellFactoryPowerCalibrationControl&) = delete;
    virtual ~IVellFactoryPowerCalibrationControl() = default;

    /// Registers `observer`, not owned. Registering one that is registered already changes
    /// nothing: it is still notified once per event.
    virtual void addObserver(Observer* observer) = 0;

    /// Ends a registration; does nothing for an observer that is not registered. Once it has
    /// returned, no notification of `observer` is running or will start, except for one that the
    /// calling thread itself is in the middle of. Never throws.
    ///
    /// Threads: thread-safe; blocks while a notification of `observer` runs on another thread.
    virtual void removeObserver(Observer* observer) = 0;

    /// The frequencies at which the power is to be measured.
    [[nodiscard]] virtual FrequencyPlan frequencyPlan() = 0;

    /// Asks for a write of `points`, measured at `time`, in seconds since the Unix epoch, with the
    /// instrument at `temperature`, in degrees Celsius.
    virtual void saveCalibrationData(std::int64_t time, std::vector<PowerCalPoint> points, double temperature) = 0;
};

} // namespace sdk::service
