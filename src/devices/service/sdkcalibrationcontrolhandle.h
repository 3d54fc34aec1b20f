#pragma once

#include <devices/icontrollifecycleobserver.h>
#include <devices/lockedcontrol.h>
#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <sdk/service/calibrations/icalibrationcontroller.h>

#include <QObject>

#include <array>
#include <cstdint>

namespace tarn::devices::service {

/// One of the instrument's calibration controllers, and signals that tell when it comes and goes.
/// An instrument may have two; each has a handle of its own under a registry key of its own.
///
/// Threads: thread-safe; calls through.
class TARN_DEVICES_SERVICE_EXPORT SdkCalibrationControlHandle final : public QObject, public IControlLifecycleObserver {
    Q_OBJECT

public:
    static constexpr std::uint64_t firstRegistryKey = 0x6dd4c2f3a3d1aaab; ///< of the first controller's entry
    static constexpr std::uint64_t secondRegistryKey = 0x0b8ee0a3ce2543ab; ///< of the second one's

    /// Reaches its SDK control through `control`, which it takes over.
    explicit SdkCalibrationControlHandle(
        ReacquiringControl<sdk::service::calibrations::ICalibrationController> control);
    ~SdkCalibrationControlHandle() override;

    /// The controller, kept alive for as long as the caller keeps the result, which should be the
    /// length of one operation; empty while the instrument does not offer it. Exceptions of the
    /// device pass through.
    [[nodiscard]] LockedControl<sdk::service::calibrations::ICalibrationController> lock() const;

    /// Emits `controlsAboutToBeReleased()`.
    void onControlsAboutToBeReleased() override;

    /// Emits `controlsAvailable()`.
    void onControlsAvailable() override;

signals:
    /// The device is about to drop the controller.
    ///
    /// Threads: slots are called on the thread that brought the notification or on the receiver's own,
    /// in the former case with the lifecycle mutex of `InstrumentControls` held.
    void controlsAboutToBeReleased();

    /// The controller can be obtained (again).
    ///
    /// Threads: slots are called on the same threads, with the same mutex held.
    void controlsAvailable();

private:
    ReacquiringControl<sdk::service::calibrations::ICalibrationController> m_control;
};

} // namespace tarn::devices::service
