#pragma once

#include <sdk/visibility.h>

#include <string>

namespace sdk::service::calibrations {

/// One set of calibration data that a controller looks after.
///
/// Threads: thread-safe; at once.
class SDK_API ICalibrationUnit {
public:
    /// What there is of the data.
    enum class Status {
        Empty, ///< nothing is stored
        Saving, ///< data is being stored
        Valid, ///< data is stored and fits the instrument as it is now
        Invalid, ///< what is stored is damaged or was made for another configuration
    };

    ICalibrationUnit() = default;
    ICalibrationUnit(const ICalibrationUnit&) = delete;
    ICalibrationUnit& operator=(const ICalibrationUnit&) = delete;
    virtual ~ICalibrationUnit() = default;

    /// The unit's name, UTF-8, unique within its controller.
    [[nodiscard]] virtual std::string name() = 0;

    /// The status at this moment.
    [[nodiscard]] virtual Status status() = 0;
};

} // namespace sdk::service::calibrations
