#pragma once

#include <sdk/service/calibrations/icalibrationcontroller.h>
#include <simulator/export.h>
#include <simulator/storage.h>
#include <utils/mutex.h>

#include <functional>
#include <system_error>
#include <vector>

namespace tarn::simulator {

/// A place for one set of calibration data: what is known of it whatever the data is. The queries are thread-safe; all
/// other functions belong to the instrument's thread, except that `changed` and `progressed` are filled while the
/// instrument is being put together.
class TARN_DEVICE_SIMULATOR_EXPORT CalibrationSlot {
public:
    using Status = sdk::service::calibrations::ICalibrationUnit::Status;
    using Progress = sdk::service::calibrations::Progress;

    /// Kept in `section` of `storage`.
    CalibrationSlot(Storage& storage, QString section);
    CalibrationSlot(const CalibrationSlot&) = delete;
    CalibrationSlot& operator=(const CalibrationSlot&) = delete;
    virtual ~CalibrationSlot() = default;

    [[nodiscard]] Status status() const;

    /// Whether there is data that fits the instrument as it is now, also while newer data is being saved.
    [[nodiscard]] bool isValid() const;

    void startSaving();
    void tellProgress(Progress progress) const;
    void endSaving();

    std::vector<std::function<void()>> changed; ///< called when the status has changed
    std::vector<std::function<void(Progress)>> progressed; ///< called when saving has come further

protected:
    /// What the storage holds; empty if that is nothing. Throws `StateError` if it cannot be used.
    [[nodiscard]] QByteArray load() const;

    /// Makes `bytes` durable.
    [[nodiscard]] std::error_code save(const QByteArray& bytes) const;

    /// Throws a `StateError`: what the storage holds cannot be used.
    void refuse() const;

    /// Whether there is data, and whether it fits.
    void setContents(bool hasData, bool isValid);

private:
    void setSaving(bool isSaving);

    Storage& m_storage;
    const QString m_section;
    mutable utils::Mutex m_mutex;
    bool m_hasData TARN_GUARDED_BY(m_mutex) = false;
    bool m_isValid TARN_GUARDED_BY(m_mutex) = false;
    bool m_isSaving TARN_GUARDED_BY(m_mutex) = false;
};

} // namespace tarn::simulator
