#include <utils/observerlist.h>

#include <support/mutexprobe.h>
#include <support/observedthread.h>

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

namespace tarn::tests {
namespace {

/// Writes what it is told into a journal that several may share.
struct Listener {
    std::string name;
    std::vector<std::string>* journal;

    void onEvent() { journal->push_back(name); }
};

struct ThrowingListener {
    bool fails;
    int notified = 0;

    void onEvent()
    {
        ++notified;
        if (fails)
            throw std::runtime_error{"observer"};
    }
};

/// Observers that come (`+`) and go (`-`), and who is notified then.
struct Changes {
    const char* name;
    std::vector<std::string_view> changes;
    std::vector<std::string> notified;
};

void PrintTo(const Changes& value, std::ostream* stream)
{
    *stream << value.name;
}

class ObserverListAfterChanges : public testing::TestWithParam<Changes> { };

TEST_P(ObserverListAfterChanges, NotifiesWhoIsLeftInTheOrderOfRegistration)
{
    std::vector<std::string> journal;
    std::map<char, Listener> listeners{{'a', {"a", &journal}}, {'b', {"b", &journal}}, {'c', {"c", &journal}}};
    utils::ObserverList<Listener> list;
    for (const auto change : GetParam().changes) {
        auto& listener = listeners.at(change.back());
        if (change.front() == '+')
            list.add(listener);
        else
            list.remove(listener);
    }
    list.notify(&Listener::onEvent);
    EXPECT_EQ(journal, GetParam().notified);
}

INSTANTIATE_TEST_SUITE_P(
    Lists, ObserverListAfterChanges,
    testing::Values(Changes{"Empty", {}, {}}, //
                    Changes{"InOrder", {"+b", "+a", "+c"}, {"b", "a", "c"}},
                    Changes{"AddedTwice", {"+a", "+b", "+a"}, {"a", "b", "a"}},
                    Changes{"AddedTwiceAndRemoved", {"+a", "+a", "-a"}, {}},
                    Changes{"RemovedFromBetween", {"+c", "+a", "+b", "+a", "+c", "-a"}, {"c", "b", "c"}},
                    Changes{"RemovedThoughNotThere", {"+a", "-b"}, {"a"}},
                    Changes{"TakenBack", {"+a", "+b", "-a", "+a"}, {"b", "a"}}),
    [](const auto& changes) { return changes.param.name; });

TEST(ObserverList, PassesTheArgumentItselfToEveryObserver)
{
    struct Receiver {
        const int* seen = nullptr;
        void onValue(const int& value) { seen = &value; }
    };
    Receiver first;
    Receiver second;
    utils::ObserverList<Receiver> list;
    list.add(first);
    list.add(second);
    const int value = 5;
    list.notify(&Receiver::onValue, value);
    EXPECT_EQ(first.seen, &value);
    EXPECT_EQ(second.seen, &value);
}

TEST(ObserverList, EndsThePassAndReleasesTheMutexWhenAnObserverThrows)
{
    ThrowingListener before{false};
    ThrowingListener thrower{true};
    ThrowingListener after{false};
    utils::ObserverList<ThrowingListener> list;
    list.add(before);
    list.add(thrower);
    list.add(after);
    EXPECT_THROW(list.notify(&ThrowingListener::onEvent), std::runtime_error);
    EXPECT_EQ(before.notified, 1);
    EXPECT_EQ(after.notified, 0);

    list.remove(thrower); // would wait for ever on a mutex still held
    list.notify(&ThrowingListener::onEvent);
    EXPECT_EQ(before.notified, 2);
    EXPECT_EQ(after.notified, 1);
}

TEST(ObserverList, HoldsItsMutexForTheWholeOfANotification)
{
    struct Slow {
        const ObservedThread remover;
        std::latch entered{1};
        std::atomic<bool> isRemoving = false;
        std::atomic<bool> isRemoved = false;
        bool hasLeft = false;

        void onEvent()
        {
            entered.count_down();
            while (!isRemoved && !(isRemoving && remover.isWaiting()))
                std::this_thread::yield();
            hasLeft = !isRemoved;
        }
    };
    Slow slow;
    utils::ObserverList<Slow> list;
    list.add(slow);
    std::jthread notifier{[&] { list.notify(&Slow::onEvent); }};
    slow.entered.wait();
    slow.isRemoving = true;
    list.remove(slow); // returns only once the observer is no longer being notified
    slow.isRemoved = true;
    notifier.join();
    EXPECT_TRUE(slow.hasLeft);
}

TEST(ObserverList, LocksOncePerOperation)
{
    ThrowingListener listener{false};
    utils::ObserverList<ThrowingListener> list;
    const int start = MutexProbe::locks();
    list.add(listener);
    const int added = MutexProbe::locks();
    list.notify(&ThrowingListener::onEvent);
    const int notified = MutexProbe::locks();
    list.remove(listener);
    const int removed = MutexProbe::locks();
    EXPECT_EQ(added - start, 1);
    EXPECT_EQ(notified - added, 1);
    EXPECT_EQ(removed - notified, 1);
}

TEST(ObserverList, ReportsAMutexThatCannotBeLockedAsASystemErrorAndDoesNothing)
{
    ThrowingListener listener{false};
    ThrowingListener other{false};
    utils::ObserverList<ThrowingListener> list;
    list.add(listener);
    MutexProbe::failAfter(0);
    EXPECT_THROW(list.add(other), std::system_error);
    MutexProbe::failAfter(0);
    EXPECT_THROW(list.remove(listener), std::system_error);
    MutexProbe::failAfter(0);
    EXPECT_THROW(list.notify(&ThrowingListener::onEvent), std::system_error);
    EXPECT_EQ(listener.notified, 0);

    list.notify(&ThrowingListener::onEvent);
    EXPECT_EQ(listener.notified, 1);
    EXPECT_EQ(other.notified, 0);
}

TEST(ObserverList, LetsThreadsAddRemoveAndNotifyAtOnce)
{
    struct Idle {
        void onEvent() { }
    };
    utils::ObserverList<Idle> list;
    const auto churn = [&list] {
        Idle mine;
        for (int round = 0; round != 200; ++round) {
            list.add(mine);
            list.notify(&Idle::onEvent);
            list.remove(mine);
        }
    };
    {
        std::jthread first{churn};
        std::jthread second{churn};
    }
    struct Counter {
        int* count;
        void operator()(Idle& /*observer*/) const { ++*count; }
    };
    int left = 0;
    list.notify(Counter{&left});
    EXPECT_EQ(left, 0);
}

} // namespace
} // namespace tarn::tests
