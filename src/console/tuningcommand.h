#pragma once

namespace tarn::console {

class CommandLine;
class Tour;
struct Tuning;

/// Adds the commands `show`, `get` and `set`, and as far as the control has such, `load`, `reset` and `watch`.
/// `tuning` must outlive the command line.
void addTuningCommands(CommandLine& line, const Tuning& tuning);

/// Shows all settings and changes the harmless one for a moment.
void tourTuning(Tour& tour, const Tuning& tuning);

/// The controls that are described so.
[[nodiscard]] const Tuning& quillPowerTuning();
[[nodiscard]] const Tuning& quillSynthesisTuning();
[[nodiscard]] const Tuning& dornPowerTuning();
[[nodiscard]] const Tuning& dornSynthesisTuning();
[[nodiscard]] const Tuning& sablePowerTuning();
[[nodiscard]] const Tuning& sableSynthesisTuning();
[[nodiscard]] const Tuning& vellSynthesisTuning();

} // namespace tarn::console
