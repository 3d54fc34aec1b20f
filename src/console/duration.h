#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace tarn::console {

/// A length of time as people write it: a decimal number and a unit (`us`, `ms`, `s`, `min`, `h`),
/// for example `500ms` or `1.5s`. Nothing for anything else and for more than a year.
[[nodiscard]] std::optional<std::chrono::microseconds> parseDuration(std::string_view text);

} // namespace tarn::console
