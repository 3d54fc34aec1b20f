#include <console/lifecyclewatch.h>

#include <console/devicecall.h>

#include <utility>

namespace tarn::console {

LifecycleWatch::LifecycleWatch(std::shared_ptr<sdk::IVna> device)
    : m_device{std::move(device)}
{
    m_device->addObserver(this);
}

LifecycleWatch::~LifecycleWatch()
{
    m_device->removeObserver(this);
}

std::uint64_t LifecycleWatch::drops() const
{
    const utils::MutexLock lock{m_mutex};
    return m_counts.drops;
}

bool LifecycleWatch::isAway() const
{
    const utils::MutexLock lock{m_mutex};
    return m_away;
}

bool LifecycleWatch::whileHere(const std::function<bool()>& operation) const
{
    const DeviceCall call;
    // The instrument drops nothing before its announcement has returned, and that needs the mutex.
    const utils::MutexLock lock{m_mutex};
    return !m_away && operation();
}

std::optional<LifecycleWatch::Counts> LifecycleWatch::waitUntilBack(std::chrono::milliseconds patience) const
{
    const auto end = std::chrono::steady_clock::now() + patience;
    const utils::MutexLock lock{m_mutex};
    while (m_away) {
        if (m_back.wait_until(m_mutex, end) == std::cv_status::timeout && m_away)
            return std::nullopt;
    }
    return m_counts;
}

void LifecycleWatch::onControlsAboutToBeReleased()
{
    {
        const utils::MutexLock lock{m_mutex};
        ++m_counts.drops;
        m_away = true;
    }
    tell();
}

void LifecycleWatch::onControlsAvailable()
{
    {
        const utils::MutexLock lock{m_mutex};
        ++m_counts.returns;
        m_away = false;
    }
    m_back.notify_all();
    tell();
}

void LifecycleWatch::tell()
{
    m_listeners.notify(&Listener::onLifecycleChanged);
    emit changed();
}

} // namespace tarn::console
