#pragma once

#include <sdk/service/ipotentiometerscontrol.h>
#include <simulator/export.h>
#include <simulator/storage.h>
#include <utils/mutex.h>

#include <cstdint>
#include <expected>
#include <system_error>
#include <vector>

namespace tarn::simulator {

/// The digital potentiometers: each has a value in RAM, which is lost when the power goes, and one
/// in EEPROM, which the RAM is loaded from at power-on. Both, and how often the EEPROM was written,
/// are kept in the storage: the instrument stays switched on when nobody is connected. Thread-safe.
///
/// | index | name              | range       | as delivered |
/// |-------|-------------------|-------------|--------------|
/// | 0     | LO level          | 0 to 255    | 128          |
/// | 1     | Source ALC gain   | 0 to 1023   | 512          |
/// | 2     | Source ALC offset | -128 to 127 | 0            |
/// | 3     | Reference trim    | 0 to 1023   | 480          |
/// | 4     | Receiver A offset | -512 to 511 | 12           |
/// | 5     | Receiver B offset | -512 to 511 | -7           |
/// | 6     | IF gain           | 0 to 63     | 31           |
/// | 7     | Mixer bias        | 0 to 255    | 96           |
class TARN_DEVICE_SIMULATOR_EXPORT PotentiometerModel {
public:
    using Potentiometer = sdk::service::IPotentiometersControl::Potentiometer;

    /// What is in one potentiometer.
    struct Value {
        std::int32_t ram;
        std::int32_t eeprom;
        std::uint32_t eepromWrites; ///< since delivery

        friend bool operator==(const Value&, const Value&) = default;
    };

    /// As `storage` says. Throws `StateError` if that cannot be used.
    explicit PotentiometerModel(Storage& storage);

    [[nodiscard]] static std::vector<Potentiometer> list();
    [[nodiscard]] std::vector<Value> values() const;

    // `Error::BadIndex` for an index that is not a position in the list, `Error::OutOfRange` for a
    // value outside the range. What was written is durable when they return without an error.
    [[nodiscard]] std::expected<int, std::error_code> readEeprom(unsigned long index) const;
    [[nodiscard]] std::error_code writeRam(unsigned long index, int value);

    /// Leaves the RAM alone.
    [[nodiscard]] std::error_code writeEeprom(unsigned long index, int value);

    /// The power goes and comes back.
    void cyclePower();

private:
    /// Makes `values` durable, then takes them over.
    [[nodiscard]] std::error_code keep(std::vector<Value> values) TARN_REQUIRES(m_mutex);

    Storage& m_storage;
    mutable utils::Mutex m_mutex;
    std::vector<Value> m_values TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::simulator
