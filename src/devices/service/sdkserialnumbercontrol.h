#pragma once

#include <devices/icontrollifecycleobserver.h>
#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <devices/service/iserialnumbercontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>

#include <memory>

namespace tarn::devices::service {

/// `ISerialNumberControl` over the SDK's `IMemorySerialNumberControl`. See there.
class TARN_DEVICES_SERVICE_EXPORT SdkSerialNumberControl final : public ISerialNumberControl,
                                                                 public IControlLifecycleObserver {
public:
    /// Attaches to the control, if the instrument offers it.
    ///
    /// Threads: reentrant; calls through.
    explicit SdkSerialNumberControl(ReacquiringControl<sdk::service::IMemorySerialNumberControl> control);

    /// Detaches. Not from inside a notification of this control, which walks its observers.
    ///
    /// Threads: reentrant; blocks while one runs on another thread.
    ~SdkSerialNumberControl() override;

    [[nodiscard]] std::expected<unsigned int, Error> serialNumber() const override;
    [[nodiscard]] std::expected<void, Error> writeSerialNumber(unsigned int serialNumber) override;
    void addObserver(utils::Association<IObserver> observer) override;
    void removeObserver(utils::Association<IObserver> observer) override;

    void onControlsAboutToBeReleased() override;
    void onControlsAvailable() override;

private:
    class SdkControlObserver;

    ReacquiringControl<sdk::service::IMemorySerialNumberControl> m_control;
    std::unique_ptr<SdkControlObserver> m_observer;
};

} // namespace tarn::devices::service
