#include <simulator/profile.h>

#include <sdk/models.h>

#include <algorithm>
#include <array>

namespace tarn::simulator {

namespace {

namespace models = sdk::models;

constexpr std::array table{
    ProfileInfo{Profile::Full, "full", models::vell::all},
    ProfileInfo{Profile::Bare, "bare", models::pell::all},
    ProfileInfo{Profile::Pell, "pell", models::pell::all},
    ProfileInfo{Profile::Zinnia, "zinnia", models::zinnia::all},
    ProfileInfo{Profile::Marl, "marl", models::marl::all},
    ProfileInfo{Profile::Tove, "tove", models::tove::all},
    ProfileInfo{Profile::Wisp, "wisp", models::wisp::all},
    ProfileInfo{Profile::Glint, "glint", models::glint::all},
    ProfileInfo{Profile::Brae, "brae", models::brae::all},
    ProfileInfo{Profile::Vell, "vell", models::vell::all},
    ProfileInfo{Profile::MultiportLum, "multiport-lum", models::multiport::lum::all},
    ProfileInfo{Profile::MultiportCommon, "multiport-common", models::multiport::common::all},
};

} // namespace

std::span<const ProfileInfo> profiles()
{
    return table;
}

std::span<const ProfileInfo> families()
{
    return profiles().subspan(2); // after those that are no family
}

Profile familyOf(sdk::Model model)
{
    const auto hasModel
        = [&](const auto& family) { return std::ranges::find(family.models, model) != family.models.end(); };
    return std::ranges::find_if(families(), hasModel)->profile;
}

const ProfileInfo& profileInfo(Profile profile)
{
    return *std::ranges::find(table, profile, &ProfileInfo::profile);
}

std::optional<Profile> profileFromText(std::string_view text)
{
    const auto* const found = std::ranges::find(table, text, &ProfileInfo::name);
    return found != table.end() ? std::optional{found->profile} : std::nullopt;
}

} // namespace tarn::simulator
