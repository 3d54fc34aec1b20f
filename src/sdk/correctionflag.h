#pragma once

#include <cstdint>

namespace sdk {

/// A set of factory corrections: each is one bit. Bits without a name are reserved.
enum class CorrectionFlag : std::uint16_t {
    None = 0,
    System = 1U << 0U, ///< system error terms of the test ports
    SourcePower = 1U << 1U, ///< level of the source over frequency
    ReceiverPower = 1U << 2U, ///< absolute level of the receivers over frequency
    IfSwitch = 1U << 3U, ///< ratios of the positions of the intermediate-frequency (IF) switches
    ReceiverLinearity = 1U << 4U, ///< compression of the receivers over level
    PortExtension = 1U << 5U, ///< electrical length from the reference plane to the connectors
    Crosstalk = 1U << 6U, ///< leakage between the receivers
    Temperature = 1U << 7U, ///< drift with the temperatures of the modules
    AttenuatorSteps = 1U << 8U, ///< deviation of the step attenuators from their nominal values
    AdcLinearity = 1U << 9U, ///< of the converters; the instrument's own affair
    ChannelAlignment = 1U << 10U, ///< phase alignment of the receiver channels; the instrument's own affair
    ReferenceOscillator = 1U << 15U, ///< frequency of the built-in reference oscillator
};

/// The corrections that are in `a`, in `b` or in both.
///
/// Threads: reentrant; at once.
[[nodiscard]] constexpr CorrectionFlag operator|(CorrectionFlag a, CorrectionFlag b) noexcept
{
    return static_cast<CorrectionFlag>(static_cast<std::uint16_t>(a) | static_cast<std::uint16_t>(b));
}

/// The corrections that are in both `a` and `b`.
///
/// Threads: reentrant; at once.
[[nodiscard]] constexpr CorrectionFlag operator&(CorrectionFlag a, CorrectionFlag b) noexcept
{
    return static_cast<CorrectionFlag>(static_cast<std::uint16_t>(a) & static_cast<std::uint16_t>(b));
}

} // namespace sdk
