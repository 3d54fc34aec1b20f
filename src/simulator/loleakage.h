#pragma once

#include <simulator/bench.h>

#include <memory>

namespace tarn::simulator {

/// Puts the control of the LO leakage function into an instrument.
[[nodiscard]] MakeControl installLoLeakage(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
