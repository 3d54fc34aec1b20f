#include <devices/service/sdkdornpowercontrol.h>

#include <devices/service/access.h>
#include <devices/service/enummappings.h>

#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::service::IDORNPowerControl;

namespace {

constexpr bool isUnion(Sdk::DacMode mode)
{
    return mode == Sdk::DacMode::Union;
}

} // namespace

SdkDornPowerControl::SdkDornPowerControl(ReacquiringControl<sdk::service::IDORNPowerControl> control)
    : m_control{std::move(control)}
{
}

std::uint8_t SdkDornPowerControl::maxPowerValue() const
{
    return valueOr(std::uint8_t{0}, m_control, &Sdk::maxPowerValue);
}

SdkDornPowerControl::ControlMode SdkDornPowerControl::powerControlMode() const
{
    return valueOr(ControlMode{}, m_control, &Sdk::powerControlMode, unchanged<ControlMode>);
}

void SdkDornPowerControl::setPowerControlMode(ControlMode mode)
{
    ifAvailable(m_control, &Sdk::setPowerControlMode, unchanged<Sdk::ControlMode>(mode));
}

std::uint8_t SdkDornPowerControl::loPower() const
{
    return valueOr(std::uint8_t{0}, m_control, &Sdk::loPower);
}

void SdkDornPowerControl::setLoPower(std::uint8_t code)
{
    ifAvailable(m_control, &Sdk::setLoPower, code);
}

std::uint8_t SdkDornPowerControl::rfPower() const
{
    return valueOr(std::uint8_t{0}, m_control, &Sdk::rfPower);
}

void SdkDornPowerControl::setRfPower(std::uint8_t code)
{
    ifAvailable(m_control, &Sdk::setRfPower, code);
}

std::uint16_t SdkDornPowerControl::maxDacValue() const
{
    return valueOr(std::uint16_t{0}, m_control, &Sdk::maxDacValue);
}

SdkDornPowerControl::ControlMode SdkDornPowerControl::dacControlMode() const
{
    return valueOr(ControlMode{}, m_control, &Sdk::dacControlMode, unchanged<ControlMode>);
}

void SdkDornPowerControl::setDacControlMode(ControlMode mode)
{
    ifAvailable(m_control, &Sdk::setDacControlMode, unchanged<Sdk::ControlMode>(mode));
}

bool SdkDornPowerControl::isDacModeUnion() const
{
    return valueOr(false, m_control, &Sdk::dacMode, isUnion);
}

void SdkDornPowerControl::setDacModeUnion(bool isUnion)
{
    ifAvailable(m_control, &Sdk::setDacMode, isUnion ? Sdk::DacMode::Union : Sdk::DacMode::Separate);
}

std::uint16_t SdkDornPowerControl::unionDac() const
{
    return valueOr(std::uint16_t{0}, m_control, &Sdk::unionDac);
}

void SdkDornPowerControl::setUnionDac(std::uint16_t code)
{
    ifAvailable(m_control, &Sdk::setUnionDac, code);
}

std::uint16_t SdkDornPowerControl::dacA() const
{
    return valueOr(std::uint16_t{0}, m_control, &Sdk::dacA);
}

void SdkDornPowerControl::setDacA(std::uint16_t code)
{
    ifAvailable(m_control, &Sdk::setDacA, code);
}

std::uint16_t SdkDornPowerControl::dacB() const
{
    return valueOr(std::uint16_t{0}, m_control, &Sdk::dacB);
}

void SdkDornPowerControl::setDacB(std::uint16_t code)
{
    ifAvailable(m_control, &Sdk::setDacB, code);
}

SdkDornPowerControl::Gains SdkDornPowerControl::availableGains() const
{
    return valueOr(Gains{}, m_control, &Sdk::availableGains);
}

std::uint8_t SdkDornPowerControl::referenceGain() const
{
    return valueOr(std::uint8_t{0}, m_control, &Sdk::referenceGain);
}

void SdkDornPowerControl::setReferenceGain(std::uint8_t code)
{
    ifAvailable(m_control, &Sdk::setReferenceGain, code);
}

std::uint8_t SdkDornPowerControl::signalGain() const
{
    return valueOr(std::uint8_t{0}, m_control, &Sdk::signalGain);
}

void SdkDornPowerControl::setSignalGain(std::uint8_t code)
{
    ifAvailable(m_control, &Sdk::setSignalGain, code);
}

void SdkDornPowerControl::assignReceiverCorrectionTable(std::vector<std::uint8_t> table)
{
    ifAvailable(m_control, &Sdk::assignReceiverCorrectionTable, std::move(table));
}

void SdkDornPowerControl::assignPowerCalibrationTable(std::vector<std::uint8_t> table)
{
    ifAvailable(m_control, &Sdk::assignPowerCalibrationTable, std::move(table));
}

} // namespace tarn::devices::service
