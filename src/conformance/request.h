#pragma once

#include <conformance/record.h>

#include <condition_variable>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace tarn::conformance {

/// What a request ends with: its error code, and what is wrong with its result (empty: nothing). As long as a copy is
/// alive the request can end.
using Done = std::function<void(std::error_code error, const std::string& wrong)>;

/// Something to ask a control for.
struct Question {
    std::string where;
    std::function<void(Done done)> ask = {}; ///< calls `done` itself where the operation has no completion
    bool isOfWrites = false; ///< whether it changes the instrument
    bool hasCompletion = true;
    bool isPuttingBack = false; ///< so that it is asked after an interruption too
    std::shared_ptr<const Question> first = {}; ///< has to succeed before; no control is called from a completion
};

/// What a completion hands over to a later question. The first value stays.
template <class Type>
class HandOver {
public:
    void put(Type value)
    {
        const utils::MutexLock lock{m_mutex};
        if (!m_value)
            m_value = std::move(value);
    }

    [[nodiscard]] Type get() const
    {
        const utils::MutexLock lock{m_mutex};
        return m_value.value_or(Type{});
    }

private:
    mutable utils::Mutex m_mutex;
    std::optional<Type> m_value TARN_GUARDED_BY(m_mutex);
};

/// One request under way, or over. Thread-safe.
class Request : public std::enable_shared_from_this<Request> {
public:
    struct State {
        unsigned completions = 0;
        bool isLetGo = false; ///< the device has no copy of the completion any more
        bool hasReturned = false;
        bool hasThrown = false;
        std::error_code error; ///< of the first completion, as are the others
        std::string wrong;
        Clock::time_point end;

        /// Whether nothing more is to be expected of it.
        [[nodiscard]] bool isOver() const { return hasReturned && (completions != 0 || isLetGo || hasThrown); }
    };

    /// Asks on the calling thread, and catches what the device throws: a note. Null if the first question, after whose
    /// end it is asked, does not succeed.
    [[nodiscard]] static std::shared_ptr<Request> make(const std::shared_ptr<Record>& record, const Question& question);

    Request(std::shared_ptr<Record> record, const Question& question)
        : m_record{std::move(record)}
        , m_where{question.where}
        , m_isPuttingBack{question.isPuttingBack}
        , m_hasCompletion{question.hasCompletion}
    {
    }

    [[nodiscard]] const std::string& where() const { return m_where; }
    [[nodiscard]] State state() const;

    /// Waits until it is over, or makes no progress for the limit.
    State wait() const;

private:
    class Hold;

    void onCompleted(std::error_code error, const std::string& wrong);
    void onLetGo();
    void onReturned(bool hasThrown);

    const std::shared_ptr<Record> m_record;
    const std::string m_where;
    const bool m_isPuttingBack;
    const bool m_hasCompletion;
    const Clock::time_point m_since = Clock::now();
    const std::thread::id m_callersThread = std::this_thread::get_id();
    mutable utils::Mutex m_mutex;
    mutable std::condition_variable_any m_changed;
    State m_state TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::conformance
