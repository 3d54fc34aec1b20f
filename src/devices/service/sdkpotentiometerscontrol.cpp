#include <devices/service/sdkpotentiometerscontrol.h>

#include <devices/service/access.h>
#include <devices/service/bridge.h>

#include <utility>

namespace tarn::devices::service {

namespace {

using Sdk = sdk::service::IPotentiometersControl;
using Potentiometer = IPotentiometersControl::Potentiometer;
using Error = IPotentiometersControl::Error;

std::vector<Potentiometer> listPotentiometers(Sdk& sdk)
{
    const auto sdkPotentiometers = sdk.potentiometers();
    std::vector<Potentiometer> potentiometers;
    potentiometers.reserve(sdkPotentiometers.size());
    for (const auto& [name, minimum, maximum] : sdkPotentiometers)
        potentiometers.push_back({name, minimum, maximum});
    return potentiometers;
}

} // namespace

SdkPotentiometersControl::SdkPotentiometersControl(ReacquiringControl<sdk::service::IPotentiometersControl> control)
    : m_control{std::move(control)}
{
}

std::vector<Potentiometer> SdkPotentiometersControl::potentiometers() const
{
    return valueOr(std::vector<Potentiometer>{}, m_control, listPotentiometers);
}

std::expected<int, Error> SdkPotentiometersControl::readFromEeprom(unsigned long index)
{
    return requestOrFailed<int, Error>(m_control, [&](Sdk& sdk, auto done) { sdk.readFromEeprom(index, done); });
}

std::expected<void, Error> SdkPotentiometersControl::writeToRam(unsigned long index, int value)
{
    return requestOrFailed<void, Error>(m_control, [&](Sdk& sdk, auto done) { sdk.writeToRam(index, value, done); });
}

std::expected<void, Error> SdkPotentiometersControl::writeToEeprom(unsigned long index, int value)
{
    return requestOrFailed<void, Error>(m_control, [&](Sdk& sdk, auto done) { sdk.writeToEeprom(index, value, done); });
}

} // namespace tarn::devices::service
