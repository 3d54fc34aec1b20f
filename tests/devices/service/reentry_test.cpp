// Observers, completions and hosts that call back from where they are called. What the text forbids would wait for
// itself; here such a wait is an error instead.

#include "observerrows.h"

#include <devices/instrumentcontrols.h>
#include <devices/service/sdkfilememorycontrol.h>

#include <support/devicehandle.h>
#include <support/mockfilememorycontrol.h>
#include <support/schedule.h>
#include <support/watchdog.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <any>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

namespace tarn::tests::observers {
namespace {

using testing::ElementsAre;

/// Whether `operation` waited for something that it alone could bring.
bool waitsForItself(const std::function<void()>& operation)
{
    try {
        operation();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::resource_deadlock_would_occur);
        return true;
    }
    return false;
}

/// Two observers, of which the first does something when it is notified for the first time.
template <class Row>
class ReentrantObservers : public CalibrationBench<Row> {
protected:
    using Adapter = typename Row::Adapter;

    ReentrantObservers()
    {
        this->whenAdded = [this](auto* observer) { m_attached.push_back(observer); };
        this->whenRemoved = [this](auto* observer) { std::erase(m_attached, observer); };
        this->offer();
        adapter.emplace(this->handle());
        add<Row>(*adapter, first);
        first.heard = [this](auto...) {
            heard.push_back(1);
            if (const auto once = std::exchange(action, nullptr))
                once();
        };
        second.heard = [this](auto...) { heard.push_back(2); };
    }

    ~ReentrantObservers() override
    {
        adapter.reset();
        this->whenRemoved = nullptr; // the bench has an adapter of its own, which goes last
    }

    /// The SDK's notification, without a lock, of whoever is registered when it begins and still is in his turn.
    void notify()
    {
        heard.clear();
        for (auto* const observer : std::vector{m_attached}) {
            if (std::ranges::find(m_attached, observer) != m_attached.end())
                Row::tell(*observer);
        }
    }

    std::optional<Adapter> adapter;
    typename Row::Listener first;
    typename Row::Listener second;
    std::function<void()> action;
    std::vector<int> heard;

private:
    const Watchdog m_watchdog;
    std::vector<typename Row::SdkObserver*> m_attached;
};

template <class Row>
class ReentrantLists : public ReentrantObservers<Row> { };
TYPED_TEST_SUITE(ReentrantLists, Lists);

TYPED_TEST(ReentrantLists, LetNobodyAddOrRemoveFromInsideANotification)
{
    const std::function<void()> changes[] = {
        [this] { add<TypeParam>(*this->adapter, this->second); },
        [this] { add<TypeParam>(*this->adapter, this->first); },
        [this] { remove<TypeParam>(*this->adapter, this->first); },
        [this] { remove<TypeParam>(*this->adapter, this->second); },
    };
    for (const auto& change : changes) {
        this->action = change;
        EXPECT_TRUE(waitsForItself([this] { this->notify(); }));
        this->notify();
        EXPECT_THAT(this->heard, ElementsAre(1)) << "nothing has changed";
    }
}

template <class Row>
class ReentrantMaps : public ReentrantObservers<Row> { };
TYPED_TEST_SUITE(ReentrantMaps, Maps);

TYPED_TEST(ReentrantMaps, LetAnObserverAddAnother)
{
    this->action = [this] { add<TypeParam>(*this->adapter, this->second); };
    this->notify();
    EXPECT_THAT(this->heard, ElementsAre(1));
    this->notify();
    EXPECT_THAT(this->heard, testing::UnorderedElementsAre(1, 2));
}

TYPED_TEST(ReentrantMaps, LetAnObserverRemoveAnother)
{
    add<TypeParam>(*this->adapter, this->second);
    this->action = [this] { remove<TypeParam>(*this->adapter, this->second); };
    this->second.heard = [this](auto...) {
        EXPECT_TRUE(this->action) << "told after it was removed";
        this->heard.push_back(2);
    };
    this->notify();
    this->notify();
    EXPECT_THAT(this->heard, ElementsAre(1));
}

TYPED_TEST(ReentrantMaps, LetAnObserverRemoveItself)
{
    this->action = [this] { remove<TypeParam>(*this->adapter, this->first); };
    this->notify();
    EXPECT_THAT(this->heard, ElementsAre(1));
    this->notify();
    EXPECT_THAT(this->heard, ElementsAre());
}

template <class Row>
class CallingObservers : public ReentrantObservers<Row> { };
TYPED_TEST_SUITE(CallingObservers, All);

TYPED_TEST(CallingObservers, MayCallTheirControl)
{
    bool called = false;
    this->action = [&] {
        TypeParam::call(*this->adapter);
        called = true;
    };
    this->notify();
    EXPECT_TRUE(called);
}

TYPED_TEST(CallingObservers, MayDropTheControlThatNotifiesThem)
{
    this->action = [this] {
        this->device.drop(TypeParam::Sdk::key);
        TypeParam::call(*this->adapter);
    };
    this->notify();
    EXPECT_THAT(this->heard, ElementsAre(1));
}

/// A control that does what it is told when it is notified.
struct Reentrant final : devices::IControlLifecycleObserver {
    void onControlsAboutToBeReleased() override { action(); }
    void onControlsAvailable() override { action(); }
    std::function<void()> action = [] { };
};

class ReentrantHost : public testing::Test {
protected:
    ReentrantHost()
    {
        registry.addEntry({1, [this](const std::any& /*device*/) { return std::any{control}; }});
        controls = std::make_unique<devices::InstrumentControls>(device, registry, devices::ControlTypes<Reentrant>{});
    }

    const Watchdog watchdog;
    const std::shared_ptr<FakeVna> device = std::make_shared<FakeVna>();
    const std::shared_ptr<Reentrant> control = std::make_shared<Reentrant>();
    devices::ControlRegistry registry;
    std::unique_ptr<devices::InstrumentControls> controls;
};

TEST_F(ReentrantHost, CannotBeUndisturbedInsideOfItself)
{
    controls->undisturbed([this] { EXPECT_TRUE(waitsForItself([this] { controls->undisturbed([] { }); })); });
    EXPECT_FALSE(waitsForItself([this] { controls->undisturbed([] { }); }));
}

TEST_F(ReentrantHost, CannotBeUndisturbedInsideOfANotification)
{
    int waits = 0;
    control->action = [&] { waits += waitsForItself([this] { controls->undisturbed([] { }); }) ? 1 : 0; };
    device->announceRelease();
    device->announceAvailable();
    EXPECT_EQ(waits, 2);
}

TEST_F(ReentrantHost, CannotHaveADeviceThatNotifiesInsideOfANotification)
{
    control->action = [this] { device->announceAvailable(); };
    EXPECT_TRUE(waitsForItself([this] { device->announceRelease(); }));
    control->action = [] { };
    EXPECT_FALSE(waitsForItself([this] { device->announceRelease(); }));
}

TEST_F(ReentrantHost, CannotBeUndisturbedInsideOfWhatARemovalWaitsFor)
{
    int deadlocks = 0;
    forEachSeed(200, [&](std::uint32_t seed) {
        std::mutex notifying; // of the SDK, whose `removeObserver` waits for a notification
        Schedule schedule{seed};
        schedule.thread([&] {
            deadlocks += waitsForItself([&] {
                const std::scoped_lock notification{notifying};
                Schedule::point("notified");
                controls->undisturbed([] { });
            });
        });
        schedule.thread([&] {
            deadlocks += waitsForItself([&] {
                controls->undisturbed([&] {
                    Schedule::point("undisturbed");
                    const std::scoped_lock removal{notifying};
                });
            });
        });
        schedule.run();
    });
    EXPECT_GT(deadlocks, 0) << "the text forbids what does no harm";
}

/// A device with one thread, which brings the completions.
class OneThread {
public:
    explicit OneThread(std::function<void()> insideTheFirstCompletion)
        : m_inside{std::move(insideTheFirstCompletion)}
    {
        ON_CALL(*files, deleteFile).WillByDefault([this](const auto& /*file*/, auto completion) {
            m_pending.push_back(completion);
        });
    }

    void serve()
    {
        for (int completions = 0; completions != 2; ++completions) {
            while (m_pending.empty())
                Schedule::point("idle");
            const auto completion = m_pending.front();
            m_pending.pop_front();
            if (const auto inside = std::exchange(m_inside, nullptr))
                inside();
            completion({});
        }
    }

    const std::shared_ptr<testing::NiceMock<MockFileMemoryControl>> files
        = std::make_shared<testing::NiceMock<MockFileMemoryControl>>();

private:
    std::function<void()> m_inside;
    std::deque<sdk::Completion<>> m_pending;
};

/// Two requests, of which the second is made by a completion or on a thread of its own.
void requestTwice(bool insideTheCompletion)
{
    std::optional<devices::service::SdkFileMemoryControl> adapter;
    const auto request = [&] { EXPECT_TRUE(adapter->deleteFile({})); };
    OneThread device{insideTheCompletion ? std::function<void()>{request} : nullptr};
    adapter.emplace(handleTo<sdk::service::IFileMemoryControl>(device.files));
    Schedule schedule{1};
    schedule.thread([&] { device.serve(); });
    schedule.thread(request);
    if (!insideTheCompletion)
        schedule.thread(request);
    schedule.run();
}

TEST(WaitingInsideACompletionDeathTest, WaitsForEver)
{
    requestTwice(false);
    EXPECT_EXIT(requestTwice(true), testing::ExitedWithCode(EXIT_FAILURE), "a completion that never comes");
}

TEST(WatchdogDeathTest, EndsATestThatHangs)
{
    const auto hang = [] {
        const Watchdog watchdog{std::chrono::seconds{1}};
        std::promise<void> never;
        never.get_future().wait();
    };
    EXPECT_EXIT(hang(), testing::ExitedWithCode(EXIT_FAILURE), "EndsATestThatHangs.*waited in vain");
}

} // namespace
} // namespace tarn::tests::observers
