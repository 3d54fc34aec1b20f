#pragma once

#include <simulator/export.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarn::simulator {

/// How an instrument breaks the contract of `sdk::Completion`, having carried the request out. A notification that ends
/// a request is treated as a completion is.
enum class Misbehaviour : std::uint8_t {
    None,
    Twice, ///< calls it twice in a row; a list or bytes come empty the second time
    Drop, ///< destroys it uncalled
    DropControls, ///< drops the controls, and destroys it uncalled with them
    Keep, ///< keeps it until the instrument is destroyed, and destroys it uncalled then
    AtEnd, ///< keeps it as long, and calls it then
    Late, ///< calls it after a time, on the instrument's thread
    ThrowLate, ///< the same, and the operation throws
};

/// The misbehaviour of this name in an address.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT std::optional<Misbehaviour> misbehaviourFromText(std::string_view text);

} // namespace tarn::simulator
