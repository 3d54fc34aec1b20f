#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <thread>

namespace tarn::tests {

/// How many entries `folder` of /proc/self has.
[[nodiscard]] inline std::size_t entriesOf(const char* folder)
{
    const std::filesystem::directory_iterator entries{std::filesystem::path{"/proc/self"} / folder};
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

/// How many threads this program has. The kernel can list one for a moment after it was joined, so more than `expected`
/// are waited for.
[[nodiscard]] inline std::size_t threadsDownTo(std::size_t expected)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds{10};
    auto threads = entriesOf("task");
    for (; threads > expected && Clock::now() < end; threads = entriesOf("task"))
        std::this_thread::sleep_for(std::chrono::milliseconds{1});
    return threads;
}

} // namespace tarn::tests
