#pragma once

#include <sdk/service/imemoryserialnumbercontrol.h>

#include <gmock/gmock.h>

namespace tarn::tests {

class MockMemorySerialNumberControl : public sdk::service::IMemorySerialNumberControl {
public:
    MOCK_METHOD(bool, isAvailable, (), (override));
    MOCK_METHOD(void, serialNumber, (sdk::Completion<unsigned int>), (override));
    MOCK_METHOD(void, writeSerialNumber, (unsigned int, sdk::Completion<>), (override));
    MOCK_METHOD(void, addObserver, (Observer*), (override));
    MOCK_METHOD(void, removeObserver, (Observer*), (override));
};

} // namespace tarn::tests
