#pragma once

#include <sdk/completion.h>
#include <sdk/key.h>
#include <sdk/visibility.h>

#include <cstdint>
#include <string>
#include <vector>

namespace sdk::service {

/// The digital potentiometers of the instrument. Each has a value in RAM, which acts at once and
/// is lost when the power goes, and one in EEPROM, which the RAM is loaded from at power-on.
///
/// Threads: thread-safe; at once, but an operation whose request is completed before it returns takes as
/// long as the request. A request reports its end through the completion; see `Completion` for what a
/// binding guarantees. An index that is not a position in the list, or a value outside the
/// potentiometer's range, is an error code.
class SDK_API IPotentiometersControl {
public:
    static constexpr Key key{0x88798a0ea0bfe22b}; ///< the device is asked for the control by it

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

    /// Whether the potentiometers can be used now. No adapter calls it; it holds its slot.
    [[nodiscard]] virtual bool isAvailable() = 0;

    /// All potentiometers; the position in the list is the index that the other operations take.
    /// The list is the same for as long as the control lives.
    [[nodiscard]] virtual std::vector<Potentiometer> potentiometers() = 0;

    /// Reads a potentiometer's EEPROM value.
    virtual void readFromEeprom(unsigned long index, Completion<int> completion) = 0;

    /// Sets a potentiometer's RAM value; the EEPROM keeps its own.
    virtual void writeToRam(unsigned long index, int value, Completion<> completion) = 0;

    /// Writes a potentiometer's EEPROM value. EEPROM cells wear out: write only what differs.
    virtual void writeToEeprom(unsigned long index, int value, Completion<> completion) = 0;
};

} // namespace sdk::service
