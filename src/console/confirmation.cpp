#include <console/confirmation.h>

#include <fmt/format.h>

namespace tarn::console {

void Confirmation::addTo(Command command)
{
    command.addFlag("-y,--yes", m_yes, "Do not ask");
}

void Confirmation::obtain(const Output& output, const std::string& change, const std::string& question) const
{
    if (m_yes)
        return;
    if (!output.canAsk())
        throw Error{ErrorCode::Refused, fmt::format("{} needs to be confirmed; nothing was changed", change),
                    "add --yes where there is no terminal to ask on"};
    if (!output.confirm(question))
        throw Error{ErrorCode::Refused, fmt::format("{} was not confirmed; nothing was changed", change)};
}

} // namespace tarn::console
