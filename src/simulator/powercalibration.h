#pragma once

#include <simulator/bench.h>

#include <memory>

namespace tarn::simulator {

/// Puts the memory of the factory power calibration into an instrument. Writing takes 20 ms for each point, divided by
/// the speed.
[[nodiscard]] MakeControl installPowerCalibration(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
