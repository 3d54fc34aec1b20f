#pragma once

#include <support/adapteroperation.h>
#include <support/virtualslot.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// What an adapter that only gets and sets promises of each of its operations.
namespace tarn::tests {

/// Numbers of enumerations, with and without an enumerator. The first is neutral nowhere.
[[nodiscard]] inline std::vector<std::int64_t> modeNumbers()
{
    using Limits = std::numeric_limits<std::int32_t>;
    return {1, 0, 2, 3, 4, 5, 6, 7, 9, 127, 128, 255, 256, 257, 65537, Limits::max(), -1, -2, -255, Limits::min()};
}

/// Numbers that are handed on as they are. The first is neutral nowhere.
[[nodiscard]] inline std::vector<int> anyIntegers()
{
    return {3, 0, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
}
[[nodiscard]] inline std::vector<double> anyNumbers()
{
    using Limits = std::numeric_limits<double>;
    return {1.5e9,
            0.0,
            -1e-300,
            Limits::infinity(),
            -Limits::infinity(),
            Limits::max(),
            Limits::lowest(),
            Limits::quiet_NaN(),
            Limits::denorm_min()};
}

/// Whether two values are the same; so are two that are no number.
template <class Value>
[[nodiscard]] bool isSame(const Value& left, const Value& right)
{
    return left == right || (left != left && right != right);
}

/// Lists of frequencies that the SDK gives, of three and of no elements, and what an adapter makes of them.
[[nodiscard]] inline std::vector<std::pair<std::span<const double>, std::vector<double>>> frequencyLists()
{
    static constexpr std::array<double, 3> three{3e6, 1e6, 2e6};
    return {{three, {3e6, 1e6, 2e6}}, {{}, {}}};
}

/// Makes a `RecordedControl` answer with `answer`.
template <class Answer>
auto answering(Answer answer)
{
    return [answer](auto& control) { control.answer = answer; };
}

/// Makes a `RecordedControl` answer with an array that is overwritten when the control dies: an adapter that reads it
/// later does not hand on what it was given.
template <class Element>
auto answering(std::span<const Element> elements)
{
    return [elements](auto& control) {
        const auto array = std::make_shared<std::vector<Element>>(elements.begin(), elements.end());
        control.answer = std::span<const Element>{*array};
        control.atEnd = [array] { std::ranges::fill(*array, Element{}); };
    };
}

/// The number on one side that a rule makes of the one on the other.
using Rule = std::int64_t (*)(std::int64_t number);

/// The operations of an adapter before a `RecordedControl`: for the contract of all adapters, and
/// each with a check of the values that it hands on.
template <class Adapter, class Control>
class TuningOperations {
public:
    template <class Value>
    using Getter = Value (Adapter::*)() const;
    template <class Value>
    using Setter = void (Adapter::*)(Value);

    struct Entry {
        Operation<Adapter, Control> operation;
        std::function<void(Adapter&, Control&)> check;
    };

    /// An operation that makes `call` and hands on, for the first answer of the SDK of each pair,
    /// the second. That of the first pair is not the neutral one.
    template <class SdkValue, class Value, class Get>
    TuningOperations& reads(const std::string& call, Get get, std::vector<std::pair<SdkValue, Value>> values)
    {
        const auto run = [get, expected = values.front().second](const Adapter& adapter) {
            const auto value = std::invoke(get, adapter);
            if (value == Value{})
                return Outcome::Unavailable;
            EXPECT_EQ(value, expected);
            return Outcome::Answered;
        };
        const auto stub = [answer = answering(values.front().first)](Control& control, std::function<void()> inside) {
            answer(control);
            control.inside = std::move(inside);
        };
        entries.push_back({{call, run, stub}, [=](Adapter& adapter, Control& control) {
                               for (const auto& [sdkValue, value] : values) {
                                   control.answer = sdkValue;
                                   EXPECT_PRED2(isSame<Value>, std::invoke(get, std::as_const(adapter)), value);
                                   EXPECT_THAT(control.takeCalls(), testing::ElementsAre(call));
                               }
                           }});
        return *this;
    }

    /// An operation that makes `call` for `write`, and answers nothing.
    template <class Write>
    TuningOperations& writes(const std::string& call, Write write)
    {
        return writesAll({{call, write}});
    }

    /// The getter and the setter of a value that is handed on as it is.
    template <class Value>
    TuningOperations& value(const std::string& name, Getter<Value> get, Setter<Value> set,
                            const std::vector<std::type_identity_t<Value>>& values)
    {
        value(name, get, values);
        Writes writes;
        for (const Value value : values) {
            const auto text = std::is_same_v<Value, std::uint8_t> ? std::to_string(static_cast<int>(value))
                                                                  : testing::PrintToString(value);
            writes.push_back(
                {setterName(name) + "(" + text + ")", [=](Adapter& adapter) { std::invoke(set, adapter, value); }});
        }
        return writesAll(writes);
    }

    /// A getter without a setter.
    template <class Value>
    TuningOperations& value(const std::string& name, Getter<Value> get,
                            const std::vector<std::type_identity_t<Value>>& values)
    {
        std::vector<std::pair<Value, Value>> pairs;
        for (const auto& value : values)
            pairs.emplace_back(value, value);
        return reads(name + "()", get, pairs);
    }

    /// The getter and the setter of a mode that `rule` maps both ways.
    template <class SdkMode, class Mode>
    TuningOperations& mode(const std::string& name, Getter<Mode> get, Setter<Mode> set, Rule rule,
                           const std::vector<std::int64_t>& numbers = modeNumbers())
    {
        reads(name + "()", get, mapped<SdkMode, Mode>(rule, numbers));
        return writesAll(writesOf<Mode>(
            rule, [=](Adapter& adapter, Mode mode) { std::invoke(set, adapter, mode); }, setterName(name) + "(", ")",
            numbers));
    }

    /// What `rule` makes of each number.
    template <class From, class To>
    static std::vector<std::pair<From, To>> mapped(Rule rule, const std::vector<std::int64_t>& numbers = modeNumbers())
    {
        std::vector<std::pair<From, To>> pairs;
        for (const auto number : numbers) {
            const auto from = static_cast<From>(number);
            pairs.emplace_back(from, static_cast<To>(rule(std::to_underlying(from))));
        }
        return pairs;
    }

    /// An operation that calls the SDK with the number that `rule` makes of a mode.
    template <class Mode, class Write>
    TuningOperations& writesMode(const std::string& before, const std::string& after, Rule rule, Write write)
    {
        return writesAll(writesOf<Mode>(rule, write, before, after, modeNumbers()));
    }

    std::vector<Entry> entries;

private:
    using Writes = std::vector<std::pair<std::string, std::function<void(Adapter&)>>>;

    static std::string setterName(std::string name)
    {
        name[0] = static_cast<char>(std::toupper(name[0]));
        return "set" + name;
    }

    template <class Mode, class Write>
    static Writes writesOf(Rule rule, Write write, const std::string& before, const std::string& after,
                           const std::vector<std::int64_t>& numbers)
    {
        Writes writes;
        for (const auto number : numbers) {
            writes.push_back({before + std::to_string(rule(number)) + after,
                              [=](Adapter& adapter) { std::invoke(write, adapter, static_cast<Mode>(number)); }});
        }
        return writes;
    }

    TuningOperations& writesAll(const Writes& writes)
    {
        const auto run = [write = writes.front().second](Adapter& adapter) {
            write(adapter);
            return Outcome::NoResult;
        };
        const auto stub = [](Control& control, std::function<void()> inside) { control.inside = std::move(inside); };
        entries.push_back({{writes.front().first, run, stub}, [writes](Adapter& adapter, Control& control) {
                               for (const auto& [call, write] : writes) {
                                   write(adapter);
                                   EXPECT_THAT(control.takeCalls(), testing::ElementsAre(call));
                               }
                           }});
        return *this;
    }
};

/// The types of a tuning; what is derived from it adds a function `operations`.
template <class SdkControl, class TunedAdapter, class Control>
struct Tuning {
    using Sdk = SdkControl;
    using Adapter = TunedAdapter;
    using Mock = Control;
    using Operations = TuningOperations<Adapter, Mock>;
};

/// What the contract of all adapters asks for, from a tuning.
template <class Tuning>
struct ContractOf : Tuning {
    static auto operations()
    {
        std::vector<Operation<typename Tuning::Adapter, typename Tuning::Mock>> result;
        const auto operations = Tuning::operations();
        for (const auto& entry : operations.entries)
            result.push_back(entry.operation);
        return result;
    }
};

/// That the SDK has `operations`, in this order, first in its table.
template <class... Operations>
void expectSlots(Operations... operations)
{
    std::ptrdiff_t expected = 0;
    for (const auto slot : {slotOf(operations)...})
        EXPECT_EQ(slot, expected++);
}

} // namespace tarn::tests
