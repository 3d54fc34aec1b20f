#pragma once

#include <sdk/service/ivellfactorypowercalibrationcontrol.h>

#include <gmock/gmock.h>

namespace tarn::tests {

class MockVellFactoryPowerCalibrationControl : public sdk::service::IVellFactoryPowerCalibrationControl {
public:
    MOCK_METHOD(void, addObserver, (Observer*), (override));
    MOCK_METHOD(void, removeObserver, (Observer*), (override));
    MOCK_METHOD(sdk::FrequencyPlan, frequencyPlan, (), (override));
    MOCK_METHOD(void, saveCalibrationData, (std::int64_t, std::vector<PowerCalPoint>, double), (override));
};

} // namespace tarn::tests
