#pragma once

#include <sdk/itemperaturecontrol.h>

#include <gmock/gmock.h>

#include <atomic>

namespace tarn::tests {

/// Answers with `instrument` and `modules` unless a test says otherwise, and remembers the
/// observer that was attached last.
class MockTemperatureControl : public sdk::ITemperatureControl {
public:
    MockTemperatureControl()
    {
        ON_CALL(*this, temperature).WillByDefault(testing::ReturnPointee(&instrument));
        ON_CALL(*this, moduleTemperatures).WillByDefault(testing::ReturnRef(modules));
        ON_CALL(*this, addObserver).WillByDefault([this](Observer* attached) { m_observer = attached; });
    }

    MOCK_METHOD(float, temperature, (), (override));
    MOCK_METHOD(const ModuleTemperatures&, moduleTemperatures, (), (override));
    MOCK_METHOD(void, addObserver, (Observer*), (override));
    MOCK_METHOD(void, removeObserver, (Observer*), (override));

    float instrument = 0.0F;
    ModuleTemperatures modules;

    [[nodiscard]] Observer* observer() const { return m_observer; }

private:
    std::atomic<Observer*> m_observer{nullptr}; // two threads may attach at once
};

} // namespace tarn::tests
