#pragma once

#include <console/instrument.h>
#include <console/setting.h>

#include <QObject>

#include <any>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::console {

/// Settings that a control has for each row of a table.
struct SettingRows {
    std::function<std::size_t(const std::any& control)> count;
    /// Those of the row `row`, which is called `number`.
    std::function<std::vector<Setting>(const std::string& number, int row)> settings;
};

/// A table that a control takes and does not give back.
struct TuningTable {
    std::string_view name;
    std::string_view purpose;
    std::function<void(const std::any& control, std::vector<std::uint8_t> table)> load;
};

/// All that a control of a module lets tune, from which its commands are derived.
struct Tuning {
    std::uint64_t registryKey = 0;
    std::any (*control)(const Instrument&)
        = nullptr; ///< a `std::shared_ptr` to the control; throws as `Instrument::control`
    std::string_view name; ///< the noun
    std::string_view description;
    std::string_view example; ///< what follows `set`
    std::string_view harmless; ///< the setting that the tour changes for a moment, which has a list or names
    std::vector<Setting> settings;
    std::vector<SettingRows> rows;
    std::vector<TuningTable> tables;
    std::function<void(const std::any& control)> reset = nullptr; ///< empty: there is none
    /// Has `changed` called, on the thread of `context`, for each of the control's change signals; empty: it has none.
    std::function<void(const std::any& control, const QObject& context, std::function<void()> changed)> connect
        = nullptr;

    /// The settings, with those of each row called N.
    [[nodiscard]] std::vector<Setting> described() const;

    /// What may stand after the words `given`, which begin with the verb.
    [[nodiscard]] std::vector<std::string> candidates(std::span<const std::string> given) const;

    /// What the control `there` shows of all settings.
    [[nodiscard]] std::vector<Reading> read(const std::any& there) const;

private:
    [[nodiscard]] std::vector<std::string> candidatesOfSet(std::span<const std::string> given) const;

    /// The settings, with those of the first rows.
    [[nodiscard]] std::vector<Setting> proposed() const;
};

/// A tuning of `Control`, still without anything to tune.
template <class Control>
[[nodiscard]] Tuning tuningOf(std::string_view name, std::string_view description)
{
    Tuning tuning;
    tuning.registryKey = Control::registryKey;
    tuning.control = [](const Instrument& instrument) { return std::any{instrument.control<Control>()}; };
    tuning.name = name;
    tuning.description = description;
    return tuning;
}

} // namespace tarn::console
