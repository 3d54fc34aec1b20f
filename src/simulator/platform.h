#pragma once

#include <simulator/export.h>

#include <QString>

#include <system_error>

/// What the simulator needs of the platform beyond Qt.
namespace tarn::simulator {

/// The name of the file that this process runs; empty where the platform does not tell.
[[nodiscard]] QString programFile();

/// Makes the names in `folder` durable: a file that was created or renamed there is found again
/// after a power failure. Does nothing where the platform or the file system cannot do it.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT bool syncFolder(const QString& folder);

/// Makes the contents of an open file durable, as far as the platform has a call for it.
[[nodiscard]] bool syncFile(int descriptor);

/// Locks an open file against everybody else who locks it, in this process too, until the file is
/// closed or the process ends, in whatever way. Does not wait: `std::errc::operation_would_block`
/// says that somebody else holds it.
[[nodiscard]] std::error_code lockFile(int descriptor);

} // namespace tarn::simulator
