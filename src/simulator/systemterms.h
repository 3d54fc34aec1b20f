#pragma once

#include <simulator/bench.h>

#include <memory>

namespace tarn::simulator {

/// Puts the memory of the system error terms into an instrument. Writing takes 50 ms for each frequency, divided by the
/// speed.
[[nodiscard]] MakeControl installSystemTerms(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
