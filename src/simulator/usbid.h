#pragma once

#include <simulator/bench.h>

#include <memory>

namespace tarn::simulator {

/// Puts the control of the USB identity into an instrument. A write makes the instrument drop its
/// controls and offer them anew with the new identity, before the write completes.
[[nodiscard]] MakeControl installUsbId(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
