#pragma once

#include <conformance/ear.h>
#include <conformance/request.h>

#include <cmath>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>
#include <vector>

namespace tarn::conformance {

/// Something that can be asked for without a change. Says what is wrong with the answer (empty: nothing).
struct Reading {
    std::string where;
    std::function<std::string()> read;
};

/// What a setting has: a number, the number of an enumerator, 0 or 1; nothing if it is not set.
using Value = std::optional<double>;

/// What a setting takes, as far as that is known.
struct Domain {
    std::vector<double> choices = {}; ///< if it is one of these
    double lowest = -HUGE_VAL; ///< otherwise
    double highest = HUGE_VAL;
    double step = 1.0; ///< how far away another value is worth a try
    bool isRounded = false; ///< whether the instrument may round it to a step of its own

    [[nodiscard]] bool has(double value) const;

    /// Other values than `now`, one of which should be taken; all choices.
    [[nodiscard]] std::vector<double> others(double now) const;
};

/// All enumerators between two, or the two values of a switch.
template <class Enumeration>
[[nodiscard]] Domain enumerators(Enumeration first, Enumeration last)
{
    Domain domain;
    for (auto value = static_cast<int>(first); value <= static_cast<int>(last); ++value)
        domain.choices.push_back(value);
    return domain;
}

[[nodiscard]] inline Domain onOff()
{
    return {.choices = {0.0, 1.0}};
}

/// The positions in a list.
[[nodiscard]] Domain positions(std::size_t count);

/// A setting, with a getter and a setter.
struct Setting {
    std::string where;
    std::function<Value()> get;
    std::function<void(double)> set;
    Domain domain;
};

/// Something that a control gives by reference.
struct Reference {
    std::string where;
    std::function<const void*()> place; ///< where it stands, and
    std::function<std::string()> contents; ///< what it holds now; both ask the control
};

/// A source of notifications.
struct Source {
    std::string where;
    std::function<Registration(std::shared_ptr<Ear>)> observe;
    std::optional<Question> provocation; ///< what it notifies of; nothing: it does so by itself
};

/// What there is to check a control with.
struct Description {
    std::string_view control; ///< its name
    std::vector<Reading> readings;
    std::vector<Setting> settings;
    std::vector<Question> questions;
    std::vector<Reference> references;
    std::vector<Source> sources;
    std::vector<Source> refusals; ///< whose provocation has to be refused by a notification of an error alone
};

template <class Type>
[[nodiscard]] Value toValue(Type value)
{
    return static_cast<double>(value);
}

template <class Type>
[[nodiscard]] Value toValue(std::optional<Type> value)
{
    return value ? toValue(*value) : std::nullopt;
}

template <class Type>
[[nodiscard]] Type fromValue(double value)
{
    if constexpr (std::is_enum_v<Type>)
        return static_cast<Type>(static_cast<std::underlying_type_t<Type>>(value));
    else if constexpr (std::is_same_v<Type, bool>)
        return value != 0.0;
    else
        return static_cast<Type>(value);
}

/// Writes the description of one control.
template <class Interface>
class Describe {
public:
    Describe(Description& description, std::shared_ptr<Interface> control)
        : m_description{description}
        , m_control{std::move(control)}
    {
    }

    [[nodiscard]] const std::shared_ptr<Interface>& control() const { return m_control; }
    [[nodiscard]] std::string where(std::string_view operation) const
    {
        return std::string{m_description.control} + ' ' + std::string{operation};
    }

    /// `read(control)` says what is wrong with an answer.
    template <class Read>
    const Describe& reading(std::string_view operation, Read read) const
    {
        m_description.readings.push_back(
            {where(operation), [control = m_control, read] { return std::string{read(*control)}; }});
        return *this;
    }

    /// Any answer will do.
    template <class Answer>
    const Describe& reading(std::string_view operation, Answer (Interface::*get)()) const
    {
        return reading(operation, [get](Interface& control) {
            static_cast<void>((control.*get)());
            return std::string{};
        });
    }

    template <class Get, class Argument>
    const Describe& setting(std::string_view getter, Get (Interface::*get)(), void (Interface::*set)(Argument),
                            Domain domain) const
    {
        return setting(
            getter, [get](Interface& control) { return toValue((control.*get)()); },
            [set](Interface& control, double value) { (control.*set)(fromValue<Argument>(value)); }, std::move(domain));
    }

    template <class Get, class Set>
    const Describe& setting(std::string_view getter, Get get, Set set, Domain domain) const
    {
        m_description.settings.push_back({where(getter), [control = m_control, get] { return get(*control); },
                                          [control = m_control, set](double value) { set(*control, value); },
                                          std::move(domain)});
        return *this;
    }

    /// `ask(control, done)` calls `done` with the error and with what is wrong with the result.
    template <class Ask>
    const Describe& question(std::string_view operation, Ask ask) const
    {
        m_description.questions.push_back(asked(operation, std::move(ask)));
        return *this;
    }

    template <class Ask>
    [[nodiscard]] Question asked(std::string_view operation, Ask ask) const
    {
        return {where(operation), [control = m_control, ask](Done done) { ask(*control, std::move(done)); }};
    }

    /// A list of numbers that belongs to the control.
    template <class List>
    const Describe& reference(std::string_view operation, List (Interface::*get)()) const
    {
        m_description.references.push_back({where(operation),
                                            [control = m_control, get] { return ((*control).*get)().data(); },
                                            [control = m_control, get] {
                                                std::string text;
                                                for (const auto& element : ((*control).*get)())
                                                    text += textOf(element) + ' ';
                                                return text;
                                            }});
        return *this;
    }

    template <class Observer>
    [[nodiscard]] Source observed(std::string_view observer, std::optional<Question> provocation = {}) const
    {
        return {where(observer),
                [control = m_control](std::shared_ptr<Ear> ear) {
                    return registrationOf<Observer>(control, std::move(ear));
                },
                std::move(provocation)};
    }

    template <class Observer>
    const Describe& source(std::string_view observer, std::optional<Question> provocation = {}) const
    {
        m_description.sources.push_back(observed<Observer>(observer, std::move(provocation)));
        return *this;
    }

    void refusal(Source source) const
    {
        m_description.sources.push_back(source);
        m_description.refusals.push_back(std::move(source));
    }

private:
    static std::string textOf(double number) { return std::to_string(number); }
    template <class Row>
    static std::string textOf(const Row& row)
    {
        return std::to_string(row.frequency) + ':' + std::to_string(row.power);
    }

    Description& m_description;
    std::shared_ptr<Interface> m_control;
};

/// `text` if `isWrong`.
[[nodiscard]] inline std::string wrongIf(bool isWrong, std::string_view text)
{
    return isWrong ? std::string{text} : std::string{};
}

} // namespace tarn::conformance
