#include <console/devicecall.h>

#include <utils/mutex.h>

#include <algorithm>
#include <condition_variable>
#include <map>
#include <thread>
#include <utility>

namespace tarn::console {

namespace {

using Clock = std::chrono::steady_clock;

/// Enough for the guard to come first on a busy computer.
constexpr std::chrono::seconds shortestGrace{2};

/// The calls under way, with the thread that looks after them. Both outlive `main`, as a call may.
class Calls {
public:
    static Calls& instance()
    {
        static auto* const calls = new Calls; // NOLINT(cppcoreguidelines-owning-memory): never destroyed
        return *calls;
    }

    void begin()
    {
        const utils::MutexLock lock{m_mutex};
        auto& call = m_calls[std::this_thread::get_id()];
        if (call.depth++ == 0)
            call.since = m_time;
    }

    void end()
    {
        const utils::MutexLock lock{m_mutex};
        const auto call = m_calls.find(std::this_thread::get_id());
        call->second.since = m_time;
        if (--call->second.depth == 0)
            m_calls.erase(call);
    }

    void onProgress()
    {
        const utils::MutexLock lock{m_mutex};
        m_progress = m_time;
    }

    void limit(std::chrono::milliseconds limit, std::function<void()> onOverdue)
    {
        const utils::MutexLock lock{m_mutex};
        m_limit = limit;
        m_grace = std::max<std::chrono::milliseconds>(limit / 4, shortestGrace);
        m_onOverdue = std::move(onOverdue);
        if (!std::exchange(m_isWatched, true))
            std::thread{[this] { watch(); }}.detach();
        m_changed.notify_all();
    }

private:
    struct Call {
        int depth = 0;
        Clock::duration since{}; ///< the last sign of life
    };

    [[nodiscard]] bool isOverdue() const TARN_REQUIRES(m_mutex)
    {
        const auto last = m_time - m_limit - m_grace;
        const auto isOver = [last](const auto& entry) { return entry.second.since < last; };
        return m_progress < last && std::ranges::any_of(m_calls, isOver);
    }

    /// Looks now and then: a call wakes nobody.
    [[noreturn]] void watch()
    {
        m_mutex.lock();
        for (auto lastLook = Clock::now();;) {
            m_changed.wait_for(m_mutex, m_grace / 4);
            const auto look = Clock::now();
            m_time += std::min<Clock::duration>(look - lastLook, m_grace / 4);
            lastLook = look;
            if (!isOverdue())
                continue;
            const auto onOverdue = m_onOverdue;
            m_mutex.unlock();
            onOverdue();
            m_mutex.lock();
        }
    }

    utils::Mutex m_mutex;
    std::condition_variable_any m_changed;
    std::map<std::thread::id, Call> m_calls TARN_GUARDED_BY(m_mutex);
    /// The time as of the last look. It goes on by no more than from look to look, also when the program was stopped.
    Clock::duration m_time TARN_GUARDED_BY(m_mutex){};
    Clock::duration m_progress TARN_GUARDED_BY(m_mutex){};
    std::chrono::milliseconds m_limit TARN_GUARDED_BY(m_mutex){};
    std::chrono::milliseconds m_grace TARN_GUARDED_BY(m_mutex){}; ///< for the guard, which comes first
    std::function<void()> m_onOverdue TARN_GUARDED_BY(m_mutex);
    bool m_isWatched TARN_GUARDED_BY(m_mutex) = false;
};

} // namespace

DeviceCall::DeviceCall()
{
    Calls::instance().begin();
}

DeviceCall::~DeviceCall()
{
    Calls::instance().end();
}

void DeviceCall::onProgress()
{
    Calls::instance().onProgress();
}

void limitDeviceCalls(std::chrono::milliseconds limit, std::function<void()> onOverdue)
{
    Calls::instance().limit(limit, std::move(onOverdue));
}

} // namespace tarn::console
