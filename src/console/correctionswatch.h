#pragma once

#include <console/session.h>

#include <cstdint>
#include <optional>

namespace tarn::console {

/// Shows the supported and the valid corrections and every change, until `count` of these were shown
/// or Ctrl-C. Throws as `WatchLoop::run`.
void watchCorrections(Session& session, std::optional<std::uint64_t> count);

} // namespace tarn::console
