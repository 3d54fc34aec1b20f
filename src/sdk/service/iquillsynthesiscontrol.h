#pragma once

#include <sdk/key.h>
#include <sdk/visibility.h>

#include <span>

namespace sdk::service {

/// The synthesizer of a Quill module.
///
/// Threads: thread-safe; returns when the instrument has taken it.
class SDK_API IQuillSynthesisControl {
public:
    static constexpr Key key{0x7922b1012a0983af}; ///< the device is asked for the control by it

    IQuillSynthesisControl() = default;
    IQuillSynthesisControl(const IQuillSynthesisControl&) = delete;
    IQuillSynthesisControl& operator=(const IQuillSynthesisControl&) = delete;
    virtual ~IQuillSynthesisControl() = default;

    /// Lets the local oscillator (LO) reach the test ports, or not.
    virtual void setLoLeakageMode(bool enabled) = 0;

    /// Whether the LO reaches the test ports.
    [[nodiscard]] virtual bool loLeakageMode() = 0;

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

    /// Sets the frequency of the first filter, in Hz.
    virtual void setFilter1Frequency(double frequency) = 0;

    /// The frequency of the first filter, in Hz.
    [[nodiscard]] virtual double filter1Frequency() = 0;

    /// Selects the reference by hand, or leaves it to the instrument.
    virtual void setManualRefEnabled(bool enabled) = 0;

    /// Whether the reference is selected by hand.
    [[nodiscard]] virtual bool manualRefEnabled() = 0;

    /// Selects a reference by its position in the list.
    virtual void setSelectedRef(int index) = 0;

    /// The position of the selected reference in the list.
    [[nodiscard]] virtual int selectedRef() = 0;

    /// The reference frequencies that can be selected, in Hz. The array belongs to the control and
    /// stays as it is for as long as the control lives.
    [[nodiscard]] virtual std::span<const double> supportedRefs() = 0;

    /// Returns the synthesizer to its defaults.
    virtual void reset() = 0;
};

} // namespace sdk::service
