#pragma once

#include <simulator/bench.h>

#include <memory>

namespace tarn::simulator {

/// Puts the memory of the IF-switch calibration into an instrument. Writing takes 10 ms for each frequency, each ratio
/// and each linearity, divided by the speed.
[[nodiscard]] MakeControl installIfswCalibration(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
