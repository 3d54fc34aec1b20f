#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <sdk/service/idornpowercontrol.h>

#include <cstdint>
#include <vector>

namespace tarn::devices::service {

/// The power stage of a Dorn device. Power, DAC and gain codes are numbers of the device's own,
/// without a unit.
///
/// While the instrument does not offer the control the setters do nothing, and the getters return
/// what their comments name after "unavailable". Values are not checked here; the instrument judges
/// them.
///
/// Exceptions of the device pass through.
///
/// Threads: thread-safe; calls through.
class TARN_DEVICES_SERVICE_EXPORT SdkDornPowerControl final {
public:
    static constexpr std::uint64_t registryKey = 0xeaf356a0b2ef79a5; ///< of its entry in the host's registry

    /// Who sets the power or the DACs. Of the same numbers as the SDK's.
    enum class ControlMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1, ///< the codes that are set
    };

    /// The SDK's list of gain codes.
    using Gains = sdk::service::IDORNPowerControl::Gains;

    /// Reaches its SDK control through `control`, which it takes over.
    explicit SdkDornPowerControl(ReacquiringControl<sdk::service::IDORNPowerControl> control);

    /// The highest power code that the device takes; unavailable: 0.
    [[nodiscard]] std::uint8_t maxPowerValue() const;

    /// Who sets the power; unavailable: the value 0.
    [[nodiscard]] ControlMode powerControlMode() const;

    /// Chooses who sets the power.
    void setPowerControlMode(ControlMode mode);

    /// The power code of the local oscillator (LO); unavailable: 0.
    [[nodiscard]] std::uint8_t loPower() const;

    /// Sets the power code of the LO.
    void setLoPower(std::uint8_t code);

    /// The power code of the RF output; unavailable: 0.
    [[nodiscard]] std::uint8_t rfPower() const;

    /// Sets the power code of the RF output.
    void setRfPower(std::uint8_t code);

    /// The highest DAC code that the device takes; unavailable: 0.
    [[nodiscard]] std::uint16_t maxDacValue() const;

    /// Who sets the DACs; unavailable: the value 0.
    [[nodiscard]] ControlMode dacControlMode() const;

    /// Chooses who sets the DACs.
    void setDacControlMode(ControlMode mode);

    /// Whether the union code drives both DACs, not each its own; unavailable: `false`.
    [[nodiscard]] bool isDacModeUnion() const;

    /// Drives both DACs by the union code, or each by its own.
    void setDacModeUnion(bool isUnion);

    /// The code of both DACs in union mode; unavailable: 0.
    [[nodiscard]] std::uint16_t unionDac() const;

    /// Sets the code of both DACs in union mode.
    void setUnionDac(std::uint16_t code);

    /// The code of DAC A; unavailable: 0.
    [[nodiscard]] std::uint16_t dacA() const;

    /// Sets the code of DAC A.
    void setDacA(std::uint16_t code);

    /// The code of DAC B; unavailable: 0.
    [[nodiscard]] std::uint16_t dacB() const;

    /// Sets the code of DAC B.
    void setDacB(std::uint16_t code);

    /// The gain codes that the receivers take; unavailable: empty.
    [[nodiscard]] Gains availableGains() const;

    /// The gain code of the reference receiver; unavailable: 0.
    [[nodiscard]] std::uint8_t referenceGain() const;

    /// Sets the gain code of the reference receiver.
    void setReferenceGain(std::uint8_t code);

    /// The gain code of the signal receiver; unavailable: 0.
    [[nodiscard]] std::uint8_t signalGain() const;

    /// Sets the gain code of the signal receiver.
    void setSignalGain(std::uint8_t code);

    /// Replaces the receiver correction table; its layout is the device's own.
    void assignReceiverCorrectionTable(std::vector<std::uint8_t> table);

    /// Replaces the power calibration table; its layout is the device's own.
    void assignPowerCalibrationTable(std::vector<std::uint8_t> table);

private:
    ReacquiringControl<sdk::service::IDORNPowerControl> m_control;
};

} // namespace tarn::devices::service
