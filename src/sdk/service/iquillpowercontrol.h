#pragma once

#include <sdk/key.h>
#include <sdk/visibility.h>

#include <cstdint>
#include <vector>

namespace sdk::service {

/// The power stage of a Quill module. Power codes and attenuation steps are numbers of the
/// module's own, without a unit.
///
/// Threads: thread-safe; returns when the instrument has taken it.
class SDK_API IQuillPowerControl {
public:
    static constexpr Key key{0x3c96bf415fccae8a}; ///< the device is asked for the control by it

    /// The power of the synthesizer.
    enum class SyntPowerMode : std::int32_t {
        Normal = 0,
        High = 1,
    };

    /// Who sets the attenuation.
    enum class AttenuationMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1, ///< the attenuation step that is set
    };

    /// The section of the step attenuator that is in the path.
    enum class StepAttenuatorMode : std::int32_t {
        Through = 0, ///< none
        First = 1,
        Second = 2,
        Both = 3,
    };

    /// Who sets the discrete attenuator.
    enum class DiscreteAttenuatorMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1,
    };

    /// Who sets the attenuation that all ports share.
    enum class CommonAttenuationMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1, ///< the common attenuation step that is set
    };

    /// The gain of a receiver amplifier.
    enum class AmpGain : std::uint8_t {
        Low = 0,
        High = 1,
    };

    IQuillPowerControl() = default;
    IQuillPowerControl(const IQuillPowerControl&) = delete;
    IQuillPowerControl& operator=(const IQuillPowerControl&) = delete;
    virtual ~IQuillPowerControl() = default;

    /// The power code of the local oscillator (LO).
    [[nodiscard]] virtual std::uint8_t loPower() = 0;

    /// The power code of the RF output.
    [[nodiscard]] virtual std::uint8_t rfPower() = 0;

    /// Sets the power code of the LO.
    virtual void setLoPower(std::uint8_t code) = 0;

    /// Sets the power code of the RF output.
    virtual void setRfPower(std::uint8_t code) = 0;

    /// The lowest power code that the module takes.
    [[nodiscard]] virtual std::uint8_t minPowerCode() = 0;

    /// The highest power code that the module takes.
    [[nodiscard]] virtual std::uint8_t maxPowerCode() = 0;

    /// Sets the power mode of the synthesizer.
    virtual void setSyntPowerMode(SyntPowerMode mode) = 0;

    /// The power mode of the synthesizer.
    [[nodiscard]] virtual SyntPowerMode syntPowerMode() = 0;

    /// Sets the attenuation mode.
    virtual void setAttenuationMode(AttenuationMode mode) = 0;

    /// The attenuation mode.
    [[nodiscard]] virtual AttenuationMode attenuationMode() = 0;

    /// Sets the attenuation step.
    virtual void setAttenuationStep(int step) = 0;

    /// The attenuation step.
    [[nodiscard]] virtual int attenuationStep() = 0;

    /// Sets the mode of the step attenuator.
    virtual void setStepAttenuatorMode(StepAttenuatorMode mode) = 0;

    /// The mode of the step attenuator.
    [[nodiscard]] virtual StepAttenuatorMode stepAttenuatorMode() = 0;

    /// The attenuation step after a reset.
    [[nodiscard]] virtual int defaultAttenuationStep() = 0;

    /// Puts the discrete attenuator into the path or takes it out.
    virtual void setDiscreteAttenuatorEnabled(bool enabled) = 0;

    /// Whether the discrete attenuator is in the path.
    [[nodiscard]] virtual bool discreteAttenuatorEnabled() = 0;

    /// Sets the mode of the discrete attenuator.
    virtual void setDiscreteAttenuatorMode(DiscreteAttenuatorMode mode) = 0;

    /// The mode of the discrete attenuator.
    [[nodiscard]] virtual DiscreteAttenuatorMode discreteAttenuatorMode() = 0;

    /// Sets the mode of the common attenuation.
    virtual void setCommonAttenuationMode(CommonAttenuationMode mode) = 0;

    /// The mode of the common attenuation.
    [[nodiscard]] virtual CommonAttenuationMode commonAttenuationMode() = 0;

    /// Sets the step of the common attenuation.
    virtual void setCommonAttenuationStep(int step) = 0;

    /// The step of the common attenuation.
    [[nodiscard]] virtual int commonAttenuationStep() = 0;

    /// Sets the gain of the amplifier of transmit port 2.
    virtual void setAmpTPort2(AmpGain gain) = 0;

    /// The gain of the amplifier of transmit port 2.
    [[nodiscard]] virtual AmpGain ampTPort2() = 0;

    /// Sets the gain of the amplifier of receive port 1.
    virtual void setAmpRPort1(AmpGain gain) = 0;

    /// The gain of the amplifier of receive port 1.
    [[nodiscard]] virtual AmpGain ampRPort1() = 0;

    /// Sets the gain of the amplifier of transmit port 1.
    virtual void setAmpTPort1(AmpGain gain) = 0;

    /// The gain of the amplifier of transmit port 1.
    [[nodiscard]] virtual AmpGain ampTPort1() = 0;

    /// Sets the table of the RF power codes. The module copies it.
    virtual void setRfPowerCodes(const std::vector<std::uint8_t>& codes) = 0;

    /// Sets the table of the LO power codes. The module copies it.
    virtual void setLoPowerCodes(const std::vector<std::uint8_t>& codes) = 0;

    /// Returns the power stage to its defaults.
    virtual void reset() = 0;
};

} // namespace sdk::service
