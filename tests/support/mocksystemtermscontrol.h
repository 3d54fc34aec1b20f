#pragma once

#include <sdk/service/isystemtermscontrol.h>

#include <gmock/gmock.h>

namespace tarn::tests {

class MockSystemTermsControl : public sdk::service::ISystemTermsControl {
public:
    MOCK_METHOD(void, addObserver, (Observer*), (override));
    MOCK_METHOD(void, removeObserver, (Observer*), (override));
    MOCK_METHOD(sdk::FrequencyPlan, frequencyPlan, (), (override));
    MOCK_METHOD(std::uint32_t, portCount, (), (override));
    MOCK_METHOD(std::uint32_t, maximumPointCount, (), (override));
    MOCK_METHOD(void, writeTerms, (std::int64_t, sdk::corrections::ErrorTerms, double), (override));
    MOCK_METHOD(bool, isFrequencyOverrideSupported, (), (override));
    MOCK_METHOD(void, writeTermsForPlan, (std::int64_t, sdk::FrequencyPlan, sdk::corrections::ErrorTerms, double),
                (override));
};

} // namespace tarn::tests
