#include <devices/service/sdkquillpowercontrol.h>

#include <devices/service/access.h>
#include <devices/service/enummappings.h>

#include <functional>
#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::service::IQuillPowerControl;
using Self = SdkQuillPowerControl;

SdkQuillPowerControl::SdkQuillPowerControl(ReacquiringControl<sdk::service::IQuillPowerControl> control)
    : m_control{std::move(control)}
{
}

template <class Operation, class Value>
void SdkQuillPowerControl::set(Operation operation, Value value, void (SdkQuillPowerControl::*changed)())
{
    ifAvailable(m_control, [&](Sdk& sdk) {
        std::invoke(operation, sdk, value);
        emit std::invoke(changed, this);
    });
}

std::uint8_t SdkQuillPowerControl::loPower() const
{
    return valueOr(std::uint8_t{0}, m_control, &Sdk::loPower);
}

void SdkQuillPowerControl::setLoPower(std::uint8_t code)
{
    set(&Sdk::setLoPower, code, &Self::loPowerChanged);
}

std::uint8_t SdkQuillPowerControl::rfPower() const
{
    return valueOr(std::uint8_t{0}, m_control, &Sdk::rfPower);
}

void SdkQuillPowerControl::setRfPower(std::uint8_t code)
{
    set(&Sdk::setRfPower, code, &Self::rfPowerChanged);
}

std::uint8_t SdkQuillPowerControl::minPowerCode() const
{
    return valueOr(std::uint8_t{0}, m_control, &Sdk::minPowerCode);
}

std::uint8_t SdkQuillPowerControl::maxPowerCode() const
{
    return valueOr(std::uint8_t{0}, m_control, &Sdk::maxPowerCode);
}

SdkQuillPowerControl::SyntPowerMode SdkQuillPowerControl::syntPowerMode() const
{
    return valueOr(SyntPowerMode{}, m_control, &Sdk::syntPowerMode, mirrored<SyntPowerMode::High>);
}

void SdkQuillPowerControl::setSyntPowerMode(SyntPowerMode mode)
{
    set(&Sdk::setSyntPowerMode, mirrored<Sdk::SyntPowerMode::High>(mode), &Self::syntPowerModeChanged);
}

SdkQuillPowerControl::AttenuationMode SdkQuillPowerControl::attenuationMode() const
{
    return valueOr(AttenuationMode{}, m_control, &Sdk::attenuationMode, mirrored<AttenuationMode::Manual>);
}

void SdkQuillPowerControl::setAttenuationMode(AttenuationMode mode)
{
    set(&Sdk::setAttenuationMode, mirrored<Sdk::AttenuationMode::Manual>(mode), &Self::attenuationModeChanged);
}

int SdkQuillPowerControl::attenuationStep() const
{
    return valueOr(0, m_control, &Sdk::attenuationStep);
}

void SdkQuillPowerControl::setAttenuationStep(int step)
{
    set(&Sdk::setAttenuationStep, step, &Self::attenuationStepChanged);
}

int SdkQuillPowerControl::defaultAttenuationStep() const
{
    return valueOr(0, m_control, &Sdk::defaultAttenuationStep);
}

SdkQuillPowerControl::StepAttenuatorMode SdkQuillPowerControl::stepAttenuatorMode() const
{
    return valueOr(StepAttenuatorMode{}, m_control, &Sdk::stepAttenuatorMode, mirrored<StepAttenuatorMode::Both>);
}

void SdkQuillPowerControl::setStepAttenuatorMode(StepAttenuatorMode mode)
{
    set(&Sdk::setStepAttenuatorMode, mirrored<Sdk::StepAttenuatorMode::Both>(mode), &Self::stepAttenuatorModeChanged);
}

bool SdkQuillPowerControl::discreteAttenuatorEnabled() const
{
    return valueOr(false, m_control, &Sdk::discreteAttenuatorEnabled);
}

void SdkQuillPowerControl::enableDiscreteAttenuator(bool enabled)
{
    set(&Sdk::setDiscreteAttenuatorEnabled, enabled, &Self::discreteAttenuatorEnabledChanged);
}

SdkQuillPowerControl::DiscreteAttenuatorMode SdkQuillPowerControl::discreteAttenuatorMode() const
{
    return valueOr(DiscreteAttenuatorMode{}, m_control, &Sdk::discreteAttenuatorMode,
                   mirrored<DiscreteAttenuatorMode::Manual>);
}

void SdkQuillPowerControl::setDiscreteAttenuatorMode(DiscreteAttenuatorMode mode)
{
    set(&Sdk::setDiscreteAttenuatorMode, mirrored<Sdk::DiscreteAttenuatorMode::Manual>(mode),
        &Self::discreteAttenuatorModeChanged);
}

SdkQuillPowerControl::CommonAttenuationMode SdkQuillPowerControl::commonAttenuationMode() const
{
    return valueOr(CommonAttenuationMode{}, m_control, &Sdk::commonAttenuationMode,
                   mirrored<CommonAttenuationMode::Manual>);
}

void SdkQuillPowerControl::setCommonAttenuationMode(CommonAttenuationMode mode)
{
    set(&Sdk::setCommonAttenuationMode, mirrored<Sdk::CommonAttenuationMode::Manual>(mode),
        &Self::commonAttenuationModeChanged);
}

int SdkQuillPowerControl::commonAttenuationStep() const
{
    return valueOr(0, m_control, &Sdk::commonAttenuationStep);
}

void SdkQuillPowerControl::setCommonAttenuationStep(int step)
{
    set(&Sdk::setCommonAttenuationStep, step, &Self::commonAttenuationStepChanged);
}

SdkQuillPowerControl::AmpGain SdkQuillPowerControl::ampTPort1() const
{
    return valueOr(AmpGain{}, m_control, &Sdk::ampTPort1, mirrored<AmpGain::High>);
}

void SdkQuillPowerControl::setAmpTPort1(AmpGain gain)
{
    set(&Sdk::setAmpTPort1, mirrored<Sdk::AmpGain::High>(gain), &Self::ampTPort1Changed);
}

SdkQuillPowerControl::AmpGain SdkQuillPowerControl::ampTPort2() const
{
    return valueOr(AmpGain{}, m_control, &Sdk::ampTPort2, mirrored<AmpGain::High>);
}

void SdkQuillPowerControl::setAmpTPort2(AmpGain gain)
{
    set(&Sdk::setAmpTPort2, mirrored<Sdk::AmpGain::High>(gain), &Self::ampTPort2Changed);
}

SdkQuillPowerControl::AmpGain SdkQuillPowerControl::ampRPort1() const
{
    return valueOr(AmpGain{}, m_control, &Sdk::ampRPort1, mirrored<AmpGain::High>);
}

void SdkQuillPowerControl::setAmpRPort1(AmpGain gain)
{
    set(&Sdk::setAmpRPort1, mirrored<Sdk::AmpGain::High>(gain), &Self::ampRPort1Changed);
}

void SdkQuillPowerControl::setRfPowerCodes(const std::vector<std::uint8_t>& codes)
{
    ifAvailable(m_control, &Sdk::setRfPowerCodes, codes);
}

void SdkQuillPowerControl::setLoPowerCodes(const std::vector<std::uint8_t>& codes)
{
    ifAvailable(m_control, &Sdk::setLoPowerCodes, codes);
}

void SdkQuillPowerControl::reset()
{
    ifAvailable(m_control, [this](Sdk& sdk) {
        sdk.reset();
        emit loPowerChanged();
        emit rfPowerChanged();
        emit syntPowerModeChanged();
        emit attenuationStepChanged();
        emit stepAttenuatorModeChanged();
        emit discreteAttenuatorEnabledChanged();
        emit discreteAttenuatorModeChanged();
        emit attenuationModeChanged();
        emit commonAttenuationModeChanged();
        emit commonAttenuationStepChanged();
        emit ampTPort1Changed();
        emit ampTPort2Changed();
        emit ampRPort1Changed();
    });
}

} // namespace tarn::devices::service
