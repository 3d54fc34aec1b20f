#pragma once

#include <provider/ideviceprovider.h>
#include <simulator/export.h>
#include <simulator/settings.h>

#include <QList>
#include <QString>

#include <expected>

namespace tarn::simulator {

/// An instrument's name and what to simulate under it.
struct SimulatorAddress {
    QString name;
    Settings settings;

    friend bool operator==(const SimulatorAddress&, const SimulatorAddress&) = default;
};

/// The instrument of an address that gives no name.
inline constexpr const char* defaultInstrument = "sim";

/// Reads an address: items separated by commas, of which the first may be the instrument's name
/// (1 to 64 letters, digits, hyphens and underscores of ASCII) and the others are
/// `option=value`, each option at most once. Anything else is an `InvalidAddress` that lists what
/// would be valid.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT std::expected<SimulatorAddress, provider::OpenError>
parseAddress(const QString& address);

/// How an address is written, and its options.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT QString addressSyntax();
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT QList<provider::AddressOption> addressOptions();

} // namespace tarn::simulator
