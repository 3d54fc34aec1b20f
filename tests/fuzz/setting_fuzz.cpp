#include <fuzz/fuzz.h>

#include <console/setting.h>
#include <console/text.h>

#include <array>
#include <cmath>

using namespace tarn::console;
using tarn::fuzz::require;

namespace {

using Kind = SettingForm::Kind;

Reading of(SettingForm form, Limits limits = {})
{
    return {{"it", "a purpose", std::move(form), nullptr}, SettingValue{}, std::move(limits)};
}

/// One of each kind that the instruments have.
const std::vector<Reading>& readings()
{
    static const std::vector<Reading> all{
        of(code(), {.lower = 8, .upper = 120}),
        of(code(), {.lower = -128, .upper = 127, .areOfType = true}),
        of(code(), {.list = std::vector<double>{0, 6, 12, 18, 30}}),
        of(quantity(Unit::Hertz), {.lower = 1e6, .upper = 3e9}),
        of(quantity(Unit::Hertz), {.list = std::vector<double>{5e6, 10e6, 12.8e6, 25e6}}),
        of(quantity(Unit::Second), {.lower = 0}),
        of(quantity(Unit::Decibel)),
        of(quantity(Unit::Farad), {.list = std::vector<double>{}}),
        of(choice({"automatic", "manual", "low"}, 1)),
        of(onOff()),
        of(position(Unit::Hertz), {.list = std::vector<double>{2.5e6, 5e6, 7.5e6}}),
        of(range(Unit::Farad), {.lower = 1e-12, .upper = 20e-12}),
        of(list(Unit::Hertz)),
    };
    return all;
}

bool isWithin(const Reading& reading, double value)
{
    const auto& [setting, current, limits] = reading;
    switch (setting.form.kind) {
    case Kind::Choice:
        return value >= setting.form.first
            && value < setting.form.first + static_cast<double>(setting.form.names.size());
    case Kind::Switch:
        return value == 0 || value == 1;
    case Kind::Position:
        return value >= 0 && value < static_cast<double>(limits.list->size()) && value == std::trunc(value);
    default:
        return value >= limits.lower && value <= limits.upper
            && (!limits.list || std::ranges::find(*limits.list, value) != limits.list->end());
    }
}

bool isWithin(const Reading& reading, const SettingValue& value)
{
    if (const auto* const span = std::get_if<tarn::utils::Range<double>>(&value))
        return span->lower <= span->upper && isWithin(reading, span->lower) && isWithin(reading, span->upper);
    const auto* const number = std::get_if<double>(&value);
    return number && isWithin(reading, *number);
}

} // namespace

/// One of the settings, then what is written for its value.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const auto& reading = readings().at(data[0] % readings().size());
    const std::string text{tarn::fuzz::textOf(data + 1, size - 1)};
    const auto value = parseSetting(reading, text);
    if (!value) {
        require(value.error().starts_with("it") && value.error().size() > 2,
                "a refusal names the setting and says why");
        return 0;
    }
    require(isWithin(reading, *value), "a value is one that the setting takes");
    const Reading after{reading.setting, *value, reading.limits};
    require(parseSetting(reading, valueWord(after, *value)) == value, "a value is read back as it was written");
    require(!valueText(after, *value).empty() && !json(after)[QStringLiteral("value")].isNull(),
            "a value can be shown");
    require(otherValue(after) != *value, "another value is another one");
    return 0;
}
