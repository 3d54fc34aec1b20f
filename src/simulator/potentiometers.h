#pragma once

#include <simulator/bench.h>

#include <memory>

namespace tarn::simulator {

/// Puts the control of the potentiometers into an instrument.
[[nodiscard]] MakeControl installPotentiometers(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
