#pragma once

#include <cstdint>

namespace sdk::sable {

/// One row of the RF power range table of a Sable synthesizer.
struct PowerSynt {
    double frequency; ///< Hz, the highest of the row's range
    std::uint8_t power; ///< power code

    friend bool operator==(const PowerSynt&, const PowerSynt&) = default;
};

} // namespace sdk::sable
