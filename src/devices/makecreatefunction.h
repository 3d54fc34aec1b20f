#pragma once

#include <devices/reacquiringcontrol.h>
#include <sdk/controlhandle.h>

#include <any>
#include <functional>
#include <memory>
#include <utility>

namespace tarn::devices {

/// Makes the creation function of one control: called with a device, it returns a `std::any` that
/// holds a `std::shared_ptr<PublicIface>` to a new `Adapter`, or an empty one when the device does
/// not offer the control under `key` (or there is no device).
///
/// `Adapter` is constructed from a `ReacquiringControl<SdkIface>` and converts to `PublicIface`.
/// The creation function asks the device twice: once to see whether there is
/// such a control, once for the adapter's own first handle. The adapter keeps the device pointer
/// without owning it: destroy the control before the device. Exceptions of the device, of the
/// adapter's constructor and of the allocation pass through.
///
/// Threads: thread-safe; at once. The creation function is thread-safe and calls through.
template <class Device, class SdkIface, class PublicIface, class Adapter, class Key>
[[nodiscard]] std::function<std::any(Device*)> makeCreateFunction(Key key)
{
    return [key](Device* device) -> std::any {
        const auto ask
            = [device, key] { return sdk::ControlHandle<SdkIface>{device->template control<SdkIface>(key)}; };
        if (!device || ask().expired())
            return {};
        return std::shared_ptr<PublicIface>{std::make_shared<Adapter>(ReacquiringControl<SdkIface>{ask})};
    };
}

} // namespace tarn::devices
