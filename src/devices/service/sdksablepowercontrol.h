#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <sdk/service/isablepowermodulecontrol.h>

#include <cstdint>
#include <vector>

namespace tarn::devices::service {

/// The power module of a Sable device. DAC and DDS codes and attenuation steps are numbers of the
/// module's own, without a unit.
///
/// While the instrument does not offer the control the setters do nothing, and the getters return
/// what their comments name after "unavailable". Values are not checked here; the instrument judges
/// them.
///
/// Exceptions of the device pass through.
///
/// Threads: thread-safe; calls through.
class TARN_DEVICES_SERVICE_EXPORT SdkSablePowerControl final {
public:
    static constexpr std::uint64_t registryKey = 0xdbaebee9402174ae; ///< of its entry in the host's registry

    /// Who sets the DACs. Of the same numbers as the SDK's.
    enum class DacMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1, ///< the codes that are set
    };

    /// The mode of the output power. On the way to the SDK and back, all values but 0 become 1.
    enum class PowerMode : std::int32_t {
        Normal = 0,
        High = 1,
    };

    /// The section of the step attenuator that is in the path. In another order than the SDK's.
    enum class StepAttenuatorMode : std::int32_t {
        Through = 0, ///< none
        First = 1,
        Second = 2,
        Automatic = 3, ///< as the instrument chooses; the SDK's 4
        Both = 4, ///< the SDK's 3
    };

    /// Who sets the discrete attenuator. Of the same numbers as the SDK's.
    enum class DiscreteAttenuatorMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1,
    };

    /// What stays constant over the frequencies. Of the same numbers as the SDK's.
    enum class PowerConstant : std::int32_t {
        Code = 0, ///< the DAC code
        Level = 1, ///< the output level
    };

    /// Where the correction of the direct digital synthesizer (DDS) comes from. On the way to the
    /// SDK and back, all values but 0 become 1.
    enum class DdsCorrectionMode : std::int32_t {
        Factory = 0,
        User = 1,
    };

    /// Reaches its SDK control through `control`, which it takes over.
    explicit SdkSablePowerControl(ReacquiringControl<sdk::service::ISablePowerModuleControl> control);

    /// Sets the mode of the DACs.
    void setDacMode(DacMode mode);

    /// The mode of the DACs; unavailable: the value 0.
    [[nodiscard]] DacMode dacMode() const;

    /// Sets the mode of the output power.
    void setPowerMode(PowerMode mode);

    /// The mode of the output power; unavailable: the value 0.
    [[nodiscard]] PowerMode powerMode() const;

    /// Sets the mode of the step attenuator. Precondition: one of the five values.
    void setStepAttenuatorMode(StepAttenuatorMode mode);

    /// The mode of the step attenuator; unavailable: the value 0. Precondition: the SDK's is one of
    /// the five values, too.
    [[nodiscard]] StepAttenuatorMode stepAttenuatorMode() const;

    /// Sets the mode of the discrete attenuator.
    void setDiscreteAttenuatorMode(DiscreteAttenuatorMode mode);

    /// The mode of the discrete attenuator; unavailable: the value 0.
    [[nodiscard]] DiscreteAttenuatorMode discreteAttenuatorMode() const;

    /// Chooses what stays constant over the frequencies.
    void setPowerConstant(PowerConstant constant);

    /// What stays constant over the frequencies; unavailable: the value 0.
    [[nodiscard]] PowerConstant powerConstant() const;

    /// Sets the code of the RF DAC.
    void setRfDac(std::uint16_t code);

    /// The code of the RF DAC; unavailable: 0.
    [[nodiscard]] std::uint16_t rfDac() const;

    /// Sets the code of the split DAC.
    void setSplitDac(std::uint16_t code);

    /// The code of the split DAC; unavailable: 0.
    [[nodiscard]] std::uint16_t splitDac() const;

    /// Sets the code of the split DDS.
    void setSplitDds(std::uint16_t code);

    /// The code of the split DDS; unavailable: 0.
    [[nodiscard]] std::uint16_t splitDds() const;

    /// Sets the attenuation, in dB.
    void setAttenuationDb(double attenuation);

    /// The attenuation, in dB; unavailable: 0.0.
    [[nodiscard]] double attenuationDb() const;

    /// Sets the attenuation step.
    void setAttenuationStep(std::uint16_t step);

    /// The attenuation step; unavailable: 0.
    [[nodiscard]] std::uint16_t attenuationStep() const;

    /// Puts the discrete attenuator into the path or takes it out.
    void enableDiscreteAttenuator(bool enabled);

    /// Whether the discrete attenuator is in the path; unavailable: `false`.
    [[nodiscard]] bool discreteAttenuatorEnabled() const;

    /// Sets the level step of the square pattern, in dB.
    void setSquarePatternStep(double step);

    /// The level step of the square pattern, in dB; unavailable: 0.0.
    [[nodiscard]] double squarePatternStep() const;

    /// Sets the mode of the DDS correction.
    void setDdsCorrectionMode(DdsCorrectionMode mode);

    /// The mode of the DDS correction; unavailable: the value 0.
    [[nodiscard]] DdsCorrectionMode ddsCorrectionMode() const;

    /// Switches the DDS correction on or off.
    void enableDdsCorrection(bool enabled);

    /// Whether the DDS correction is on; unavailable: `false`.
    [[nodiscard]] bool ddsCorrectionEnabled() const;

    /// Replaces the power calibration table; its layout is the module's own.
    void assignPowerCalibrationTable(std::vector<std::uint8_t> table);

private:
    ReacquiringControl<sdk::service::ISablePowerModuleControl> m_control;
};

} // namespace tarn::devices::service
