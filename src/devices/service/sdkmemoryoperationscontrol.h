#pragma once

#include <devices/icontrollifecycleobserver.h>
#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <devices/service/imemoryoperationscontrol.h>
#include <sdk/service/imemoryoperationscontrol.h>

#include <memory>

namespace tarn::devices::service {

class SdkMemoryOperationsObserver;

/// `IMemoryOperationsControl` over the SDK's control of the same name. See there.
class TARN_DEVICES_SERVICE_EXPORT SdkMemoryOperationsControl final : public IMemoryOperationsControl,
                                                                     public IControlLifecycleObserver {
public:
    /// Attaches to the control, if the instrument offers it.
    ///
    /// Threads: reentrant; calls through.
    explicit SdkMemoryOperationsControl(ReacquiringControl<sdk::service::IMemoryOperationsControl> control);

    /// Detaches. Not from inside a notification of this control, which walks its observers.
    ///
    /// Threads: reentrant; blocks while one runs on another thread.
    ~SdkMemoryOperationsControl() override;

    [[nodiscard]] std::expected<std::vector<std::byte>, Error> read() override;
    [[nodiscard]] std::expected<void, Error> write(const std::vector<std::byte>& image) override;
    [[nodiscard]] std::expected<void, Error> erase() override;
    [[nodiscard]] std::expected<void, Error> integrityCheck() override;
    void addObserver(utils::Association<IObserver> observer) override;
    void removeObserver(utils::Association<IObserver> observer) override;

    void onControlsAboutToBeReleased() override;
    void onControlsAvailable() override;

private:
    ReacquiringControl<sdk::service::IMemoryOperationsControl> m_control;
    std::unique_ptr<SdkMemoryOperationsObserver> m_observer;
};

} // namespace tarn::devices::service
