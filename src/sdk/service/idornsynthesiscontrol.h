#pragma once

#include <sdk/key.h>
#include <sdk/visibility.h>

#include <vector>

namespace sdk::service {

/// The reference frequency of a Dorn device.
///
/// Threads: thread-safe; returns when the instrument has taken it.
class SDK_API IDORNSynthesisControl {
public:
    static constexpr Key key{0x53c0e0ba0de251e0}; ///< the device is asked for the control by it

    /// Frequencies in Hz.
    using Frequencies = std::vector<double>;

    IDORNSynthesisControl() = default;
    IDORNSynthesisControl(const IDORNSynthesisControl&) = delete;
    IDORNSynthesisControl& operator=(const IDORNSynthesisControl&) = delete;
    virtual ~IDORNSynthesisControl() = default;

    /// The reference frequencies that can be set.
    [[nodiscard]] virtual Frequencies availableReferenceFrequencies() = 0;

    /// The reference frequency, in Hz.
    [[nodiscard]] virtual double currentReferenceFrequency() = 0;

    /// Sets the reference frequency, in Hz.
    virtual void setReferenceFrequency(double frequency) = 0;
};

} // namespace sdk::service
