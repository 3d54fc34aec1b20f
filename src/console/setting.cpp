#include <console/setting.h>

#include <console/output.h>
#include <console/text.h>

#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <ranges>

namespace tarn::console {

namespace {

using Kind = SettingForm::Kind;
using Parsed = std::expected<SettingValue, std::string>;

constexpr std::string_view rangeSign = "..";

template <class Items, class Text>
std::string joined(const Items& items, Text text)
{
    std::string all;
    for (const auto& item : items)
        all += fmt::format("{}{}", all.empty() ? "" : ", ", text(item));
    return all;
}

std::string listText(const std::vector<double>& values, Unit unit)
{
    return joined(values, [unit](double value) { return quantityText(value, unit); });
}

/// Whether `number` is the index of one of `size` elements; false for what is no number.
bool isIndex(double number, std::size_t size)
{
    return number >= 0 && number < static_cast<double>(size);
}

/// What stands at a position of the list; nothing beyond its end.
std::optional<double> at(const std::optional<std::vector<double>>& list, double position)
{
    if (!list || !isIndex(position, list->size()))
        return std::nullopt;
    return (*list)[static_cast<std::size_t>(position)];
}

std::string positionText(const Reading& reading, double position)
{
    const auto there = at(reading.limits.list, position);
    const auto number = quantityText(position, Unit::None);
    return there ? fmt::format("{} ({})", number, quantityText(*there, reading.setting.form.unit)) : number;
}

std::optional<std::string_view> nameOf(const SettingForm& form, double value)
{
    const auto index = value - form.first;
    if (!isIndex(index, form.names.size()))
        return std::nullopt;
    return form.names[static_cast<std::size_t>(index)];
}

std::string numberText(const Reading& reading, double value)
{
    const auto& form = reading.setting.form;
    switch (form.kind) {
    case Kind::Choice:
        if (const auto name = nameOf(form, value))
            return std::string{*name};
        break;
    case Kind::Switch:
        return value == 0 ? "off" : "on";
    case Kind::Position:
        return positionText(reading, value);
    default:
        return quantityText(value, form.unit);
    }
    return quantityText(value, Unit::None);
}

QJsonArray toJson(const std::vector<double>& values)
{
    QJsonArray array;
    for (const double value : values)
        array.append(value);
    return array;
}

// ---- from text

std::string notUnderstood(const Reading& reading, std::string_view text, std::string_view form)
{
    const auto accepted = acceptedText(reading);
    return fmt::format("{}: '{}' is not {}{}", reading.setting.name, text, form,
                       accepted.empty() ? "" : "; it takes " + accepted);
}

std::string outOfLimits(const Reading& reading, std::string_view text)
{
    const auto& [setting, value, limits] = reading;
    if (limits.areOfType)
        return fmt::format("{}: '{}' does not fit into it; it holds {} to {}", setting.name, text,
                           quantityText(limits.lower, Unit::None), quantityText(limits.upper, Unit::None));
    return fmt::format("{}: '{}' is out of the limits; it takes {}", reading.setting.name, text, acceptedText(reading));
}

bool isWithin(const Limits& limits, double value)
{
    return value >= limits.lower && value <= limits.upper;
}

/// The value of the list that `value` is, but for the rounding of decimal fractions.
std::optional<double> findIn(const std::vector<double>& list, double value)
{
    constexpr double tolerance = 1e-12;
    const auto found = std::ranges::find_if(
        list, [value](double each) { return std::abs(each - value) <= tolerance * std::abs(each); });
    return found == list.end() ? std::nullopt : std::optional{*found};
}

std::string numberForm(Unit unit)
{
    if (unit == Unit::None)
        return "a whole number, decimal or hexadecimal (0x1F)";
    return fmt::format("a number in {}", symbols(unit));
}

Parsed parseNumber(const Reading& reading, const std::string& text)
{
    const auto unit = reading.setting.form.unit;
    const auto value = parseQuantity(text, unit);
    if (!value)
        return std::unexpected{notUnderstood(reading, text, numberForm(unit))};
    const auto chosen = reading.limits.list ? findIn(*reading.limits.list, *value) : value;
    if (!chosen || !isWithin(reading.limits, *chosen))
        return std::unexpected{outOfLimits(reading, text)};
    return *chosen;
}

Parsed parseChoice(const Reading& reading, const std::string& text)
{
    const auto& form = reading.setting.form;
    const auto found = std::ranges::find(form.names, text);
    if (found != form.names.end())
        return static_cast<double>(form.first + (found - form.names.begin()));
    const auto number = parseQuantity(text, Unit::None);
    if (number && nameOf(form, *number))
        return *number;
    return std::unexpected{notUnderstood(reading, text, "one of its names or their numbers")};
}

Parsed parseSwitch(const Reading& reading, const std::string& text)
{
    static constexpr std::string_view off[] = {"off", "false", "0"};
    static constexpr std::string_view on[] = {"on", "true", "1"};
    if (std::ranges::find(on, text) != std::ranges::end(on))
        return 1.0;
    if (std::ranges::find(off, text) != std::ranges::end(off))
        return 0.0;
    return std::unexpected{notUnderstood(reading, text, "on, off, true, false, 1 or 0")};
}

Parsed parsePosition(const Reading& reading, const std::string& text)
{
    const auto unit = reading.setting.form.unit;
    const auto list = reading.limits.list.value_or(std::vector<double>{});
    if (const auto position = parseQuantity(text, Unit::None); position && at(list, *position))
        return *position;
    const auto value = parseQuantity(text, unit);
    if (!value)
        return std::unexpected{
            notUnderstood(reading, text, fmt::format("a position in the list or {}", numberForm(unit)))};
    const auto chosen = findIn(list, *value);
    if (!chosen)
        return std::unexpected{outOfLimits(reading, text)};
    return static_cast<double>(std::ranges::find(list, *chosen) - list.begin());
}

Parsed parseRange(const Reading& reading, const std::string& text)
{
    const auto unit = reading.setting.form.unit;
    const auto sign = text.find(rangeSign);
    const auto lower = parseQuantity(std::string_view{text}.substr(0, sign), unit);
    const auto upper
        = sign == std::string::npos ? std::nullopt : parseQuantity(std::string_view{text}.substr(sign + 2), unit);
    if (!lower || !upper)
        return std::unexpected{notUnderstood(reading, text, fmt::format("LOWER..UPPER, each {}", numberForm(unit)))};
    if (*lower > *upper)
        return std::unexpected{fmt::format("{}: '{}' has its lower end, {}, above its upper one, {}",
                                           reading.setting.name, text, quantityText(*lower, unit),
                                           quantityText(*upper, unit))};
    if (!isWithin(reading.limits, *lower) || !isWithin(reading.limits, *upper))
        return std::unexpected{outOfLimits(reading, text)};
    return utils::Range<double>{*lower, *upper};
}

} // namespace

std::string valueText(const Reading& reading, const SettingValue& value)
{
    const auto unit = reading.setting.form.unit;
    if (const auto* const number = std::get_if<double>(&value))
        return numberText(reading, *number);
    if (const auto* const range = std::get_if<utils::Range<double>>(&value))
        return quantityText(range->lower, unit) + std::string{rangeSign} + quantityText(range->upper, unit);
    if (const auto* const list = std::get_if<std::vector<double>>(&value))
        return list->empty() ? "none" : listText(*list, unit);
    return "not set";
}

std::string formText(const SettingForm& form)
{
    if (const auto words = valueWords(form); !words.empty())
        return joined(words, [](const std::string& word) { return word; });
    return form.kind == Kind::Range ? fmt::format("LOWER..UPPER in {}", symbols(form.unit)) : symbols(form.unit);
}

std::string acceptedText(const Reading& reading)
{
    const auto& [setting, value, limits] = reading;
    if (!valueWords(setting.form).empty())
        return formText(setting.form);
    if (limits.list && limits.list->empty())
        return "nothing: the instrument lists none";
    if (limits.list && setting.form.kind == Kind::Position) {
        const auto positions = std::views::iota(std::size_t{0}, limits.list->size());
        return joined(positions, [&](std::size_t at) { return positionText(reading, static_cast<double>(at)); });
    }
    if (limits.list)
        return listText(*limits.list, setting.form.unit);
    if (limits.areOfType || !std::isfinite(limits.lower))
        return {};
    const auto lower = quantityText(limits.lower, setting.form.unit);
    if (!std::isfinite(limits.upper))
        return fmt::format("{} or more", lower);
    return fmt::format("{} to {}", lower, quantityText(limits.upper, setting.form.unit));
}

std::string valueWord(const Reading& reading, const SettingValue& value)
{
    const auto* const number = std::get_if<double>(&value);
    if (number && reading.setting.form.kind == Kind::Position)
        return quantityText(*number, Unit::None);
    auto word = valueText(reading, value);
    std::erase(word, ' ');
    return word;
}

QJsonValue valueJson(const Reading& reading, const SettingValue& value)
{
    const auto& form = reading.setting.form;
    if (const auto* const range = std::get_if<utils::Range<double>>(&value))
        return QJsonObject{{QStringLiteral("lower"), range->lower}, {QStringLiteral("upper"), range->upper}};
    if (const auto* const list = std::get_if<std::vector<double>>(&value))
        return toJson(*list);
    const auto* const number = std::get_if<double>(&value);
    if (!number)
        return {};
    if (form.kind == Kind::Switch)
        return *number != 0;
    if (form.kind == Kind::Position) {
        const auto there = at(reading.limits.list, *number);
        return there ? QJsonValue{*there} : QJsonValue{};
    }
    if (const auto name = nameOf(form, *number))
        return toJson(*name);
    return *number;
}

QJsonObject json(const Reading& reading)
{
    const auto& [setting, value, limits] = reading;
    const auto unit = symbol(setting.form.unit);
    QJsonObject object{{QStringLiteral("name"), toJson(setting.name)},
                       {QStringLiteral("value"), valueJson(reading, value)},
                       {QStringLiteral("unit"), unit.empty() ? QJsonValue{} : toJson(unit)},
                       {QStringLiteral("readOnly"), setting.isReadOnly()}};
    if (limits.list) {
        object.insert(QStringLiteral("choices"), toJson(*limits.list));
    } else if (const auto words = valueWords(setting.form); !words.empty()) {
        QJsonArray choices;
        for (const auto& word : words)
            choices.append(setting.form.kind == Kind::Switch ? QJsonValue{word == "on"} : toJson(word));
        object.insert(QStringLiteral("choices"), choices);
    } else if (!limits.areOfType && std::isfinite(limits.lower)) {
        const auto upper = std::isfinite(limits.upper) ? QJsonValue{limits.upper} : QJsonValue{};
        object.insert(QStringLiteral("limits"),
                      QJsonObject{{QStringLiteral("minimum"), limits.lower}, {QStringLiteral("maximum"), upper}});
    }
    if (const auto* const number = std::get_if<double>(&value); number && setting.form.kind == Kind::Position)
        object.insert(QStringLiteral("position"), *number);
    return object;
}

Parsed parseSetting(const Reading& reading, const std::string& text)
{
    switch (reading.setting.form.kind) {
    case Kind::Number:
        return parseNumber(reading, text);
    case Kind::Choice:
        return parseChoice(reading, text);
    case Kind::Switch:
        return parseSwitch(reading, text);
    case Kind::Position:
        return parsePosition(reading, text);
    case Kind::Range:
        return parseRange(reading, text);
    case Kind::List:
        break;
    }
    return std::unexpected{fmt::format("{} can only be shown", reading.setting.name)};
}

std::vector<std::string> valueWords(const SettingForm& form)
{
    if (form.kind == Kind::Switch)
        return {"on", "off"};
    return {form.names.begin(), form.names.end()};
}

std::optional<SettingValue> otherValue(const Reading& reading)
{
    const auto& [setting, value, limits] = reading;
    auto words = valueWords(setting.form);
    for (const double listed : limits.list.value_or(std::vector<double>{}))
        words.push_back(quantityText(listed, setting.form.unit));
    for (const auto& word : words) {
        if (const auto other = parseSetting(reading, word); other && *other != value)
            return *other;
    }
    return std::nullopt;
}

} // namespace tarn::console
