#pragma once

#include <sdk/completion.h>
#include <sdk/key.h>
#include <sdk/model.h>
#include <sdk/visibility.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace sdk::service {

/// The USB identity that the instrument reports to a host, and those that it can be given.
///
/// Threads: thread-safe; at once, but a write that is completed before `writeUsbId` returns makes that
/// take as long. The write reports its end through the completion; see `Completion` for what a binding
/// guarantees.
class SDK_API IMemoryUsbIdControl {
public:
    static constexpr Key key{0x8bba7f494ad7c259}; ///< the device is asked for the control by it

    /// The numbers of a USB device descriptor that tell one model from another.
    struct UsbId {
        std::uint16_t vendorId; ///< idVendor
        std::uint16_t productId; ///< idProduct
        std::uint16_t deviceRelease; ///< bcdDevice: device release number in binary-coded decimal

        friend bool operator==(const UsbId&, const UsbId&) = default;
    };

    /// One model and how it shows on the bus.
    struct DeviceRecord {
        UsbId usbId{}; ///< what the bus is told
        Model model; ///< the model that has this identity
        std::uint32_t hardwareRevision{}; ///< of the boards that carry this identity, from 1
        std::array<std::byte, 16> deviceInterfaceGuid{}; ///< under which the host's driver offers it

        friend bool operator==(const DeviceRecord&, const DeviceRecord&) = default;
    };

    IMemoryUsbIdControl() = default;
    IMemoryUsbIdControl(const IMemoryUsbIdControl&) = delete;
    IMemoryUsbIdControl& operator=(const IMemoryUsbIdControl&) = delete;
    virtual ~IMemoryUsbIdControl() = default;

    /// Whether the memory can be used now. No adapter calls it; it holds its slot.
    [[nodiscard]] virtual bool isAvailable() = 0;

    /// What the instrument reports now.
    [[nodiscard]] virtual DeviceRecord currentDevice() = 0;

    /// The identities that it can be given, one per supported model.
    [[nodiscard]] virtual std::vector<DeviceRecord> supportedDevices() = 0;

    /// Writes a new identity. The instrument reports it after its controls are offered anew.
    virtual void writeUsbId(const UsbId& usbId, Completion<> completion) = 0;
};

} // namespace sdk::service
