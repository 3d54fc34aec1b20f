#include <devices/service/sdkfactorycorrectioncontrol.h>

#include <devices/service/access.h>
#include <utils/flagsview.h>

#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::IFactoryCorrectionControl;

namespace {

/// Whether `correction` is in the set that `query` reads.
bool isIn(const ReacquiringControl<Sdk>& control, sdk::CorrectionFlag (Sdk::*query)(), FactoryCorrection correction)
{
    const auto set = valueOr(sdk::CorrectionFlag::None, control, query);
    return (toSdkCorrection(correction) & set) != sdk::CorrectionFlag::None;
}

} // namespace

/// Passes the SDK's notifications on to one observer, on the thread of the SDK and without a lock.
class SdkFactoryCorrectionControl::SdkObserverAdapter final : public Sdk::Observer {
public:
    explicit SdkObserverAdapter(SdkFactoryCorrectionControl::Observer& observer)
        : m_observer{observer}
    {
    }

    void onSupportedChanged() override { m_observer.onSupportedChanged(); }
    void onValidChanged() override { m_observer.onValidChanged(); }
    void onEnabledChanged(sdk::CorrectionFlag flag, bool enabled) override
    {
        if (const auto correction = fromSdkCorrection(flag))
            m_observer.onEnabledChanged(*correction, enabled);
    }

private:
    SdkFactoryCorrectionControl::Observer& m_observer;
};

SdkFactoryCorrectionControl::SdkFactoryCorrectionControl(ReacquiringControl<sdk::IFactoryCorrectionControl> control)
    : m_control{std::move(control)}
{
}

SdkFactoryCorrectionControl::~SdkFactoryCorrectionControl() = default;

bool SdkFactoryCorrectionControl::isValid(FactoryCorrection correction) const
{
    return isIn(m_control, &Sdk::validCorrections, correction);
}

bool SdkFactoryCorrectionControl::isEnabled(FactoryCorrection correction) const
{
    return isIn(m_control, &Sdk::enabledCorrections, correction);
}

bool SdkFactoryCorrectionControl::isModifiable(FactoryCorrection correction) const
{
    return isIn(m_control, &Sdk::modifiableCorrections, correction);
}

void SdkFactoryCorrectionControl::setEnabled(FactoryCorrection correction, bool enabled)
{
    if (isValid(correction) && isModifiable(correction))
        ifAvailable(m_control, &Sdk::setEnabled, toSdkCorrection(correction), enabled);
}

std::vector<FactoryCorrection> SdkFactoryCorrectionControl::supported() const
{
    std::vector<FactoryCorrection> result;
    for (const auto flag :
         utils::flags_view{valueOr(sdk::CorrectionFlag::None, m_control, &Sdk::supportedCorrections)}) {
        if (const auto correction = fromSdkCorrection(flag))
            result.push_back(*correction);
    }
    return result;
}

void SdkFactoryCorrectionControl::addObserver(Observer* observer)
{
    if (!observer || m_observers.contains(observer))
        return;
    const auto entry = m_observers.emplace(observer, std::make_unique<SdkObserverAdapter>(*observer)).first;
    try {
        ifAvailable(m_control, &Sdk::addObserver, entry->second.get());
    } catch (...) {
        m_observers.erase(entry);
        throw;
    }
}

void SdkFactoryCorrectionControl::removeObserver(Observer* observer)
{
    const auto control = m_control.lock();
    if (!control)
        return; // the entry stays, to be attached to the next control
    const auto entry = m_observers.find(observer);
    if (entry == m_observers.end())
        return;
    control->removeObserver(entry->second.get());
    m_observers.erase(entry);
}

void SdkFactoryCorrectionControl::onControlsAboutToBeReleased()
{
    const auto control = m_control.lock();
    if (!control)
        return;
    for (const auto& [observer, adapter] : m_observers)
        control->removeObserver(adapter.get());
}

void SdkFactoryCorrectionControl::onControlsAvailable()
{
    const auto control = m_control.lock();
    if (!control)
        return;
    for (const auto& [observer, adapter] : m_observers) {
        control->addObserver(adapter.get());
        adapter->onSupportedChanged();
        adapter->onValidChanged();
    }
}

} // namespace tarn::devices::service
