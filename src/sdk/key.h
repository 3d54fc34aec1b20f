#pragma once

#include <cstdint>

namespace sdk {

/// Identifies one control interface on a device. The values are fixed by the SDK; every control
/// interface of this contract carries its own as a constant named `key`.
enum class Key : std::uint64_t { };

} // namespace sdk
