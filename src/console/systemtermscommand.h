#pragma once

#include <devices/service/isystemtermscontrol.h>
#include <sdk/service/isystemtermscontrol.h>

#include <cstdint>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// `system-terms plan|override|write|example`.
struct SystemTermsCommand {
    using Control = devices::service::ISystemTermsControl;

    static constexpr std::string_view name = "system-terms";
    static constexpr std::uint64_t registryKey = Control::registryKey;
    static constexpr sdk::Key sdkKey = sdk::service::ISystemTermsControl::key;
    static constexpr std::string_view purpose
        = "Stores the system error terms that the instrument corrects its measurements with.";

    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

} // namespace tarn::console
