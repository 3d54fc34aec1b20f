#pragma once

#include <sdk/frequencyplan.h>
#include <sdk/model.h>
#include <simulator/export.h>
#include <simulator/profile.h>

#include <cstdint>
#include <span>

namespace tarn::simulator {

/// What an instrument takes as calibration data. The plans, the frequencies and the temperatures are the same for all.
///
/// | plan          | segments (start to stop, points)                                                        |
/// |---------------|-----------------------------------------------------------------------------------------|
/// | system terms  | 1 MHz to 9 MHz, 3; 10 MHz to 90 MHz, 3; 100 MHz to 900 MHz, 5; 1 GHz to 8 GHz, 8          |
/// | IF switches   | 100 MHz, 1; 1 GHz to 8 GHz, 8                                                             |
/// | factory power | 10 MHz to 90 MHz, 3; 1 GHz to 8 GHz, 8                                                    |
struct CalibrationLimits {
    static constexpr double lowestFrequency = 100e3; ///< in hertz
    static constexpr double highestFrequency = 8.5e9; ///< in hertz
    static constexpr double lowestTemperature = 5.0; ///< in degrees Celsius
    static constexpr double highestTemperature = 50.0; ///< in degrees Celsius
    static constexpr std::uint32_t maximumPointCount = 20'001; ///< of system terms

    std::uint32_t portCount = 2; ///< 4 for the families of multiport instruments
    bool isOverrideSupported = true; ///< whether system terms may have another plan: not in Pell and Wisp
    bool hasFactoryCalibrations = true; ///< of the IF switches and the power: the Vell family

    friend bool operator==(const CalibrationLimits&, const CalibrationLimits&) = default;
};

/// Those of an instrument of `profile` that identifies itself as `model`.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT CalibrationLimits calibrationLimits(Profile profile, sdk::Model model);

[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT sdk::FrequencyPlan systemTermsPlan();
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT sdk::FrequencyPlan ifswPlan();
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT sdk::FrequencyPlan powerPlan();

/// Whether `frequencies` are the points of `plan`, one after the other, to 1 part in 10^9.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT bool arePointsOf(const sdk::FrequencyPlan& plan,
                                                            std::span<const double> frequencies);

} // namespace tarn::simulator
