#pragma once

#include <simulator/bench.h>

#include <memory>

namespace tarn::simulator {

/// Puts the serial number into an instrument, as its storage says; 1000001 plus the seed at first.
/// Throws `StateError` if what is stored cannot be used.
///
/// A write is a long operation in four steps: erase the record, program the number, program its
/// checksum, read it back. The new number holds, and is kept, when all of them are done; an
/// interrupted write leaves the old one.
[[nodiscard]] MakeControl installSerialNumber(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
