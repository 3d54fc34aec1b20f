#pragma once

#include <devices/export.h>

namespace tarn::devices {

/// Implemented by those controls that keep observers attached to the SDK. The host finds it by a
/// `dynamic_cast` from the control.
///
/// Threads: called on the thread on which the device brings the notification, one at a time, with the
/// lifecycle mutex of `InstrumentControls` held; another host calls it one at a time as well. An
/// implementation calls through, and to detach blocks while a notification of its own runs on another
/// thread.
class TARN_DEVICES_EXPORT IControlLifecycleObserver {
public:
    IControlLifecycleObserver() = default;
    IControlLifecycleObserver(const IControlLifecycleObserver&) = delete;
    IControlLifecycleObserver& operator=(const IControlLifecycleObserver&) = delete;
    virtual ~IControlLifecycleObserver() = default;

    /// The device is about to drop its controls: detach from the SDK control if it is still there.
    virtual void onControlsAboutToBeReleased() = 0;

    /// The device's controls can be obtained (again): attach to the SDK control if it is there.
    virtual void onControlsAvailable() = 0;
};

} // namespace tarn::devices
