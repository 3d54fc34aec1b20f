#pragma once

#include <devices/service/sdktemperaturecontrol.h>

#include <support/fakevna.h>
#include <support/mocktemperaturecontrol.h>

#include <gmock/gmock.h>

#include <memory>
#include <optional>

namespace tarn::tests {

/// A handle to the temperature control that `device` offers.
inline devices::ReacquiringControl<sdk::ITemperatureControl> handleTo(FakeVna& device)
{
    return devices::ReacquiringControl<sdk::ITemperatureControl>{[&device] {
        return sdk::ControlHandle<sdk::ITemperatureControl>{
            device.control<sdk::ITemperatureControl>(sdk::ITemperatureControl::key)};
    }};
}

/// A temperature control before a device, and a count of its signals.
class TemperatureBench : public testing::Test {
protected:
    void offer()
    {
        mock = std::make_shared<testing::NiceMock<MockTemperatureControl>>();
        device.offer<sdk::ITemperatureControl>(sdk::ITemperatureControl::key, mock);
    }

    /// Drops the control; the test keeps no reference either.
    void drop()
    {
        device.drop(sdk::ITemperatureControl::key);
        mock.reset();
    }

    /// Builds the adapter and counts its signals from then on.
    void construct()
    {
        control.emplace(handleTo(device));
        QObject::connect(&*control, &devices::service::SdkTemperatureControl::temperaturesChanged,
                         [this] { ++signalCount; });
    }

    FakeVna device;
    std::shared_ptr<testing::NiceMock<MockTemperatureControl>> mock;
    std::optional<devices::service::SdkTemperatureControl> control;
    int signalCount = 0;
};

} // namespace tarn::tests
