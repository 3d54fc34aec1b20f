#pragma once

namespace tarn::console {

class CommandLine;

/// `check-provider`: which guarantees of the contract the selected provider's instrument keeps.
struct CheckProviderCommand {
    static void addTo(CommandLine& line);
};

} // namespace tarn::console
