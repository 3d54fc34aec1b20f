#pragma once

#include <simulator/bench.h>

#include <memory>

namespace tarn::simulator {

/// Puts the thermometers into an instrument. They measure once a second of the clock, first at
/// switch-on, and then tell the observers; between two measurements the values stand still.
///
/// An observer is registered with one control, and its registration ends when the device drops
/// that control.
[[nodiscard]] MakeControl installTemperature(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
