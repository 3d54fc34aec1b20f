#pragma once

#include <sdk/service/iloleakagecontrol.h>

#include <gmock/gmock.h>

namespace tarn::tests {

class MockLoLeakageControl : public sdk::service::ILoLeakageControl {
public:
    MOCK_METHOD(bool, isEnabled, (), (override));
    MOCK_METHOD(void, setEnabled, (bool), (override));
};

} // namespace tarn::tests
