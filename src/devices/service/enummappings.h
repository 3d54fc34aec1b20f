#pragma once

#include <utility>

/// The rules by which a value of one enumeration becomes one of another. What does not fit is never
/// an error.
namespace tarn::devices::service {

/// The value of the same number, whatever it is.
template <class To>
inline constexpr auto unchanged = [](auto value) { return static_cast<To>(std::to_underlying(value)); };

/// The value of the same number from 1 to that of `last`, the one of the number 0 for all others.
template <auto last>
inline constexpr auto mirrored = [](auto value) {
    const auto number = std::to_underlying(value);
    return number >= 1 && number <= std::to_underlying(last) ? static_cast<decltype(last)>(number) : decltype(last){};
};

/// The value of the same number from 0 to that of `last`, `last` for all others, also negative ones.
template <auto last>
inline constexpr auto saturated = [](auto value) {
    const auto number = std::to_underlying(value);
    return number >= 0 && number <= std::to_underlying(last) ? static_cast<decltype(last)>(number) : last;
};

} // namespace tarn::devices::service
