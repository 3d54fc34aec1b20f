#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <sdk/service/ivellsynthesiscontrol.h>

#include <cstdint>
#include <vector>

namespace tarn::devices::service {

/// The selection of the intermediate frequency (IF) of a Vell device.
///
/// While the instrument does not offer the control the setters do nothing, and the getters return
/// what their comments name after "unavailable". Values are not checked here; the instrument judges
/// them.
///
/// Exceptions of the device pass through.
///
/// Threads: thread-safe; calls through.
class TARN_DEVICES_SERVICE_EXPORT SdkVellSynthesisControl final {
public:
    static constexpr std::uint64_t registryKey = 0xa045ab34ea41df44; ///< of its entry in the host's registry

    /// Reaches its SDK control through `control`, which it takes over.
    explicit SdkVellSynthesisControl(ReacquiringControl<sdk::service::IVellSynthesisControl> control);

    /// Selects the IF by hand, or leaves it to the instrument.
    void enableManualIf(bool enabled);

    /// Whether the IF is selected by hand; unavailable: `false`.
    [[nodiscard]] bool manualIfEnabled() const;

    /// Selects an IF by its position in the list.
    void setSelectedIf(int index);

    /// The position of the selected IF in the list; unavailable: 0.
    [[nodiscard]] int selectedIf() const;

    /// The IFs that can be selected, in Hz; unavailable: empty.
    [[nodiscard]] std::vector<double> supportedIfs() const;

private:
    ReacquiringControl<sdk::service::IVellSynthesisControl> m_control;
};

} // namespace tarn::devices::service
