#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>

namespace tarn::soak {

struct Options {
    std::chrono::seconds time{60}; ///< how long; 0: until there were as many cycles
    std::uint64_t cycles = 0;
    std::size_t threads = 8;
    std::uint64_t seed = 1;
};

/// What is wrong with the command line.
class BadOption final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads the arguments after the program's name. Throws `BadOption`.
[[nodiscard]] Options parse(std::span<const char* const> arguments);

} // namespace tarn::soak
