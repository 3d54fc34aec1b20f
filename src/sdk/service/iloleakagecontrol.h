#pragma once

#include <sdk/key.h>
#include <sdk/visibility.h>

namespace sdk::service {

/// The local-oscillator (LO) leakage function of the instrument. While it is on, the LO reaches
/// the test ports.
///
/// Threads: thread-safe; returns when the instrument has taken it.
class SDK_API ILoLeakageControl {
public:
    static constexpr Key key{0x33f09cc532b7707a}; ///< the device is asked for the control by it

    ILoLeakageControl() = default;
    ILoLeakageControl(const ILoLeakageControl&) = delete;
    ILoLeakageControl& operator=(const ILoLeakageControl&) = delete;
    virtual ~ILoLeakageControl() = default;

    /// Whether the function is on.
    [[nodiscard]] virtual bool isEnabled() = 0;

    /// Switches the function on or off.
    virtual void setEnabled(bool enabled) = 0;
};

} // namespace sdk::service
