#pragma once

#include <sdk/key.h>
#include <sdk/visibility.h>

#include <cstdint>
#include <vector>

namespace sdk::service {

/// The power module of a Sable device. DAC and DDS codes and attenuation steps are numbers of the
/// module's own, without a unit.
///
/// Threads: thread-safe; returns when the instrument has taken it.
class SDK_API ISablePowerModuleControl {
public:
    static constexpr Key key{0x2601fd095cf599f2}; ///< the device is asked for the control by it

    /// Who sets the DACs.
    enum class DacMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1, ///< the codes that are set
    };

    /// The power of the module.
    enum class PowerMode : std::int32_t {
        Normal = 0,
        High = 1,
    };

    /// The section of the step attenuator that is in the path. These five values alone are valid.
    enum class StepAttenuatorMode : std::int32_t {
        Through = 0, ///< none
        First = 1,
        Second = 2,
        Both = 3,
        Automatic = 4, ///< as the instrument chooses
    };

    /// Who sets the discrete attenuator.
    enum class DiscreteAttenuatorMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1,
    };

    /// What stays constant over the frequencies.
    enum class PowerConstant : std::int32_t {
        Code = 0, ///< the DAC code
        Level = 1, ///< the output level
    };

    /// Where the correction of the direct digital synthesizer (DDS) comes from.
    enum class DdsCorrectionMode : std::int32_t {
        Factory = 0,
        User = 1,
    };

    ISablePowerModuleControl() = default;
    ISablePowerModuleControl(const ISablePowerModuleControl&) = delete;
    ISablePowerModuleControl& operator=(const ISablePowerModuleControl&) = delete;
    virtual ~ISablePowerModuleControl() = default;

    /// Sets the mode of the DACs.
    virtual void setDacMode(DacMode mode) = 0;

    /// The mode of the DACs.
    [[nodiscard]] virtual DacMode dacMode() = 0;

    /// Sets the mode of the output power.
    virtual void setPowerMode(PowerMode mode) = 0;

    /// The mode of the output power.
    [[nodiscard]] virtual PowerMode powerMode() = 0;

    /// Sets the mode of the step attenuator.
    virtual void setStepAttenuatorMode(StepAttenuatorMode mode) = 0;

    /// The mode of the step attenuator.
    [[nodiscard]] virtual StepAttenuatorMode stepAttenuatorMode() = 0;

    /// Sets the mode of the discrete attenuator.
    virtual void setDiscreteAttenuatorMode(DiscreteAttenuatorMode mode) = 0;

    /// The mode of the discrete attenuator.
    [[nodiscard]] virtual DiscreteAttenuatorMode discreteAttenuatorMode() = 0;

    /// Chooses what stays constant over the frequencies.
    virtual void setPowerConstant(PowerConstant constant) = 0;

    /// What stays constant over the frequencies.
    [[nodiscard]] virtual PowerConstant powerConstant() = 0;

    /// Sets the code of the RF DAC.
    virtual void setRfDac(std::uint16_t code) = 0;

    /// The code of the RF DAC.
    [[nodiscard]] virtual std::uint16_t rfDac() = 0;

    /// Sets the code of the split DAC.
    virtual void setSplitDac(std::uint16_t code) = 0;

    /// The code of the split DAC.
    [[nodiscard]] virtual std::uint16_t splitDac() = 0;

    /// Sets the code of the split DDS.
    virtual void setSplitDds(std::uint16_t code) = 0;

    /// The code of the split DDS.
    [[nodiscard]] virtual std::uint16_t splitDds() = 0;

    /// Sets the attenuation, in dB.
    virtual void setAttenuation(double attenuation) = 0;

    /// The attenuation, in dB.
    [[nodiscard]] virtual double attenuation() = 0;

    /// Sets the attenuation step.
    virtual void setAttenuationStep(std::uint16_t step) = 0;

    /// The attenuation step.
    [[nodiscard]] virtual std::uint16_t attenuationStep() = 0;

    /// Puts the discrete attenuator into the path or takes it out.
    virtual void setDiscreteAttenuatorEnabled(bool enabled) = 0;

    /// Whether the discrete attenuator is in the path.
    [[nodiscard]] virtual bool discreteAttenuatorEnabled() = 0;

    /// Sets the level step of the square pattern, in dB.
    virtual void setSquarePatternStep(double step) = 0;

    /// The level step of the square pattern, in dB.
    [[nodiscard]] virtual double squarePatternStep() = 0;

    /// Sets the mode of the DDS correction.
    virtual void setDdsCorrectionMode(DdsCorrectionMode mode) = 0;

    /// The mode of the DDS correction.
    [[nodiscard]] virtual DdsCorrectionMode ddsCorrectionMode() = 0;

    /// Switches the DDS correction on or off.
    virtual void setDdsCorrectionEnabled(bool enabled) = 0;

    /// Whether the DDS correction is on.
    [[nodiscard]] virtual bool ddsCorrectionEnabled() = 0;

    /// Replaces the power calibration table; its layout is the module's own.
    virtual void assignPowerCalibrationTable(std::vector<std::uint8_t> table) = 0;
};

} // namespace sdk::service
