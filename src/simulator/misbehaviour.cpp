#include <simulator/misbehaviour.h>

#include <algorithm>
#include <array>

namespace tarn::simulator {

namespace {

struct Name {
    Misbehaviour misbehaviour;
    std::string_view name;
};

constexpr std::array names{
    Name{Misbehaviour::Twice, "twice"},
    Name{Misbehaviour::Drop, "drop"},
    Name{Misbehaviour::DropControls, "drop-controls"},
    Name{Misbehaviour::Keep, "keep"},
    Name{Misbehaviour::AtEnd, "at-end"},
    Name{Misbehaviour::Late, "late"},
    Name{Misbehaviour::ThrowLate, "throw-late"},
};

} // namespace

std::optional<Misbehaviour> misbehaviourFromText(std::string_view text)
{
    const auto* const known = std::ranges::find(names, text, &Name::name);
    return known != names.end() ? std::optional{known->misbehaviour} : std::nullopt;
}

} // namespace tarn::simulator
