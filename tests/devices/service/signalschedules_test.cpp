// The adapters with signals in any order of what several threads and the device do: see support/schedule.h.

#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <devices/service/sdkcalibrationcontrolwatcher.h>
#include <devices/service/sdktemperaturecontrol.h>

#include <support/calibrationbench.h>
#include <support/devicehandle.h>
#include <support/mockcalibrationcontroller.h>
#include <support/mocktemperaturecontrol.h>
#include <support/mutexprobe.h>
#include <support/schedule.h>

#include <gmock/gmock.h>

#include <memory>
#include <mutex>

namespace tarn::tests::signalschedules {
namespace {

using devices::service::SdkCalibrationControlHandle;
using devices::service::SdkCalibrationControlWatcher;
using devices::service::SdkTemperatureControl;

/// Whether the calling thread is notifying, for which the device has a lock of its own.
thread_local bool isNotifying = false;

/// Lets others go on, in a call of the device.
void inTheDevice(const char* point)
{
    EXPECT_EQ(MutexProbe::held(), isNotifying ? 1 : 0) << "a lock is held";
    Schedule::point(point);
}

/// Tells the observers of `registered` something, each after `about` was called with it.
template <class SdkObserver, class About>
void notify(RegisteredObservers<SdkObserver>& registered, void (SdkObserver::*notification)(), const About& about)
{
    isNotifying = true;
    registered.notify([&](SdkObserver& observer) {
        about(&observer);
        (observer.*notification)();
    });
    isNotifying = false;
}

struct Temperature {
    using Sdk = sdk::ITemperatureControl;
    using SdkObserver = Sdk::Observer;
    using Adapter = SdkTemperatureControl;
    using Mock = MockTemperatureControl;
};

class TemperatureSchedules : public CalibrationBench<Temperature> {
protected:
    TemperatureSchedules()
    {
        whenAdded = [this](SdkObserver* observer) {
            if (!m_staying)
                m_staying = observer;
            inTheDevice("being added");
        };
        onceAdded = [] { inTheDevice("added"); };
        whenRemoved = [](auto...) { inTheDevice("removed"); };
        device.whenAsked([](sdk::Key /*key*/) { inTheDevice("asked"); });
    }

    /// Notifications, drops, readings and adapters that come and go, each on a thread of its own.
    void run(std::uint32_t seed)
    {
        m_degrees = m_told = m_signals = 0;
        m_staying = nullptr;
        offerThermometers();
        Adapter adapter{handle()};
        QObject::connect(&adapter, &Adapter::temperaturesChanged, [this] {
            ++m_signals;
            Schedule::point("signal");
        });
        Schedule schedule{seed};
        schedule.thread([this] { threeTimes([this] { measure(); }); });
        schedule.thread([&] { threeTimes([&] { dropAndOffer(adapter); }); });
        schedule.thread([&] { threeTimes([&] { expectASnapshot(adapter); }); });
        schedule.thread([this] { threeTimes([this] { comeAndGo(); }); });
        schedule.run();
        EXPECT_EQ(m_signals, m_told + 3) << "one for each notification and for each return";
        EXPECT_LE(registered()->count(), 1U) << "somebody who has gone is still registered";

        dropAndOffer(adapter);
        EXPECT_EQ(registered()->count(), 1U) << "the next control has others than it should have";
        measure();
        EXPECT_EQ(m_signals, m_told + 4);
        EXPECT_EQ(adapter.temperature(), m_degrees);
        EXPECT_EQ(adapter.modulesTemperature().front().temperature, m_degrees);
    }

private:
    template <class Action>
    static void threeTimes(const Action& action)
    {
        for (int i = 0; i != 3; ++i) {
            action();
            Schedule::point("done");
        }
    }

    /// Two modules, which are always as warm as the instrument.
    void offerThermometers()
    {
        offer();
        auto& mock = static_cast<Temperature::Mock&>(*device.control<Sdk>(Sdk::key));
        ON_CALL(mock, temperature).WillByDefault([this] {
            inTheDevice("temperature");
            return static_cast<float>(m_degrees);
        });
        ON_CALL(mock, moduleTemperatures).WillByDefault([this]() -> const Sdk::ModuleTemperatures& {
            inTheDevice("modules");
            thread_local Sdk::ModuleTemperatures modules;
            modules = {{"A", static_cast<float>(m_degrees)}, {"B", static_cast<float>(m_degrees)}};
            return modules;
        });
    }

    void measure()
    {
        ++m_degrees;
        Schedule::point("about to notify");
        notify(*registered(), &SdkObserver::onTemperatureChanged, [this](const SdkObserver* observer) {
            if (observer == m_staying)
                ++m_told;
        });
    }

    void dropAndOffer(Adapter& adapter)
    {
        adapter.onControlsAboutToBeReleased();
        Schedule::point("released");
        drop();
        Schedule::point("dropped");
        offerThermometers();
        Schedule::point("offered");
        adapter.onControlsAvailable();
    }

    void expectASnapshot(const Adapter& adapter) const
    {
        const auto modules = adapter.modulesTemperature();
        ASSERT_EQ(modules.size(), 2U);
        EXPECT_EQ(modules[0].temperature, modules[1].temperature) << "of different times";
        EXPECT_LE(modules[0].temperature, m_degrees);
    }

    void comeAndGo()
    {
        const Adapter passing{handle()};
        Schedule::point("is there");
    }

    const SdkObserver* m_staying = nullptr; ///< that of the adapter that is there all the time
    int m_degrees = 0;
    int m_told = 0;
    int m_signals = 0;
};

TEST_F(TemperatureSchedules, GiveASignalForEachNotificationAndLeaveNobodyBehind)
{
    forEachSeed(1000, [this](std::uint32_t seed) { run(seed); });
}

class WatcherSchedules : public testing::Test {
protected:
    using Sdk = sdk::service::calibrations::ICalibrationController;
    using Registered = RegisteredObservers<Sdk::Observer>;
    using Watcher = SdkCalibrationControlWatcher;

    WatcherSchedules()
    {
        device.whenAsked([](sdk::Key /*key*/) { inTheDevice("asked"); });
    }

    /// Watchers that come and go, on the thread that brings drops and offers and, `withOthers`, on another, which may
    /// keep a dropped controller alive; and notifications.
    void run(std::uint32_t seed, bool withOthers)
    {
        m_told = m_signals = 0;
        offer();
        SdkCalibrationControlHandle handle{handleTo<Sdk>(device, Sdk::firstKey)};
        Schedule schedule{seed};
        schedule.thread([&] {
            for (int i = 0; i != 2; ++i)
                comeAndGo(handle, [&] {
                    dropAndOffer(handle);
                    EXPECT_TRUE(withOthers || m_registered->count() == 1U) << "the watcher did not hear of the return";
                });
        });
        if (withOthers)
            schedule.thread([&] {
                for (int i = 0; i != 3; ++i)
                    comeAndGo(handle, [] { Schedule::point("is there"); });
            });
        schedule.thread([this] {
            for (int i = 0; i != 4; ++i) {
                notify(*m_registered, &Sdk::Observer::onConfigurationChanged, [this](auto* /*observer*/) { ++m_told; });
                Schedule::point("notified");
            }
        });
        schedule.run();
        EXPECT_LE(m_signals, m_told + 2) << "one for each notification, which may come first, and for each return";
        EXPECT_GE(m_signals, 2);
        EXPECT_EQ(m_registered->count(), 0U) << "somebody who has gone is still registered";
    }

private:
    template <class Action>
    void comeAndGo(SdkCalibrationControlHandle& handle, const Action& meanwhile)
    {
        Watcher watcher{handle};
        QObject::connect(&watcher, &Watcher::configurationChanged, [this] {
            ++m_signals;
            Schedule::point("signal");
        });
        meanwhile();
    }

    void offer()
    {
        const auto registered = std::make_shared<Registered>();
        const auto mock = std::make_shared<testing::NiceMock<MockCalibrationController>>();
        ON_CALL(*mock, addObserver).WillByDefault([registered](Sdk::Observer* observer) {
            inTheDevice("being added");
            registered->add(observer);
            inTheDevice("added");
        });
        ON_CALL(*mock, removeObserver).WillByDefault([registered](Sdk::Observer* observer) {
            registered->remove(observer);
            inTheDevice("removed");
        });
        m_registered = registered;
        device.offer<Sdk>(Sdk::firstKey, mock);
    }

    void dropAndOffer(SdkCalibrationControlHandle& handle)
    {
        handle.onControlsAboutToBeReleased();
        Schedule::point("released");
        m_registered->drop();
        device.drop(Sdk::firstKey);
        Schedule::point("dropped");
        offer();
        Schedule::point("offered");
        handle.onControlsAvailable();
    }

    FakeVna device;
    std::shared_ptr<Registered> m_registered;
    int m_told = 0;
    int m_signals = 0;
};

TEST_F(WatcherSchedules, GiveASignalForEachNotificationAndLeaveNobodyBehind)
{
    forEachSeed(1000, [this](std::uint32_t seed) { run(seed, true); });
}

TEST_F(WatcherSchedules, AreRegisteredOnceAfterEveryReturn)
{
    forEachSeed(1000, [this](std::uint32_t seed) { run(seed, false); });
}

} // namespace
} // namespace tarn::tests::signalschedules
