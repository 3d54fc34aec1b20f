#pragma once

#include <devices/icontrollifecycleobserver.h>
#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <sdk/service/ivellfactorypowercalibrationcontrol.h>
#include <vna/frequencysegment.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

namespace tarn::devices::service {

template <class Sdk, class Control>
class WriteObservers;

/// The factory power calibration of a Vell instrument: what a power meter at the test port read
/// over frequency and level.
///
/// Exceptions of the device pass through.
///
/// Threads: thread-safe; calls through.
class TARN_DEVICES_SERVICE_EXPORT SdkVellFactoryPowerCalibrationControl final : public IControlLifecycleObserver {
public:
    static constexpr std::uint64_t registryKey = 0xa95918a8462c534c; ///< of its entry in the host's registry

    /// Why a write failed. The data that was stored before stays.
    enum class Error {
        Failed = 0, ///< none of the others
        NoData = 1, ///< no point
        PlanMismatch = 2, ///< the points' frequencies are not those of the plan, in ascending order
        ValueOutOfRange = 3, ///< a value, also the temperature, that is not finite or cannot be stored
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
    explicit SdkVellFactoryPowerCalibrationControl(
        ReacquiringControl<sdk::service::IVellFactoryPowerCalibrationControl> control);

    /// Ends no registration with the instrument: remove the observers or have the device release
    /// its controls before.
    ~SdkVellFactoryPowerCalibrationControl() override;

    /// The frequencies at which the power is to be measured; empty while the instrument does not
    /// offer the control.
    [[nodiscard]] std::vector<vna::FrequencySegment> frequencyPlan() const;

    /// Asks the instrument to write `points`, which were measured at `time` with the instrument at
    /// `temperature` (in degrees Celsius). What becomes of it the observers hear; while the
    /// instrument does not offer the control, nothing happens and nobody hears.
    void saveCalibrationData(std::chrono::time_point<std::chrono::system_clock, std::chrono::seconds> time,
                             double temperature, std::vector<PowerCalPoint> points);

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
    using Observers
        = WriteObservers<sdk::service::IVellFactoryPowerCalibrationControl, SdkVellFactoryPowerCalibrationControl>;

    ReacquiringControl<sdk::service::IVellFactoryPowerCalibrationControl> m_control;
    std::unique_ptr<Observers> m_observers;
};

} // namespace tarn::devices::service
