#pragma once

#include <string_view>

namespace sdk {

/// An instrument model, identified by its name. Cheap to copy.
///
/// Threads: reentrant; at once.
class Model {
public:
    /// `name` is the model name as printed on the instrument. It is not copied and must live as
    /// long as any copy of the model: in practice a string literal.
    constexpr explicit Model(const char* name) noexcept
        : m_name{name}
    {
    }

    /// The model name, UTF-8.
    [[nodiscard]] constexpr std::string_view name() const noexcept { return m_name; }

    friend constexpr bool operator==(const Model&, const Model&) noexcept = default;

private:
    std::string_view m_name;
};

} // namespace sdk
