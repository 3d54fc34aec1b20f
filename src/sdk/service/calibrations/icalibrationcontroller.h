#pragma once

#include <sdk/key.h>
#include <sdk/service/calibrations/icalibrationunit.h>
#include <sdk/visibility.h>

#include <cstdint>
#include <vector>

namespace sdk::service::calibrations {

/// How far the saving of a unit has come, in the instrument's own measure.
struct Progress {
    std::uint64_t done; ///< the work that is done
    std::uint64_t total; ///< all the work there is; 0 while that is unknown

    friend bool operator==(const Progress&, const Progress&) = default;
};

/// Looks after a group of calibration units. An instrument may offer two controllers, under a key
/// each.
///
/// Threads: thread-safe; at once.
class SDK_API ICalibrationController {
public:
    static constexpr Key firstKey{0x94a0057f903adbec}; ///< the device is asked for the first controller by it
    static constexpr Key secondKey{0x41a4a601b7307494}; ///< and for the second one

    /// Threads: called on a thread of the device's own choosing, one notification at a time, with no
    /// lock held; an observer may call any operation of the controller and of its units.
    class SDK_API Observer {
    public:
        Observer() = default;
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;
        virtual ~Observer() = default;

        /// The status of `unit` has changed.
        virtual void onUnitStatusChanged(ICalibrationUnit* unit) = 0;

        /// The saving of `unit` has come this far.
        virtual void onSaveProgress(ICalibrationUnit* unit, Progress progress) = 0;

        /// The list of units has changed.
        virtual void onConfigurationChanged() = 0;
    };

    ICalibrationController() = default;
    ICalibrationController(const ICalibrationController&) = delete;
    ICalibrationController& operator=(const ICalibrationController&) = delete;
    virtual ~ICalibrationController() = default;

    /// Registers `observer`, not owned. Registering one that is registered already changes
    /// nothing: it is still notified once per event.
    virtual void addObserver(Observer* observer) = 0;

    /// Ends a registration; does nothing for an observer that is not registered. Once it has
    /// returned, no notification of `observer` is running or will start, except for one that the
    /// calling thread itself is in the middle of. Never throws.
    ///
    /// Threads: thread-safe; blocks while a notification of `observer` runs on another thread.
    virtual void removeObserver(Observer* observer) = 0;

    /// The units, in the instrument's order. They belong to the controller and live as long as it.
    /// No adapter calls it; it is for those who are handed the controller.
    [[nodiscard]] virtual std::vector<ICalibrationUnit*> units() = 0;
};

} // namespace sdk::service::calibrations
