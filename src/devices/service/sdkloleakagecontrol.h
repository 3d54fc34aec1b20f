#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <sdk/service/iloleakagecontrol.h>

#include <cstdint>

namespace tarn::devices::service {

/// The local-oscillator (LO) leakage function of the instrument.
///
/// Exceptions of the device pass through.
///
/// Threads: thread-safe; calls through.
class TARN_DEVICES_SERVICE_EXPORT SdkLoLeakageControl final {
public:
    static constexpr std::uint64_t registryKey = 0x39ce7f28fb8c58bd; ///< of its entry in the host's registry

    /// Reaches its SDK control through `control`, which it takes over.
    explicit SdkLoLeakageControl(ReacquiringControl<sdk::service::ILoLeakageControl> control);

    /// Whether the function is on, as the instrument reports it; `false` while the instrument does
    /// not offer the control, so a caller cannot tell the two apart here.
    [[nodiscard]] bool isEnabled() const;

    /// Switches the function on or off; does nothing while the instrument does not offer the
    /// control.
    void setEnabled(bool enabled);

private:
    ReacquiringControl<sdk::service::ILoLeakageControl> m_control;
};

} // namespace tarn::devices::service
