#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace tarn::console {

/// The number that the whole of `text` spells in digits of `base`; nothing when it spells none or
/// one that does not fit.
template <class Number>
[[nodiscard]] std::optional<Number> parseNumber(std::string_view text, int base = 10)
{
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc{} || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

} // namespace tarn::console
