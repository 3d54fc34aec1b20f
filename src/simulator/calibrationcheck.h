#pragma once

#include <sdk/service/isystemtermscontrol.h>
#include <simulator/calibrationdata.h>
#include <simulator/calibrationlimits.h>
#include <simulator/export.h>

#include <optional>

namespace tarn::simulator {

// Why an instrument does not take the data; nothing if it does. Of several reasons, the first in the order of the
// errors' numbers, except that `OverrideNotSupported` comes before all others.

/// Memory for more points than there is room for is `WriteFailed`.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT std::optional<sdk::service::ISystemTermsControl::Error>
check(const SystemTerms& data, const CalibrationLimits& limits);

/// Takes intermediate frequencies up to 100 MHz, magnitudes up to 10, phases of at most 360 degrees, levels from -150
/// dBm to 30 dBm and errors of at most 20 dB and 360 degrees.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT std::optional<sdk::service::IVellIfswCalibrationControl::Error>
check(const IfswCalibration& data, const CalibrationLimits& limits);

/// Takes powers from -150 dBm to 40 dBm and attenuations up to 120 dB.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT std::optional<sdk::service::IVellFactoryPowerCalibrationControl::Error>
check(const PowerCalibration& data, const CalibrationLimits& limits);

} // namespace tarn::simulator
