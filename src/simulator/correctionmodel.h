#pragma once

#include <sdk/correctionflag.h>
#include <simulator/calibrations.h>
#include <simulator/export.h>
#include <simulator/storage.h>
#include <utils/mutex.h>

#include <functional>

namespace tarn::simulator {

/// The factory corrections. Thread-safe.
///
/// - `System` is valid with system terms.
/// - `SourcePower`, `ReceiverPower` and `AttenuatorSteps` are valid with a power calibration.
/// - `IfSwitch` and `ReceiverLinearity` are valid with a calibration of the IF switches.
/// - `PortExtension`, `Crosstalk` and `Temperature` are always valid.
/// - `AdcLinearity`, `ChannelAlignment` and `ReferenceOscillator` are always valid and cannot be switched.
///
/// A correction cannot be switched either while the data that it is valid with is being written.
///
/// Those that need a factory calibration are supported where the instrument can be given one, the others everywhere. As
/// delivered, those are on that are always valid. The switches are kept in the storage.
class TARN_DEVICE_SIMULATOR_EXPORT CorrectionModel {
public:
    using Flag = sdk::CorrectionFlag;

    /// As `storage` says. Throws `StateError` if that cannot be used.
    CorrectionModel(Storage& storage, const Calibrations& calibrations);

    [[nodiscard]] Flag supported() const;
    [[nodiscard]] Flag valid() const;
    [[nodiscard]] Flag enabled() const;
    [[nodiscard]] Flag modifiable() const;

    /// Switches a correction; one that is not valid or not modifiable, and what is not a single correction, stays as it
    /// is. Durable before `changed` is called, which happens for what was not so already. Throws, and leaves the
    /// switches as they were, if they cannot be saved.
    void setEnabled(Flag correction, bool enabled, const std::function<void()>& changed);

private:
    Storage& m_storage;
    const Calibrations& m_calibrations;
    mutable utils::Mutex m_mutex;
    Flag m_enabled TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::simulator
