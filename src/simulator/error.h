#pragma once

#include <simulator/export.h>

#include <optional>
#include <string_view>
#include <system_error>

namespace tarn::simulator {

/// What an operation of the simulated instrument can end with. Other values can be injected; they
/// have a message too.
enum class Error {
    NotFound = 1,
    Full,
    BadName,
    Io,
    Corrupt,
    Busy,
    Timeout,
    WriteProtected,
    BadSize,
    PowerLoss,
    Disconnected,
    BadIndex,
    OutOfRange,
    BadIdentity,
};

[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT const std::error_category& errorCategory() noexcept;

/// Found by `std::error_code`.
// NOLINTNEXTLINE(readability-identifier-naming): the name is the standard library's
[[nodiscard]] inline std::error_code make_error_code(Error error) noexcept
{
    return {static_cast<int>(error), errorCategory()};
}

/// The error that `text` names, such as `not-found` or `io`, or a number other than 0.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT std::optional<std::error_code> errorFromText(std::string_view text);

} // namespace tarn::simulator

template <>
struct std::is_error_code_enum<tarn::simulator::Error> : std::true_type { };
