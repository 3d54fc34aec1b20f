#pragma once

#include <devices/service/sdktemperaturecontrol.h>
#include <sdk/itemperaturecontrol.h>

#include <cstdint>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// `temperature show|watch`.
struct TemperatureCommand {
    using Control = devices::service::SdkTemperatureControl;

    static constexpr std::string_view name = "temperature";
    static constexpr std::uint64_t registryKey = Control::registryKey;
    static constexpr sdk::Key sdkKey = sdk::ITemperatureControl::key;
    static constexpr std::string_view purpose = "Reports the temperatures of the instrument and of its modules.";

    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

} // namespace tarn::console
