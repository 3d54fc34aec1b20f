#include <console/measurement.h>

#include <console/requests.h>
#include <console/text.h>
#include <devices/service/sdktemperaturecontrol.h>

#include <QByteArray>

#include <fmt/format.h>

#include <cmath>

namespace tarn::console {

namespace {

using Thermometer = devices::service::SdkTemperatureControl;

double temperatureOf(const Instrument& instrument)
{
    if (!instrument.isOffered(Thermometer::registryKey))
        throw Error{ErrorCode::Usage, "the temperature of the measurement is missing, and this instrument shows none",
                    "give it in degrees Celsius with --value"};
    const auto thermometer = instrument.control<Thermometer>();
    instrument.awaitControl(Thermometer::registryKey);
    const DeviceCall call;
    return thermometer->temperature();
}

} // namespace

void MeasurementOptions::addTo(Command command)
{
    const auto readTemperature = [this](const std::string& text) -> std::optional<std::string> {
        bool isNumber = false;
        m_temperature = QByteArray::fromStdString(text).toDouble(&isNumber);
        if (!isNumber || !std::isfinite(*m_temperature))
            return fmt::format("'{}' is not a temperature in degrees Celsius such as 23.5", text);
        return std::nullopt;
    };
    const auto readTime = [this](const std::string& text) -> std::optional<std::string> {
        m_time = parseTime(text);
        if (!m_time)
            return fmt::format("'{}' is not a time such as 2026-11-21T10:00:00Z", text);
        return std::nullopt;
    };
    command.addOption("--value", "X", readTemperature,
                      "The instrument's temperature during the measurement, in degrees Celsius [as it is now]");
    command.addOption("--time", "T", readTime, "When it was measured, in UTC, for example 2026-11-21T10:00:00Z [now]");
}

Measurement MeasurementOptions::obtain(const Instrument& instrument) const
{
    return {m_time ? *m_time : QDateTime::currentDateTimeUtc(),
            m_temperature ? *m_temperature : temperatureOf(instrument)};
}

std::string measurementText(const Measurement& measurement)
{
    return fmt::format("measured {} at {:.2f} °C", measurement.time.toString(Qt::ISODate).toStdString(),
                       measurement.temperature);
}

QJsonObject measurementJson(const Measurement& measurement)
{
    return {{QStringLiteral("time"), measurement.time.toString(Qt::ISODate)},
            {QStringLiteral("temperature"), measurement.temperature}};
}

std::optional<QDateTime> parseTime(const std::string& text)
{
    // In parts: a whole that is read as local time is not valid in the hour that summer time skips.
    constexpr qsizetype dateLength = 10;
    const auto whole = decoded(text);
    if (!whole)
        return std::nullopt;
    const auto date = QDate::fromString(whole->left(dateLength), QStringLiteral("yyyy-MM-dd"));
    const auto time = QTime::fromString(whole->mid(dateLength), QStringLiteral("'T'HH:mm:ss'Z'"));
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    return QDateTime{date, time, Qt::UTC};
}

} // namespace tarn::console
