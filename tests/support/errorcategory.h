#pragma once

#include <string>
#include <system_error>
#include <utility>

namespace tarn::tests {

/// A category of error codes that all say the same, also the one whose value is 0.
class ErrorCategory final : public std::error_category {
public:
    explicit ErrorCategory(std::string message)
        : m_message{std::move(message)}
    {
    }

    [[nodiscard]] const char* name() const noexcept override { return "test"; }
    [[nodiscard]] std::string message(int /*value*/) const override { return m_message; }
    [[nodiscard]] std::error_code code(int value) const { return {value, *this}; }

private:
    std::string m_message;
};

} // namespace tarn::tests
