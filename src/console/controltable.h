#pragma once

#include <sdk/key.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// What the program knows about one control; see `CommandOf`.
struct ControlRow {
    std::string_view name;
    std::uint64_t registryKey;
    sdk::Key sdkKey;
    std::string_view purpose;
    void (*addTo)(CommandLine&);
    void (*tour)(Tour&);
};

/// The rows of all controls, in the order of the registry.
[[nodiscard]] std::span<const ControlRow> controlRows();

/// The row of the control under `registryKey`, or null.
[[nodiscard]] const ControlRow* findControlRow(std::uint64_t registryKey);

/// The name of the control under `registryKey`; its key if there is no row for it.
[[nodiscard]] std::string controlName(std::uint64_t registryKey);

} // namespace tarn::console
