// The observers of the adapters in any order of what several threads and the device do: see support/schedule.h.

#include <devices/service/sdkfactorycorrectioncontrol.h>
#include <devices/service/sdkmemoryoperationscontrol.h>
#include <devices/service/sdkserialnumbercontrol.h>
#include <devices/service/sdksystemtermscontrol.h>

#include <support/calibrationbench.h>
#include <support/mockfactorycorrectioncontrol.h>
#include <support/mockmemoryoperationscontrol.h>
#include <support/mockmemoryserialnumbercontrol.h>
#include <support/mocksystemtermscontrol.h>
#include <support/schedule.h>

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace tarn::tests {
namespace {

using devices::service::IMemoryOperationsControl;
using devices::service::ISerialNumberControl;
using devices::service::ISystemTermsControl;
using devices::service::Progress;

/// A list, which is attached to the SDK as a whole.
struct Terms {
    using Sdk = sdk::service::ISystemTermsControl;
    using SdkObserver = Sdk::Observer;
    using Adapter = devices::service::SdkSystemTermsControl;
    using Mock = MockSystemTermsControl;
    static constexpr bool isList = true;

    struct Listener final : ISystemTermsControl::Observer {
        void onWriteStarted() override { ADD_FAILURE(); }
        void onWriteProgressChanged(std::uint32_t /*progress*/) override { heard(); }
        void onWriteFinished() override { ADD_FAILURE(); }
        void onErrorOccurred(ISystemTermsControl::Error /*error*/) override { ADD_FAILURE(); }
        std::function<void()> heard;
    };
    static void tell(SdkObserver& observer) { observer.onWriteProgressChanged(1); }
    static void call(Adapter& adapter) { EXPECT_FALSE(adapter.isFrequencyOverrideSupported()); }
};

struct Serial {
    using Sdk = sdk::service::IMemorySerialNumberControl;
    using SdkObserver = Sdk::Observer;
    using Adapter = devices::service::SdkSerialNumberControl;
    using Mock = MockMemorySerialNumberControl;
    static constexpr bool isList = true;

    struct Listener final : ISerialNumberControl::IObserver {
        void onWriteProgressChanged(const Progress& /*progress*/) override { heard(); }
        std::function<void()> heard;
    };
    static void tell(SdkObserver& observer) { observer.onWriteProgressChanged(1, 2); }
    static void call(Adapter& /*adapter*/) { }
};

struct Memory {
    using Sdk = sdk::service::IMemoryOperationsControl;
    using SdkObserver = Sdk::IObserver;
    using Adapter = devices::service::SdkMemoryOperationsControl;
    using Mock = MockMemoryOperationsControl;
    static constexpr bool isList = true;

    struct Listener final : IMemoryOperationsControl::IObserver {
        void onWriteProgressChanged(const Progress& /*progress*/) override { ADD_FAILURE(); }
        void onReadProgressChanged(const Progress& /*progress*/) override { ADD_FAILURE(); }
        void onEraseProgressChanged(const Progress& /*progress*/) override { heard(); }
        void onIntegrityCheckProgressChanged(const Progress& /*progress*/) override { ADD_FAILURE(); }
        std::function<void()> heard;
    };
    static void tell(SdkObserver& observer) { observer.onEraseProgressChanged(1, 2); }
    static void call(Adapter& /*adapter*/) { }
};

/// A map, with an SDK observer for each of the application's.
template <class Calibration>
struct Flagged : Calibration {
    using Listener = ProgressListener<typename Calibration::Adapter>;
    static constexpr bool isList = false;
    static void tell(typename Calibration::SdkObserver& observer) { observer.onWriteProgressChanged(1); }
    static void call(typename Calibration::Adapter& adapter) { EXPECT_TRUE(adapter.frequencyPlan().empty()); }
};

/// A map without a lock of its own.
struct Corrections {
    using Sdk = sdk::IFactoryCorrectionControl;
    using SdkObserver = Sdk::Observer;
    using Adapter = devices::service::SdkFactoryCorrectionControl;
    using Mock = MockFactoryCorrectionControl;
    static constexpr bool isList = false;

    struct Listener final : Adapter::Observer {
        void onSupportedChanged() override { }
        void onValidChanged() override { }
        void onEnabledChanged(devices::FactoryCorrection /*correction*/, bool /*enabled*/) override { heard(); }
        std::function<void()> heard;
    };
    static void tell(SdkObserver& observer) { observer.onEnabledChanged(sdk::CorrectionFlag::System, true); }
    static void call(Adapter& adapter) { EXPECT_TRUE(adapter.supported().empty()); }
};

/// The notifications, which are numbered from 1 on.
struct Notifications {
    int last = 0;
    int lastEnded = 0;
};

/// An observer that writes down which notifications it hears.
template <class Row>
class Ear {
public:
    Ear(const Notifications& notifications, typename Row::Adapter& adapter)
        : m_notifications{notifications}
    {
        m_listener.heard = [this, &adapter](auto...) {
            EXPECT_FALSE(m_isGone) << "notified after the removal";
            m_heard.push_back(m_notifications.last);
            Schedule::point("observer");
            Row::call(adapter);
            EXPECT_FALSE(m_isGone) << "the removal did not wait";
        };
    }

    void addTo(typename Row::Adapter& adapter)
    {
        if constexpr (Row::isList)
            adapter.addObserver(m_listener);
        else
            adapter.addObserver(&m_listener);
        m_from = m_notifications.last;
    }

    void removeFrom(typename Row::Adapter& adapter)
    {
        m_until = m_notifications.lastEnded;
        if constexpr (Row::isList)
            adapter.removeObserver(m_listener);
        else
            adapter.removeObserver(&m_listener);
        m_isGone = true;
    }

    /// Each once and in order; all that began after it was added and ended before it was removed if `isComplete`.
    void check(bool isComplete) const
    {
        for (std::size_t i = 1; i < m_heard.size(); ++i)
            EXPECT_LT(m_heard[i - 1], m_heard[i]) << "twice, or in another order";
        for (int number = m_from + 1; isComplete && number <= m_until; ++number)
            EXPECT_THAT(m_heard, testing::Contains(number)) << "lost";
    }

private:
    const Notifications& m_notifications;
    typename Row::Listener m_listener;
    std::vector<int> m_heard;
    int m_from = 0;
    int m_until = 0;
    bool m_isGone = false;
};

template <class Row>
class ObserverSchedules : public CalibrationBench<Row> {
protected:
    using Adapter = typename Row::Adapter;

    ObserverSchedules()
    {
        this->whenAdded = [](auto* /*observer*/) { Schedule::point("being added"); };
        this->whenRemoved = [](auto* /*observer*/) { Schedule::point("removed"); };
        this->device.whenAsked([](sdk::Key /*key*/) { Schedule::point("asked"); });
    }

    /// Two threads that add and remove observers, and the device's. `isUndisturbed`: as a host does that lets no
    /// notification of the lifecycle come between.
    void run(std::uint32_t seed, bool isUndisturbed)
    {
        this->offer();
        Adapter adapter{this->handle()};
        Notifications notifications;
        Ear<Row> staying{notifications, adapter};
        staying.addTo(adapter);
        Schedule schedule{seed};
        for (int i = 0; i != 2; ++i)
            schedule.thread([&] {
                for (int round = 0; round != 2; ++round)
                    addAndRemove(adapter, notifications, isUndisturbed);
            });
        schedule.thread([&] {
            for (int cycle = 0; cycle != 2; ++cycle) {
                notify(notifications);
                dropAndOffer(adapter, isUndisturbed);
            }
            notify(notifications);
        });
        schedule.run();

        dropAndOffer(adapter, false);
        EXPECT_EQ(this->registered()->count(), 1U) << "whatever happened, the next control has whom it should have";
        staying.removeFrom(adapter);
        staying.check(Row::isList || isUndisturbed);
    }

private:
    void addAndRemove(Adapter& adapter, const Notifications& notifications, bool isUndisturbed)
    {
        Ear<Row> passing{notifications, adapter};
        undisturbed(isUndisturbed, [&] { passing.addTo(adapter); });
        Schedule::point("added");
        undisturbed(isUndisturbed, [&] { passing.removeFrom(adapter); });
        passing.check(Row::isList || isUndisturbed);
        Schedule::point("gone");
    }

    void notify(Notifications& notifications)
    {
        ++notifications.last;
        Schedule::point("about to notify");
        this->registered()->notify(&Row::tell);
        notifications.lastEnded = notifications.last;
        Schedule::point("notified");
    }

    void dropAndOffer(Adapter& adapter, bool isUndisturbed)
    {
        undisturbed(isUndisturbed, [&] {
            adapter.onControlsAboutToBeReleased();
            Schedule::point("released");
            this->drop();
            Schedule::point("dropped");
            this->offer();
            Schedule::point("offered");
            adapter.onControlsAvailable();
        });
    }

    void undisturbed(bool isUndisturbed, const std::function<void()>& operation)
    {
        std::unique_lock lock{m_lifecycle, std::defer_lock};
        if (isUndisturbed)
            lock.lock();
        operation();
    }

    std::mutex m_lifecycle;
};

using ObserverRows = testing::Types<Terms, Serial, Memory, Flagged<Ifsw>, Flagged<Power>, Corrections>;
TYPED_TEST_SUITE(ObserverSchedules, ObserverRows);

TYPED_TEST(ObserverSchedules, LoseNothingAndTellNobodyWhoHasGone)
{
    forEachSeed(1000, [this](std::uint32_t seed) { this->run(seed, true); });
}

template <class Row>
class DisturbedObserverSchedules : public ObserverSchedules<Row> { };

using LockedRows = testing::Types<Terms, Serial, Memory, Flagged<Ifsw>, Flagged<Power>>;
TYPED_TEST_SUITE(DisturbedObserverSchedules, LockedRows);

TYPED_TEST(DisturbedObserverSchedules, TellNobodyWhoHasGone)
{
    forEachSeed(1000, [this](std::uint32_t seed) { this->run(seed, false); });
}

} // namespace
} // namespace tarn::tests
