#pragma once

#include <conformance/conformance.h>
#include <utils/mutex.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <thread>

namespace tarn::conformance {

using Clock = std::chrono::steady_clock;

/// Ends a check early, unwinding it: the user wants it, or the check was given up.
struct Interruption { };

/// What is known of a check under way. Whatever a device may call holds it, for however long. Thread-safe.
class Record {
public:
    explicit Record(Options options)
        : m_options{std::move(options)}
    {
    }

    [[nodiscard]] const Options& options() const { return m_options; }

    void finding(std::string where, std::string what);
    void note(std::string where, std::string what);

    /// Something was seen that would have been a finding in a device that breaks the guarantee.
    void checked();

    void onRequest();
    void onCompletion(bool isInside, std::chrono::nanoseconds since);
    void onNotification();
    void onDrop();

    /// The device shows that what it was asked for gets on.
    void onProgress();
    [[nodiscard]] Clock::time_point lastProgress() const;

    enum class Kind {
        Plain, ///< has no completion, so that it must not notify
        Request,
        PutBack, ///< plain, and made after an interruption too
    };

    /// While one is alive, its thread is in the software of the device. Making one can throw an `Interruption`.
    class Call {
    public:
        Call(std::shared_ptr<Record> record, std::string where, Kind kind = Kind::Plain);
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;
        ~Call();

    private:
        const std::shared_ptr<Record> m_record;
        const std::string m_where;
        const std::string* const m_outer;
        const Clock::time_point m_since = Clock::now();
    };

    /// The plain operation that the calling thread is in the middle of, or null.
    [[nodiscard]] static const std::string* operationOfThisThread();

    /// The check has come to its end.
    void end();

    /// Waits until then. False if a call does not come back instead: that is a finding, and from then on there are no
    /// more calls but those that put back.
    [[nodiscard]] bool waitForEnd();

    /// What was found.
    [[nodiscard]] Outcome outcome() const;

private:
    struct Running {
        std::string where;
        Clock::time_point since;
    };

    [[nodiscard]] bool isOverdue(const Running& call) const TARN_REQUIRES(m_mutex);
    [[nodiscard]] bool giveUp() TARN_REQUIRES(m_mutex);

    const Options m_options;
    mutable utils::Mutex m_mutex;
    std::condition_variable_any m_changed;
    std::map<const Call*, Running> m_running TARN_GUARDED_BY(m_mutex);
    std::set<std::thread::id> m_notificationThreads TARN_GUARDED_BY(m_mutex);
    Clock::time_point m_lastProgress TARN_GUARDED_BY(m_mutex);
    Outcome m_outcome TARN_GUARDED_BY(m_mutex);
    bool m_isChecked TARN_GUARDED_BY(m_mutex) = false;
    bool m_isOver TARN_GUARDED_BY(m_mutex) = false;
    bool m_isGivenUp TARN_GUARDED_BY(m_mutex) = false;
};

} // namespace tarn::conformance
