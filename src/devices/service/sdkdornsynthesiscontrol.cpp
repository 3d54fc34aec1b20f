#include <devices/service/sdkdornsynthesiscontrol.h>

#include <devices/service/access.h>

#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::service::IDORNSynthesisControl;

SdkDornSynthesisControl::SdkDornSynthesisControl(ReacquiringControl<sdk::service::IDORNSynthesisControl> control)
    : m_control{std::move(control)}
{
}

SdkDornSynthesisControl::Frequencies SdkDornSynthesisControl::availableReferenceFrequencies() const
{
    return valueOr(Frequencies{}, m_control, &Sdk::availableReferenceFrequencies);
}

double SdkDornSynthesisControl::currentReferenceFrequency() const
{
    return valueOr(0.0, m_control, &Sdk::currentReferenceFrequency);
}

void SdkDornSynthesisControl::setReferenceFrequency(double frequency)
{
    ifAvailable(m_control, &Sdk::setReferenceFrequency, frequency);
}

} // namespace tarn::devices::service
