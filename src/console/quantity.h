#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarn::console {

/// What a number is measured in.
enum class Unit {
    None, ///< a number of the instrument's own
    Hertz,
    Second,
    Farad,
    Decibel,
};

/// The symbol of a unit; empty for `None`.
[[nodiscard]] std::string_view symbol(Unit unit);

/// The symbols that a quantity may end with, for people: "Hz, kHz, MHz or GHz".
[[nodiscard]] std::string symbols(Unit unit);

/// The number in the base unit that `text` spells, with a prefix of the unit or without a unit: `10MHz`,
/// `10 MHz`, `1e7`; rounded once. Of `None`: a whole number, in decimal digits or in hexadecimal ones after
/// `0x`. Nothing for anything else; never an infinity.
[[nodiscard]] std::optional<double> parseQuantity(std::string_view text, Unit unit);

/// Whether `word` is the symbol of a unit, with or without a prefix.
[[nodiscard]] bool isSymbol(std::string_view word);

/// `value`, which is in the base unit, with the prefix that suits it. `parseQuantity` reads it as the same.
[[nodiscard]] std::string quantityText(double value, Unit unit);

} // namespace tarn::console
