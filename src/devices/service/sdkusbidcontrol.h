#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <devices/service/iusbidcontrol.h>
#include <sdk/service/imemoryusbidcontrol.h>

namespace tarn::devices::service {

/// `IUsbIdControl` over the SDK's `IMemoryUsbIdControl`. See there.
class TARN_DEVICES_SERVICE_EXPORT SdkMemoryUsbId final : public IUsbIdControl {
public:
    /// Threads: reentrant; at once.
    explicit SdkMemoryUsbId(ReacquiringControl<sdk::service::IMemoryUsbIdControl> control);

    [[nodiscard]] DeviceProperties currentDeviceProperties() const override;
    [[nodiscard]] std::vector<DeviceProperties> supportedDevices() const override;
    [[nodiscard]] bool writeUsbId(const UsbId& usbId) override;

private:
    ReacquiringControl<sdk::service::IMemoryUsbIdControl> m_control;
};

} // namespace tarn::devices::service
