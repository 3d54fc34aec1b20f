#pragma once

#include <sdk/service/imemoryoperationscontrol.h>

#include <gmock/gmock.h>

namespace tarn::tests {

class MockMemoryOperationsControl : public sdk::service::IMemoryOperationsControl {
public:
    MOCK_METHOD(bool, isAvailable, (), (override));
    MOCK_METHOD(void, read, (sdk::Completion<std::vector<std::byte>>), (override));
    MOCK_METHOD(void, write, (std::vector<std::byte>, sdk::Completion<>), (override));
    MOCK_METHOD(void, erase, (sdk::Completion<>), (override));
    MOCK_METHOD(void, integrityCheck, (sdk::Completion<>), (override));
    MOCK_METHOD(void, addObserver, (IObserver*), (override));
    MOCK_METHOD(void, removeObserver, (IObserver*), (override));
};

} // namespace tarn::tests
