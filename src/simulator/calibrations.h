#pragma once

#include <simulator/calibrationdata.h>
#include <simulator/calibrationlimits.h>
#include <simulator/storedcalibration.h>
#include <utils/mutex.h>

namespace tarn::simulator {

/// The calibration data in an instrument, and what it takes as such. The limits are thread-safe.
class Calibrations {
public:
    /// As `storage` says. Throws `StateError` if that cannot be used.
    explicit Calibrations(Storage& storage)
        : systemTerms{storage, QStringLiteral("systemTerms")}
        , ifsw{storage, QStringLiteral("ifswCalibration")}
        , power{storage, QStringLiteral("powerCalibration")}
    {
    }

    /// What the instrument takes.
    [[nodiscard]] CalibrationLimits limits() const
    {
        const utils::MutexLock lock{m_mutex};
        return m_limits;
    }

    /// From now on the instrument takes this; what is stored may not fit any more.
    void setLimits(const CalibrationLimits& limits)
    {
        {
            const utils::MutexLock lock{m_mutex};
            m_limits = limits;
        }
        systemTerms.fit(limits);
        ifsw.fit(limits);
        power.fit(limits);
    }

    StoredCalibration<SystemTerms> systemTerms;
    StoredCalibration<IfswCalibration> ifsw;
    StoredCalibration<PowerCalibration> power;

private:
    mutable utils::Mutex m_mutex;
    CalibrationLimits m_limits TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::simulator
