#pragma once

#include <functional>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
}

namespace tarn::console {

/// What may stand at the place of a command's next argument, after those that were `given`.
using Candidates = std::function<std::vector<std::string>(std::span<const std::string> given)>;

/// Proposes words for a command line that is being typed.
class Completion {
public:
    /// Proposes `candidates` for the arguments of `command`.
    void add(const CLI::App& command, Candidates candidates) { m_candidates[&command] = std::move(candidates); }

    /// What the last of `words`, of which there is one at least, may become. They follow the name of the
    /// program, whose commands and options are those of `program`.
    [[nodiscard]] std::vector<std::string> propose(const CLI::App& program, std::span<const std::string> words) const;

private:
    std::map<const CLI::App*, Candidates> m_candidates;
};

} // namespace tarn::console
