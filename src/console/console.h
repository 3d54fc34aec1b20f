#pragma once

namespace tarn::console {

class CommandLine;

/// Adds all commands that the program has.
void addCommands(CommandLine& line);

/// To be called before anything else in the program.
void prepare();

/// Runs the program and returns its exit code. There is a `QCoreApplication`.
[[nodiscard]] int run(int argc, const char* const* argv);

} // namespace tarn::console
