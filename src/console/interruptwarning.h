#pragma once

#include <console/interruptguard.h>
#include <console/output.h>

#include <string>

namespace tarn::console {

/// While one is alive, a change of the instrument is under way that cannot be taken back halfway:
/// the first Ctrl-C gives a warning, the second ends the program with advice.
class InterruptWarning {
public:
    /// `output` must outlive it.
    explicit InterruptWarning(const Output& output);

    /// From now on an interruption leaves this behind ("the memory may be left partly written"), and this
    /// is the way out.
    void setConsequences(std::string leftBehind, const std::string& advice);

    /// A file descriptor that becomes readable with the first Ctrl-C.
    [[nodiscard]] int descriptor() const { return m_guard.descriptor(); }

    /// Says, the first time, what a second Ctrl-C would leave behind.
    void warn();

private:
    const Output& m_output;
    platform::InterruptGuard m_guard;
    std::string m_leftBehind;
    bool m_warned = false;
};

} // namespace tarn::console
