#pragma once

#include <devices/service/sdkvellifswcalibrationcontrol.h>
#include <sdk/service/ivellifswcalibrationcontrol.h>

#include <cstdint>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// `ifsw-calibration plan|save|example`.
struct IfswCalibrationCommand {
    using Control = devices::service::SdkVellIfswCalibrationControl;

    static constexpr std::string_view name = "ifsw-calibration";
    static constexpr std::uint64_t registryKey = Control::registryKey;
    static constexpr sdk::Key sdkKey = sdk::service::IVellIfswCalibrationControl::key;
    static constexpr std::string_view purpose = "Stores the factory calibration of the IF switches in the receivers.";

    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

} // namespace tarn::console
