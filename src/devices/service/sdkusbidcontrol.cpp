#include <devices/service/sdkusbidcontrol.h>

#include <devices/modelnames.h>
#include <devices/service/access.h>
#include <devices/service/bridge.h>

#include <bit>
#include <utility>

namespace tarn::devices::service {

namespace {

using Sdk = sdk::service::IMemoryUsbIdControl;
using DeviceProperties = IUsbIdControl::DeviceProperties;
using UsbId = IUsbIdControl::UsbId;

DeviceProperties fromSdk(const Sdk::DeviceRecord& record)
{
    return {std::bit_cast<UsbId>(record.usbId), prettyModelName(record.model).toStdString(), record.hardwareRevision,
            record.deviceInterfaceGuid};
}

DeviceProperties currentDevice(Sdk& sdk)
{
    return fromSdk(sdk.currentDevice());
}

std::vector<DeviceProperties> supported(Sdk& sdk)
{
    const auto records = sdk.supportedDevices();
    std::vector<DeviceProperties> devices;
    devices.reserve(records.size());
    for (const auto& record : records)
        devices.push_back(fromSdk(record));
    return devices;
}

} // namespace

SdkMemoryUsbId::SdkMemoryUsbId(ReacquiringControl<sdk::service::IMemoryUsbIdControl> control)
    : m_control{std::move(control)}
{
}

DeviceProperties SdkMemoryUsbId::currentDeviceProperties() const
{
    return valueOr(DeviceProperties{}, m_control, currentDevice);
}

std::vector<DeviceProperties> SdkMemoryUsbId::supportedDevices() const
{
    return valueOr(std::vector<DeviceProperties>{}, m_control, supported);
}

bool SdkMemoryUsbId::writeUsbId(const UsbId& usbId)
{
    return requestOrFalse(m_control,
                          [&](Sdk& sdk, auto done) { sdk.writeUsbId(std::bit_cast<Sdk::UsbId>(usbId), done); });
}

} // namespace tarn::devices::service
