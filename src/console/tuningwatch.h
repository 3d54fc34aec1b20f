#pragma once

#include <console/session.h>
#include <console/tuning.h>

#include <chrono>
#include <cstdint>
#include <optional>

namespace tarn::console {

/// Shows all settings and then those that have changed, until it was done `count` times or Ctrl-C. Looks whenever the
/// control says that one has changed, when the instrument offers its controls again, and after each `interval`, for
/// an instrument says nothing of what it changes by itself. Throws as `WatchLoop::run`.
void watchTuning(Session& session, const Tuning& tuning, std::chrono::microseconds interval,
                 std::optional<std::uint64_t> count);

} // namespace tarn::console
