#pragma once

#include <simulator/bench.h>

#include <memory>

namespace tarn::simulator {

/// Puts the memory device into an instrument, with the image that its storage holds; new ones are
/// erased. Throws `StateError` if what is stored cannot be used.
///
/// Its operations are long ones, in at most 129 pieces. Progress is in bytes and goes to the
/// observers of the control that is offered at the moment; a registration ends when the device
/// drops the control. What an interrupted write or erasure has written stays. An image that is
/// empty or larger than the memory is `Error::BadSize`.
[[nodiscard]] MakeControl installMemoryOperations(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
