#pragma once

#include <simulator/export.h>
#include <simulator/storage.h>
#include <utils/mutex.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarn::simulator {

/// The tables that the modules are given, kept in the storage for good: neither a reset nor the loss of power takes
/// them away. Thread-safe.
///
/// | table                      | bytes |
/// |----------------------------|-------|
/// | Quill RF power codes       | 201   |
/// | Quill LO power codes       | 201   |
/// | Dorn receiver correction   | 1024  |
/// | Dorn power calibration     | 2048  |
/// | Sable power calibration    | 4096  |
class TARN_DEVICE_SIMULATOR_EXPORT ModuleTables {
public:
    enum class Table : std::uint8_t {
        QuillRfPowerCodes,
        QuillLoPowerCodes,
        DornReceiverCorrection,
        DornPowerCalibration,
        SablePowerCalibration,
    };
    static constexpr std::size_t count = 5;

    using Contents = std::vector<std::uint8_t>;

    /// As `storage` says. Throws `StateError` if that cannot be used.
    explicit ModuleTables(Storage& storage);

    /// Throws, and leaves the table as it was, `std::length_error` if it is not of its length and `std::runtime_error`
    /// if it cannot be saved.
    void store(Table table, const Contents& contents);

    /// Empty if it was never stored.
    [[nodiscard]] Contents contents(Table table) const;

private:
    using All = std::array<Contents, count>;

    [[nodiscard]] static All load(const Storage& storage);

    Storage& m_storage;
    mutable utils::Mutex m_mutex;
    All m_tables TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::simulator
