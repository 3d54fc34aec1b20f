#pragma once

#include <simulator/bench.h>

#include <memory>

namespace tarn::simulator {

/// Puts the LO leakage function into an instrument, as its storage says; off at first. While it is
/// on it heats the LO module by 4 kelvin. Throws `StateError` if what is stored cannot be used. Switching throws
/// if the setting cannot be saved, and then changes nothing.
[[nodiscard]] MakeControl installLoLeakage(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
