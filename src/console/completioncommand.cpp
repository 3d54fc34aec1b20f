#include <console/completioncommand.h>

#include <console/commandline.h>

#include <QJsonArray>

#include <memory>

namespace tarn::console {

namespace {

/// Without a proposal the shell completes the name of a file.
constexpr std::string_view bashScript = R"(_tarn_service() {
    local IFS=$'\n'
    COMPREPLY=($("$1" completion words -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null))
}
complete -o default -F _tarn_service tarn-service)";

void printScript(Session& session)
{
    session.output().result(toJson(bashScript), bashScript);
}

void printProposals(const Session& session, const std::vector<std::string>& proposals)
{
    QJsonArray array;
    std::string lines;
    for (const auto& proposal : proposals) {
        array.append(toJson(proposal));
        lines += proposal + '\n';
    }
    session.output().result(array, lines);
}

void addVerbs(CommandLine& line, Command noun)
{
    line.addVerb(noun, "bash", "Print a script that teaches bash to complete commands: source it", &printScript);
    const auto words = std::make_shared<std::vector<std::string>>();
    const auto verb = line.addVerb(noun, "words", "Print what the last word may become",
                                   [&line, words](Session& session) { printProposals(session, line.propose(*words)); });
    verb.addWords("WORD", *words, "The words after the program's name; the last may be empty");
    verb.addExamples({"completion words -- files re"});
}

} // namespace

void CompletionCommand::addTo(CommandLine& line)
{
    line.addNoun("completion", "Completion of commands in a shell", &addVerbs);
}

} // namespace tarn::console
