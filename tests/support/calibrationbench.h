#pragma once

#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>

#include <support/devicehandle.h>
#include <support/fakevna.h>
#include <support/mockvellfactorypowercalibrationcontrol.h>
#include <support/mockvellifswcalibrationcontrol.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace tarn::tests {

/// The two calibration controls, whose observers are kept in the same way.
struct Ifsw {
    using Sdk = sdk::service::IVellIfswCalibrationControl;
    using SdkObserver = Sdk::Observer;
    using Adapter = devices::service::SdkVellIfswCalibrationControl;
    using Mock = MockVellIfswCalibrationControl;
};
struct Power {
    using Sdk = sdk::service::IVellFactoryPowerCalibrationControl;
    using SdkObserver = Sdk::Observer;
    using Adapter = devices::service::SdkVellFactoryPowerCalibrationControl;
    using Mock = MockVellFactoryPowerCalibrationControl;
};
using CalibrationControls = testing::Types<Ifsw, Power>;

/// The observers of a control that keeps its word: a removed one is not being notified and will not
/// be, and nobody is once the control was dropped. Thread-safe.
template <class SdkObserver>
class RegisteredObservers {
public:
    void add(SdkObserver* observer)
    {
        const std::scoped_lock lock{m_mutex};
        m_observers.push_back(observer);
    }

    void remove(SdkObserver* observer)
    {
        const std::scoped_lock lock{m_mutex};
        std::erase(m_observers, observer);
    }

    /// Tells every observer something.
    void notify(const std::function<void(SdkObserver&)>& tell)
    {
        const std::scoped_lock lock{m_mutex};
        if (m_isDropped)
            return;
        for (auto* const observer : m_observers)
            tell(*observer);
    }

    void notify(unsigned int progress)
    {
        notify([progress](SdkObserver& observer) { observer.onWriteProgressChanged(progress); });
    }

    void drop()
    {
        const std::scoped_lock lock{m_mutex};
        m_isDropped = true;
    }

    /// How many registrations there are, an observer that is registered twice counting as two.
    [[nodiscard]] std::size_t count() const
    {
        const std::scoped_lock lock{m_mutex};
        return m_observers.size();
    }

private:
    mutable std::mutex m_mutex;
    std::vector<SdkObserver*> m_observers;
    bool m_isDropped = false;
};

/// A control with observers before a device that offers the SDK's controls and takes them back.
template <class Calibration>
class CalibrationBench : public testing::Test {
protected:
    using Sdk = typename Calibration::Sdk;
    using Adapter = typename Calibration::Adapter;
    using SdkObserver = typename Calibration::SdkObserver;
    using Registered = RegisteredObservers<SdkObserver>;

    /// Offers a new control in place of the one before, which is dropped.
    void offer()
    {
        drop();
        auto mock = std::make_shared<testing::NiceMock<typename Calibration::Mock>>();
        ON_CALL(*mock, addObserver).WillByDefault([this, registry = registered()](SdkObserver* observer) {
            if (whenAdded)
                whenAdded(observer);
            registry->add(observer);
            if (onceAdded)
                onceAdded();
        });
        ON_CALL(*mock, removeObserver).WillByDefault([this, registry = registered()](SdkObserver* observer) {
            if (whenRemoving)
                whenRemoving(observer);
            registry->remove(observer);
            if (whenRemoved)
                whenRemoved(observer);
        });
        device.template offer<Sdk>(Sdk::key, std::move(mock));
    }

    void drop()
    {
        registered()->drop();
        {
            const std::scoped_lock lock{m_mutex};
            m_registered = std::make_shared<Registered>();
        }
        device.drop(Sdk::key);
    }

    /// A handle to the control that is offered.
    [[nodiscard]] devices::ReacquiringControl<Sdk> handle() { return handleTo<Sdk>(device, Sdk::key); }

    [[nodiscard]] int asked() const { return device.asked(Sdk::key); }

    /// The observers of the control that is offered now.
    [[nodiscard]] std::shared_ptr<Registered> registered() const
    {
        const std::scoped_lock lock{m_mutex};
        return m_registered;
    }

    FakeVna device;
    std::function<void(SdkObserver*)> whenAdded; ///< runs in every registration, before it is made
    std::function<void()> onceAdded; ///< runs in every registration, after it was made
    std::function<void(SdkObserver*)> whenRemoving; ///< runs in every removal, before it is made
    std::function<void(SdkObserver*)> whenRemoved; ///< runs in every removal, after it was made

private:
    mutable std::mutex m_mutex;
    std::shared_ptr<Registered> m_registered = std::make_shared<Registered>();

protected:
    Adapter control{handle()};
};

/// Hears the progress and nothing else.
template <class Adapter>
struct ProgressListener final : Adapter::Observer {
    void onWriteStarted() override { ADD_FAILURE(); }
    void onWriteProgressChanged(std::uint32_t progress) override
    {
        if (heard)
            heard(progress);
    }
    void onWriteFinished() override { ADD_FAILURE(); }
    void onError(typename Adapter::Error /*error*/) override { ADD_FAILURE(); }

    std::function<void(std::uint32_t)> heard;
};

} // namespace tarn::tests
