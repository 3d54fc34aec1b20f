#include <conformance/bench.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tarn::conformance {

namespace {

/// A request, and what was known of it when it had been waited for.
struct Asked {
    std::shared_ptr<Request> request;
    Request::State then;
};

/// Asks the questions of a control one after the other, then all at a time. A control that leaves one without an end is
/// asked nothing more.
class Interview {
public:
    Interview(const Bench& bench, const Description& control)
        : m_bench{bench}
        , m_isAnswering{std::ranges::all_of(control.questions, [this](const Question& question) {
            return !m_bench.isAllowed(question) || finish(Request::make(m_bench.record(), question));
        })}
    {
        if (!m_isAnswering)
            return;
        std::vector<std::shared_ptr<Request>> together;
        for (const auto& question : control.questions) {
            if (m_bench.isAllowed(question))
                together.push_back(Request::make(m_bench.record(), question));
        }
        for (const auto& request : together)
            finish(request);
    }

    [[nodiscard]] const std::vector<Asked>& asked() const { return m_asked; }
    [[nodiscard]] bool isAnswering() const { return m_isAnswering; }

private:
    /// Whether it has ended.
    bool finish(const std::shared_ptr<Request>& request)
    {
        if (!request)
            return true;
        m_asked.push_back({request, m_bench.wait(*request)});
        return m_asked.back().then.isOver();
    }

    const Bench& m_bench;
    std::vector<Asked> m_asked;
    const bool m_isAnswering; ///< each question got an end
};

/// Asks a control everything that changes nothing, and leaves it unanswered.
void leaveOutstanding(const Bench& bench, const Description& control,
                      std::vector<std::shared_ptr<Request>>& outstanding)
{
    for (auto question : control.questions) {
        if (question.isOfWrites || question.first)
            continue;
        question.where += " that is outstanding when the device is closed";
        outstanding.push_back(Request::make(bench.record(), question));
    }
}

/// What is wrong with how a request has ended; empty if nothing is.
std::string wrongEnd(const Asked& asked, const Options& options)
{
    const auto now = asked.request->state();
    if (now.hasThrown)
        return wrongIf(now.completions != 0, "threw, and was completed all the same");
    if (now.completions > 1)
        return "was completed " + std::to_string(now.completions) + " times";
    const auto limit = std::to_string(options.limit.count()) + " ms";
    if (!asked.then.isOver())
        return now.completions == 0 ? "was not completed within " + limit
                                    : "was completed only after " + limit + ", or when the device was closed";
    return wrongIf(now.completions == 0, "let go of its completion without calling it");
}

/// Follows the operations of one source of progress.
void lookAtProgress(const Bench& bench, const Source& source)
{
    const auto ear = std::make_shared<Ear>(bench.record());
    const auto registration = source.observe(ear);
    if (!bench.add(source.where, registration))
        return;
    const auto state = bench.ask(*source.provocation);
    Bench::settle();
    bench.remove(source.where, registration);
    if (state.completions == 0 || ear->heard().empty())
        return bench.record()->note(source.where, "has told of no progress");
    bench.record()->checked();
    unsigned int done = 0;
    for (const auto& notification : ear->heard()) {
        if (!notification.progress)
            continue;
        const auto& [now, total] = *notification.progress;
        if (now < done)
            bench.record()->finding(source.where, "was told a progress that falls");
        if (now > total)
            bench.record()->finding(source.where, "was told a progress of more than there is to do");
        if (notification.time > state.end)
            bench.record()->finding(source.where, "was told of progress after the completion");
        done = now;
    }
}

} // namespace

void lookAtCompletions(Bench& bench)
{
    std::vector<Asked> all;
    std::vector<ControlRow> answering;
    for (const auto& row : controlRows()) {
        const Interview interview{bench, bench.describe(row)};
        all.insert(all.end(), interview.asked().begin(), interview.asked().end());
        if (interview.isAnswering())
            answering.push_back(row);
    }
    Bench::settle();
    std::vector<std::shared_ptr<Request>> outstanding;
    for (const auto& row : answering)
        leaveOutstanding(bench, bench.describe(row), outstanding);
    bench.close(); // what the device has kept may come with its end
    for (const auto& request : outstanding)
        all.push_back({request, bench.wait(*request)});
    Bench::settle();
    for (const auto& asked : all) {
        bench.record()->checked();
        if (const auto wrong = wrongEnd(asked, bench.options()); !wrong.empty())
            bench.record()->finding(asked.request->where(), wrong);
    }
}

void lookAtProgress(Bench& bench)
{
    for (const auto& row : controlRows()) {
        for (const auto& source : bench.describe(row).sources) {
            if (source.provocation && source.provocation->hasCompletion && bench.isAllowed(*source.provocation))
                lookAtProgress(bench, source);
        }
    }
}

} // namespace tarn::conformance
