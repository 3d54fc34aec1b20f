#include <devices/service/sdkmemoryoperationscontrol.h>

#include <devices/service/access.h>
#include <devices/service/bridge.h>
#include <utils/observerlist.h>

#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::service::IMemoryOperationsControl;
using Observer = IMemoryOperationsControl::IObserver;
using Error = IMemoryOperationsControl::Error;

/// Attached to the SDK control; passes its progress on to the application's observers.
class SdkMemoryOperationsObserver final : public Sdk::IObserver {
public:
    void onReadProgressChanged(unsigned int done, unsigned int total) override
    {
        observers.notify(&Observer::onReadProgressChanged, fromSdkProgress(done, total));
    }

    void onWriteProgressChanged(unsigned int done, unsigned int total) override
    {
        observers.notify(&Observer::onWriteProgressChanged, fromSdkProgress(done, total));
    }

    void onEraseProgressChanged(unsigned int done, unsigned int total) override
    {
        observers.notify(&Observer::onEraseProgressChanged, fromSdkProgress(done, total));
    }

    void onIntegrityCheckProgressChanged(unsigned int done, unsigned int total) override
    {
        observers.notify(&Observer::onIntegrityCheckProgressChanged, fromSdkProgress(done, total));
    }

    utils::ObserverList<Observer> observers;
};

SdkMemoryOperationsControl::SdkMemoryOperationsControl(
    ReacquiringControl<sdk::service::IMemoryOperationsControl> control)
    : m_control{std::move(control)}
    , m_observer{std::make_unique<SdkMemoryOperationsObserver>()}
{
    onControlsAvailable();
}

SdkMemoryOperationsControl::~SdkMemoryOperationsControl()
{
    ifAvailableQuietly(m_control, &Sdk::removeObserver, m_observer.get());
}

std::expected<std::vector<std::byte>, Error> SdkMemoryOperationsControl::read()
{
    return requestOrFailed<std::vector<std::byte>, Error>(m_control, [](Sdk& sdk, auto done) { sdk.read(done); });
}

std::expected<void, Error> SdkMemoryOperationsControl::write(const std::vector<std::byte>& image)
{
    return requestOrFailed<void, Error>(m_control, [&](Sdk& sdk, auto done) { sdk.write(image, done); });
}

std::expected<void, Error> SdkMemoryOperationsControl::erase()
{
    return requestOrFailed<void, Error>(m_control, [](Sdk& sdk, auto done) { sdk.erase(done); });
}

std::expected<void, Error> SdkMemoryOperationsControl::integrityCheck()
{
    return requestOrFailed<void, Error>(m_control, [](Sdk& sdk, auto done) { sdk.integrityCheck(done); });
}

void SdkMemoryOperationsControl::addObserver(utils::Association<IObserver> observer)
{
    m_observer->observers.add(observer);
}

void SdkMemoryOperationsControl::removeObserver(utils::Association<IObserver> observer)
{
    m_observer->observers.remove(observer);
}

void SdkMemoryOperationsControl::onControlsAboutToBeReleased()
{
    ifAvailable(m_control, &Sdk::removeObserver, m_observer.get());
}

void SdkMemoryOperationsControl::onControlsAvailable()
{
    ifAvailable(m_control, &Sdk::addObserver, m_observer.get());
}

} // namespace tarn::devices::service
