#pragma once

#include <sdk/key.h>
#include <sdk/visibility.h>

#include <string>
#include <unordered_map>

namespace sdk {

/// The temperatures of the instrument and of its modules, in degrees Celsius.
///
/// Threads: thread-safe; at once: the values are those of the instrument's last measurement.
class SDK_API ITemperatureControl {
public:
    static constexpr Key key{0xddcecfebdb4f5570}; ///< the device is asked for the control by it

    /// Temperature in degrees Celsius by module name (UTF-8, unique).
    using ModuleTemperatures = std::unordered_map<std::string, float>;

    /// Threads: called on a thread of the device's own choosing, with no lock held; the observer may
    /// call any operation of the control and of the device.
    class SDK_API Observer {
    public:
        Observer() = default;
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;
        virtual ~Observer() = default;

        /// New values were measured.
        virtual void onTemperatureChanged() = 0;
    };

    ITemperatureControl() = default;
    ITemperatureControl(const ITemperatureControl&) = delete;
    ITemperatureControl& operator=(const ITemperatureControl&) = delete;
    virtual ~ITemperatureControl() = default;

    /// The temperature of the instrument as a whole.
    [[nodiscard]] virtual float temperature() = 0;

    /// The temperatures of the modules, in no particular order.
    ///
    /// The map belongs to the control and stays as it is until the calling thread asks again or
    /// the control ends, so that it can be walked without a lock while the instrument goes on
    /// measuring.
    [[nodiscard]] virtual const ModuleTemperatures& moduleTemperatures() = 0;

    /// Registers `observer`, not owned. Registering one that is registered already changes
    /// nothing: it is still notified once per measurement.
    virtual void addObserver(Observer* observer) = 0;

    /// Ends a registration; does nothing for an observer that is not registered. Once it has
    /// returned, no notification of `observer` is running or will start, except for one that the
    /// calling thread itself is in the middle of. Never throws.
    ///
    /// Threads: thread-safe; blocks while a notification of `observer` runs on another thread.
    virtual void removeObserver(Observer* observer) = 0;
};

} // namespace sdk
