#pragma once

#include <simulator/bench.h>

#include <memory>

namespace tarn::simulator {

/// Puts the factory corrections into an instrument. Their observers are also told when what is supported or valid has
/// changed from one offer to the next, as it does when the instrument was given the identity of another model.
[[nodiscard]] MakeControl installFactoryCorrections(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
