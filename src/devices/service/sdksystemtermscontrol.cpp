#include <devices/service/sdksystemtermscontrol.h>

#include <devices/errortermsconversion.h>
#include <devices/service/access.h>
#include <devices/service/enummappings.h>
#include <devices/service/frequencyplanconversion.h>
#include <utils/observerlist.h>

#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::service::ISystemTermsControl;

/// Attached to the SDK control; passes its notifications on to the application's observers.
class SdkSystemTermsControl::Listener final : public Sdk::Observer {
    using To = ISystemTermsControl::Observer;

public:
    void onWriteStarted() override { observers.notify(&To::onWriteStarted); }
    void onWriteProgressChanged(unsigned int progress) override
    {
        observers.notify(&To::onWriteProgressChanged, progress);
    }
    void onWriteFinished() override { observers.notify(&To::onWriteFinished); }
    void onErrorOccurred(Sdk::Error error) override
    {
        observers.notify(&To::onErrorOccurred, mirrored<ISystemTermsControl::Error::WriteFailed>(error));
    }

    utils::ObserverList<To> observers;
};

SdkSystemTermsControl::SdkSystemTermsControl(ReacquiringControl<sdk::service::ISystemTermsControl> control)
    : m_control{std::move(control)}
    , m_listener{std::make_unique<Listener>()}
{
    onControlsAvailable();
}

SdkSystemTermsControl::~SdkSystemTermsControl()
{
    ifAvailableQuietly(m_control, &Sdk::removeObserver, m_listener.get());
}

std::vector<vna::FrequencySegment> SdkSystemTermsControl::frequencyPlan() const
{
    return valueOr(std::vector<vna::FrequencySegment>{}, m_control,
                   [](Sdk& sdk) { return fromSdkFrequencyPlan(sdk.frequencyPlan()); });
}

void SdkSystemTermsControl::requestWriteTerms(QDateTime time, double temperature, const vna::ErrorTerms& terms)
{
    ifAvailable(m_control, [&](Sdk& sdk) {
        const auto seconds = time.toSecsSinceEpoch();
        sdk.writeTerms(seconds, errorTermsToSdk(terms), temperature);
    });
}

bool SdkSystemTermsControl::isFrequencyOverrideSupported() const
{
    return valueOr(false, m_control, &Sdk::isFrequencyOverrideSupported);
}

void SdkSystemTermsControl::requestWriteTerms(QDateTime time, double temperature,
                                              std::vector<vna::FrequencySegment> plan, const vna::ErrorTerms& terms)
{
    if (plan.empty())
        return;
    ifAvailable(m_control, [&](Sdk& sdk) {
        const auto seconds = time.toSecsSinceEpoch();
        auto sdkTerms = errorTermsToSdk(terms);
        sdk.writeTermsForPlan(seconds, toSdkFrequencyPlan(plan), std::move(sdkTerms), temperature);
    });
}

void SdkSystemTermsControl::addObserver(utils::Association<Observer> observer)
{
    m_listener->observers.add(observer);
}

void SdkSystemTermsControl::removeObserver(utils::Association<Observer> observer)
{
    m_listener->observers.remove(observer);
}

void SdkSystemTermsControl::onControlsAboutToBeReleased()
{
    ifAvailable(m_control, &Sdk::removeObserver, m_listener.get());
}

void SdkSystemTermsControl::onControlsAvailable()
{
    ifAvailable(m_control, &Sdk::addObserver, m_listener.get());
}

} // namespace tarn::devices::service
