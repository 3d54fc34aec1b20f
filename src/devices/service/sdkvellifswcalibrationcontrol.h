#pragma once

#include <devices/icontrollifecycleobserver.h>
#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <sdk/service/ivellifswcalibrationcontrol.h>
#include <vna/frequencysegment.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace tarn::devices::service {

template <class Sdk, class Control>
class WriteObservers;

/// The factory calibration of the intermediate-frequency (IF) switches in the receivers of a Vell
/// instrument.
///
/// Exceptions of the device pass through.
///
/// Threads: thread-safe; calls through.
class TARN_DEVICES_SERVICE_EXPORT SdkVellIfswCalibrationControl final : public IControlLifecycleObserver {
public:
    static constexpr std::uint64_t registryKey = 0x2ab54beb7022049e; ///< of its entry in the host's registry

    /// Why a write failed. The data that was stored before stays.
    enum class Error {
        Failed = 0, ///< none of the others
        NoData = 1, ///< no frequency, or a receiver without ratios or linearities
        PlanMismatch = 2, ///< the frequencies are not the points of the plan, in ascending order
        ValueOutOfRange = 3, ///< a value that is not finite or that the instrument cannot store
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
    /// alone; every other begins with `onWriteStarted` and ends with either `onWriteFinished` or
    /// `onError`.
    ///
    /// Threads: called on a thread of the device, with no lock held.
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
        virtual void onError(Error error) = 0;
    };

    /// Reaches its SDK control through `control`, which it takes over.
    explicit SdkVellIfswCalibrationControl(ReacquiringControl<sdk::service::IVellIfswCalibrationControl> control);

    /// Ends no registration with the instrument: remove the observers or have the device release
    /// its controls before.
    ~SdkVellIfswCalibrationControl() override;

    /// The points at which the receivers are to be measured; empty while the instrument does not
    /// offer the control.
    [[nodiscard]] std::vector<vna::FrequencySegment> frequencyPlan() const;

    /// Asks the instrument to write `data`. What becomes of it the observers hear; while the
    /// instrument does not offer the control, nothing happens and nobody hears.
    void saveCalibrationData(IfswCalibrationData data);

    /// Adds `observer`, not owned, whether or not the instrument offers the control. Null, and an
    /// observer that was added already, change nothing. It stays through any number of drops and
    /// offers. If the control returns in the very moment in which it was found missing, the observer
    /// may hear only of the next one; `InstrumentControls::undisturbed` keeps that from happening.
    ///
    /// If the instrument throws, that passes through, and `observer` has not been added.
    ///
    /// Threads: thread-safe; calls through; blocks while a notification of `observer` runs on another thread,
    /// if it is removed meanwhile.
    void addObserver(Observer* observer);

    /// Removes `observer`, whether or not the instrument offers the control. Once this has returned
    /// it is not called any more, except by a notification that the calling thread itself is in the
    /// middle of. If the instrument throws, that passes through, and `observer` has been removed all
    /// the same.
    ///
    /// Threads: thread-safe; blocks while a notification of `observer` runs on another thread.
    void removeObserver(Observer* observer);

    void onControlsAboutToBeReleased() override;
    void onControlsAvailable() override;

private:
    using Observers = WriteObservers<sdk::service::IVellIfswCalibrationControl, SdkVellIfswCalibrationControl>;

    ReacquiringControl<sdk::service::IVellIfswCalibrationControl> m_control;
    std::unique_ptr<Observers> m_observers;
};

} // namespace tarn::devices::service
