#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace tarn::utils {

/// A length of time as people write it: a decimal number and a unit (`us`, `ms`, `s`, `min`, `h`),
/// for example `500ms` or `1.5s`. Nothing for anything else and for more than a year.
[[nodiscard]] inline std::optional<std::chrono::microseconds> parseDuration(std::string_view text)
{
    using std::chrono::microseconds;
    using namespace std::chrono_literals;
    static constexpr std::array<std::pair<std::string_view, microseconds>, 5> units{
        {{"us", 1us}, {"ms", 1ms}, {"s", 1s}, {"min", 1min}, {"h", 1h}}};

    if (text.empty() || text.front() < '0' || text.front() > '9') // from_chars takes a sign, "inf" and "nan"
        return std::nullopt;
    double number = 0;
    const auto* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number, std::chars_format::fixed);
    if (error != std::errc{})
        return std::nullopt;
    const std::string_view name{end, last};
    const auto* const unit = std::ranges::find(units, name, &decltype(units)::value_type::first);
    if (unit == units.end())
        return std::nullopt;
    const std::chrono::duration<double, std::micro> length = number * unit->second;
    if (length > std::chrono::years{1})
        return std::nullopt;
    return std::chrono::round<microseconds>(length);
}

} // namespace tarn::utils
