#include <console/commandline.h>

#include <console/text.h>
#include <utils/duration.h>

#include <QJsonObject>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <utility>

namespace tarn::console {

namespace {

constexpr auto summary = "Service and factory controls of a connected vector network analyzer.";

constexpr auto footer = R"(
Examples:
  tarn-service providers                       which instruments can be reached, and how
  tarn-service controls                        which controls this instrument offers
  tarn-service files write settings.bin        a file into the instrument's memory
  tarn-service files read settings.bin -o -    and back, to standard output
  tarn-service memory read -o backup.img       the whole memory, with its progress
  tarn-service --address drop-every=3 tour     a walk through everything on a restless instrument

Environment:
  TARN_SERVICE_PROVIDERS   folders of the provider plug-ins, separated as in PATH, in place of
                           the installed one
  TARN_SERVICE_STATE       as --state
  NO_COLOR                 no colour, unless --color says otherwise

Exit codes:
  0 done, 1 the operation failed, 2 usage, 3 not found, 4 refused, 5 instrument lost,
  9 local file error, 130 interrupted)";

constexpr auto commandFooter
    = "\nThe global options stand before or after a command; 'tarn-service --help' lists them.";

QJsonValue object(const QString& member, std::string_view text)
{
    return QJsonObject{{member, toJson(text)}};
}

/// The names of the commands below `app`.
std::string commandsOf(const CLI::App& app)
{
    std::string names;
    for (const auto* const command : app.get_subcommands({}))
        names += (names.empty() ? "" : ", ") + command->get_name();
    return names;
}

/// Lays help out. What an argument is its name says; the usage shows whether it is required.
class Formatter final : public CLI::Formatter {
public:
    /// `command` stands for the commands below in the usage.
    explicit Formatter(const std::string& command)
    {
        column_width(34);
        label("SUBCOMMAND", command);
    }

    std::string make_option_opts(const CLI::Option* option) const override
    {
        return option->get_positional() ? std::string{} : CLI::Formatter::make_option_opts(option);
    }
};

bool isOption(std::string_view word)
{
    return word.starts_with('-');
}

/// A time as in addresses, or in seconds.
std::optional<std::chrono::milliseconds> parseTimeout(const std::string& text)
{
    static constexpr std::chrono::days longest{1};
    const auto isBare = text.find_last_not_of("0123456789.") == std::string::npos;
    const auto length = utils::parseDuration(isBare ? text + 's' : text);
    if (!length || *length < std::chrono::milliseconds{1} || *length > longest)
        return std::nullopt;
    return std::chrono::floor<std::chrono::milliseconds>(*length);
}

} // namespace

CommandLine::CommandLine()
    : m_app{std::make_unique<CLI::App>(summary, "tarn-service")}
{
    m_app->footer(footer);
    m_app->fallthrough();
    m_app->require_subcommand(1);
    m_app->formatter(std::make_shared<Formatter>("NOUN"));
    addGlobalOptions();
}

CommandLine::~CommandLine() = default;

void CommandLine::addGlobalOptions()
{
    static const std::map<std::string, ColorMode> colors{
        {"auto", ColorMode::Auto}, {"always", ColorMode::Always}, {"never", ColorMode::Never}};
    const auto readTimeout = [this](const std::string& text) -> std::optional<std::string> {
        const auto timeout = parseTimeout(text);
        if (!timeout)
            return fmt::format("'{}' is not a time such as 30, 500ms or 2min, from a millisecond to a day", text);
        m_options.timeout = *timeout;
        return std::nullopt;
    };
    const Command program{*m_app};
    m_app->add_option("--provider", m_options.provider, "Who provides the instrument")
        ->type_name("NAME")
        ->capture_default_str();
    program.addOption("--address", "ADDRESS", m_options.address, "Which instrument; see 'tarn-service providers'");
    program.addOption("--state", "DIR", m_options.state,
                      "Where a simulated instrument keeps its state; 'none' keeps it in memory "
                      "[$XDG_STATE_HOME/tarn-service]");
    program.addOption("--timeout", "TIME", readTimeout,
                      "How long the instrument may take without progress, in seconds or as 500ms or 2min [30]");
    program.addFlag("--json", m_options.output.json, "One JSON object on standard output instead of text");
    m_app
        ->add_option_function<std::string>(
            "--color", [this](const std::string& when) { m_options.output.color = colors.at(when); },
            "When to use colour: auto, always or never [auto]")
        ->option_text("WHEN")
        ->check(CLI::IsMember{colors});
    program.addFlag("-q,--quiet", m_options.output.quiet, "No messages except errors");
    program.addFlag("-v,--verbose", m_options.output.verbose, "Say what is loaded and opened");
    m_app->set_version_flag("--version", TARN_VERSION, "Print the version and exit");
}

void CommandLine::addNoun(const std::string& name, const std::string& description, AddVerbs addVerbs)
{
    auto& noun = *m_app->add_subcommand(name, description);
    noun.require_subcommand(1);
    noun.footer(commandFooter);
    noun.group("Nouns");
    noun.formatter(std::make_shared<Formatter>("VERB"));
    noun.preparse_callback([this, &noun](std::size_t /*wordCount*/) { addVerbsOf(noun); });
    m_addVerbsOf.emplace(&noun, std::move(addVerbs));
}

void CommandLine::addVerbsOf(CLI::App& noun)
{
    if (const auto entry = m_addVerbsOf.extract(&noun))
        entry.mapped()(*this, Command{noun});
}

std::vector<std::string> CommandLine::propose(std::span<const std::string> words)
{
    while (!m_addVerbsOf.empty())
        addVerbsOf(*m_addVerbsOf.begin()->first);
    return m_completion.propose(*m_app, words);
}

Command CommandLine::addVerb(Command noun, const std::string& name, const std::string& description, Run run)
{
    auto& verb = *noun.m_app->add_subcommand(name, description);
    verb.footer(commandFooter);
    verb.group(noun.m_app == m_app.get() ? "Nouns" : "Verbs");
    verb.callback([this, run = std::move(run)] { m_run = run; });
    return Command{verb};
}

Command CommandLine::addVerb(const std::string& name, const std::string& description, Run run)
{
    return addVerb(Command{*m_app}, name, description, std::move(run));
}

void CommandLine::parse(int argc, const char* const* argv)
{
    try {
        m_app->parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        m_run = [text = m_app->help()](Session& session) {
            session.output().result(object(QStringLiteral("help"), text), text);
        };
    } catch (const CLI::CallForVersion& version) {
        m_run = [text = std::string{version.what()}](Session& session) {
            session.output().result(object(QStringLiteral("version"), text), "tarn-service " + text);
        };
    } catch (const CLI::ParseError& error) {
        for (int i = 1; i < argc && std::string_view{argv[i]} != "--"; ++i)
            m_options.output.json = m_options.output.json || std::string_view{argv[i]} == "--json";
        throw usage(error);
    }
}

std::string CommandLine::command() const
{
    std::string words;
    for (const auto* app = &selected(); app != m_app.get(); app = app->get_parent())
        words.insert(0, app->get_name() + (words.empty() ? "" : " "));
    return words;
}

/// The last command word that was understood.
const CLI::App& CommandLine::selected() const
{
    const CLI::App* app = m_app.get();
    while (!app->get_subcommands().empty())
        app = app->get_subcommands().front();
    return *app;
}

Error CommandLine::usage(const CLI::ParseError& error) const
{
    const auto words = command();
    const auto spelled = "tarn-service" + (words.empty() ? "" : " " + words);
    const auto explained = fmt::format("'{} --help' explains", spelled);
    const auto unknown = m_app->remaining(true);
    const auto commands = commandsOf(selected());
    if (std::ranges::any_of(unknown, isOption))
        return Error{ErrorCode::Usage,
                     fmt::format("'{}' is not an option of '{}'", *std::ranges::find_if(unknown, isOption), spelled),
                     words.empty() ? "'tarn-service --help' lists the options"
                                   : fmt::format("'{} --help' lists its options, 'tarn-service --help' the global ones",
                                                 spelled)};
    if (isOfGlobalOption(error))
        return Error{ErrorCode::Usage, error.what(), "'tarn-service --help' explains the global options"};
    if (commands.empty())
        return Error{ErrorCode::Usage, fmt::format("{}: {}", words, error.what()), explained + " it"};
    const auto hint = fmt::format("one of: {}; {} them", commands, explained);
    if (!unknown.empty())
        return Error{ErrorCode::Usage, fmt::format("'{}' is not a command of '{}'", unknown.front(), spelled), hint};
    return Error{ErrorCode::Usage, fmt::format("'{}' needs a command", spelled), hint};
}

/// CLI11 starts what it says of an option with the option's name.
bool CommandLine::isOfGlobalOption(const CLI::ParseError& error) const
{
    static constexpr std::string_view conversion = "Could not convert: ";
    std::string_view message{error.what()};
    message.remove_prefix(message.starts_with(conversion) ? conversion.size() : 0);
    const auto name = message.substr(0, message.find_first_of(": "));
    return m_app->get_option_no_throw(std::string{name}) != nullptr;
}

} // namespace tarn::console
