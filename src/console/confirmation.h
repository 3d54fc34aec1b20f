#pragma once

#include <console/command.h>
#include <console/output.h>

#include <string>

namespace tarn::console {

/// A change that needs somebody's word first: asks on the terminal unless `--yes` has given it.
class Confirmation {
public:
    /// Adds `--yes` to a command.
    void addTo(Command command);

    /// Returns when `question`, which says what will change, is answered with yes. Throws `Error`
    /// (`Refused`) on any other answer, and where there is no terminal to ask on. `change` names
    /// the change as the subject of a sentence ("deleting 'a'").
    void obtain(const Output& output, const std::string& change, const std::string& question) const;

private:
    bool m_yes = false;
};

} // namespace tarn::console
