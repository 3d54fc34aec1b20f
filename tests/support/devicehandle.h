#pragma once

#include <support/fakevna.h>

#include <devices/reacquiringcontrol.h>
#include <sdk/controlhandle.h>

namespace tarn::tests {

/// A handle to the control that `device`, which must outlive it, offers under `key`.
template <class Sdk>
[[nodiscard]] devices::ReacquiringControl<Sdk> handleTo(FakeVna& device, sdk::Key key)
{
    return devices::ReacquiringControl<Sdk>{
        [&device, key] { return sdk::ControlHandle<Sdk>{device.control<Sdk>(key)}; }};
}

} // namespace tarn::tests
