#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <sdk/service/iquillsynthesiscontrol.h>

#include <cstdint>
#include <vector>

namespace tarn::devices::service {

/// The synthesizer of a Quill module.
///
/// While the instrument does not offer the control the setters do nothing, and the getters return
/// what their comments name after "unavailable". Values are not checked here; the instrument judges
/// them.
///
/// Exceptions of the device pass through.
///
/// Threads: thread-safe; calls through.
class TARN_DEVICES_SERVICE_EXPORT SdkQuillSynthesisControl final {
public:
    static constexpr std::uint64_t registryKey = 0xb6c338d276ce98fb; ///< of its entry in the host's registry

    /// Reaches its SDK control through `control`, which it takes over.
    explicit SdkQuillSynthesisControl(ReacquiringControl<sdk::service::IQuillSynthesisControl> control);

    /// Whether the local oscillator (LO) reaches the test ports; unavailable: `false`.
    [[nodiscard]] bool loLeakageMode() const;

    /// Lets the LO reach the test ports, or not.
    void setLoLeakageMode(bool enabled);

    /// Whether the IF is selected by hand; unavailable: `false`.
    [[nodiscard]] bool manualIfEnabled() const;

    /// Selects the IF by hand, or leaves it to the instrument.
    void enableManualIf(bool enabled);

    /// The position of the selected IF in the list; unavailable: 0.
    [[nodiscard]] int selectedIf() const;

    /// Selects an IF by its position in the list.
    void setSelectedIf(int index);

    /// The IFs that can be selected, in Hz; unavailable: empty.
    [[nodiscard]] std::vector<double> supportedIfs() const;

    /// The frequency of the first filter, in Hz; unavailable: 0.0.
    [[nodiscard]] double filter1Frequency() const;

    /// Sets the frequency of the first filter, in Hz.
    void setFilter1Frequency(double frequency);

    /// Whether the reference is selected by hand; unavailable: `false`.
    [[nodiscard]] bool manualRefEnabled() const;

    /// Selects the reference by hand, or leaves it to the instrument.
    void enableManualRef(bool enabled);

    /// The position of the selected reference in the list; unavailable: 0.
    [[nodiscard]] int selectedRef() const;

    /// Selects a reference by its position in the list.
    void setSelectedRef(int index);

    /// The reference frequencies that can be selected, in Hz; unavailable: empty.
    [[nodiscard]] std::vector<double> supportedRefs() const;

    /// Returns the synthesizer to its defaults.
    void reset();

private:
    ReacquiringControl<sdk::service::IQuillSynthesisControl> m_control;
};

} // namespace tarn::devices::service
