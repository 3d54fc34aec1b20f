#pragma once

#include "ledger.h"

#include <cstddef>

namespace tarn::soak {

/// What this process holds.
struct Footprint {
    std::size_t bytes; ///< that were allocated and not freed
    std::size_t resident; ///< bytes of memory
    std::size_t threads;
    std::size_t files; ///< file descriptors
};

[[nodiscard]] Footprint footprint();

/// Notes what has become more from `before` to `after`, and says both.
void compare(Ledger& ledger, const Footprint& before, const Footprint& after);

} // namespace tarn::soak
