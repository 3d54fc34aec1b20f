#pragma once

#include <simulator/archive.h>
#include <simulator/settinglimits.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QLatin1StringView>

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace tarn::simulator {

// A record of settings is listed once, each with its name and what it takes, for all that is to be done with it:
//
//     void fields(auto& archive, Is<Record> auto& record)
//     {
//         archive("LO power code", record.loPower, Within{8, 120});
//         archive("discrete attenuator", record.discreteAttenuator);
//     }
//
// A setting is a Boolean or a number or an enumerator, or an optional or an array of settings. The names are also those
// in the saved state.

template <class T>
concept Number = (std::is_arithmetic_v<T> && !std::same_as<T, bool>) || std::is_enum_v<T>;

/// Throws if a setting is not among the values that it takes.
class SettingsChecker {
public:
    void operator()(const char* /*name*/, bool /*value*/) { }

    template <class T, class Limits>
    void operator()(const char* name, const T& value, const Limits& limits)
    {
        check(name, value, limits);
    }

private:
    static void check(const char* name, Number auto value, const auto& limits) { limits(name, toNumber(value)); }

    template <class T>
    static void check(const char* name, const std::optional<T>& value, const auto& limits)
    {
        if (value)
            check(name, *value, limits);
    }

    template <class T, std::size_t size>
    static void check(const char* name, const std::array<T, size>& values, const auto& limits)
    {
        for (const auto& value : values)
            check(name, value, limits);
    }
};

/// Turns settings into a JSON object; what is absent is null.
class SettingsWriter {
public:
    void operator()(const char* name, const auto& value, const auto&... /*limits*/)
    {
        m_object[QLatin1StringView{name}] = toJson(value);
    }

    [[nodiscard]] const QJsonObject& object() const { return m_object; }

private:
    static QJsonValue toJson(bool value) { return value; }
    static QJsonValue toJson(Number auto value) { return toNumber(value); }

    template <class T>
    static QJsonValue toJson(const std::optional<T>& value)
    {
        return value ? toJson(*value) : QJsonValue{};
    }

    template <class T, std::size_t size>
    static QJsonValue toJson(const std::array<T, size>& values)
    {
        QJsonArray array;
        for (const auto& value : values)
            array.append(toJson(value));
        return array;
    }

    QJsonObject m_object;
};

/// Gets the settings back. Throws `std::invalid_argument` if one is missing or is not of its type.
class SettingsReader {
public:
    explicit SettingsReader(QJsonObject object)
        : m_object{std::move(object)}
    {
    }

    void operator()(const char* name, auto& value, const auto&... /*limits*/)
    {
        if (!read(m_object[QLatin1StringView{name}], value))
            throw std::invalid_argument{std::string{"the "} + name + " is missing or not of its kind"};
    }

private:
    template <class T>
    using Plain = std::conditional_t<std::is_enum_v<T>, std::underlying_type<T>, std::type_identity<T>>;

    static bool read(const QJsonValue& json, bool& value)
    {
        value = json.toBool();
        return json.isBool();
    }

    template <Number T>
    static bool read(const QJsonValue& json, T& value)
    {
        using Limits = std::numeric_limits<typename Plain<T>::type>;
        const double number = json.toDouble();
        if (!json.isDouble() || number < Limits::lowest() || number > Limits::max())
            return false;
        value = static_cast<T>(number);
        return toNumber(value) == number;
    }

    template <class T>
    static bool read(const QJsonValue& json, std::optional<T>& value)
    {
        value.reset();
        return json.isNull() || read(json, value.emplace());
    }

    template <class T, std::size_t size>
    static bool read(const QJsonValue& json, std::array<T, size>& values)
    {
        const auto array = json.toArray();
        if (array.size() != static_cast<qsizetype>(size))
            return false;
        qsizetype index = 0;
        return std::ranges::all_of(values, [&](auto& value) { return read(array[index++], value); });
    }

    const QJsonObject m_object;
};

} // namespace tarn::simulator
