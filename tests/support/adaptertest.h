#pragma once

#include <support/devicehandle.h>
#include <support/fakevna.h>

#include <devices/reacquiringcontrol.h>

#include <gmock/gmock.h>

#include <memory>

namespace tarn::tests {

/// An adapter before a device that offers a mock of its SDK control.
template <class Sdk, class Adapter, class Mock>
class AdapterTest : public testing::Test {
protected:
    FakeVna device;
    std::shared_ptr<Mock> mock = std::make_shared<Mock>();
    Adapter control{offered()};

private:
    devices::ReacquiringControl<Sdk> offered()
    {
        device.offer<Sdk>(Sdk::key, mock);
        return handleTo<Sdk>(device, Sdk::key);
    }
};

/// A mock that remembers the observer attached to it, and that nobody asks whether it is available.
template <class Mock, class Observer>
class AttachedMock : public testing::NiceMock<Mock> {
public:
    AttachedMock()
    {
        ON_CALL(*this, addObserver).WillByDefault(testing::SaveArg<0>(&attached));
        EXPECT_CALL(*this, isAvailable).Times(0);
    }

    Observer* attached = nullptr;
};

} // namespace tarn::tests
