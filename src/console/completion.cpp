#include <console/completion.h>

#include <CLI/CLI.hpp>

#include <algorithm>

namespace tarn::console {

namespace {

/// Where on a command line the reader is.
struct Place {
    const CLI::App* command = nullptr;
    const CLI::Option* option = nullptr; ///< that waits for its value
    std::vector<std::string> arguments; ///< of the command
};

/// The option that `word` names, of `command` or of one above it.
const CLI::Option* findOption(const CLI::App* command, const std::string& word)
{
    for (; command; command = command->get_parent()) {
        if (const auto* const option = command->get_option_no_throw(word))
            return option;
    }
    return nullptr;
}

/// A hyphen alone stands for standard input or output.
bool isOption(const std::string& word)
{
    return word.size() > 1 && word.starts_with('-');
}

bool takesValue(const CLI::Option& option)
{
    return option.get_items_expected_max() > 0;
}

const CLI::App* findCommand(const CLI::App& command, const std::string& name)
{
    const auto all = command.get_subcommands({});
    const auto found = std::ranges::find(all, name, &CLI::App::get_name);
    return found == all.end() ? nullptr : *found;
}

Place advanced(Place place, const std::string& word)
{
    if (place.option) {
        place.option = nullptr;
        return place;
    }
    if (isOption(word)) {
        const auto* const option = findOption(place.command, word);
        place.option = option && takesValue(*option) ? option : nullptr;
        return place;
    }
    if (const auto* const below = findCommand(*place.command, word))
        return {below, nullptr, {}};
    place.arguments.push_back(word);
    return place;
}

std::vector<std::string> optionsOf(const CLI::App* command)
{
    std::vector<std::string> names;
    for (; command; command = command->get_parent()) {
        for (const auto* const option : command->get_options()) {
            for (const auto& name : option->get_lnames())
                names.push_back("--" + name);
        }
    }
    return names;
}

std::vector<std::string> commandsOf(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const auto* const below : command.get_subcommands({}))
        names.push_back(below->get_name());
    return names;
}

} // namespace

std::vector<std::string> Completion::propose(const CLI::App& program, std::span<const std::string> words) const
{
    Place place{&program, nullptr, {}};
    for (const auto& word : words.first(words.size() - 1))
        place = advanced(std::move(place), word);
    const auto& begun = words.back();
    std::vector<std::string> proposals;
    if (place.option)
        return proposals;
    if (begun.starts_with('-'))
        proposals = optionsOf(place.command);
    else if (const auto found = m_candidates.find(place.command); found != m_candidates.end())
        proposals = found->second(place.arguments);
    else
        proposals = commandsOf(*place.command);
    std::erase_if(proposals, [&](const std::string& proposal) { return !proposal.starts_with(begun); });
    std::ranges::sort(proposals);
    proposals.erase(std::ranges::unique(proposals).begin(), proposals.end());
    return proposals;
}

} // namespace tarn::console
