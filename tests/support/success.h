#pragma once

#include <system_error>

namespace tarn::tests {

/// What a request ends with that came to a good end.
inline const std::error_code success;

} // namespace tarn::tests
