#pragma once

/// Marks a type whose run-time type information must be the same in every binary that uses it,
/// because it travels inside a `std::any` or is the target of a `dynamic_cast`.
#if defined(__GNUC__) && !defined(_WIN32)
#define SDK_API [[gnu::visibility("default")]]
#else
#define SDK_API
#endif
