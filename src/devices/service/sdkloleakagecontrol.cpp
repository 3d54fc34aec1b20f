#include <devices/service/sdkloleakagecontrol.h>

#include <devices/service/access.h>

#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::service::ILoLeakageControl;

SdkLoLeakageControl::SdkLoLeakageControl(ReacquiringControl<sdk::service::ILoLeakageControl> control)
    : m_control{std::move(control)}
{
}

bool SdkLoLeakageControl::isEnabled() const
{
    return valueOr(false, m_control, &Sdk::isEnabled);
}

void SdkLoLeakageControl::setEnabled(bool enabled)
{
    ifAvailable(m_control, &Sdk::setEnabled, enabled);
}

} // namespace tarn::devices::service
