#include <console/quantity.h>

#include <console/number.h>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <ranges>
#include <span>
#include <system_error>

namespace tarn::console {

namespace {

/// A unit with a prefix.
struct Prefixed {
    std::string_view symbol;
    int exponent; ///< of ten: the base units that it is
};

constexpr bool isBase(const Prefixed& unit)
{
    return unit.exponent == 0;
}

/// By ascending size.
std::span<const Prefixed> prefixed(Unit unit)
{
    static constexpr Prefixed hertz[] = {{"Hz", 0}, {"kHz", 3}, {"MHz", 6}, {"GHz", 9}};
    static constexpr Prefixed seconds[] = {{"ns", -9}, {"us", -6}, {"ms", -3}, {"s", 0}};
    static constexpr Prefixed farads[] = {{"pF", -12}, {"nF", -9}, {"uF", -6}, {"F", 0}};
    static constexpr Prefixed decibels[] = {{"dB", 0}};
    switch (unit) {
    case Unit::Hertz:
        return hertz;
    case Unit::Second:
        return seconds;
    case Unit::Farad:
        return farads;
    case Unit::Decibel:
        return decibels;
    case Unit::None:
        break;
    }
    return {};
}

/// The exponent of a number as it is written after the `e`.
std::optional<int> parseExponent(std::string_view text)
{
    text.remove_prefix(text.starts_with('+') ? 1 : 0);
    const auto exponent = parseNumber<int>(text);
    constexpr int largest = 9999; // far beyond any number, so that sums of two are no matter
    return exponent && -largest <= *exponent && *exponent <= largest ? exponent : std::nullopt;
}

/// The number that the whole of `text` spells, times ten to the power of `exponent`, rounded once.
std::optional<double> parseScaled(std::string_view text, int exponent)
{
    const auto sign = std::min(text.find_first_of("eE"), text.size());
    const auto own = sign == text.size() ? std::optional{0} : parseExponent(text.substr(sign + 1));
    if (!own)
        return std::nullopt;
    const auto scaled = fmt::format("{}e{}", text.substr(0, sign), *own + exponent);
    const auto* const last = scaled.data() + scaled.size();
    double number = 0;
    const auto [end, error] = std::from_chars(scaled.data(), last, number);
    if (error != std::errc{} || end != last || !std::isfinite(number))
        return std::nullopt;
    return number + 0.0; // no negative zero
}

std::optional<double> parseWhole(std::string_view text)
{
    if (!text.starts_with("0x") && !text.starts_with("0X"))
        return parseNumber<std::int64_t>(text);
    return parseNumber<std::uint64_t>(text.substr(2), 16); // takes no sign
}

std::string_view trimmed(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

} // namespace

std::string_view symbol(Unit unit)
{
    const auto all = prefixed(unit);
    const auto base = std::ranges::find_if(all, &isBase);
    return base == all.end() ? std::string_view{} : base->symbol;
}

std::string symbols(Unit unit)
{
    const auto all = prefixed(unit);
    std::string text;
    for (const auto& each : all) {
        if (!text.empty())
            text += &each == &all.back() ? " or " : ", ";
        text += each.symbol;
    }
    return text;
}

std::optional<double> parseQuantity(std::string_view text, Unit unit)
{
    text = trimmed(text);
    if (unit == Unit::None)
        return parseWhole(text);
    const auto* const last = text.data() + text.size();
    double unscaled = 0;
    const auto* const end = std::from_chars(text.data(), last, unscaled).ptr;
    const auto suffix = trimmed({end, last});
    const auto all = prefixed(unit);
    const auto found
        = suffix.empty() ? std::ranges::find_if(all, &isBase) : std::ranges::find(all, suffix, &Prefixed::symbol);
    return found == all.end() ? std::nullopt : parseScaled({text.data(), end}, found->exponent);
}

bool isSymbol(std::string_view word)
{
    static constexpr Unit units[] = {Unit::Hertz, Unit::Second, Unit::Farad, Unit::Decibel};
    return std::ranges::any_of(units, [word](Unit unit) {
        const auto all = prefixed(unit);
        return std::ranges::find(all, word, &Prefixed::symbol) != all.end();
    });
}

std::string quantityText(double value, Unit unit)
{
    if (unit == Unit::None)
        return fmt::format("{:.0f}", value);
    const auto size = [](const Prefixed& each) { return parseScaled("1", each.exponent).value_or(1); };
    const auto all = prefixed(unit);
    const auto largest = std::ranges::find_if(all | std::views::reverse,
                                              [&](const Prefixed& each) { return std::abs(value) >= size(each); });
    const auto& base = *std::ranges::find_if(all, &isBase);
    const auto& chosen = largest == all.rend() ? base : *largest;
    const auto text = fmt::format("{:.15g} {}", value / size(chosen), chosen.symbol);
    return parseQuantity(text, unit) == value ? text : fmt::format("{} {}", value, base.symbol);
}

} // namespace tarn::console
