#pragma once

#include <console/command.h>
#include <console/instrument.h>

#include <QDateTime>
#include <QJsonObject>

#include <optional>
#include <string>

namespace tarn::console {

/// When calibration data was measured, and how warm the instrument was.
struct Measurement {
    QDateTime time; ///< UTC, whole seconds
    double temperature; ///< in degrees Celsius
};

/// The options that tell it: `--time` and `--value`.
class MeasurementOptions {
public:
    /// Adds them to a command.
    void addTo(Command command);

    /// What was given; otherwise the present time, and the temperature that the instrument shows.
    /// Throws `Error` (`Usage`) when it shows none.
    [[nodiscard]] Measurement obtain(const Instrument& instrument) const;

private:
    std::optional<QDateTime> m_time;
    std::optional<double> m_temperature;
};

/// `measurement` for people: "measured 2026-11-21T10:00:00Z at 23.5 °C".
[[nodiscard]] std::string measurementText(const Measurement& measurement);

/// `measurement` as members of a result.
[[nodiscard]] QJsonObject measurementJson(const Measurement& measurement);

/// The time that `text`, ISO 8601 in UTC to the second, spells: 2026-11-21T10:00:00Z.
[[nodiscard]] std::optional<QDateTime> parseTime(const std::string& text);

} // namespace tarn::console
