#pragma once

#include <simulator/clock.h>
#include <simulator/storage.h>
#include <simulator/thermalmodel.h>
#include <utils/mutex.h>

#include <QJsonObject>

namespace tarn::simulator {

/// The LO leakage function, kept in the storage until the power goes; off at first. While it is on it heats the LO
/// module by 4 kelvin. Thread-safe.
class LoLeakageModel {
public:
    /// As `storage` says. Throws `StateError` if that cannot be used.
    LoLeakageModel(Storage& storage, ThermalModel& thermal, Clock& clock);

    [[nodiscard]] bool isEnabled() const;

    /// Saves the sections of others in the same step. Throws, and leaves the function as it was, if
    /// that cannot be done.
    void setEnabled(bool enabled, QJsonObject others = {});

    /// The power goes and comes back.
    void cyclePower();

private:
    [[nodiscard]] bool save(bool enabled, QJsonObject others);
    void take(bool enabled) TARN_REQUIRES(m_mutex);

    Storage& m_storage;
    ThermalModel& m_thermal;
    Clock& m_clock;
    mutable utils::Mutex m_mutex;
    bool m_enabled TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::simulator
