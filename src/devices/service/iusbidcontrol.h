#pragma once

#include <devices/service/export.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn::devices::service {

/// The USB identity that the instrument reports to a host, and those that it can be given.
///
/// Exceptions of the device pass through.
///
/// Threads: thread-safe; calls through.
class TARN_DEVICES_SERVICE_EXPORT IUsbIdControl {
public:
    static constexpr std::uint64_t registryKey = 0xec20f733872b6ac0; ///< of its entry in the host's registry

    /// The numbers of a USB device descriptor that tell one model from another.
    struct UsbId {
        std::uint16_t vendorId = 0; ///< idVendor
        std::uint16_t productId = 0; ///< idProduct
        std::uint16_t deviceRelease = 0; ///< bcdDevice: device release number in binary-coded decimal

        friend bool operator==(const UsbId&, const UsbId&) = default;
    };

    /// One model and how it shows on the bus. The defaults stand for an absent instrument.
    struct DeviceProperties {
        UsbId usbId; ///< what the bus is told
        std::string modelName; ///< display name of the model, UTF-8
        std::uint32_t hardwareRevision = 1; ///< of the boards that carry this identity, from 1
        std::array<std::byte, 16> deviceInterfaceGuid{}; ///< under which the host's driver offers it

        friend bool operator==(const DeviceProperties&, const DeviceProperties&) = default;
    };

    IUsbIdControl() = default;
    IUsbIdControl(const IUsbIdControl&) = delete;
    IUsbIdControl& operator=(const IUsbIdControl&) = delete;
    virtual ~IUsbIdControl() = default;

    /// What the instrument reports now; the default record while it does not offer the control.
    [[nodiscard]] virtual DeviceProperties currentDeviceProperties() const = 0;

    /// The identities that it can be given, in the instrument's order; none while it does not
    /// offer the control.
    [[nodiscard]] virtual std::vector<DeviceProperties> supportedDevices() const = 0;

    /// Writes a new identity and tells whether the instrument took it; `false`, without a request,
    /// while it does not offer the control.
    ///
    /// Threads: thread-safe; blocks until the instrument has answered. Never call it from inside a
    /// completion or a notification of the device.
    [[nodiscard]] virtual bool writeUsbId(const UsbId& usbId) = 0;
};

} // namespace tarn::devices::service
