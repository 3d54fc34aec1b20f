#pragma once

#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <sdk/service/calibrations/icalibrationcontroller.h>

#include <cstdint>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// `calibrations status|watch`, for both controllers.
struct FirstCalibrationsCommand {
    using Control = devices::service::SdkCalibrationControlHandle;

    static constexpr std::string_view name = "calibrations-1";
    static constexpr std::uint64_t registryKey = Control::firstRegistryKey;
    static constexpr sdk::Key sdkKey = sdk::service::calibrations::ICalibrationController::firstKey;
    static constexpr std::string_view purpose = "Looks after the first group of calibration units.";

    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

/// The second controller; it has no commands of its own.
struct SecondCalibrationsCommand {
    using Control = devices::service::SdkCalibrationControlHandle;

    static constexpr std::string_view name = "calibrations-2";
    static constexpr std::uint64_t registryKey = Control::secondRegistryKey;
    static constexpr sdk::Key sdkKey = sdk::service::calibrations::ICalibrationController::secondKey;
    static constexpr std::string_view purpose = "Looks after the second group of calibration units.";

    static void addTo(CommandLine& /*line*/) { }
    static void tour(Tour& tour);
};

} // namespace tarn::console
