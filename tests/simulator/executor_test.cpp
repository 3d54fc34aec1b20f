#include <simulator/executor.h>
#include <support/observedthread.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <string>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

class ExecutorTest : public testing::Test {
protected:
    /// A task that adds its name to the list.
    Executor::Task named(const char* name)
    {
        return [this, name] { carriedOut.emplace_back(name); };
    }

    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
    std::vector<std::string> carriedOut; // by one thread at a time
};

TEST_F(ExecutorTest, CarriesOutTasksInTheOrderOfTheirTimes)
{
    Executor executor{clock};
    executor.post(3s, named("third"));
    executor.post(1s, named("first"));
    executor.post(2s, named("second"));
    clock->advance(10s);
    executor.waitUntilIdle();
    EXPECT_THAT(carriedOut, ElementsAre("first", "second", "third"));
}

TEST_F(ExecutorTest, KeepsTasksOfTheSameTimeInTheOrderOfPosting)
{
    Executor executor{clock};
    for (const auto* const name : {"a", "b", "c", "d"})
        executor.post(1s, named(name));
    clock->advance(1s);
    executor.waitUntilIdle();
    EXPECT_THAT(carriedOut, ElementsAre("a", "b", "c", "d"));
}

TEST_F(ExecutorTest, DoesNothingBeforeItsTime)
{
    Executor executor{clock};
    executor.post(1s, named("early"));
    clock->advance(1s - 1ns);
    executor.waitUntilIdle();
    EXPECT_TRUE(carriedOut.empty());
    clock->advance(1ns);
    executor.waitUntilIdle();
    EXPECT_THAT(carriedOut, ElementsAre("early"));
}

TEST_F(ExecutorTest, CarriesOutTasksOnItsOwnThread)
{
    Executor executor{clock};
    std::promise<std::thread::id> thread;
    executor.post({}, [&] {
        EXPECT_TRUE(executor.isCurrent());
        thread.set_value(std::this_thread::get_id());
    });
    EXPECT_NE(thread.get_future().get(), std::this_thread::get_id());
    EXPECT_FALSE(executor.isCurrent());
}

TEST_F(ExecutorTest, RunsATaskAndWaitsForIt)
{
    Executor executor{clock};
    executor.run(named("waited for"));
    EXPECT_THAT(carriedOut, ElementsAre("waited for"));
    executor.run([&] { executor.run(named("nested")); });
    EXPECT_THAT(carriedOut, ElementsAre("waited for", "nested"));
}

TEST_F(ExecutorTest, PassesOnWhatATaskThrowsThatIsWaitedFor)
{
    Executor executor{clock};
    EXPECT_THROW(executor.run([] { throw std::domain_error{"no"}; }), std::domain_error);
}

TEST_F(ExecutorTest, CompletesWhatSomebodyCountsOnWhenItStops)
{
    {
        Executor executor{clock};
        executor.post(2h, named("later"));
        executor.post(1h, named("request"));
        executor.post(1h, named("tick"), Executor::AtStop::Discard);
    }
    EXPECT_THAT(carriedOut, ElementsAre("request", "later"));
}

TEST_F(ExecutorTest, CarriesOutWhatIsPostedWhileItStops)
{
    {
        Executor executor{clock};
        executor.post(1h, [&] {
            executor.post(1h, named("request"));
            executor.post(1h, named("tick"), Executor::AtStop::Discard);
        });
    }
    EXPECT_THAT(carriedOut, ElementsAre("request"));
}

TEST_F(ExecutorTest, CarriesOutAtOnceWhatIsPostedAfterItHasStopped)
{
    Executor executor{clock};
    executor.stop();
    executor.post(1h, named("tick"), Executor::AtStop::Discard);
    executor.post(1h, named("request"));
    EXPECT_THAT(carriedOut, ElementsAre("request"));
    executor.run(named("waited for"));
    EXPECT_THAT(carriedOut, ElementsAre("request", "waited for"));
}

TEST_F(ExecutorTest, MayBeDestroyedInsideATask)
{
    auto executor = std::make_unique<Executor>(clock);
    std::promise<void> end;
    executor->post(1h, named("outstanding"));
    auto& posting = *executor;
    posting.post({}, [this, &end, owned = std::move(executor)]() mutable {
        owned.reset();
        carriedOut.emplace_back("destroyed");
        end.set_value();
    });
    end.get_future().wait();
    EXPECT_THAT(carriedOut, ElementsAre("outstanding", "destroyed"));
}

TEST_F(ExecutorTest, KnowsItsThreadToTheEnd)
{
    Executor executor{clock};
    std::promise<bool> isCurrent;
    executor.post({}, [&] {
        executor.stop();
        isCurrent.set_value(executor.isCurrent());
    });
    EXPECT_TRUE(isCurrent.get_future().get());
    EXPECT_FALSE(executor.isCurrent());
}

TEST_F(ExecutorTest, WaitsForNoTaskThatIsDiscarded)
{
    Executor executor{clock};
    executor.stop();
    executor.run(named("in vain"), Executor::AtStop::Discard);
    EXPECT_TRUE(carriedOut.empty());
}

TEST_F(ExecutorTest, WakesInRealTime)
{
    Executor executor{std::make_shared<SteadyClock>()};
    const auto start = std::chrono::steady_clock::now();
    std::promise<void> done;
    executor.post(20ms, [&] { done.set_value(); });
    done.get_future().wait();
    EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
}

TEST(ManualClockTest, WakesASleeperWhenItsTimeHasCome)
{
    ManualClock clock;
    std::promise<tests::ObservedThread> falling;
    std::atomic<bool> isAwake = false;
    Duration slept{};
    std::jthread sleeper{[&] {
        falling.set_value({});
        const auto start = clock.now();
        clock.sleep(5s);
        slept = clock.now() - start;
        isAwake = true;
    }};
    const auto observed = falling.get_future().get();
    while (!isAwake) {
        if (observed.isWaiting()) // no time passes for one that only looks asleep
            clock.advance(1s);
    }
    sleeper.join();
    EXPECT_GE(slept, 5s);
}

} // namespace
} // namespace tarn::simulator
