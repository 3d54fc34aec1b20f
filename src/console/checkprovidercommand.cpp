#include <console/checkprovidercommand.h>

#include <conformance/conformance.h>
#include <console/commandline.h>
#include <console/confirmation.h>
#include <console/text.h>
#include <utils/duration.h>

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <chrono>
#include <memory>
#include <stop_token>
#include <thread>
#include <utility>
#include <vector>

namespace tarn::console {

namespace {

using conformance::Finding;
using conformance::Guarantee;
using conformance::Outcome;
using conformance::Verdict;

constexpr auto footer = R"(
Checks the instrument itself, without what protects the other commands from it. One that crashes takes the
program with it; '--verbose' says what was being checked. A call that does not come back within --timeout is
given up.

Nothing is changed without '--writes'. With it every setting gets other values for a moment, as do the serial
number, a potentiometer's EEPROM and the corrections; a file is written and deleted, and calibration data
without contents is to be refused. Everything is put back as it was, after Ctrl-C too. On a real instrument
that is asked for first.
)";

struct CheckOptions {
    bool writes = false;
    std::chrono::milliseconds drop{};
    Confirmation confirmation;
};

/// What a row of the table came to.
struct Row {
    const Guarantee* guarantee;
    Outcome outcome;
};

std::string_view word(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Kept:
        return "kept";
    case Verdict::Broken:
        return "broken";
    case Verdict::NotChecked:
        break;
    }
    return "not-checked";
}

Output::Style styleOf(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Kept:
        return Output::Style::Good;
    case Verdict::Broken:
        return Output::Style::Bad;
    case Verdict::NotChecked:
        break;
    }
    return Output::Style::Faint;
}

double seconds(std::chrono::nanoseconds time)
{
    return std::chrono::duration<double>{time}.count();
}

std::string counted(unsigned count, std::string_view what)
{
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string figuresText(const conformance::Figures& seen)
{
    auto text = fmt::format("{} of up to {:.1f} ms", counted(seen.calls, "call"), seconds(seen.longestCall) * 1e3);
    if (seen.requests != 0)
        text += fmt::format("; {} of up to {:.1f} ms, with {} inside the call and {} on other threads",
                            counted(seen.requests, "request"), seconds(seen.longestRequest) * 1e3,
                            counted(seen.completionsInside, "completion"), seen.completionsElsewhere);
    if (seen.notifications != 0)
        text += fmt::format("; {} on {}", counted(seen.notifications, "notification"),
                            counted(seen.notificationThreads, "thread"));
    if (seen.drops != 0)
        text += fmt::format("; {}", counted(seen.drops, "drop"));
    return text;
}

QJsonArray json(const std::vector<Finding>& findings)
{
    QJsonArray array;
    for (const auto& [where, what] : findings)
        array.append(QJsonObject{{QStringLiteral("where"), toJson(where)}, {QStringLiteral("what"), toJson(what)}});
    return array;
}

QJsonObject json(const conformance::Figures& seen)
{
    return {{QStringLiteral("calls"), toJson(std::uint64_t{seen.calls})},
            {QStringLiteral("longestCall"), seconds(seen.longestCall)},
            {QStringLiteral("requests"), toJson(std::uint64_t{seen.requests})},
            {QStringLiteral("longestRequest"), seconds(seen.longestRequest)},
            {QStringLiteral("completionsInside"), toJson(std::uint64_t{seen.completionsInside})},
            {QStringLiteral("completionsElsewhere"), toJson(std::uint64_t{seen.completionsElsewhere})},
            {QStringLiteral("notifications"), toJson(std::uint64_t{seen.notifications})},
            {QStringLiteral("notificationThreads"), toJson(std::uint64_t{seen.notificationThreads})},
            {QStringLiteral("drops"), toJson(std::uint64_t{seen.drops})}};
}

QJsonObject json(const Row& row)
{
    const auto& [guarantee, outcome] = row;
    return {{QStringLiteral("name"), toJson(guarantee->name)},
            {QStringLiteral("sentence"), toJson(guarantee->sentence)},
            {QStringLiteral("verdict"), toJson(word(outcome.verdict))},
            {QStringLiteral("reason"), outcome.reason.empty() ? QJsonValue{} : toJson(outcome.reason)},
            {QStringLiteral("findings"), json(outcome.findings)},
            {QStringLiteral("notes"), json(outcome.notes)},
            {QStringLiteral("remedy"), outcome.findings.empty() ? QJsonValue{} : toJson(guarantee->remedy)},
            {QStringLiteral("seen"), json(outcome.seen)}};
}

/// A run of the command.
class Check {
public:
    Check(Session& session, const CheckOptions& options)
        : m_session{session}
        , m_output{session.output()}
        , m_options{options}
    {
        m_output.setFirstWords(m_interrupt,
                               "interrupted; the instrument is being put back as it was, then the check ends; Ctrl-C "
                               "once more ends it at once");
        m_output.setLastWords(m_interrupt, {},
                              options.writes ? "settings, the serial number or an EEPROM may not be as they were"
                                             : "the instrument is as it was");
    }

    void run()
    {
        line(m_output.paint(Output::Style::Heading, fmt::format("{:<22} {:<12} {}", "GUARANTEE", "VERDICT", "SEEN")));
        for (const auto& guarantee : conformance::guarantees()) {
            m_rows.push_back({&guarantee, outcomeOf(guarantee)});
            show(m_rows.back());
            explain(m_rows.back()); // at once: the next check may end the program
            if (m_interrupt.isRequested())
                throw Error{ErrorCode::Interrupted, "interrupted", "what could not be put back was said before"};
        }
        report();
    }

private:
    Outcome outcomeOf(const Guarantee& guarantee)
    {
        m_output.detail(fmt::format("checking {}", guarantee.name));
        std::shared_ptr<sdk::IVna> device;
        try {
            device = m_session.openDevice();
        } catch (const Error& error) {
            if (!isStuck())
                throw;
            return {.reason = fmt::format("it could not be opened again: {}", error.message())};
        }
        std::stop_source stop;
        const std::jthread watch{[this, &stop](const std::stop_token& end) {
            while (!end.stop_requested() && !m_interrupt.isRequested())
                std::this_thread::sleep_for(std::chrono::milliseconds{20});
            if (m_interrupt.isRequested())
                stop.request_stop();
        }};
        return conformance::check(guarantee, std::move(device),
                                  {.writes = m_options.writes,
                                   .limit = m_session.timeout(),
                                   .drop = m_options.drop,
                                   .stop = stop.get_token()});
    }

    /// Whether a call has not come back.
    [[nodiscard]] bool isStuck() const
    {
        return std::ranges::any_of(m_rows, [](const Row& row) { return row.outcome.isStuck; });
    }

    void show(const Row& row) const
    {
        const auto& [guarantee, outcome] = row;
        const auto style = styleOf(outcome.verdict);
        const auto seen = outcome.verdict == Verdict::NotChecked ? outcome.reason : figuresText(outcome.seen);
        line(fmt::format("{:<22} {} {}", guarantee->name,
                         m_output.paint(style, padded(std::string{word(outcome.verdict)}, 12)), escaped(seen)));
        for (const auto& [where, what] : outcome.notes)
            m_output.detail(fmt::format("{}: {} {}", guarantee->name, where, what));
    }

    void explain(const Row& row) const
    {
        const auto& [guarantee, outcome] = row;
        if (outcome.findings.empty())
            return;
        line(fmt::format("    {}", guarantee->sentence));
        for (const auto& [where, what] : outcome.findings)
            line(fmt::format("    - {} {}", escaped(where), escaped(what)));
        line(fmt::format("    What to do: {}", guarantee->remedy));
    }

    [[nodiscard]] auto count(Verdict verdict) const
    {
        return std::ranges::count(m_rows, verdict, [](const Row& row) { return row.outcome.verdict; });
    }

    /// Throws an `Error` if a guarantee is broken.
    void report() const
    {
        QJsonArray rows;
        for (const auto& row : m_rows)
            rows.append(json(row));
        const auto broken = count(Verdict::Broken);
        m_output.part(QJsonObject{{QStringLiteral("conforming"), broken == 0}, {QStringLiteral("guarantees"), rows}},
                      fmt::format("\n{} kept, {} broken, {} not checked", count(Verdict::Kept), broken,
                                  count(Verdict::NotChecked)));
        if (broken == 0)
            return;
        const Error error{ErrorCode::NotConforming,
                          fmt::format("the provider '{}' breaks {} of {} guarantees", m_session.provider().name, broken,
                                      m_rows.size()),
                          "the findings say where, docs/conformance.md what each guarantee means"};
        if (isStuck())
            m_output.end(error);
        throw Error{error};
    }

    void line(std::string_view text) const
    {
        if (!m_output.isJson())
            m_output.part({}, text);
    }

    Session& m_session;
    const Output& m_output;
    const CheckOptions& m_options;
    platform::InterruptGuard m_interrupt;
    std::vector<Row> m_rows;
};

void checkProvider(Session& session, const CheckOptions& options)
{
    if (options.writes && !session.provider().isSimulated)
        options.confirmation.obtain(session.output(), "checking the provider with --writes",
                                    "Change every setting of the instrument for a moment, its serial number, an EEPROM "
                                    "and its files too, and put all back?");
    Check{session, options}.run();
}

Command::Read readDrop(CheckOptions& options)
{
    return [&options](const std::string& text) -> std::optional<std::string> {
        const auto length = utils::parseDuration(text);
        if (!length || *length > std::chrono::hours{1})
            return fmt::format("'{}' is not a time such as 30s or 2min, of an hour at most", text);
        options.drop = std::chrono::ceil<std::chrono::milliseconds>(*length);
        return std::nullopt;
    };
}

} // namespace

void CheckProviderCommand::addTo(CommandLine& line)
{
    const auto options = std::make_shared<CheckOptions>();
    const auto verb = line.addVerb("check-provider", "Tell which guarantees of the contract a provider keeps",
                                   [options](Session& session) { checkProvider(session, *options); });
    verb.addFlag("--writes", options->writes, "Check what can only be seen by changing the instrument, too");
    verb.addOption("--await-drop", "TIME", readDrop(*options),
                   "Wait so long for the instrument to drop its controls, as when its cable is pulled");
    options->confirmation.addTo(verb);
    verb.addExamples({"check-provider", "--address drop-every=20 check-provider --writes",
                      "--provider mine check-provider --await-drop 1min"});
    verb.addHelp(footer);
}

} // namespace tarn::console
