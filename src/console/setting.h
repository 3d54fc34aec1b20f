#pragma once

#include <console/quantity.h>
#include <utils/range.h>

#include <QJsonObject>
#include <QObject>

#include <any>
#include <cstdint>
#include <expected>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace tarn::console {

/// The value of a setting: nothing if it is not set, a number (also that of an enumerator, of a position,
/// and 0 or 1 for off or on), a range or a list.
using SettingValue = std::variant<std::monostate, double, utils::Range<double>, std::vector<double>>;

/// How the values of a setting are written.
struct SettingForm {
    enum class Kind {
        Number, ///< of a unit
        Choice, ///< the name of an enumerator, or its number
        Switch, ///< on or off
        Position, ///< in the list of what can be chosen, or what stands there
        Range, ///< LOWER..UPPER
        List,
    };

    Kind kind = Kind::Number;
    Unit unit = Unit::None;
    std::vector<std::string_view> names; ///< of a choice
    int first = 0; ///< the number of the first name
};

/// What a setting takes.
struct Limits {
    double lower = -std::numeric_limits<double>::infinity();
    double upper = std::numeric_limits<double>::infinity();
    std::optional<std::vector<double>> list = std::nullopt; ///< the only values; nothing if there is no such list
    bool areOfType = false; ///< the library's type holds no others; what the instrument takes only it knows
};

/// One setting of a control. The control is handed over as a `std::any` that holds a `std::shared_ptr` to it.
struct Setting {
    std::string name;
    std::string purpose;
    SettingForm form;
    std::function<SettingValue(const std::any& control)> read;
    std::function<void(const std::any& control, const SettingValue& value)> write = nullptr; ///< empty: read-only
    std::function<Limits(const std::any& control)> limits = nullptr; ///< empty: none

    [[nodiscard]] bool isReadOnly() const { return !write; }
};

/// A setting with what the instrument shows of it.
struct Reading {
    Setting setting;
    SettingValue value;
    Limits limits;
};

/// `value` for people.
[[nodiscard]] std::string valueText(const Reading& reading, const SettingValue& value);

/// What the setting takes, for people: its names, its list, or its limits. Empty if there are none.
[[nodiscard]] std::string acceptedText(const Reading& reading);

/// `value` as a word of a command line, which `parseSetting` takes if it is set.
[[nodiscard]] std::string valueWord(const Reading& reading, const SettingValue& value);

/// `value` for machines: the name of a choice, a Boolean, a number in the base unit, `{"lower", "upper"}`, an array
/// or null. Of a position what stands there, or null.
[[nodiscard]] QJsonValue valueJson(const Reading& reading, const SettingValue& value);

/// A reading as `{"name", "value", "unit", "limits" or "choices", "readOnly"}`, and of a position `"position"`.
[[nodiscard]] QJsonObject json(const Reading& reading);

/// The value that `text` spells, within the limits; or why there is none, as a sentence without its end.
[[nodiscard]] std::expected<SettingValue, std::string> parseSetting(const Reading& reading, const std::string& text);

/// How values of this form are written, for people: its words, or its units. Empty for a number.
[[nodiscard]] std::string formText(const SettingForm& form);

/// The words that a value of this form can be, if these are few: names, or on and off.
[[nodiscard]] std::vector<std::string> valueWords(const SettingForm& form);

/// Another value of few than the one that the setting has; nothing if it has no other.
[[nodiscard]] std::optional<SettingValue> otherValue(const Reading& reading);

/// Makes the settings of a control of the library: what its operations return and take becomes a value and back.
template <class Control>
class SettingsOf {
public:
    /// A setting that only can be looked at.
    template <class Getter>
    static Setting shown(std::string name, std::string purpose, SettingForm form, Getter getter)
    {
        return {std::move(name), std::move(purpose), std::move(form),
                [getter](const std::any& control) { return toValue(std::invoke(getter, of(control))); }};
    }

    /// A setting whose limits only the instrument knows. A frequency, a time and a capacitance are not negative.
    template <class Getter, class Setter>
    static Setting setting(std::string name, std::string purpose, SettingForm form, Getter getter, Setter setter)
    {
        using Type = typename Plain<std::invoke_result_t<Getter, const Control&>>::Type;
        const auto unit = form.unit;
        return setting(std::move(name), std::move(purpose), std::move(form), getter, setter,
                       [unit](const std::any&) { return limitsOf<Type>(unit); });
    }

    /// A setting whose limits the instrument knows.
    template <class Getter, class Setter, class LimitsOf>
    static Setting setting(std::string name, std::string purpose, SettingForm form, Getter getter, Setter setter,
                           LimitsOf limits)
    {
        using Type = typename Plain<std::invoke_result_t<Getter, const Control&>>::Type;
        auto made = shown(std::move(name), std::move(purpose), std::move(form), getter);
        made.write = [setter](const std::any& control, const SettingValue& value) {
            std::invoke(setter, of(control), fromValue<Type>(value));
        };
        made.limits = limits;
        return made;
    }

    /// The limits that two getters return.
    template <class Least, class Most>
    static auto between(Least least, Most most)
    {
        return [=](const std::any& control) {
            return Limits{static_cast<double>(std::invoke(least, of(control))),
                          static_cast<double>(std::invoke(most, of(control))), std::nullopt};
        };
    }

    /// From 0 to what a getter returns.
    template <class Most>
    static auto upTo(Most most)
    {
        return between([](const Control&) { return 0; }, most);
    }

    /// The list that a getter returns.
    template <class List>
    static auto oneOf(List list)
    {
        return [=](const std::any& control) {
            const auto values = std::invoke(list, of(control));
            return Limits{.list = std::vector<double>(values.begin(), values.end())};
        };
    }

    /// What loads a table, or does something else, by an operation without a result.
    template <class Operation>
    static auto action(Operation operation)
    {
        return [=](const std::any& control, auto... argument) {
            std::invoke(operation, of(control), std::move(argument)...);
        };
    }

    /// How many rows the table has that a getter returns.
    template <class Table>
    static auto rowsOf(Table table)
    {
        return [=](const std::any& control) { return std::invoke(table, of(control)).size(); };
    }

    /// What connects the control's change signals; see `Tuning::connect`.
    static auto changeSignals(std::vector<void (Control::*)()> all)
    {
        return [=](const std::any& control, const QObject& context, const std::function<void()>& changed) {
            for (const auto signal : all)
                QObject::connect(&of(control), signal, &context, changed, Qt::QueuedConnection);
        };
    }

    /// The operation `member` for one of several of a kind: `index` is its first argument.
    template <class Member, class Index>
    static auto with(Member member, Index index)
    {
        return [=](auto& control, auto... value) { return std::invoke(member, control, index, value...); };
    }

    /// The control in `control`.
    static Control& of(const std::any& control) { return *std::any_cast<const std::shared_ptr<Control>&>(control); }

private:
    template <class Type>
    static Limits limitsOf(Unit unit)
    {
        using Bounds = std::numeric_limits<Type>;
        if constexpr (std::is_integral_v<Type>)
            return {.lower = Bounds::min(), .upper = Bounds::max(), .areOfType = true};
        else if (std::is_enum_v<Type> || unit == Unit::Decibel)
            return {};
        else
            return {.lower = 0};
    }

    template <class Value>
    struct Plain {
        using Type = Value;
    };
    template <class Value>
    struct Plain<std::optional<Value>> {
        using Type = Value;
    };

    template <class Value>
    static SettingValue toValue(const Value& value)
    {
        if constexpr (std::is_enum_v<Value>)
            return static_cast<double>(std::to_underlying(value));
        else if constexpr (std::is_arithmetic_v<Value>)
            return static_cast<double>(value);
        else
            return value;
    }
    template <class Value>
    static SettingValue toValue(const std::optional<Value>& value)
    {
        return value ? toValue(*value) : SettingValue{};
    }
    template <class Value>
    static SettingValue toValue(const std::vector<Value>& values)
    {
        return std::vector<double>(values.begin(), values.end());
    }

    template <class Value>
    static Value fromValue(const SettingValue& value)
    {
        if constexpr (std::is_same_v<Value, utils::Range<double>>)
            return std::get<utils::Range<double>>(value);
        else
            return static_cast<Value>(std::get<double>(value));
    }
};

// ---- the forms of the tables

/// A number of the instrument's own.
[[nodiscard]] inline SettingForm code()
{
    return {SettingForm::Kind::Number, Unit::None, {}, 0};
}

/// A number with a unit.
[[nodiscard]] inline SettingForm quantity(Unit unit)
{
    return {SettingForm::Kind::Number, unit, {}, 0};
}

/// An enumeration with the number `first` and those that follow.
[[nodiscard]] inline SettingForm choice(std::vector<std::string_view> names, int first = 0)
{
    return {SettingForm::Kind::Choice, Unit::None, std::move(names), first};
}

[[nodiscard]] inline SettingForm onOff()
{
    return {SettingForm::Kind::Switch, Unit::None, {}, 0};
}

/// A position in a list of quantities.
[[nodiscard]] inline SettingForm position(Unit unit)
{
    return {SettingForm::Kind::Position, unit, {}, 0};
}

[[nodiscard]] inline SettingForm range(Unit unit)
{
    return {SettingForm::Kind::Range, unit, {}, 0};
}

[[nodiscard]] inline SettingForm list(Unit unit)
{
    return {SettingForm::Kind::List, unit, {}, 0};
}

} // namespace tarn::console
