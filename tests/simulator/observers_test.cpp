#include <simulator/observers.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tarn::simulator {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Listener {
    void heard() { reaction(); }
    std::function<void()> reaction;
};

class ObserversTest : public testing::Test {
protected:
    Listener noting(const char* name)
    {
        return {[this, name] { heard.emplace_back(name); }};
    }

    void notify() { observers.notify(&Listener::heard); }

    Observers<Listener> observers;
    std::vector<std::string> heard;
};

TEST_F(ObserversTest, NotifiesInTheOrderOfRegistration)
{
    auto first = noting("first");
    auto second = noting("second");
    observers.add(&first);
    observers.add(&second);
    notify();
    EXPECT_THAT(heard, ElementsAre("first", "second"));
}

TEST_F(ObserversTest, NotifiesOnceWhoRegisteredTwice)
{
    auto listener = noting("once");
    observers.add(&listener);
    observers.add(&listener);
    notify();
    EXPECT_THAT(heard, ElementsAre("once"));
    observers.remove(&listener);
    notify();
    EXPECT_THAT(heard, ElementsAre("once"));
}

TEST_F(ObserversTest, IgnoresNullAndWhoIsNotRegistered)
{
    auto stranger = noting("stranger");
    observers.add(nullptr);
    observers.remove(nullptr);
    observers.remove(&stranger);
    notify();
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(ObserversTest, LetsAnObserverRemoveItselfAndOthersInsideANotification)
{
    auto later = noting("later");
    Listener first;
    first.reaction = [&] {
        heard.emplace_back("first");
        observers.remove(&first);
        observers.remove(&later);
    };
    observers.add(&first);
    observers.add(&later);
    notify();
    notify();
    EXPECT_THAT(heard, ElementsAre("first"));
}

TEST_F(ObserversTest, NotifiesWhoRegistersInsideANotificationFromTheNextOneOn)
{
    auto newcomer = noting("newcomer");
    Listener first{[&] {
        heard.emplace_back("first");
        observers.add(&newcomer);
    }};
    observers.add(&first);
    notify();
    EXPECT_THAT(heard, ElementsAre("first"));
    notify();
    EXPECT_THAT(heard, ElementsAre("first", "first", "newcomer"));
}

TEST_F(ObserversTest, NotifiesTheOthersWhenOneThrows)
{
    Listener thrower{[] { throw std::runtime_error{"no"}; }};
    auto other = noting("other");
    observers.add(&thrower);
    observers.add(&other);
    notify();
    EXPECT_THAT(heard, ElementsAre("other"));
    observers.remove(&thrower); // returns: nothing is being notified any more
}

TEST_F(ObserversTest, NotifiesNobodyAndTakesNobodyWhileClosed)
{
    auto before = noting("before");
    auto meanwhile = noting("meanwhile");
    auto after = noting("after");
    observers.add(&before);
    observers.close();
    observers.add(&meanwhile);
    notify();
    EXPECT_THAT(heard, IsEmpty());
    observers.open();
    observers.add(&after);
    notify();
    EXPECT_THAT(heard, ElementsAre("after"));
}

/// Calls a function when somebody begins to wait.
class WatchedObservers final : public Observers<Listener> {
public:
    std::function<void()> onWait;

protected:
    void waitForEnd(utils::Mutex& mutex) override TARN_REQUIRES(mutex)
    {
        onWait();
        Observers::waitForEnd(mutex);
    }
};

TEST_F(ObserversTest, WaitsForTheNotificationThatIsRunningBeforeRemovalReturns)
{
    std::promise<void> entered;
    std::promise<void> leave;
    std::atomic<bool> hasLeft = false;
    Listener slow{[&] {
        entered.set_value();
        leave.get_future().wait();
        hasLeft = true;
    }};
    WatchedObservers watched;
    int waits = 0;
    watched.onWait = [&] {
        if (++waits == 1)
            leave.set_value();
    };
    watched.add(&slow);
    std::jthread notifier{[&] { watched.notify(&Listener::heard); }};
    entered.get_future().wait();
    watched.remove(&slow);
    EXPECT_TRUE(hasLeft);
    if (waits == 0)
        leave.set_value();
}

TEST_F(ObserversTest, DoesNotWaitForTheNotificationOfAnotherObserver)
{
    std::promise<void> entered;
    std::promise<void> leave;
    Listener slow{[&] {
        entered.set_value();
        leave.get_future().wait();
    }};
    auto other = noting("other");
    observers.add(&slow);
    observers.add(&other);
    std::jthread notifier{[&] { notify(); }};
    entered.get_future().wait();
    observers.remove(&other); // would never return otherwise
    leave.set_value();
    notifier.join();
    EXPECT_THAT(heard, IsEmpty());
}

} // namespace
} // namespace tarn::simulator
