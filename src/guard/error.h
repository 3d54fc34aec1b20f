#pragma once

#include <guard/export.h>

#include <system_error>

namespace tarn::guard {

/// How a guarded request ends that the device did not complete.
enum class Error {
    Dropped = 1, ///< the device gave the request up
    TimedOut, ///< the device took longer than the limit
};

/// The category of these errors.
///
/// Threads: thread-safe; at once.
[[nodiscard]] TARN_GUARD_EXPORT const std::error_category& errorCategory() noexcept;

/// Threads: thread-safe; at once.
// NOLINTNEXTLINE(readability-identifier-naming): the standard library looks for this name
[[nodiscard]] inline std::error_code make_error_code(Error error) noexcept
{
    return {static_cast<int>(error), errorCategory()};
}

} // namespace tarn::guard

template <>
struct std::is_error_code_enum<tarn::guard::Error> : std::true_type { };
