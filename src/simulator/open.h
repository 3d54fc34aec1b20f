#pragma once

#include <provider/ideviceprovider.h>
#include <sdk/ivna.h>
#include <simulator/export.h>

#include <expected>
#include <memory>

namespace tarn::simulator {

/// Switches on the instrument that the request's address describes. Its files and settings live in
/// `<state folder>/simulator/<instrument name>`, unless the state folder is "none".
///
/// Threads: thread-safe; blocks while the instrument's thread starts and, three seconds at most, while
/// somebody else holds that folder.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT std::expected<std::shared_ptr<sdk::IVna>, provider::OpenError>
open(const provider::OpenRequest& request);

} // namespace tarn::simulator
