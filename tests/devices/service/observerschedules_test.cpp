// The observers of the adapters in any order of what several threads and the device do: see support/schedule.h.

#include "observerrows.h"

#include <support/calibrationbench.h>
#include <support/mutexprobe.h>
#include <support/schedule.h>

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace tarn::tests::observers {
namespace {

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
        add<Row>(adapter, m_listener);
        m_from = m_notifications.last;
    }

    void removeFrom(typename Row::Adapter& adapter)
    {
        m_until = m_notifications.lastEnded;
        remove<Row>(adapter, m_listener);
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
        const auto inTheSdk = [this](const char* point) {
            return [this, point](auto...) {
                EXPECT_EQ(MutexProbe::held(), Schedule::isRunning() && m_isUndisturbed ? 1 : 0);
                Schedule::point(point);
            };
        };
        this->whenAdded = inTheSdk("being added");
        this->onceAdded = inTheSdk("added");
        this->whenRemoved = inTheSdk("removed");
        this->device.whenAsked([](sdk::Key /*key*/) { Schedule::point("asked"); });
    }

    /// Two threads that add and remove observers, and the device's. `isUndisturbed`: as a host does that lets no
    /// notification of the lifecycle come between.
    void run(std::uint32_t seed, bool isUndisturbed)
    {
        m_isUndisturbed = isUndisturbed;
        m_isComplete = Row::isList || isUndisturbed;
        this->offer();
        Adapter adapter{this->handle()};
        Notifications notifications;
        Ear<Row> staying{notifications, adapter};
        staying.addTo(adapter);
        Schedule schedule{seed};
        for (int i = 0; i != 2; ++i)
            schedule.thread([&] {
                addAndRemove(adapter, notifications);
                addAndRemove(adapter, notifications);
            });
        schedule.thread([&] {
            for (int cycle = 0; cycle != 2; ++cycle) {
                if (m_isComplete)
                    notify(notifications);
                undisturbed([&] { dropAndOffer(adapter); });
            }
        });
        if (!m_isComplete)
            schedule.thread([&] {
                notify(notifications);
                notify(notifications);
            });
        schedule.run();
        EXPECT_LE(this->registered()->count(), 1U) << "somebody who has gone is still registered";

        dropAndOffer(adapter);
        EXPECT_EQ(this->registered()->count(), 1U) << "the next control has others than it should have";
        staying.removeFrom(adapter);
        staying.check(m_isComplete);
    }

private:
    void addAndRemove(Adapter& adapter, const Notifications& notifications)
    {
        Ear<Row> passing{notifications, adapter};
        undisturbed([&] { passing.addTo(adapter); });
        Schedule::point("is there");
        undisturbed([&] { passing.removeFrom(adapter); });
        passing.check(m_isComplete);
        Schedule::point("is gone");
    }

    void notify(Notifications& notifications)
    {
        ++notifications.last;
        Schedule::point("about to notify");
        this->registered()->notify(&Row::tell);
        notifications.lastEnded = notifications.last;
        Schedule::point("notified");
    }

    void dropAndOffer(Adapter& adapter)
    {
        adapter.onControlsAboutToBeReleased();
        Schedule::point("released");
        this->drop();
        Schedule::point("dropped");
        this->offer();
        Schedule::point("offered");
        adapter.onControlsAvailable();
    }

    void undisturbed(const std::function<void()>& operation)
    {
        std::unique_lock lock{m_lifecycle, std::defer_lock};
        if (m_isUndisturbed)
            lock.lock();
        operation();
    }

    std::mutex m_lifecycle;
    bool m_isUndisturbed = false;
    bool m_isComplete = false; ///< whoever is there hears every notification
};

TYPED_TEST_SUITE(ObserverSchedules, All);

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
} // namespace tarn::tests::observers
