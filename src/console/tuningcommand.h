#pragma once

#include <console/tuning.h>

namespace tarn::console {

class CommandLine;
class Tour;

/// Adds the commands `show`, `get` and `set`, and as far as the control has such, `load`, `reset` and `watch`.
/// `tuning` must outlive the command line.
void addTuningCommands(CommandLine& line, const Tuning& tuning);

/// Shows all settings and changes the harmless one for a moment.
void tourTuning(Tour& tour, const Tuning& tuning);

} // namespace tarn::console
