#include <devices/service/sdkvellsynthesiscontrol.h>

#include <devices/service/access.h>
#include <devices/service/convertall.h>

#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::service::IVellSynthesisControl;

SdkVellSynthesisControl::SdkVellSynthesisControl(ReacquiringControl<sdk::service::IVellSynthesisControl> control)
    : m_control{std::move(control)}
{
}

void SdkVellSynthesisControl::enableManualIf(bool enabled)
{
    ifAvailable(m_control, &Sdk::setManualIfEnabled, enabled);
}

bool SdkVellSynthesisControl::manualIfEnabled() const
{
    return valueOr(false, m_control, &Sdk::manualIfEnabled);
}

void SdkVellSynthesisControl::setSelectedIf(int index)
{
    ifAvailable(m_control, &Sdk::setSelectedIf, index);
}

int SdkVellSynthesisControl::selectedIf() const
{
    return valueOr(0, m_control, &Sdk::selectedIf);
}

std::vector<double> SdkVellSynthesisControl::supportedIfs() const
{
    return valueOr(std::vector<double>{}, m_control, &Sdk::supportedIfs, copyOf<double>);
}

} // namespace tarn::devices::service
