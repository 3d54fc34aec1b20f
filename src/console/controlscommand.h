#pragma once

namespace tarn::console {

class CommandLine;

/// `controls`: the entries of the registry and which of them the instrument offers.
struct ControlsCommand {
    static void addTo(CommandLine& line);
};

} // namespace tarn::console
