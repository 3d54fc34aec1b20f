#pragma once

#include <sdk/completion.h>
#include <simulator/clock.h>
#include <simulator/executor.h>
#include <simulator/export.h>
#include <simulator/faults.h>
#include <simulator/longoperation.h>
#include <simulator/settings.h>
#include <utils/mutex.h>

#include <atomic>
#include <cstdint>
#include <deque>
#include <expected>
#include <functional>
#include <memory>
#include <system_error>
#include <utility>

namespace tarn::simulator {

/// The way in: every operation of every control passes here on its way to the model, and here
/// alone it is delayed, disturbed and brought to the instrument's thread. Thread-safe.
class TARN_DEVICE_SIMULATOR_EXPORT Operations {
public:
    /// Drops the controls and offers new ones after a time. Called on the instrument's thread, and
    /// not after the executor has stopped: the device may be gone then. Has dropped them when it
    /// returns.
    using Drop = std::function<void(Duration away)>;

    /// What the loss of power does to the instrument.
    using LosePower = std::function<void()>;

    Operations(std::shared_ptr<Clock> clock, Executor& executor, Faults& faults, const Settings& settings, Drop drop,
               LosePower losePower)
        : m_clock{std::move(clock)}
        , m_executor{executor}
        , m_faults{faults}
        , m_mode{settings.completion}
        , m_latency{settings.latency}
        , m_losePower{std::move(losePower)}
        , m_drop{std::move(drop)}
    {
    }

    /// An operation that returns its result: `model()`, on the caller's thread. The caller is
    /// never made to wait for the instrument's thread, as it may hold a lock that an observer
    /// needs; a drop is carried out meanwhile or soon after.
    template <class Model>
    decltype(auto) call(Model model)
    {
        disturbCall();
        return model();
    }

    /// An operation that ends in `completion`: `model()` yields the result or an error code. A
    /// drop comes after the request was taken and before its completion.
    template <class Value, class Model>
    void request(std::function<void(Value, std::error_code)> completion, Model model)
    {
        start([completion = std::move(completion), model = std::move(model)](std::error_code fault) mutable {
            std::expected<Value, std::error_code> result = std::unexpected{fault};
            if (fault.value() == 0)
                result = model();
            return Report{[completion = std::move(completion), result = std::move(result)]() mutable {
                if (result)
                    completion(std::move(*result), {});
                else
                    completion({}, result.error());
            }};
        });
    }

    template <class Model>
    void request(sdk::Completion<> completion, Model model)
    {
        start([completion = std::move(completion), model = std::move(model)](std::error_code fault) mutable {
            const auto result = fault.value() == 0 ? model() : fault;
            return Report{[completion = std::move(completion), result] { completion(result); }};
        });
    }

    /// A request that takes its time. While one runs, any other ends with `Error::Busy`. What
    /// disturbs it comes in the middle: a drop, after which it goes on, or an interruption.
    void request(std::shared_ptr<LongOperation> operation);

    /// The same for one that waits while another runs: those that wait are carried out in the order of these calls.
    /// Returns at once; the operation completes on the instrument's thread, whatever the mode.
    void enqueue(std::shared_ptr<LongOperation> operation);

    /// Drops the controls and offers new ones, as part of a request. Has happened when it returns,
    /// unless the request came from a notification or a completion, inline; it happens soon then.
    void reoffer();

    /// How many requests have ended with `Error::Busy`.
    [[nodiscard]] std::uint64_t busyRefusals() const { return m_busyRefusals; }

private:
    struct Run;

    /// Tells whoever made a request how it ended.
    using Report = Executor::Task;

    /// Carries a request out: ends it with the error of a fault, or if that is 0 as the model says.
    using Finish = std::move_only_function<Report(std::error_code fault)>;

    [[nodiscard]] Faults::Decision decide(Faults::Decision (Faults::*next)());
    void disturbCall();
    void start(Finish finish);
    void submit(Duration delay, Executor::Task task);
    void report(const Faults::Decision& fault, Report report);
    void report(const Run& run, std::error_code result);
    void drop(Duration away);
    [[nodiscard]] std::shared_ptr<Run> makeRun(std::shared_ptr<LongOperation> operation);
    void carryOut(const std::shared_ptr<Run>& run);
    void carryOutHere(Run& run);
    void carryOutAndWait(const std::shared_ptr<Run>& run);
    [[nodiscard]] bool begin(Run& run);
    [[nodiscard]] bool goOn(Run& run);
    bool end(Run& run, std::error_code result);
    void schedule(const std::shared_ptr<Run>& run);
    void carryOutNext();
    void release();
    [[nodiscard]] std::shared_ptr<Run> takeNext();

    const std::shared_ptr<Clock> m_clock;
    Executor& m_executor;
    Faults& m_faults;
    const CompletionMode m_mode;
    const Duration m_latency;
    const LosePower m_losePower;
    std::atomic<bool> m_isBusy = false; ///< with a long operation
    std::atomic<std::uint64_t> m_busyRefusals = 0;
    const Drop m_drop;
    utils::Mutex m_mutex;
    std::deque<std::shared_ptr<Run>> m_waiting TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::simulator
