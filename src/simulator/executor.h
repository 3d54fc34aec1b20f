#pragma once

#include <simulator/clock.h>
#include <simulator/export.h>

#include <functional>
#include <memory>
#include <thread>

namespace tarn::simulator {

/// The instrument's own thread: carries out tasks one at a time in the order of their times, and
/// tasks of the same time in the order in which they were posted. Thread-safe; no lock is held
/// while a task runs.
class TARN_DEVICE_SIMULATOR_EXPORT Executor {
public:
    using Task = std::move_only_function<void()>;

    /// What becomes of a task that is still waiting when the executor stops.
    enum class AtStop {
        Run, ///< it is carried out at once: somebody counts on it
        Discard, ///< it is dropped
    };

    explicit Executor(std::shared_ptr<Clock> clock);

    /// Stops. May happen inside a task.
    ~Executor();

    Executor(const Executor&) = delete;
    Executor& operator=(const Executor&) = delete;

    /// Carries out `task` at `time` by the clock, or `delay` from now. Once the executor has
    /// stopped the task is carried out here and now, or discarded.
    void postAt(Duration time, Task task, AtStop atStop = AtStop::Run);
    void post(Duration delay, Task task, AtStop atStop = AtStop::Run);

    /// Carries out `task` on the executor's thread and waits until that has happened or the task
    /// was discarded; inside a task, at once. What it throws passes through.
    void run(Task task, AtStop atStop = AtStop::Run);

    /// Whether the calling thread is the executor's.
    [[nodiscard]] bool isCurrent() const;

    /// Waits until nothing is running and nothing is due by the clock. Not from inside a task.
    void waitUntilIdle();

    /// Carries out or discards what is waiting, then ends the thread. Once is enough.
    void stop();

private:
    struct State;

    const std::shared_ptr<State> m_state; ///< shared with the thread, which may end last
    std::thread m_thread;
};

} // namespace tarn::simulator
