#pragma once

#include <simulator/bench.h>

#include <memory>

namespace tarn::simulator {

/// Puts the first calibration controller into an instrument. It has one unit, "System terms".
[[nodiscard]] MakeControl installSystemCalibrations(const std::shared_ptr<Bench>& bench);

/// Puts the second calibration controller into an instrument: that of the factory. Its units are "IF switches" and
/// "Power".
///
/// A unit of either is being saved while its data is written, and the progress is counted in the pieces that the
/// writing takes its time for.
[[nodiscard]] MakeControl installFactoryCalibrations(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
