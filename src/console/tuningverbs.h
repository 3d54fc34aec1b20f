#pragma once

#include <console/confirmation.h>
#include <console/session.h>
#include <console/tuning.h>

#include <string>
#include <string_view>
#include <vector>

/// What the commands of the tuning controls do. Each throws `Error`.
namespace tarn::console::tuningverbs {

/// What the instrument shows of all settings.
[[nodiscard]] std::vector<Reading> readings(const Instrument& instrument, const Tuning& tuning);

/// A value for a setting; `setting` is as it was before.
struct Assignment {
    Reading setting;
    SettingValue value;
};

/// Sends the values in their order and reads all back: the readings afterwards, in the order of the assignments.
std::vector<Reading> assign(const Instrument& instrument, const Tuning& tuning,
                            const std::vector<Assignment>& assignments);

void show(Session& session, const Tuning& tuning);

void get(Session& session, const Tuning& tuning, const std::string& name);

/// `words` are names, each with its value.
void set(Session& session, const Tuning& tuning, const std::vector<std::string>& words);

struct LoadOptions {
    std::string table;
    std::string path;
    Confirmation confirmation;
};

void load(Session& session, const Tuning& tuning, const LoadOptions& options);

void reset(Session& session, const Tuning& tuning);

} // namespace tarn::console::tuningverbs
