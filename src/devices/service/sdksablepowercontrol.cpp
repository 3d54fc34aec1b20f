#include <devices/service/sdksablepowercontrol.h>

#include <devices/service/access.h>
#include <devices/service/enummappings.h>

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::service::ISablePowerModuleControl;

namespace {

/// The numbers of one side by those of the other. The table is its own inverse.
constexpr std::array<std::int32_t, 5> stepAttenuatorModes{0, 1, 2, 4, 3};

template <class To>
constexpr auto reordered = [](auto mode) {
    const auto index = static_cast<std::size_t>(mode);
    assert(index < stepAttenuatorModes.size());
    return static_cast<To>(stepAttenuatorModes[index]);
};

} // namespace

SdkSablePowerControl::SdkSablePowerControl(ReacquiringControl<sdk::service::ISablePowerModuleControl> control)
    : m_control{std::move(control)}
{
}

void SdkSablePowerControl::setDacMode(DacMode mode)
{
    ifAvailable(m_control, &Sdk::setDacMode, unchanged<Sdk::DacMode>(mode));
}

SdkSablePowerControl::DacMode SdkSablePowerControl::dacMode() const
{
    return valueOr(DacMode{}, m_control, &Sdk::dacMode, unchanged<DacMode>);
}

void SdkSablePowerControl::setPowerMode(PowerMode mode)
{
    ifAvailable(m_control, &Sdk::setPowerMode, saturated<Sdk::PowerMode::High>(mode));
}

SdkSablePowerControl::PowerMode SdkSablePowerControl::powerMode() const
{
    return valueOr(PowerMode{}, m_control, &Sdk::powerMode, saturated<PowerMode::High>);
}

void SdkSablePowerControl::setStepAttenuatorMode(StepAttenuatorMode mode)
{
    ifAvailable(m_control, &Sdk::setStepAttenuatorMode, reordered<Sdk::StepAttenuatorMode>(mode));
}

SdkSablePowerControl::StepAttenuatorMode SdkSablePowerControl::stepAttenuatorMode() const
{
    return valueOr(StepAttenuatorMode{}, m_control, &Sdk::stepAttenuatorMode, reordered<StepAttenuatorMode>);
}

void SdkSablePowerControl::setDiscreteAttenuatorMode(DiscreteAttenuatorMode mode)
{
    ifAvailable(m_control, &Sdk::setDiscreteAttenuatorMode, unchanged<Sdk::DiscreteAttenuatorMode>(mode));
}

SdkSablePowerControl::DiscreteAttenuatorMode SdkSablePowerControl::discreteAttenuatorMode() const
{
    return valueOr(DiscreteAttenuatorMode{}, m_control, &Sdk::discreteAttenuatorMode,
                   unchanged<DiscreteAttenuatorMode>);
}

void SdkSablePowerControl::setPowerConstant(PowerConstant constant)
{
    ifAvailable(m_control, &Sdk::setPowerConstant, unchanged<Sdk::PowerConstant>(constant));
}

SdkSablePowerControl::PowerConstant SdkSablePowerControl::powerConstant() const
{
    return valueOr(PowerConstant{}, m_control, &Sdk::powerConstant, unchanged<PowerConstant>);
}

void SdkSablePowerControl::setRfDac(std::uint16_t code)
{
    ifAvailable(m_control, &Sdk::setRfDac, code);
}

std::uint16_t SdkSablePowerControl::rfDac() const
{
    return valueOr(std::uint16_t{0}, m_control, &Sdk::rfDac);
}

void SdkSablePowerControl::setSplitDac(std::uint16_t code)
{
    ifAvailable(m_control, &Sdk::setSplitDac, code);
}

std::uint16_t SdkSablePowerControl::splitDac() const
{
    return valueOr(std::uint16_t{0}, m_control, &Sdk::splitDac);
}

void SdkSablePowerControl::setSplitDds(std::uint16_t code)
{
    ifAvailable(m_control, &Sdk::setSplitDds, code);
}

std::uint16_t SdkSablePowerControl::splitDds() const
{
    return valueOr(std::uint16_t{0}, m_control, &Sdk::splitDds);
}

void SdkSablePowerControl::setAttenuationDb(double attenuation)
{
    ifAvailable(m_control, &Sdk::setAttenuation, attenuation);
}

double SdkSablePowerControl::attenuationDb() const
{
    return valueOr(0.0, m_control, &Sdk::attenuation);
}

void SdkSablePowerControl::setAttenuationStep(std::uint16_t step)
{
    ifAvailable(m_control, &Sdk::setAttenuationStep, step);
}

std::uint16_t SdkSablePowerControl::attenuationStep() const
{
    return valueOr(std::uint16_t{0}, m_control, &Sdk::attenuationStep);
}

void SdkSablePowerControl::enableDiscreteAttenuator(bool enabled)
{
    ifAvailable(m_control, &Sdk::setDiscreteAttenuatorEnabled, enabled);
}

bool SdkSablePowerControl::discreteAttenuatorEnabled() const
{
    return valueOr(false, m_control, &Sdk::discreteAttenuatorEnabled);
}

void SdkSablePowerControl::setSquarePatternStep(double step)
{
    ifAvailable(m_control, &Sdk::setSquarePatternStep, step);
}

double SdkSablePowerControl::squarePatternStep() const
{
    return valueOr(0.0, m_control, &Sdk::squarePatternStep);
}

void SdkSablePowerControl::setDdsCorrectionMode(DdsCorrectionMode mode)
{
    ifAvailable(m_control, &Sdk::setDdsCorrectionMode, saturated<Sdk::DdsCorrectionMode::User>(mode));
}

SdkSablePowerControl::DdsCorrectionMode SdkSablePowerControl::ddsCorrectionMode() const
{
    return valueOr(DdsCorrectionMode{}, m_control, &Sdk::ddsCorrectionMode, saturated<DdsCorrectionMode::User>);
}

void SdkSablePowerControl::enableDdsCorrection(bool enabled)
{
    ifAvailable(m_control, &Sdk::setDdsCorrectionEnabled, enabled);
}

bool SdkSablePowerControl::ddsCorrectionEnabled() const
{
    return valueOr(false, m_control, &Sdk::ddsCorrectionEnabled);
}

void SdkSablePowerControl::assignPowerCalibrationTable(std::vector<std::uint8_t> table)
{
    ifAvailable(m_control, &Sdk::assignPowerCalibrationTable, std::move(table));
}

} // namespace tarn::devices::service
