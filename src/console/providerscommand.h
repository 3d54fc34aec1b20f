#pragma once

namespace tarn::console {

class CommandLine;

/// `providers`: the provider plug-ins, their instruments and how these are addressed.
struct ProvidersCommand {
    static void addTo(CommandLine& line);
};

} // namespace tarn::console
