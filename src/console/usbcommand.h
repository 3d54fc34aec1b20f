#pragma once

#include <devices/service/iusbidcontrol.h>
#include <sdk/service/imemoryusbidcontrol.h>

#include <cstdint>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// `usb show|list|write`.
struct UsbCommand {
    using Control = devices::service::IUsbIdControl;

    static constexpr std::string_view name = "usb-id";
    static constexpr std::uint64_t registryKey = Control::registryKey;
    static constexpr sdk::Key sdkKey = sdk::service::IMemoryUsbIdControl::key;
    static constexpr std::string_view purpose = "Decides as which model the instrument reports itself over USB.";

    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

} // namespace tarn::console
