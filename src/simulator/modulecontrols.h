#pragma once

#include <simulator/bench.h>

#include <memory>

namespace tarn::simulator {

// Each puts a module with its control into an instrument. A setting that is refused throws `std::out_of_range`,
// `std::invalid_argument` or, for a table, `std::length_error`, and what cannot be saved `std::runtime_error`; nothing
// has changed then. Throws `StateError` if what is stored cannot be used.

[[nodiscard]] MakeControl installQuillPower(const std::shared_ptr<Bench>& bench);
[[nodiscard]] MakeControl installQuillSynthesis(const std::shared_ptr<Bench>& bench);
[[nodiscard]] MakeControl installDornPower(const std::shared_ptr<Bench>& bench);
[[nodiscard]] MakeControl installDornSynthesis(const std::shared_ptr<Bench>& bench);
[[nodiscard]] MakeControl installSablePower(const std::shared_ptr<Bench>& bench);
[[nodiscard]] MakeControl installSableSynthesis(const std::shared_ptr<Bench>& bench);
[[nodiscard]] MakeControl installVellSynthesis(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
