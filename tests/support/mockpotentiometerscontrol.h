#pragma once

#include <sdk/service/ipotentiometerscontrol.h>

#include <gmock/gmock.h>

namespace tarn::tests {

class MockPotentiometersControl : public sdk::service::IPotentiometersControl {
public:
    MOCK_METHOD(bool, isAvailable, (), (override));
    MOCK_METHOD(std::vector<Potentiometer>, potentiometers, (), (override));
    MOCK_METHOD(void, readFromEeprom, (unsigned long, sdk::Completion<int>), (override));
    MOCK_METHOD(void, writeToRam, (unsigned long, int, sdk::Completion<>), (override));
    MOCK_METHOD(void, writeToEeprom, (unsigned long, int, sdk::Completion<>), (override));
};

} // namespace tarn::tests
