#pragma once

#include <devices/service/sdkloleakagecontrol.h>
#include <sdk/service/iloleakagecontrol.h>

#include <cstdint>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// `lo-leakage show|on|off`.
struct LoLeakageCommand {
    using Control = devices::service::SdkLoLeakageControl;

    static constexpr std::string_view name = "lo-leakage";
    static constexpr std::uint64_t registryKey = Control::registryKey;
    static constexpr sdk::Key sdkKey = sdk::service::ILoLeakageControl::key;
    static constexpr std::string_view purpose
        = "Lets the local oscillator reach the test ports, to measure how much of it leaks.";

    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

} // namespace tarn::console
