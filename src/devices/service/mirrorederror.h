#pragma once

#include <utility>

namespace tarn::devices::service {

/// The application's error for one of the SDK: of the same number from 1 to that of `last`,
/// `Error::Failed` (0) for all others.
template <class Error, class SdkError>
[[nodiscard]] constexpr Error mirroredError(SdkError error, Error last) noexcept
{
    const auto number = std::to_underlying(error);
    return number >= 1 && number <= std::to_underlying(last) ? static_cast<Error>(number) : Error::Failed;
}

} // namespace tarn::devices::service
