#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <sdk/service/iquillpowercontrol.h>

#include <QObject>

#include <cstdint>
#include <vector>

namespace tarn::devices::service {

/// The power stage of a Quill module. Power codes and attenuation steps are numbers of the module's
/// own, without a unit. A value of an enumeration that has no enumerator here becomes 0 on the way to
/// the SDK and back.
///
/// While the instrument does not offer the control the setters do nothing, and the getters return
/// what their comments name after "unavailable". Values are not checked here; the instrument judges
/// them.
///
/// Exceptions of the device pass through.
///
/// Threads: thread-safe; calls through, then emits signals on the caller's thread with no lock held.
class TARN_DEVICES_SERVICE_EXPORT SdkQuillPowerControl final : public QObject {
    Q_OBJECT

public:
    static constexpr std::uint64_t registryKey = 0x897c141e29e7e690; ///< of its entry in the host's registry

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
    enum class AmpGain : std::int32_t {
        Low = 0,
        High = 1,
    };

    /// The section of the step attenuator that is in the path.
    enum class StepAttenuatorMode : std::int32_t {
        Through = 0, ///< none
        First = 1,
        Second = 2,
        Both = 3,
    };

    /// Reaches its SDK control through `control`, which it takes over.
    explicit SdkQuillPowerControl(ReacquiringControl<sdk::service::IQuillPowerControl> control);

    /// The power code of the local oscillator (LO); unavailable: 0.
    [[nodiscard]] std::uint8_t loPower() const;

    /// Sets the power code of the local oscillator (LO).
    void setLoPower(std::uint8_t code);

    /// The power code of the RF output; unavailable: 0.
    [[nodiscard]] std::uint8_t rfPower() const;

    /// Sets the power code of the RF output.
    void setRfPower(std::uint8_t code);

    /// The lowest power code that the module takes; unavailable: 0.
    [[nodiscard]] std::uint8_t minPowerCode() const;

    /// The highest power code that the module takes; unavailable: 0.
    [[nodiscard]] std::uint8_t maxPowerCode() const;

    /// The power mode of the synthesizer; unavailable: the value 0.
    [[nodiscard]] SyntPowerMode syntPowerMode() const;

    /// Sets the power mode of the synthesizer.
    void setSyntPowerMode(SyntPowerMode mode);

    /// The attenuation mode; unavailable: the value 0.
    [[nodiscard]] AttenuationMode attenuationMode() const;

    /// Sets the attenuation mode.
    void setAttenuationMode(AttenuationMode mode);

    /// The attenuation step; unavailable: 0.
    [[nodiscard]] int attenuationStep() const;

    /// Sets the attenuation step.
    void setAttenuationStep(int step);

    /// The attenuation step after a reset; unavailable: 0.
    [[nodiscard]] int defaultAttenuationStep() const;

    /// The mode of the step attenuator; unavailable: the value 0.
    [[nodiscard]] StepAttenuatorMode stepAttenuatorMode() const;

    /// Sets the mode of the step attenuator.
    void setStepAttenuatorMode(StepAttenuatorMode mode);

    /// Whether the discrete attenuator is in the path; unavailable: `false`.
    [[nodiscard]] bool discreteAttenuatorEnabled() const;

    /// Puts the discrete attenuator into the path or takes it out.
    void enableDiscreteAttenuator(bool enabled);

    /// The mode of the discrete attenuator; unavailable: the value 0.
    [[nodiscard]] DiscreteAttenuatorMode discreteAttenuatorMode() const;

    /// Sets the mode of the discrete attenuator.
    void setDiscreteAttenuatorMode(DiscreteAttenuatorMode mode);

    /// The mode of the common attenuation; unavailable: the value 0.
    [[nodiscard]] CommonAttenuationMode commonAttenuationMode() const;

    /// Sets the mode of the common attenuation.
    void setCommonAttenuationMode(CommonAttenuationMode mode);

    /// The step of the common attenuation; unavailable: 0.
    [[nodiscard]] int commonAttenuationStep() const;

    /// Sets the step of the common attenuation.
    void setCommonAttenuationStep(int step);

    /// The gain of the amplifier of transmit port 1; unavailable: the value 0.
    [[nodiscard]] AmpGain ampTPort1() const;

    /// Sets the gain of the amplifier of transmit port 1.
    void setAmpTPort1(AmpGain gain);

    /// The gain of the amplifier of transmit port 2; unavailable: the value 0.
    [[nodiscard]] AmpGain ampTPort2() const;

    /// Sets the gain of the amplifier of transmit port 2.
    void setAmpTPort2(AmpGain gain);

    /// The gain of the amplifier of receive port 1; unavailable: the value 0.
    [[nodiscard]] AmpGain ampRPort1() const;

    /// Sets the gain of the amplifier of receive port 1.
    void setAmpRPort1(AmpGain gain);

    /// Sets the table of the RF power codes. No signal.
    void setRfPowerCodes(const std::vector<std::uint8_t>& codes);

    /// Sets the table of the LO power codes. No signal.
    void setLoPowerCodes(const std::vector<std::uint8_t>& codes);

    /// Returns the power stage to its defaults and emits all signals, in their order.
    void reset();

signals:
    // Each is emitted whenever the instrument has taken a value, whether or not that differs from the one before.

    void loPowerChanged(); ///< the instrument has taken the LO power code
    void rfPowerChanged(); ///< the instrument has taken the RF power code
    void syntPowerModeChanged(); ///< the instrument has taken the power mode of the synthesizer
    void attenuationStepChanged(); ///< the instrument has taken the attenuation step
    void stepAttenuatorModeChanged(); ///< the instrument has taken the mode of the step attenuator
    void discreteAttenuatorEnabledChanged(); ///< the instrument has taken the switch of the discrete attenuator
    void discreteAttenuatorModeChanged(); ///< the instrument has taken the mode of the discrete attenuator
    void attenuationModeChanged(); ///< the instrument has taken the attenuation mode
    void commonAttenuationModeChanged(); ///< the instrument has taken the mode of the common attenuation
    void commonAttenuationStepChanged(); ///< the instrument has taken the common attenuation step
    void ampTPort1Changed(); ///< the instrument has taken the gain of the amplifier of transmit port 1
    void ampTPort2Changed(); ///< the instrument has taken the gain of the amplifier of transmit port 2
    void ampRPort1Changed(); ///< the instrument has taken the gain of the amplifier of receive port 1

private:
    /// Calls `operation` with `value`, then emits `changed`, if the control is available.
    template <class Operation, class Value>
    void set(Operation operation, Value value, void (SdkQuillPowerControl::*changed)());

    ReacquiringControl<sdk::service::IQuillPowerControl> m_control;
};

} // namespace tarn::devices::service
