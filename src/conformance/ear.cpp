#include <conformance/ear.h>

#include <algorithm>
#include <utility>

namespace tarn::conformance {

void Ear::hear(std::string what, std::optional<Progress> progress)
{
    m_record->onNotification();
    if (progress)
        m_record->onProgress();
    const auto* const operation = Record::operationOfThisThread();
    {
        const utils::MutexLock lock{m_mutex};
        m_heard.push_back({std::move(what), progress, Clock::now(), operation ? *operation : "", m_isRemoved});
        ++m_running;
        m_changed.notify_all();
    }
    if (m_reaction)
        m_reaction();
    const utils::MutexLock lock{m_mutex};
    --m_running;
}

void Ear::onRemoved()
{
    const utils::MutexLock lock{m_mutex};
    m_isRemoved = true;
}

std::vector<Ear::Notification> Ear::heard() const
{
    const utils::MutexLock lock{m_mutex};
    return m_heard;
}

std::size_t Ear::lateCount() const
{
    const utils::MutexLock lock{m_mutex};
    return static_cast<std::size_t>(std::ranges::count_if(m_heard, &Notification::isLate));
}

bool Ear::isHearing() const
{
    const utils::MutexLock lock{m_mutex};
    return m_running != 0;
}

bool Ear::waitFor(std::size_t count, std::chrono::milliseconds patience) const
{
    const auto end = Clock::now() + patience;
    const utils::MutexLock lock{m_mutex};
    while (m_heard.size() < count && Clock::now() < end && !m_record->options().stop.stop_requested())
        m_changed.wait_for(m_mutex, std::chrono::milliseconds{5});
    return m_heard.size() >= count;
}

void keepForEver(std::shared_ptr<void> object)
{
    static utils::Mutex mutex;
    static auto& kept = *new std::vector<std::shared_ptr<void>>;
    const utils::MutexLock lock{mutex};
    kept.push_back(std::move(object));
}

} // namespace tarn::conformance
