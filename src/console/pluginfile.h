#pragma once

#include <QString>

#include <optional>

namespace tarn::console {

/// Why the plug-in in `file` must not be loaded: it has been cut off, it does not agree with the checksum in
/// `file`.sha256, if there is one, or loading it ends the process that does so. Nothing if it can be tried.
[[nodiscard]] std::optional<QString> damageOf(const QString& file);

} // namespace tarn::console
