#include <conformance/request.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace tarn::conformance {

namespace {

Record::Kind kindOf(const Question& question)
{
    if (question.isPuttingBack)
        return Record::Kind::PutBack;
    return question.hasCompletion ? Record::Kind::Request : Record::Kind::Plain;
}

} // namespace

/// What the copies of a completion share.
class Request::Hold {
public:
    explicit Hold(std::shared_ptr<Request> request)
        : m_request{std::move(request)}
    {
    }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    ~Hold() { m_request->onLetGo(); }

    void complete(std::error_code error, const std::string& wrong) const { m_request->onCompleted(error, wrong); }

private:
    const std::shared_ptr<Request> m_request;
};

std::shared_ptr<Request> Request::make(const std::shared_ptr<Record>& record, const Question& question)
{
    if (question.first) {
        const auto first = make(record, *question.first);
        const auto state = first ? first->wait() : State{};
        if (state.completions == 0 || state.error)
            return nullptr;
    }
    auto request = std::make_shared<Request>(record, question);
    Done done = [hold = std::make_shared<Hold>(request)](std::error_code error, const std::string& wrong) {
        hold->complete(error, wrong);
    };
    bool hasThrown = true;
    try {
        const Record::Call call{record, question.where, kindOf(question)};
        if (question.hasCompletion)
            record->onRequest();
        question.ask(std::move(done));
        hasThrown = false;
    } catch (const Interruption&) {
        throw;
    } catch (const std::exception& error) {
        record->note(question.where, std::string{"threw: "} + error.what());
    } catch (...) { // a device may throw anything
        record->note(question.where, "threw something");
    }
    request->onReturned(hasThrown);
    return request;
}

Request::State Request::state() const
{
    const utils::MutexLock lock{m_mutex};
    return m_state;
}

Request::State Request::wait() const
{
    const auto& options = m_record->options();
    const utils::MutexLock lock{m_mutex};
    const auto isInterrupted = [&] { return !m_isPuttingBack && options.stop.stop_requested(); };
    while (!m_state.isOver() && !isInterrupted()
           && Clock::now() - std::max(m_since, m_record->lastProgress()) < options.limit)
        m_changed.wait_for(m_mutex, std::chrono::milliseconds{5});
    return m_state;
}

void Request::onCompleted(std::error_code error, const std::string& wrong)
{
    const auto now = Clock::now();
    const utils::MutexLock lock{m_mutex};
    const bool isInside = !m_state.hasReturned && m_callersThread == std::this_thread::get_id();
    if (m_hasCompletion)
        m_record->onCompletion(isInside, m_state.completions == 0 ? now - m_since : Clock::duration{});
    if (m_state.completions++ == 0) {
        m_state.error = error;
        m_state.wrong = wrong;
        m_state.end = now;
    }
    m_changed.notify_all();
}

void Request::onLetGo()
{
    const utils::MutexLock lock{m_mutex};
    m_state.isLetGo = true;
    m_changed.notify_all();
}

void Request::onReturned(bool hasThrown)
{
    const utils::MutexLock lock{m_mutex};
    m_state.hasReturned = true;
    m_state.hasThrown = hasThrown;
    m_changed.notify_all();
}

} // namespace tarn::conformance
