#include "device.h"

#include <utility>

namespace binding {

Device::Device(vv_device* opened)
    : m_handle{opened, [](vv_device* handle) {
                   vv_close(handle); // has happened, unless this constructor throws
                   vv_free(handle);
               }}
{
    offer();
    vv_listen(opened, &Device::onEvent, this);
}

/// GUARANTEE, exactly one completion: what is outstanding is completed here, with an error. Controls that somebody
/// still holds can be called afterwards: the library refuses every request.
Device::~Device()
{
    vv_close(m_handle.get());
}

/// GUARANTEE, keys: the pointer is that of exactly the interface that the key stands for; see `offer`.
std::shared_ptr<void> Device::control(sdk::Key key)
{
    const std::scoped_lock lock{m_mutex};
    const auto found = m_controls.find(key);
    return found == m_controls.end() ? nullptr : found->second;
}

void Device::addObserver(Observer* observer)
{
    m_observers.add(observer);
}

void Device::removeObserver(Observer* observer)
{
    m_observers.remove(observer);
}

/// The name lasts as long as the program: the library says so of its texts.
sdk::Model Device::model() const
{
    return sdk::Model{vv_model(m_handle.get())};
}

/// GUARANTEE, threads: every notification comes here, on the vendor's thread, one at a time.
void Device::onEvent(void* context, int event, unsigned done, unsigned total) noexcept
{
    auto& device = *static_cast<Device*>(context);
    switch (event) {
    case VV_EVENT_GONE:
        device.drop();
        break;
    case VV_EVENT_BACK:
        device.offer();
        break;
    case VV_EVENT_SERIAL_PROGRESS:
        device.notifyProgress(done, total);
        break;
    default:
        break;
    }
}

/// GUARANTEE, weak handles: the device keeps an owning reference of its own for as long as it offers a control, so that
/// the handles of the application live. New controls come with every offer; an old one never does again.
void Device::offer()
{
    using namespace sdk::service;
    Controls controls;
    // Each is converted to its interface before it becomes a pointer to void.
    controls[IFileMemoryControl::key] = std::shared_ptr<IFileMemoryControl>{std::make_shared<FileMemory>(m_handle)};
    controls[IMemorySerialNumberControl::key]
        = std::shared_ptr<IMemorySerialNumberControl>{std::make_shared<SerialNumber>(m_handle)};
    controls[ILoLeakageControl::key] = std::shared_ptr<ILoLeakageControl>{std::make_shared<LoLeakage>(m_handle)};
    {
        const std::scoped_lock lock{m_mutex};
        m_controls.swap(controls);
    }
    m_observers.notify(&Observer::onControlsAvailable);
}

/// GUARANTEE, weak handles: the observers hear of the drop while the controls can still be had. Then the device gives
/// its references up, and the handles expire as soon as no operation is running.
///
/// GUARANTEE, removal: an observer of a control that is gone hears no more, as only the one on offer is told of
/// anything.
void Device::drop()
{
    m_observers.notify(&Observer::onControlsAboutToBeReleased);
    Controls dropped;
    const std::scoped_lock lock{m_mutex};
    dropped.swap(m_controls);
} // first the lock goes, then the controls

void Device::notifyProgress(unsigned done, unsigned total)
{
    if (const auto offered = control<sdk::service::IMemorySerialNumberControl>(SerialNumber::key))
        static_cast<SerialNumber&>(*offered).notifyProgress(done, total);
}

} // namespace binding
