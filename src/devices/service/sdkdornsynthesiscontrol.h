#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <sdk/service/idornsynthesiscontrol.h>

#include <cstdint>

namespace tarn::devices::service {

/// The reference frequency of a Dorn device.
///
/// While the instrument does not offer the control the setters do nothing, and the getters return
/// what their comments name after "unavailable". Values are not checked here; the instrument judges
/// them.
///
/// Exceptions of the device pass through.
///
/// Threads: thread-safe; calls through.
class TARN_DEVICES_SERVICE_EXPORT SdkDornSynthesisControl final {
public:
    static constexpr std::uint64_t registryKey = 0x374b2cb5ef097bee; ///< of its entry in the host's registry

    /// The SDK's list of frequencies, in Hz.
    using Frequencies = sdk::service::IDORNSynthesisControl::Frequencies;

    /// Reaches its SDK control through `control`, which it takes over.
    explicit SdkDornSynthesisControl(ReacquiringControl<sdk::service::IDORNSynthesisControl> control);

    /// The reference frequencies that can be set; unavailable: empty.
    [[nodiscard]] Frequencies availableReferenceFrequencies() const;

    /// The reference frequency, in Hz; unavailable: 0.0.
    [[nodiscard]] double currentReferenceFrequency() const;

    /// Sets the reference frequency, in Hz.
    void setReferenceFrequency(double frequency);

private:
    ReacquiringControl<sdk::service::IDORNSynthesisControl> m_control;
};

} // namespace tarn::devices::service
