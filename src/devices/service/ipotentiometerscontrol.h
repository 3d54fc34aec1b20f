#pragma once

#include <devices/service/export.h>

#include <cstdint>
#include <expected>
#include <string>
#include <vector>

namespace tarn::devices::service {

/// The digital potentiometers of the instrument. Each has a value in RAM, which acts at once and
/// is lost when the power goes, and one in EEPROM.
///
/// The reads and writes yield `Error::Failed`, without a request, while the instrument does not offer
/// the control. An index or a value out of range is the instrument's to refuse. Exceptions of the
/// device pass through.
///
/// Threads: thread-safe; blocks until the instrument has answered. Never call an operation but
/// `potentiometers` from inside a completion or a notification of the device.
class TARN_DEVICES_SERVICE_EXPORT IPotentiometersControl {
public:
    static constexpr std::uint64_t registryKey = 0xc51b6fb2ae2584d2; ///< of its entry in the host's registry

    /// Why an operation failed.
    enum class Error {
        Failed = 0, ///< the instrument reported an error, or does not offer the control
    };

    /// One potentiometer, and the values that it takes.
    struct Potentiometer {
        std::string name; ///< UTF-8
        std::int32_t minimum; ///< lowest value that it takes, in steps
        std::int32_t maximum; ///< highest value that it takes, in steps

        friend bool operator==(const Potentiometer&, const Potentiometer&) = default;
    };

    IPotentiometersControl() = default;
    IPotentiometersControl(const IPotentiometersControl&) = delete;
    IPotentiometersControl& operator=(const IPotentiometersControl&) = delete;
    virtual ~IPotentiometersControl() = default;

    /// All potentiometers; the position in the list is the index that the other operations take.
    /// Empty while the instrument does not offer the control.
    ///
    /// Threads: thread-safe; calls through.
    [[nodiscard]] virtual std::vector<Potentiometer> potentiometers() const = 0;

    /// The EEPROM value of a potentiometer.
    [[nodiscard]] virtual std::expected<int, Error> readFromEeprom(unsigned long index) = 0;

    /// Sets the RAM value of a potentiometer; the EEPROM keeps its own.
    [[nodiscard]] virtual std::expected<void, Error> writeToRam(unsigned long index, int value) = 0;

    /// Writes the EEPROM value of a potentiometer. EEPROM cells wear out: write only what differs.
    [[nodiscard]] virtual std::expected<void, Error> writeToEeprom(unsigned long index, int value) = 0;
};

} // namespace tarn::devices::service
