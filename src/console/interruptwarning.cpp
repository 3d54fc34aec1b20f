#include <console/interruptwarning.h>

#include <fmt/format.h>

#include <utility>

namespace tarn::console {

InterruptWarning::InterruptWarning(const Output& output)
    : m_output{output}
{
    m_output.setFirstWords(m_guard, {}); // `warn` says more
    m_output.detail("a change of the instrument is under way");
}

void InterruptWarning::setConsequences(std::string leftBehind, const std::string& advice)
{
    m_leftBehind = std::move(leftBehind);
    m_output.setLastWords(m_guard, ": " + m_leftBehind, advice);
}

void InterruptWarning::warn()
{
    if (std::exchange(m_warned, true))
        return;
    m_output.warning(
        fmt::format("not interrupted yet: {} if this ends now; Ctrl-C once more ends it all the same", m_leftBehind));
}

} // namespace tarn::console
