#pragma once

#include <QString>

#include <optional>
#include <string>

namespace tarn::console {

/// Why `name`, which comes from an instrument, must not become the name of a file in the current
/// folder, as the end of a sentence ("it is empty"); nothing when it may. The rules are those of
/// every system that the program runs on, so that a name is plain everywhere or nowhere:
/// no separators, none of `< > " | ? *`, no `.` and `..`, nothing that does not print, no leading hyphen, no trailing
/// dot or blank, no device names of Windows, at most 255 bytes.
[[nodiscard]] std::optional<std::string> whyNotPlain(const QString& name);

} // namespace tarn::console
