#pragma once

#include <devices/service/ipotentiometerscontrol.h>
#include <sdk/service/ipotentiometerscontrol.h>

#include <cstdint>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// `potentiometers list|read|write`.
struct PotentiometersCommand {
    using Control = devices::service::IPotentiometersControl;

    static constexpr std::string_view name = "potentiometers";
    static constexpr std::uint64_t registryKey = Control::registryKey;
    static constexpr sdk::Key sdkKey = sdk::service::IPotentiometersControl::key;
    static constexpr std::string_view purpose = "Trims the analogue circuits by digital potentiometers.";

    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

} // namespace tarn::console
