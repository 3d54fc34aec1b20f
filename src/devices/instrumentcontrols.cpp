#include <devices/instrumentcontrols.h>

#include <exception>
#include <stdexcept>
#include <utility>

namespace tarn::devices {

InstrumentControls::InstrumentControls(std::shared_ptr<sdk::IVna> device, const ControlRegistry& registry,
                                       std::vector<LifecycleCast> casts)
    : m_device{std::move(device)}
    , m_registry{registry}
    , m_casts{std::move(casts)}
{
    m_device->addObserver(this);
    try {
        forEachEntry([this](const auto& entry) { createIfMissing(entry); });
    } catch (...) {
        m_device->removeObserver(this); // no destructor will do it
        throw;
    }
}

InstrumentControls::~InstrumentControls()
{
    m_device->removeObserver(this);
}

void InstrumentControls::onControlsAboutToBeReleased()
{
    forEachEntry(
        [this](const auto& entry) { notify(entry.key, &IControlLifecycleObserver::onControlsAboutToBeReleased); });
}

void InstrumentControls::onControlsAvailable()
{
    forEachEntry([this](const auto& entry) {
        notify(entry.key, &IControlLifecycleObserver::onControlsAvailable);
        createIfMissing(entry); // a new one attaches itself and needs no notification
    });
}

template <class Step>
void InstrumentControls::forEachEntry(Step step)
{
    const utils::MutexLock lock{m_lifecycleMutex};
    std::exception_ptr failure;
    for (const auto& entry : m_registry.entries()) {
        try {
            step(entry);
        } catch (...) {
            if (!failure)
                failure = std::current_exception();
        }
    }
    if (failure)
        std::rethrow_exception(failure);
}

void InstrumentControls::notify(std::uint64_t registryKey, void (IControlLifecycleObserver::*notification)()) const
{
    const auto held = find(registryKey);
    if (held && held->observer)
        (held->observer->*notification)();
}

void InstrumentControls::createIfMissing(const ControlRegistry::ControlEntryBase& entry)
{
    if (isOffered(entry.key))
        return;
    auto control = entry.create(m_device.get());
    if (!control.has_value())
        return;
    for (const auto cast : m_casts) {
        if (const auto observer = cast(control)) {
            auto held = std::make_shared<const Held>(m_device, std::move(control), *observer);
            const utils::MutexLock lock{m_mutex};
            m_controls.emplace(entry.key, std::move(held));
            return;
        }
    }
    throw std::logic_error{"instrument controls: the control under key " + ControlRegistry::keyText(entry.key)
                           + " is of a type that was not named"};
}

std::shared_ptr<const InstrumentControls::Held> InstrumentControls::find(std::uint64_t registryKey) const
{
    const utils::MutexLock lock{m_mutex};
    const auto held = m_controls.find(registryKey);
    return held == m_controls.end() ? nullptr : held->second;
}

} // namespace tarn::devices
