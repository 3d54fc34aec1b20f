#pragma once

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}

namespace tarn::console {

/// A noun or a verb of the command line, to say what it takes. Copies are the same command. What its words are read
/// into, and what a `Read` captures by reference, must live as long as the command line does.
class Command {
public:
    /// Takes what was given; says what is wrong with it, or nothing.
    using Read = std::function<std::optional<std::string>(const std::string& text)>;

    explicit Command(CLI::App& app)
        : m_app{&app}
    {
    }

    [[nodiscard]] std::string name() const;

    /// Adds a word that must be given; the help calls it `name`.
    void addWord(const std::string& name, std::string& word, const std::string& description) const;

    /// Adds one word or more.
    void addWords(const std::string& name, std::vector<std::string>& words, const std::string& description) const;

    /// Adds an option with a value, which the help calls `kind`.
    void addOption(const std::string& name, const std::string& kind, std::optional<std::string>& value,
                   const std::string& description) const;
    void addOption(const std::string& name, const std::string& kind, Read read, const std::string& description) const;

    /// Adds an option that must be given.
    void addRequiredOption(const std::string& name, const std::string& kind, std::string& value,
                           const std::string& description) const;

    /// Adds an option without a value, which means nothing without the option `needed`, if that is named: it
    /// must have been added before.
    void addFlag(const std::string& name, bool& isGiven, const std::string& description,
                 const std::string& needed = {}) const;

    /// Puts examples, each without the program's name, before what ends the help.
    void addExamples(std::initializer_list<std::string_view> examples) const;

    /// Puts `text` before what ends the help.
    void addHelp(const std::string& text) const;

private:
    friend class CommandLine;

    CLI::App* m_app;
};

} // namespace tarn::console
