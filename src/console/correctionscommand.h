#pragma once

#include <devices/service/sdkfactorycorrectioncontrol.h>
#include <sdk/ifactorycorrectioncontrol.h>

#include <cstdint>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// `corrections list|enable|disable|watch`.
struct CorrectionsCommand {
    using Control = devices::service::SdkFactoryCorrectionControl;

    static constexpr std::string_view name = "corrections";
    static constexpr std::uint64_t registryKey = Control::registryKey;
    static constexpr sdk::Key sdkKey = sdk::IFactoryCorrectionControl::key;
    static constexpr std::string_view purpose = "Switches the corrections that were stored at the factory.";

    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

} // namespace tarn::console
