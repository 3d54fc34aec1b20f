#pragma once

#include <sdk/ifactorycorrectioncontrol.h>

#include <gmock/gmock.h>

namespace tarn::tests {

/// Every set is empty unless a test says otherwise.
class MockFactoryCorrectionControl : public sdk::IFactoryCorrectionControl {
public:
    MOCK_METHOD(sdk::CorrectionFlag, supportedCorrections, (), (override));
    MOCK_METHOD(sdk::CorrectionFlag, validCorrections, (), (override));
    MOCK_METHOD(sdk::CorrectionFlag, enabledCorrections, (), (override));
    MOCK_METHOD(sdk::CorrectionFlag, modifiableCorrections, (), (override));
    MOCK_METHOD(void, setEnabled, (sdk::CorrectionFlag, bool), (override));
    MOCK_METHOD(void, addObserver, (Observer*), (override));
    MOCK_METHOD(void, removeObserver, (Observer*), (override));
};

} // namespace tarn::tests
