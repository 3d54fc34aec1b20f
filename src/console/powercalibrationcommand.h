#pragma once

#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <sdk/service/ivellfactorypowercalibrationcontrol.h>

#include <cstdint>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// `power-calibration plan|save|example`.
struct PowerCalibrationCommand {
    using Control = devices::service::SdkVellFactoryPowerCalibrationControl;

    static constexpr std::string_view name = "power-calibration";
    static constexpr std::uint64_t registryKey = Control::registryKey;
    static constexpr sdk::Key sdkKey = sdk::service::IVellFactoryPowerCalibrationControl::key;
    static constexpr std::string_view purpose = "Stores the factory calibration of the power at the test ports.";

    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

} // namespace tarn::console
