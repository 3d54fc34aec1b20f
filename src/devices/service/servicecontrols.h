#pragma once

#include <devices/service/export.h>

namespace tarn::devices {

class ControlRegistry;

namespace service::servicecontrols {

/// Adds one entry per service control to `registry`, in the order of the library's table. The
/// host calls it once. What `addEntry` throws passes through; the entries added before it stay.
///
/// Threads: reentrant; at once.
TARN_DEVICES_SERVICE_EXPORT void registrate(ControlRegistry* registry);

} // namespace service::servicecontrols

} // namespace tarn::devices
