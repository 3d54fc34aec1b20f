#include <console/tourcommand.h>

#include <console/commandline.h>
#include <console/controltable.h>
#include <console/text.h>

#include <QJsonObject>

#include <algorithm>
#include <chrono>
#include <exception>

namespace tarn::console {

namespace {

/// The option by which an address makes an instrument drop its controls.
constexpr QLatin1StringView dropOption{"drop-every"};

constexpr auto footer = R"(
For a moment the tour writes a file of its own into the file memory, switches LO leakage and changes
one setting of each power stage and synthesizer. It puts everything back as it was, after Ctrl-C too.

A simulated instrument is changed without asking, and 'drop-every=2' is added to an address that does
not say when its controls are dropped. On a real one the tour asks before each change, and changes
nothing where there is nobody to ask.
)";

bool hasDropOption(const ProviderCatalogue::Loaded& source)
{
    const auto& options = source.addressOptions;
    return std::ranges::find(options, dropOption, &provider::AddressOption::name) != options.end();
}

/// Whether `address` says already when the controls are dropped.
bool saysWhenToDrop(const QString& address)
{
    const auto items = address.split(u',');
    return std::ranges::any_of(items, [](const QString& item) {
        return item.startsWith(QLatin1StringView{"drop-every="}) || item.startsWith(QLatin1StringView{"drop-chance="});
    });
}

/// `address`, so that the instrument drops its controls during the tour.
QString restless(const QString& address)
{
    if (saysWhenToDrop(address))
        return address;
    return (address.isEmpty() ? QString{} : address + u',') + dropOption + QStringLiteral("=2");
}

/// How often the tour tries to put the instrument back as it was.
constexpr int attempts = 5;

void putBack(const std::function<void()>& restore, const Tour::Leftover& leftover)
{
    auto code = ErrorCode::Failed;
    std::string reason;
    for (int attempt = 1; attempt <= attempts && code != ErrorCode::InstrumentLost; ++attempt) {
        try {
            return restore();
        } catch (...) {
            const auto error = caughtError();
            code = error.code();
            reason = error.message();
        }
    }
    throw Error{code,
                fmt::format("the tour could not put the instrument back as it was: {}; {}", reason, leftover.what),
                leftover.remedy};
}

} // namespace

Tour::Tour(Session& session)
    : m_output{session.output()}
    , m_simulated{session.provider().isSimulated}
    , m_instrument{session.instrument()}
{
    m_output.setFirstWords(m_interrupt,
                           "interrupted; the instrument is being put back as it was, then the tour ends; Ctrl-C once "
                           "more ends it at once");
    m_output.setLastWords(m_interrupt, {}, "the instrument is as it was");
}

void Tour::run()
{
    line(fmt::format("{} {}: {} controls are known. The tour looks at each and leaves everything as it was.",
                     m_simulated ? "A simulated" : "A real", escaped(m_instrument.model().name()),
                     controlRows().size()));
    for (const auto& row : controlRows())
        visit(row);
    finish();
}

void Tour::visit(const ControlRow& row)
{
    const auto key = devices::ControlRegistry::keyText(row.registryKey);
    const bool available = m_instrument.isOffered(row.registryKey);
    line(fmt::format("\n{} ({})\n  {}", m_output.paint(Output::Style::Heading, row.name), key, row.purpose));
    m_shown = {};
    if (available) {
        row.tour(*this);
        ++m_visited;
    } else {
        say("This instrument does not have it.");
    }
    m_output.part(QJsonObject{{QStringLiteral("control"), toJson(row.name)},
                              {QStringLiteral("registryKey"), toJson(key)},
                              {QStringLiteral("purpose"), toJson(row.purpose)},
                              {QStringLiteral("available"), available},
                              {QStringLiteral("shown"), m_shown}},
                  {});
}

void Tour::show(std::string_view label, std::string_view text, const QJsonValue& value)
{
    const auto drops = m_instrument.lifecycle().drops();
    const auto again = drops == m_dropsSaid ? std::string{}
                                            : m_output.paint(Output::Style::Faint, "   (controls dropped meanwhile)");
    m_dropsSaid = drops;
    m_shown.append(QJsonObject{{QStringLiteral("label"), toJson(label)}, {QStringLiteral("value"), value}});
    line(fmt::format("    {} {}{}", padded(escaped(label), 28), text, again));
    if (m_interrupt.isRequested())
        throw Error{ErrorCode::Interrupted, "interrupted", "the instrument is as it was"};
}

void Tour::say(std::string_view text)
{
    line(fmt::format("    {}", text));
}

bool Tour::mayChange(std::string_view what)
{
    if (m_simulated)
        return true;
    if (m_output.canAsk() && m_output.confirm(fmt::format("Shall the tour {}?", what)))
        return true;
    say(fmt::format("Not done without your consent: {}.", what));
    return false;
}

void Tour::restoring(const std::function<void()>& steps, const std::function<void()>& restore, const Leftover& leftover)
{
    platform::InterruptGuard whileItIsChanged;
    m_output.setLastWords(whileItIsChanged,
                          fmt::format(" before the instrument was put back as it was: {}", leftover.what),
                          leftover.remedy);
    m_output.detail("a change of the tour is open");
    std::exception_ptr failure;
    try {
        steps();
    } catch (...) {
        failure = std::current_exception();
    }
    putBack(restore, leftover);
    if (failure)
        std::rethrow_exception(failure);
}

void Tour::finish()
{
    for (const auto& row : controlRows()) {
        if (m_instrument.isOffered(row.registryKey))
            m_instrument.awaitControl(row.registryKey);
    }
    const auto counts = m_instrument.lifecycle().waitUntilBack(std::chrono::seconds{2});
    if (!counts)
        throw Error{ErrorCode::InstrumentLost, "the instrument has dropped its controls and not offered them again",
                    "check the instrument and its connection, then try again"};
    const auto [drops, returns] = *counts;
    const auto kept = drops == 0 ? std::string{"The instrument kept its controls all the while."}
                                 : fmt::format("The instrument dropped its controls {} times and offered them again {} "
                                               "times; all came back, and so did everything written.",
                                               drops, returns);
    m_output.result(QJsonObject{{QStringLiteral("visited"), m_visited},
                                {QStringLiteral("drops"), toJson(drops)},
                                {QStringLiteral("returns"), toJson(returns)}},
                    fmt::format("\n{} {} of {} controls seen. {}", m_output.paint(Output::Style::Good, "Done:"),
                                m_visited, controlRows().size(), kept));
}

void Tour::line(std::string_view text) const
{
    if (!m_output.isJson())
        m_output.result({}, text);
}

void TourCommand::addTo(CommandLine& line)
{
    const auto verb = line.addVerb("tour", "Walk through every control of the instrument and show what it does",
                                   [](Session& session) {
                                       const auto& source = session.provider();
                                       if (source.isSimulated && hasDropOption(source))
                                           session.setAddress(restless(session.address()));
                                       Tour{session}.run();
                                   });
    verb.addExamples({"tour", "--address drop-every=3,seed=7 tour", "--json tour"});
    verb.addHelp(footer);
}

} // namespace tarn::console
