#pragma once

#include <sdk/key.h>
#include <sdk/visibility.h>

#include <cstdint>
#include <vector>

namespace sdk::service {

/// The power stage of a Dorn device. Power, DAC and gain codes are numbers of the device's own,
/// without a unit.
///
/// Threads: thread-safe; returns when the instrument has taken it.
class SDK_API IDORNPowerControl {
public:
    static constexpr Key key{0x2f10ddd457c35149}; ///< the device is asked for the control by it

    /// Who sets what is controlled.
    enum class ControlMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1, ///< the codes that are set
    };

    /// How the two DACs are driven.
    enum class DacMode : std::int32_t {
        Separate = 0, ///< each by its own code
        Union = 1, ///< both by the union code
    };

    /// Gain codes.
    using Gains = std::vector<std::uint8_t>;

    IDORNPowerControl() = default;
    IDORNPowerControl(const IDORNPowerControl&) = delete;
    IDORNPowerControl& operator=(const IDORNPowerControl&) = delete;
    virtual ~IDORNPowerControl() = default;

    /// The highest power code that the device takes.
    [[nodiscard]] virtual std::uint8_t maxPowerValue() = 0;

    /// Who sets the power.
    [[nodiscard]] virtual ControlMode powerControlMode() = 0;

    /// Chooses who sets the power.
    virtual void setPowerControlMode(ControlMode mode) = 0;

    /// The power code of the local oscillator (LO).
    [[nodiscard]] virtual std::uint8_t loPower() = 0;

    /// Sets the power code of the LO.
    virtual void setLoPower(std::uint8_t code) = 0;

    /// The power code of the RF output.
    [[nodiscard]] virtual std::uint8_t rfPower() = 0;

    /// Sets the power code of the RF output.
    virtual void setRfPower(std::uint8_t code) = 0;

    /// The highest DAC code that the device takes.
    [[nodiscard]] virtual std::uint16_t maxDacValue() = 0;

    /// Who sets the DACs.
    [[nodiscard]] virtual ControlMode dacControlMode() = 0;

    /// Chooses who sets the DACs.
    virtual void setDacControlMode(ControlMode mode) = 0;

    /// How the two DACs are driven.
    [[nodiscard]] virtual DacMode dacMode() = 0;

    /// Chooses how the two DACs are driven.
    virtual void setDacMode(DacMode mode) = 0;

    /// The code of both DACs in union mode.
    [[nodiscard]] virtual std::uint16_t unionDac() = 0;

    /// Sets the code of both DACs in union mode.
    virtual void setUnionDac(std::uint16_t code) = 0;

    /// The code of DAC A.
    [[nodiscard]] virtual std::uint16_t dacA() = 0;

    /// Sets the code of DAC A.
    virtual void setDacA(std::uint16_t code) = 0;

    /// The code of DAC B.
    [[nodiscard]] virtual std::uint16_t dacB() = 0;

    /// Sets the code of DAC B.
    virtual void setDacB(std::uint16_t code) = 0;

    /// The gain codes that the receivers take.
    [[nodiscard]] virtual Gains availableGains() = 0;

    /// The gain code of the reference receiver.
    [[nodiscard]] virtual std::uint8_t referenceGain() = 0;

    /// Sets the gain code of the reference receiver.
    virtual void setReferenceGain(std::uint8_t code) = 0;

    /// The gain code of the signal receiver.
    [[nodiscard]] virtual std::uint8_t signalGain() = 0;

    /// Sets the gain code of the signal receiver.
    virtual void setSignalGain(std::uint8_t code) = 0;

    /// Replaces the receiver correction table; its layout is the device's own.
    virtual void assignReceiverCorrectionTable(std::vector<std::uint8_t> table) = 0;

    /// Replaces the power calibration table; its layout is the device's own.
    virtual void assignPowerCalibrationTable(std::vector<std::uint8_t> table) = 0;
};

} // namespace sdk::service
