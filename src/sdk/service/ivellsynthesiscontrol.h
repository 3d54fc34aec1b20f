#pragma once

#include <sdk/key.h>
#include <sdk/visibility.h>

#include <span>

namespace sdk::service {

/// The selection of the intermediate frequency (IF) of a Vell device.
///
/// Threads: thread-safe; returns when the instrument has taken it.
class SDK_API IVellSynthesisControl {
public:
    static constexpr Key key{0xf636764463dee854}; ///< the device is asked for the control by it

    IVellSynthesisControl() = default;
    IVellSynthesisControl(const IVellSynthesisControl&) = delete;
    IVellSynthesisControl& operator=(const IVellSynthesisControl&) = delete;
    virtual ~IVellSynthesisControl() = default;

    /// Selects the IF by hand, or leaves it to the instrument.
    virtual void setManualIfEnabled(bool enabled) = 0;

    /// Whether the IF is selected by hand.
    [[nodiscard]] virtual bool manualIfEnabled() = 0;

    /// Selects an IF by its position in the list.
    virtual void setSelectedIf(int index) = 0;

    /// The position of the selected IF in the list.
    [[nodiscard]] virtual int selectedIf() = 0;

    /// The intermediate frequencies (IF) that can be selected, in Hz. The array belongs to the control
    /// and stays as it is for as long as the control lives.
    [[nodiscard]] virtual std::span<const double> supportedIfs() = 0;
};

} // namespace sdk::service
