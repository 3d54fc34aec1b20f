#include <conformance/record.h>

#include <algorithm>
#include <utility>

namespace tarn::conformance {

namespace {

thread_local const std::string* plainOperation = nullptr; // NOLINT(*-avoid-non-const-global-variables)

void addOnce(std::vector<Finding>& findings, std::string where, std::string what)
{
    const auto isSame = [&](const Finding& finding) { return finding.where == where && finding.what == what; };
    if (std::ranges::none_of(findings, isSame))
        findings.push_back({std::move(where), std::move(what)});
}

} // namespace

void Record::finding(std::string where, std::string what)
{
    const utils::MutexLock lock{m_mutex};
    addOnce(m_outcome.findings, std::move(where), std::move(what));
}

void Record::note(std::string where, std::string what)
{
    const utils::MutexLock lock{m_mutex};
    addOnce(m_outcome.notes, std::move(where), std::move(what));
}

void Record::checked()
{
    const utils::MutexLock lock{m_mutex};
    m_isChecked = true;
}

void Record::onRequest()
{
    const utils::MutexLock lock{m_mutex};
    ++m_outcome.seen.requests;
}

void Record::onCompletion(bool isInside, std::chrono::nanoseconds since)
{
    const utils::MutexLock lock{m_mutex};
    auto& seen = m_outcome.seen;
    ++(isInside ? seen.completionsInside : seen.completionsElsewhere);
    seen.longestRequest = std::max(seen.longestRequest, since);
}

void Record::onNotification()
{
    const utils::MutexLock lock{m_mutex};
    ++m_outcome.seen.notifications;
    m_notificationThreads.insert(std::this_thread::get_id());
}

void Record::onDrop()
{
    const utils::MutexLock lock{m_mutex};
    ++m_outcome.seen.drops;
}

void Record::onProgress()
{
    const utils::MutexLock lock{m_mutex};
    m_lastProgress = Clock::now();
}

Clock::time_point Record::lastProgress() const
{
    const utils::MutexLock lock{m_mutex};
    return m_lastProgress;
}

Record::Call::Call(std::shared_ptr<Record> record, std::string where, Kind kind)
    : m_record{std::move(record)}
    , m_where{std::move(where)}
    , m_outer{plainOperation}
{
    const utils::MutexLock lock{m_record->m_mutex};
    if (kind != Kind::PutBack && (m_record->m_isGivenUp || m_record->m_options.stop.stop_requested()))
        throw Interruption{};
    ++m_record->m_outcome.seen.calls;
    m_record->m_running[this] = {m_where, m_since};
    plainOperation = kind == Kind::Request ? nullptr : &m_where;
}

Record::Call::~Call()
{
    const utils::MutexLock lock{m_record->m_mutex};
    m_record->m_running.erase(this);
    auto& longest = m_record->m_outcome.seen.longestCall;
    longest = std::max<std::chrono::nanoseconds>(longest, Clock::now() - m_since);
    plainOperation = m_outer;
}

const std::string* Record::operationOfThisThread()
{
    return plainOperation;
}

void Record::end()
{
    const utils::MutexLock lock{m_mutex};
    m_isOver = true;
    m_changed.notify_all();
}

bool Record::isOverdue(const Running& call) const
{
    return std::max(call.since, m_lastProgress) < Clock::now() - m_options.limit;
}

/// Whether a call does not come back; if so it is forgotten, as it may well do so later.
bool Record::giveUp()
{
    return std::erase_if(m_running,
                         [this](const auto& entry) TARN_REQUIRES(m_mutex) {
                             const auto& [call, running] = entry;
                             if (!isOverdue(running))
                                 return false;
                             addOnce(m_outcome.findings, running.where,
                                     "has not returned within " + std::to_string(m_options.limit.count()) + " ms");
                             return true;
                         })
        != 0;
}

bool Record::waitForEnd()
{
    const utils::MutexLock lock{m_mutex};
    while (!std::exchange(m_isOver, false)) {
        if (giveUp()) {
            m_outcome.isStuck = m_isGivenUp = true;
            return false;
        }
        m_changed.wait_for(m_mutex, std::chrono::milliseconds{5});
    }
    return true;
}

Outcome Record::outcome() const
{
    const utils::MutexLock lock{m_mutex};
    auto outcome = m_outcome;
    outcome.seen.notificationThreads = static_cast<unsigned>(m_notificationThreads.size());
    if (!outcome.findings.empty())
        outcome.verdict = Verdict::Broken;
    else if (m_options.stop.stop_requested())
        outcome.reason = "it was interrupted";
    else if (m_isChecked)
        outcome.verdict = Verdict::Kept;
    else
        outcome.reason = outcome.notes.empty() ? "the device offers nothing to check it with"
                                               : outcome.notes.front().where + ' ' + outcome.notes.front().what;
    return outcome;
}

} // namespace tarn::conformance
