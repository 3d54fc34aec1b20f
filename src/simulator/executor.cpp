#include <simulator/executor.h>

#include <atomic>
#include <future>
#include <map>
#include <optional>
#include <utility>

namespace tarn::simulator {

struct Executor::State : Waiter {
    struct Entry {
        Task task;
        AtStop atStop;
    };

    explicit State(std::shared_ptr<Clock> theClock)
        : clock{std::move(theClock)}
    {
    }

    /// What the thread does.
    void live()
    {
        thread = std::this_thread::get_id();
        work();
        thread = std::thread::id{};
    }

    /// Carries out tasks until the executor has stopped and nothing is left.
    void work()
    {
        while (auto task = next())
            (*task)();
    }

    std::optional<Task> next()
    {
        const utils::MutexLock lock{mutex};
        running = false;
        changed.notify_all();
        while (!stopping && !isDue())
            clock->wait(*this, queue.empty() ? std::nullopt : std::optional{queue.begin()->first});
        if (queue.empty()) {
            stopped = true;
            return std::nullopt;
        }
        running = true;
        const auto first = queue.begin();
        auto task = std::move(first->second.task);
        queue.erase(first);
        return task;
    }

    [[nodiscard]] bool isDue() const TARN_REQUIRES(mutex)
    {
        return !queue.empty() && queue.begin()->first <= clock->now();
    }

    const std::shared_ptr<Clock> clock;
    std::atomic<std::thread::id> thread; ///< none before it has begun and after it has ended
    std::multimap<Duration, Entry> queue TARN_GUARDED_BY(mutex); ///< keeps equal times in order
    bool running TARN_GUARDED_BY(mutex) = false;
    bool stopping TARN_GUARDED_BY(mutex) = false; ///< nothing is waited for any more
    bool stopped TARN_GUARDED_BY(mutex) = false; ///< nothing is taken any more
};

Executor::Executor(std::shared_ptr<Clock> clock)
    : m_state{std::make_shared<State>(std::move(clock))}
{
    m_state->clock->attach(m_state);
    m_thread = std::thread{[state = m_state] { state->live(); }};
}

Executor::~Executor()
{
    stop();
}

void Executor::postAt(Duration time, Task task, AtStop atStop)
{
    {
        const utils::MutexLock lock{m_state->mutex};
        if (!m_state->stopped) {
            if (!m_state->stopping || atStop == AtStop::Run)
                m_state->queue.emplace(time, State::Entry{std::move(task), atStop});
            m_state->changed.notify_all();
            return;
        }
    }
    if (atStop == AtStop::Run)
        task();
}

void Executor::post(Duration delay, Task task, AtStop atStop)
{
    postAt(m_state->clock->now() + delay, std::move(task), atStop);
}

void Executor::run(Task task, AtStop atStop)
{
    if (isCurrent()) {
        task();
        return;
    }
    std::packaged_task<void()> packaged{std::move(task)};
    auto done = packaged.get_future();
    post({}, std::move(packaged), atStop);
    try {
        done.get();
    } catch (const std::future_error& error) {
        if (error.code() != std::future_errc::broken_promise) // the task was discarded
            throw;
    }
}

bool Executor::isCurrent() const
{
    return std::this_thread::get_id() == m_state->thread;
}

void Executor::waitUntilIdle()
{
    const utils::MutexLock lock{m_state->mutex};
    while (!m_state->stopped && (m_state->running || m_state->isDue()))
        m_state->changed.wait(m_state->mutex);
}

void Executor::stop()
{
    std::multimap<Duration, State::Entry> discarded; // destroyed without the mutex
    {
        const utils::MutexLock lock{m_state->mutex};
        m_state->stopping = true;
        std::multimap<Duration, State::Entry> kept;
        for (auto& [time, entry] : m_state->queue)
            (entry.atStop == AtStop::Run ? kept : discarded).emplace(time, std::move(entry));
        m_state->queue = std::move(kept);
        m_state->changed.notify_all();
    }
    if (!m_thread.joinable())
        return;
    if (isCurrent()) {
        m_state->work();
        m_thread.detach();
    } else {
        m_thread.join();
    }
}

} // namespace tarn::simulator
