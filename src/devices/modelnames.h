#pragma once

#include <devices/export.h>
#include <sdk/model.h>

#include <QString>

namespace tarn::devices {

/// The display name of `model`: its name, or "any model" for the value that stands for every
/// model; empty for a model without a name.
///
/// Threads: reentrant; at once.
[[nodiscard]] TARN_DEVICES_EXPORT QString prettyModelName(sdk::Model model);

} // namespace tarn::devices
