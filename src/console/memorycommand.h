#pragma once

#include <devices/service/imemoryoperationscontrol.h>
#include <sdk/service/imemoryoperationscontrol.h>

#include <cstdint>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// `memory read|write|erase|check`: the image of the instrument's memory.
struct MemoryCommand {
    using Control = devices::service::IMemoryOperationsControl;

    static constexpr std::string_view name = "memory-operations";
    static constexpr std::uint64_t registryKey = Control::registryKey;
    static constexpr sdk::Key sdkKey = sdk::service::IMemoryOperationsControl::key;
    static constexpr std::string_view purpose
        = "Reads, writes, erases and checks the instrument's non-volatile memory as a whole.";

    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

} // namespace tarn::console
