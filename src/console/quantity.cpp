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

/// A unit with a prefix. Either `times` or `parts` is 1, so that one division or multiplication, which is
/// rounded once, converts.
struct Prefixed {
    std::string_view symbol;
    double times; ///< how many base units it is
    double parts; ///< into how many of it the base unit falls
};

constexpr bool isBase(const Prefixed& unit)
{
    return unit.times == unit.parts;
}

/// By ascending size.
std::span<const Prefixed> prefixed(Unit unit)
{
    static constexpr Prefixed hertz[] = {{"Hz", 1, 1}, {"kHz", 1e3, 1}, {"MHz", 1e6, 1}, {"GHz", 1e9, 1}};
    static constexpr Prefixed seconds[] = {{"ns", 1, 1e9}, {"us", 1, 1e6}, {"ms", 1, 1e3}, {"s", 1, 1}};
    static constexpr Prefixed farads[] = {{"pF", 1, 1e12}, {"nF", 1, 1e9}, {"uF", 1, 1e6}, {"F", 1, 1}};
    static constexpr Prefixed decibels[] = {{"dB", 1, 1}};
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

std::optional<double> parseWhole(std::string_view text)
{
    if (!text.starts_with("0x"))
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
    double number = 0;
    const auto* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number);
    if (error != std::errc{})
        return std::nullopt;
    const auto suffix = trimmed({end, last});
    const auto all = prefixed(unit);
    const auto found
        = suffix.empty() ? std::ranges::find_if(all, &isBase) : std::ranges::find(all, suffix, &Prefixed::symbol);
    if (found == all.end())
        return std::nullopt;
    const auto value = number * found->times / found->parts;
    return std::isfinite(value) ? std::optional{value} : std::nullopt;
}

std::string quantityText(double value, Unit unit)
{
    if (unit == Unit::None)
        return fmt::format("{:.0f}", value);
    const auto all = prefixed(unit);
    const auto fits = [&](const Prefixed& each) { return std::abs(value) * each.parts >= each.times; };
    const auto largest = std::ranges::find_if(all | std::views::reverse, fits);
    const auto& base = *std::ranges::find_if(all, &isBase);
    const auto& chosen = largest == all.rend() ? base : *largest;
    const auto text = fmt::format("{:.15g} {}", value * chosen.parts / chosen.times, chosen.symbol);
    return parseQuantity(text, unit) == value ? text : fmt::format("{} {}", value, base.symbol);
}

} // namespace tarn::console
