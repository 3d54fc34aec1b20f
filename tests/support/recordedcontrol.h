#pragma once

#include <gmock/gmock.h>

#include <any>
#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace tarn::tests {

/// An SDK control that remembers its calls as text, `setLoPower(5)`, and gives all getters the same
/// answer. Thread-safe while `inside` is set and stays.
class RecordedControl {
public:
    RecordedControl() = default;
    RecordedControl(const RecordedControl&) = delete;
    RecordedControl& operator=(const RecordedControl&) = delete;

    ~RecordedControl()
    {
        if (atEnd)
            atEnd();
    }

    std::function<void()> inside; ///< runs in every call, which is then not remembered
    std::function<void()> atEnd; ///< runs when the control dies
    std::any answer; ///< of exactly the type that a getter returns; empty for the neutral one
    const std::uint8_t* bytes = nullptr; ///< of the last table that was handed over

    [[nodiscard]] std::vector<std::string> takeCalls() { return std::exchange(m_calls, {}); }

protected:
    template <class... Arguments>
    void called(const std::string& operation, const Arguments&... arguments)
    {
        if (inside)
            return inside();
        std::string text;
        ((text += (text.empty() ? "" : ", ") + textOf(arguments)), ...);
        m_calls.push_back(operation + "(" + text + ")");
    }

    void calledWithTable(const std::string& operation, const std::vector<std::uint8_t>& table)
    {
        if (!inside)
            bytes = table.data();
        called(operation, std::vector<int>(table.begin(), table.end()));
    }

    template <class Answer, class... Arguments>
    Answer answered(const std::string& operation, const Arguments&... arguments)
    {
        called(operation, arguments...);
        return answer.has_value() ? std::any_cast<Answer>(answer) : Answer{};
    }

private:
    template <class Argument>
    static std::string textOf(const Argument& argument)
    {
        if constexpr (std::is_enum_v<Argument>)
            return std::to_string(std::to_underlying(argument));
        else if constexpr (std::is_same_v<Argument, std::uint8_t>)
            return std::to_string(argument);
        else
            return testing::PrintToString(argument);
    }

    std::vector<std::string> m_calls;
};

} // namespace tarn::tests
