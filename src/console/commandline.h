#pragma once

#include <console/command.h>
#include <console/completion.h>
#include <console/session.h>

#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace CLI {
class ParseError;
}

namespace tarn::console {

/// The grammar of the command line: `tarn-service [global options] NOUN [VERB] [arguments]`. Every
/// command file adds its own noun.
class CommandLine {
public:
    using Run = std::function<void(Session&)>;
    using AddVerbs = std::function<void(CommandLine&, Command noun)>;

    CommandLine();
    ~CommandLine();

    /// Adds a noun that has verbs. `addVerbs` adds them, and whatever else the noun has, once they are asked for: those
    /// of all nouns are a third of what a short command computes.
    void addNoun(const std::string& name, const std::string& description, AddVerbs addVerbs);

    /// Adds a verb to `noun`, or a noun of its own without one. `run` does it; what it throws ends
    /// the program.
    Command addVerb(Command noun, const std::string& name, const std::string& description, Run run);
    Command addVerb(const std::string& name, const std::string& description, Run run);

    /// Proposes `candidates` for the arguments of `command` while it is being typed.
    void addCandidates(Command command, Candidates candidates)
    {
        m_completion.add(*command.m_app, std::move(candidates));
    }

    /// What the last of `words` may become; see `Completion`.
    [[nodiscard]] std::vector<std::string> propose(std::span<const std::string> words);

    /// What a command line asks for. Throws `Error` (`Usage`).
    void parse(int argc, const char* const* argv);

    /// The global options, as far as they were read.
    [[nodiscard]] const GlobalOptions& options() const { return m_options; }

    /// The words that select the command, for example `files list`, as far as they were read.
    [[nodiscard]] std::string command() const;

    /// Does what was asked for.
    void run(Session& session) const { m_run(session); }

private:
    void addGlobalOptions();
    void addVerbsOf(CLI::App& noun);
    [[nodiscard]] const CLI::App& selected() const;
    [[nodiscard]] Error usage(const CLI::ParseError& error) const;
    [[nodiscard]] bool isOfGlobalOption(const CLI::ParseError& error) const;

    std::unique_ptr<CLI::App> m_app;
    std::map<CLI::App*, AddVerbs> m_addVerbsOf; ///< those nouns that were not asked for yet
    Completion m_completion;
    GlobalOptions m_options;
    Run m_run;
};

} // namespace tarn::console
