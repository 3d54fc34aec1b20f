#include <simulator/watchedinstrument.h>
#include <support/success.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using test::dropEvery;
using test::Journal;
using test::ManualInstrument;
using test::startRequests;
using test::WatchedInstrument;
using test::withFaults;
using testing::ElementsAre;
using testing::IsEmpty;

using tests::success;

TEST(CompletionTest, ComesOnTheInstrumentsThread)
{
    const ManualInstrument instrument;
    std::promise<std::thread::id> thread;
    instrument.control<test::Files>()->spaceInfo([&](auto, auto) { thread.set_value(std::this_thread::get_id()); });
    EXPECT_NE(thread.get_future().get(), std::this_thread::get_id());
}

TEST(CompletionTest, ComesInsideTheCallInTheInlineMode)
{
    const ManualInstrument instrument{withFaults({}, CompletionMode::Inline)};
    std::thread::id thread;
    instrument.control<test::Files>()->spaceInfo([&](auto, auto) { thread = std::this_thread::get_id(); });
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST(CompletionTest, ComesAfterTheLatency)
{
    Settings settings;
    settings.latency = 5ms;
    ManualInstrument instrument{settings};
    int completed = 0;
    instrument.control<test::Files>()->spaceInfo([&](auto, auto) { ++completed; });
    instrument.advance(4999us);
    EXPECT_EQ(completed, 0);
    instrument.advance(1us);
    EXPECT_EQ(completed, 1);
    instrument.advance(1s);
    EXPECT_EQ(completed, 1);
}

TEST(CompletionTest, MayStartTheNextRequestAndDropTheControls)
{
    WatchedInstrument instrument;
    const auto files = instrument.control<test::Files>();
    std::promise<std::error_code> done;
    files->writeFile("f", {1}, [&](auto) {
        instrument.vna->drop();
        files->deleteFile({"f", 1}, [&](auto code) { done.set_value(code); });
    });
    EXPECT_EQ(done.get_future().get(), success);
    instrument.vna->waitUntilIdle();
    EXPECT_THAT(instrument.journal.take(), ElementsAre("about to be released"));
}

TEST(CompletionTest, ComesOnceForEachRequestWhenTheControlsAreDroppedMeanwhile)
{
    Settings settings;
    settings.latency = 1s;
    ManualInstrument instrument{settings};
    Journal journal;
    startRequests(*instrument.control<test::Files>(), journal);
    instrument.vna->drop();
    EXPECT_THAT(journal.take(), IsEmpty());
    instrument.advance(1s);
    EXPECT_THAT(journal.take(), ElementsAre("0", "1", "2", "3", "4"));
    instrument.advance(10s);
    EXPECT_THAT(journal.take(), IsEmpty());
}

TEST(CompletionTest, ComesOnceForEachRequestWhenTheDeviceIsDestroyed)
{
    Settings settings;
    settings.latency = 1h;
    ManualInstrument instrument{settings};
    Journal journal;
    startRequests(*instrument.control<test::Files>(), journal);
    instrument.vna.reset();
    EXPECT_THAT(journal.take(), ElementsAre("0", "1", "2", "3", "4"));
}

TEST(CompletionTest, ComesForAControlThatOutlivesTheDevice)
{
    ManualInstrument instrument{withFaults(dropEvery(1))};
    const auto files = instrument.control<test::Files>();
    instrument.vna.reset();
    EXPECT_EQ(test::write(*files, "f", {1}), success);
    EXPECT_EQ(test::read(*files, "f").first, (test::Bytes{1}));
}

TEST(CompletionTest, MayLetGoOfTheDevice)
{
    ManualInstrument instrument;
    std::promise<void> gone;
    instrument.control<test::Files>()->spaceInfo([&](auto, auto) {
        instrument.vna.reset();
        gone.set_value();
    });
    gone.get_future().wait();
    EXPECT_EQ(instrument.vna, nullptr);
}

TEST(DelayTest, MakesARequestLater)
{
    FaultPlan plan;
    plan.delayEvery = 2;
    plan.delay = 1s;
    ManualInstrument instrument{withFaults(plan)};
    Journal journal;
    const auto files = instrument.control<test::Files>();
    files->spaceInfo([&](auto, auto) { journal.note("prompt"); });
    files->spaceInfo([&](auto, auto) { journal.note("late"); });
    instrument.advance(999ms);
    EXPECT_THAT(journal.take(), ElementsAre("prompt"));
    instrument.advance(1ms);
    EXPECT_THAT(journal.take(), ElementsAre("late"));
}

} // namespace
} // namespace tarn::simulator
