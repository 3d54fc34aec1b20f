#pragma once

#include <sdk/service/calibrations/icalibrationcontroller.h>

#include <gmock/gmock.h>

namespace tarn::tests {

class MockCalibrationController : public sdk::service::calibrations::ICalibrationController {
public:
    MOCK_METHOD(void, addObserver, (Observer*), (override));
    MOCK_METHOD(void, removeObserver, (Observer*), (override));
    MOCK_METHOD(std::vector<sdk::service::calibrations::ICalibrationUnit*>, units, (), (override));
};

} // namespace tarn::tests
