#pragma once

#include <devices/service/iserialnumbercontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>

#include <cstdint>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// `serial show|write`.
struct SerialCommand {
    using Control = devices::service::ISerialNumberControl;

    static constexpr std::string_view name = "serial-number";
    static constexpr std::uint64_t registryKey = Control::registryKey;
    static constexpr sdk::Key sdkKey = sdk::service::IMemorySerialNumberControl::key;
    static constexpr std::string_view purpose = "Keeps the serial number that identifies the instrument.";

    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

} // namespace tarn::console
