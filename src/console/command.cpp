#include <console/command.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <utility>

namespace tarn::console {

std::string Command::name() const
{
    return m_app->get_name();
}

void Command::addWord(const std::string& name, std::string& word, const std::string& description) const
{
    m_app->add_option(name, word, description)->required();
}

void Command::addWords(const std::string& name, std::vector<std::string>& words, const std::string& description) const
{
    m_app->add_option(name, words, description)->required();
}

void Command::addOption(const std::string& name, const std::string& kind, std::optional<std::string>& value,
                        const std::string& description) const
{
    m_app->add_option(name, value, description)->type_name(kind);
}

void Command::addOption(const std::string& name, const std::string& kind, Read read,
                        const std::string& description) const
{
    m_app
        ->add_option_function<std::string>(
            name,
            [name, read = std::move(read)](const std::string& text) {
                if (const auto wrong = read(text))
                    throw CLI::ValidationError{name, *wrong};
            },
            description)
        ->type_name(kind);
}

void Command::addRequiredOption(const std::string& name, const std::string& kind, std::string& value,
                                const std::string& description) const
{
    m_app->add_option(name, value, description)->type_name(kind)->required();
}

void Command::addFlag(const std::string& name, bool& isGiven, const std::string& description,
                      const std::string& needed) const
{
    auto* const flag = m_app->add_flag(name, isGiven, description);
    if (!needed.empty())
        flag->needs(m_app->get_option(needed));
}

void Command::addExamples(std::initializer_list<std::string_view> examples) const
{
    std::string list = "\nExamples:\n";
    for (const auto example : examples)
        list += fmt::format("  tarn-service {}\n", example);
    addHelp(list);
}

void Command::addHelp(const std::string& text) const
{
    m_app->footer(text + m_app->get_footer());
}

} // namespace tarn::console
