#pragma once

namespace tarn::console {

class CommandLine;

/// `completion bash|words`: has a shell complete the words of a command line.
struct CompletionCommand {
    static void addTo(CommandLine& line);
};

} // namespace tarn::console
