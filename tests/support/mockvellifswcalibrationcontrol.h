#pragma once

#include <sdk/service/ivellifswcalibrationcontrol.h>

#include <gmock/gmock.h>

namespace tarn::tests {

class MockVellIfswCalibrationControl : public sdk::service::IVellIfswCalibrationControl {
public:
    MOCK_METHOD(void, addObserver, (Observer*), (override));
    MOCK_METHOD(void, removeObserver, (Observer*), (override));
    MOCK_METHOD(sdk::FrequencyPlan, frequencyPlan, (), (override));
    MOCK_METHOD(void, saveCalibrationData, (IfswCalibrationData), (override));
};

} // namespace tarn::tests
