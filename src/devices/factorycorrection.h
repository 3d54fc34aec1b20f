#pragma once

#include <devices/export.h>
#include <sdk/correctionflag.h>

#include <optional>

namespace tarn::devices {

/// The factory corrections that the application knows.
enum class FactoryCorrection {
    System, ///< system error terms of the test ports
    SourcePower, ///< level of the source over frequency
    ReceiverPower, ///< absolute level of the receivers over frequency
    ReceiverLinearity, ///< compression of the receivers over level
    IfSwitch, ///< ratios of the positions of the intermediate-frequency (IF) switches
    AttenuatorSteps, ///< deviation of the step attenuators from their nominal values
    PortExtension, ///< electrical length from the reference plane to the connectors
    Crosstalk, ///< leakage between the receivers
    Temperature, ///< drift with the temperatures of the modules
    ReferenceOscillator, ///< frequency of the built-in reference oscillator
};

/// The SDK's bit of `correction`; no bit for a value without an enumerator.
///
/// Threads: reentrant; at once.
[[nodiscard]] TARN_DEVICES_EXPORT sdk::CorrectionFlag toSdkCorrection(FactoryCorrection correction);

/// The correction of a single bit; nothing for a bit without a counterpart here, and for any other
/// number of bits.
///
/// Threads: reentrant; at once.
[[nodiscard]] TARN_DEVICES_EXPORT std::optional<FactoryCorrection> fromSdkCorrection(sdk::CorrectionFlag flag);

} // namespace tarn::devices
