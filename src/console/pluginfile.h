#pragma once

#include <QString>

#include <optional>

namespace tarn::console {

/// Why the plug-in in `file` must not be loaded: it has been cut off, or it does not agree with the checksum in
/// `file`.sha256; if there is none, loading it ends the process that does so, or does not come to an end in ten seconds.
/// Nothing if it can be loaded.
[[nodiscard]] std::optional<QString> damageOf(const QString& file);

} // namespace tarn::console
