#pragma once

#include <sdk/service/imemoryusbidcontrol.h>

#include <gmock/gmock.h>

namespace tarn::tests {

/// Reports `device` unless a test says otherwise.
class MockMemoryUsbIdControl : public sdk::service::IMemoryUsbIdControl {
public:
    MockMemoryUsbIdControl() { ON_CALL(*this, currentDevice).WillByDefault(testing::ReturnPointee(&device)); }

    MOCK_METHOD(bool, isAvailable, (), (override));
    MOCK_METHOD(DeviceRecord, currentDevice, (), (override));
    MOCK_METHOD(std::vector<DeviceRecord>, supportedDevices, (), (override));
    MOCK_METHOD(void, writeUsbId, (const UsbId&, sdk::Completion<>), (override));

    DeviceRecord device{{1, 2, 3}, sdk::Model{"Mock"}, 4, {}};
};

} // namespace tarn::tests
