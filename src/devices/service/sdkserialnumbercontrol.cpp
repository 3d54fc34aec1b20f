#include <devices/service/sdkserialnumbercontrol.h>

#include <devices/service/access.h>
#include <devices/service/bridge.h>
#include <utils/observerlist.h>

#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::service::IMemorySerialNumberControl;
using Error = ISerialNumberControl::Error;

/// Attached to the SDK control; passes its progress on to the application's observers.
class SdkSerialNumberControl::SdkControlObserver final : public Sdk::Observer {
public:
    void onWriteProgressChanged(unsigned int done, unsigned int total) override
    {
        observers.notify(&IObserver::onWriteProgressChanged, fromSdkProgress(done, total));
    }

    utils::ObserverList<IObserver> observers;
};

SdkSerialNumberControl::SdkSerialNumberControl(ReacquiringControl<sdk::service::IMemorySerialNumberControl> control)
    : m_control{std::move(control)}
    , m_observer{std::make_unique<SdkControlObserver>()}
{
    onControlsAvailable();
}

SdkSerialNumberControl::~SdkSerialNumberControl()
{
    ifAvailableQuietly(m_control, &Sdk::removeObserver, m_observer.get());
}

std::expected<unsigned int, Error> SdkSerialNumberControl::serialNumber() const
{
    return requestOrFailed<unsigned int, Error>(m_control, [](Sdk& sdk, auto done) { sdk.serialNumber(done); });
}

std::expected<void, Error> SdkSerialNumberControl::writeSerialNumber(unsigned int serialNumber)
{
    return requestOrFailed<void, Error>(m_control,
                                        [&](Sdk& sdk, auto done) { sdk.writeSerialNumber(serialNumber, done); });
}

void SdkSerialNumberControl::addObserver(utils::Association<IObserver> observer)
{
    m_observer->observers.add(observer);
}

void SdkSerialNumberControl::removeObserver(utils::Association<IObserver> observer)
{
    m_observer->observers.remove(observer);
}

void SdkSerialNumberControl::onControlsAboutToBeReleased()
{
    ifAvailable(m_control, &Sdk::removeObserver, m_observer.get());
}

void SdkSerialNumberControl::onControlsAvailable()
{
    ifAvailable(m_control, &Sdk::addObserver, m_observer.get());
}

} // namespace tarn::devices::service
