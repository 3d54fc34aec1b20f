#pragma once

#include <support/fakevna.h>

#include <devices/reacquiringcontrol.h>
#include <sdk/controlhandle.h>

#include <memory>
#include <utility>

namespace tarn::tests {

/// A handle to the control that `device`, which must outlive it, offers under `key`.
template <class Sdk>
[[nodiscard]] devices::ReacquiringControl<Sdk> handleTo(FakeVna& device, sdk::Key key)
{
    return devices::ReacquiringControl<Sdk>{
        [&device, key] { return sdk::ControlHandle<Sdk>{device.control<Sdk>(key)}; }};
}

/// A handle to `control`, which stays alive; to none if it is null.
template <class Sdk, class Control>
[[nodiscard]] devices::ReacquiringControl<Sdk> handleTo(std::shared_ptr<Control> control)
{
    return devices::ReacquiringControl<Sdk>{
        [control = std::move(control)] { return sdk::ControlHandle<Sdk>{control}; }};
}

} // namespace tarn::tests
