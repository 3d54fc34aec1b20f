#pragma once

#include <devices/service/ifilememorycontrol.h>
#include <sdk/service/ifilememorycontrol.h>

#include <cstdint>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// `files list|space|read|write|delete`: the instrument's file memory.
struct FilesCommand {
    using Control = devices::service::IFileMemoryControl;

    static constexpr std::string_view name = "file-memory";
    static constexpr std::uint64_t registryKey = Control::registryKey;
    static constexpr sdk::Key sdkKey = sdk::service::IFileMemoryControl::key;
    static constexpr std::string_view purpose = "Keeps small files in the instrument's non-volatile memory.";

    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

} // namespace tarn::console
