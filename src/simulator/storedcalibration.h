#pragma once

#include <simulator/archive.h>
#include <simulator/calibrationcheck.h>
#include <simulator/calibrationslot.h>
#include <utils/mutex.h>

#include <optional>
#include <system_error>
#include <utility>

namespace tarn::simulator {

/// A place for calibration data of the type `Data`, which is kept whole as one block.
template <class Data>
class StoredCalibration final : public CalibrationSlot {
public:
    /// As `storage` says. Throws `StateError` if that cannot be used.
    StoredCalibration(Storage& storage, QString section)
        : CalibrationSlot{storage, std::move(section)}
    {
        const auto bytes = load();
        if (bytes.isEmpty())
            return;
        Data data{};
        Reader reader{bytes};
        reader(data);
        if (!reader.isComplete())
            refuse();
        m_data = std::move(data);
    }

    /// What is stored. Thread-safe.
    [[nodiscard]] std::optional<Data> data() const
    {
        const utils::MutexLock lock{m_mutex};
        return m_data;
    }

    /// Makes `data` durable, then takes it over.
    [[nodiscard]] std::error_code store(Data data, const CalibrationLimits& limits)
    {
        if (const auto failure = save(Writer{data}.bytes()))
            return failure;
        {
            const utils::MutexLock lock{m_mutex};
            m_data = std::move(data);
        }
        fit(limits);
        return {};
    }

    /// From now on the instrument has these limits.
    void fit(const CalibrationLimits& limits)
    {
        const utils::MutexLock lock{m_mutex};
        setContents(m_data.has_value(), m_data && !check(*m_data, limits));
    }

private:
    mutable utils::Mutex m_mutex;
    std::optional<Data> m_data TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::simulator
