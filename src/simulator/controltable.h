#pragma once

#include <sdk/key.h>
#include <simulator/bench.h>
#include <simulator/profile.h>

#include <initializer_list>
#include <memory>
#include <vector>

namespace tarn::simulator {

/// The families whose instruments have a control.
class Families {
public:
    constexpr Families(std::initializer_list<Profile> families)
    {
        for (const auto family : families)
            m_bits |= bit(family);
    }

    [[nodiscard]] constexpr bool contains(Profile family) const { return (m_bits & bit(family)) != 0; }

private:
    static constexpr unsigned bit(Profile family) { return 1U << static_cast<unsigned>(family); }

    unsigned m_bits = 0;
};

/// One control that an instrument has.
struct InstalledControl {
    sdk::Key key;
    MakeControl make;
    Families families; ///< that offer it
};

/// Puts every control that an instrument of `profile` can ever offer into it: all of them, as it
/// can be given the identity of any model, or none. Throws `StateError` if one of them cannot use
/// what its storage holds.
[[nodiscard]] std::vector<InstalledControl> installControls(Profile profile, const std::shared_ptr<Bench>& bench);

/// Whether an instrument of `profile` that identifies itself as `model` offers the control.
[[nodiscard]] bool isOffered(const InstalledControl& control, Profile profile, sdk::Model model);

} // namespace tarn::simulator
