#pragma once

#include <sdk/model.h>
#include <simulator/export.h>

#include <optional>
#include <span>
#include <string_view>

namespace tarn::simulator {

/// Which instrument is simulated, and so which controls it has.
enum class Profile {
    Full, ///< every control there is; identifies itself as a Vell 801
    Bare, ///< no control at all; identifies itself as a Pell 101
    Pell,
    Zinnia,
    Marl,
    Tove,
    Wisp,
    Glint,
    Brae,
    Vell,
    MultiportLum,
    MultiportCommon,
};

/// What there is to know about a profile.
struct ProfileInfo {
    Profile profile;
    std::string_view name; ///< as written in an address
    std::span<const sdk::Model> models; ///< of its family

    /// What the instrument identifies itself as at first.
    [[nodiscard]] constexpr sdk::Model model() const { return models.front(); }
};

/// All profiles, the default first.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT std::span<const ProfileInfo> profiles();

/// The profiles that stand for one family each, in the order of the model catalogue.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT std::span<const ProfileInfo> families();

/// The family of a model of the catalogue.
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT Profile familyOf(sdk::Model model);

[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT const ProfileInfo& profileInfo(Profile profile);
[[nodiscard]] TARN_DEVICE_SIMULATOR_EXPORT std::optional<Profile> profileFromText(std::string_view text);

} // namespace tarn::simulator
