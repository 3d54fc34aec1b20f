#include <devices/service/sdktemperaturecontrol.h>

#include <devices/service/access.h>

#include <algorithm>
#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::ITemperatureControl;

class SdkTemperatureControl::SdkObserverAdapter final : public Sdk::Observer {
public:
    explicit SdkObserverAdapter(SdkTemperatureControl& owner)
        : m_owner{owner}
    {
    }

    void onTemperatureChanged() override { m_owner.onSdkTemperatureChanged(); }

private:
    SdkTemperatureControl& m_owner;
};

SdkTemperatureControl::SdkTemperatureControl(ReacquiringControl<sdk::ITemperatureControl> control)
    : m_control{std::move(control)}
    , m_observerAdapter{std::make_unique<SdkObserverAdapter>(*this)}
{
    try {
        attachAdapter();
    } catch (...) {
        detachQuietly(); // no destructor will do it
        throw;
    }
}

SdkTemperatureControl::~SdkTemperatureControl()
{
    detachQuietly();
}

double SdkTemperatureControl::temperature() const
{
    const utils::MutexLock lock{m_mutex};
    return m_temperature;
}

std::vector<SdkTemperatureControl::ModuleTemperature> SdkTemperatureControl::modulesTemperature() const
{
    const utils::MutexLock lock{m_mutex};
    return m_modules;
}

void SdkTemperatureControl::onControlsAboutToBeReleased()
{
    detachAdapter();
}

void SdkTemperatureControl::onControlsAvailable()
{
    attachAdapter();
    emit temperaturesChanged();
}

void SdkTemperatureControl::onSdkTemperatureChanged()
{
    refreshSnapshot();
    emit temperaturesChanged();
}

void SdkTemperatureControl::attachAdapter()
{
    if (const auto control = m_control.lock()) {
        control->addObserver(m_observerAdapter.get());
        refreshSnapshot();
    }
}

void SdkTemperatureControl::detachAdapter()
{
    ifAvailable(m_control, &Sdk::removeObserver, m_observerAdapter.get());
}

void SdkTemperatureControl::detachQuietly() noexcept
{
    ifAvailableQuietly(m_control, &Sdk::removeObserver, m_observerAdapter.get());
}

void SdkTemperatureControl::refreshSnapshot()
{
    const auto control = m_control.lock();
    if (!control)
        return;
    const auto& sdkModules = control->moduleTemperatures();
    std::vector<ModuleTemperature> modules;
    modules.reserve(sdkModules.size());
    for (const auto& [name, temperature] : sdkModules)
        modules.push_back({QString::fromUtf8(name), temperature});
    std::ranges::sort(modules, {}, &ModuleTemperature::name);
    const double temperature = control->temperature();

    const utils::MutexLock lock{m_mutex};
    m_modules.swap(modules);
    m_temperature = temperature;
}

} // namespace tarn::devices::service
