#pragma once

#include <devices/export.h>

namespace tarn::devices {

/// Implemented by those controls that keep observers attached to the SDK. The host finds it by a
/// `dynamic_cast` from the control and calls it from one thread at a time.
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
