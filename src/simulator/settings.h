#pragma once

#include <simulator/clock.h>
#include <simulator/faults.h>
#include <simulator/profile.h>

#include <cstdint>
#include <optional>

namespace tarn::simulator {

/// Where the completion of a request is called.
enum class CompletionMode {
    Thread, ///< on the instrument's thread
    Inline, ///< on the caller's, before the operation returns
};

/// What kind of instrument to simulate.
struct Settings {
    Profile profile = Profile::Full;
    std::uint64_t seed = 0; ///< decides whatever looks random: same seed, same instrument
    Duration latency{}; ///< how long every request takes
    CompletionMode completion = CompletionMode::Thread;
    FaultPlan faults;
    std::optional<std::uint32_t> memorySize; ///< of the memory device, in bytes, if it is to change: whole sectors
    double speed = 1000.0; ///< how much faster than real memory the memory device is; may be infinite

    friend bool operator==(const Settings&, const Settings&) = default;
};

/// What real memory takes `time` for, in the memory device of `settings`.
[[nodiscard]] inline Duration scaled(const Settings& settings, Duration time)
{
    return Duration{static_cast<Duration::rep>(static_cast<double>(time.count()) / settings.speed)};
}

} // namespace tarn::simulator
