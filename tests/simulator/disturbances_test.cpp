#include <simulator/watchedinstrument.h>

#include <simulator/error.h>
#include <support/success.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <mutex>
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

class DropTest : public testing::TestWithParam<CompletionMode> { };

INSTANTIATE_TEST_SUITE_P(Modes, DropTest, testing::Values(CompletionMode::Thread, CompletionMode::Inline));

TEST_P(DropTest, ComesAfterARequestWasTakenAndBeforeItsCompletion)
{
    WatchedInstrument instrument{withFaults(dropEvery(2), GetParam())};
    const auto files = instrument.control<test::Files>();
    std::promise<void> done;
    files->spaceInfo([&](auto, auto) { instrument.journal.note("first"); });
    files->writeFile("f", {1}, [&](auto code) {
        instrument.journal.note(code ? "failed" : "second");
        done.set_value();
    });
    done.get_future().wait();
    EXPECT_THAT(instrument.journal.take(), ElementsAre("first", "about to be released", "available", "second"));
    EXPECT_NE(instrument.control<test::Files>(), files);
}

TEST_P(DropTest, ComesWithAPlainOperationOnTheInstrumentsThread)
{
    WatchedInstrument instrument{withFaults(dropEvery(2), GetParam())};
    const auto caller = std::this_thread::get_id();
    instrument.observer.atRelease = [&] { EXPECT_NE(std::this_thread::get_id(), caller); };
    const auto leakage = instrument.control<test::Leakage>();
    leakage->setEnabled(true);
    EXPECT_TRUE(leakage->isEnabled());
    instrument.vna->waitUntilIdle();
    EXPECT_THAT(instrument.journal.take(), ElementsAre("about to be released", "available"));
}

TEST_P(DropTest, DoesNotWaitWithAPlainOperationForAnObserver)
{
    WatchedInstrument instrument{withFaults(dropEvery(1), GetParam())};
    std::mutex hosts;
    instrument.observer.atRelease = [&] { const std::lock_guard lock{hosts}; };
    {
        const std::lock_guard lock{hosts};
        static_cast<void>(instrument.control<test::Leakage>()->isEnabled());
        static_cast<void>(instrument.control<test::Temperature>()->moduleTemperatures());
    }
    instrument.vna->waitUntilIdle();
    EXPECT_THAT(instrument.journal.take(),
                ElementsAre("about to be released", "available", "about to be released", "available"));
}

TEST_P(DropTest, IsNotCausedByWhatAnObserverDoes)
{
    WatchedInstrument instrument{withFaults(dropEvery(1), GetParam())};
    instrument.observer.atOffer = [&] {
        static_cast<void>(instrument.control<test::Temperature>()->temperature());
        instrument.control<test::Files>()->spaceInfo([&](auto, auto) { instrument.journal.note("completed"); });
    };
    EXPECT_EQ(test::write(*instrument.control<test::Files>(), "f", {1}), success);
    instrument.vna->waitUntilIdle();
    EXPECT_THAT(instrument.journal.take(), ElementsAre("about to be released", "available", "completed"));
}

TEST_P(DropTest, KeepsTheControlsAwayForATime)
{
    auto plan = dropEvery(1);
    plan.dropFor = 2s;
    WatchedInstrument instrument{withFaults(plan, GetParam())};
    EXPECT_EQ(test::write(*instrument.control<test::Files>(), "f", {1}), success);
    instrument.vna->waitUntilIdle();
    EXPECT_EQ(instrument.control<test::Files>(), nullptr);
    instrument.advance(2s - 1ns);
    EXPECT_EQ(instrument.control<test::Files>(), nullptr);
    instrument.advance(1ns);
    EXPECT_NE(instrument.control<test::Files>(), nullptr);
    EXPECT_THAT(instrument.journal.take(), ElementsAre("about to be released", "available"));
}

TEST_P(DropTest, ThatWasAskedForIsNotEndedByAnEarlierOne)
{
    auto plan = dropEvery(1);
    plan.dropFor = 2s;
    WatchedInstrument instrument{withFaults(plan, GetParam())};
    ASSERT_EQ(test::write(*instrument.control<test::Files>(), "f", {1}), success);
    instrument.vna->offer();
    instrument.vna->drop();
    instrument.advance(10s);
    EXPECT_EQ(instrument.control<test::Files>(), nullptr);
}

TEST_P(DropTest, ThatWasAskedForIsNotEndedByAFault)
{
    WatchedInstrument instrument{withFaults(dropEvery(1), GetParam())};
    const auto files = instrument.control<test::Files>();
    instrument.vna->drop();
    ASSERT_EQ(test::write(*files, "f", {1}), success);
    instrument.vna->waitUntilIdle();
    EXPECT_EQ(instrument.control<test::Files>(), nullptr);
}

TEST_P(DropTest, LosesNothingWithEveryOperation)
{
    WatchedInstrument instrument{withFaults(dropEvery(1), GetParam())};
    for (int i = 0; i < 50; ++i) {
        const auto name = std::to_string(i);
        ASSERT_EQ(test::write(*instrument.control<test::Files>(), name, test::Bytes(10, 1)), success);
        ASSERT_EQ(test::read(*instrument.control<test::Files>(), name).first, test::Bytes(10, 1));
    }
    EXPECT_EQ(test::list(*instrument.control<test::Files>()).size(), 50U);
    instrument.vna->waitUntilIdle();
    EXPECT_EQ(instrument.journal.take().size(), 2U * 101U);
}

class FaultTest : public testing::TestWithParam<CompletionMode> { };

INSTANTIATE_TEST_SUITE_P(Modes, FaultTest, testing::Values(CompletionMode::Thread, CompletionMode::Inline));

TEST_P(FaultTest, FailsTheFirstRequestAndLeavesTheInstrumentUnchanged)
{
    FaultPlan plan;
    plan.failNext = Error::Full;
    const ManualInstrument instrument{withFaults(plan, GetParam())};
    auto& files = *instrument.control<test::Files>();
    EXPECT_EQ(test::write(files, "f", {1}), Error::Full);
    EXPECT_THAT(test::list(files), IsEmpty());
    EXPECT_EQ(test::write(files, "f", {1}), success);
}

TEST_P(FaultTest, CanBeToldWhatGoesWrongWhileItRuns)
{
    const ManualInstrument instrument{withFaults({}, GetParam())};
    auto& files = *instrument.control<test::Files>();
    ASSERT_EQ(test::write(files, "f", {1}), success);
    FaultPlan plan;
    plan.failEvery = 1;
    plan.failure = *errorFromText("4711");
    instrument.vna->faults().setPlan(plan);
    const auto [contents, code] = test::read(files, "f");
    EXPECT_EQ(code.value(), 4711);
    EXPECT_THAT(contents, IsEmpty());
    instrument.vna->faults().setPlan({});
    EXPECT_EQ(test::read(files, "f").second, success);
}

TEST_P(FaultTest, ThrowsAndNeverCompletes)
{
    FaultPlan plan;
    plan.throwEvery = 1;
    const ManualInstrument instrument{withFaults(plan, GetParam())};
    Journal journal;
    EXPECT_THROW(startRequests(*instrument.control<test::Files>(), journal), DeviceFault);
    EXPECT_THROW(static_cast<void>(instrument.control<test::Leakage>()->isEnabled()), DeviceFault);
    EXPECT_THROW(instrument.control<test::Leakage>()->setEnabled(true), DeviceFault);
    EXPECT_THROW(static_cast<void>(instrument.control<test::Temperature>()->temperature()), DeviceFault);
    instrument.vna->waitUntilIdle();
    EXPECT_THAT(journal.take(), IsEmpty());
    instrument.vna->faults().setPlan({});
    EXPECT_FALSE(instrument.control<test::Leakage>()->isEnabled());
}

TEST_P(FaultTest, DoesNotDisturbTheRegistrationOfObservers)
{
    FaultPlan plan;
    plan.throwEvery = 1;
    ManualInstrument instrument{withFaults(plan, GetParam())};
    int notified = 0;
    test::TemperatureObserver observer{[&] { ++notified; }};
    const auto temperature = instrument.control<test::Temperature>();
    temperature->addObserver(&observer);
    instrument.advance(1s);
    temperature->removeObserver(&observer);
    instrument.advance(1s);
    EXPECT_EQ(notified, 1);
}

} // namespace
} // namespace tarn::simulator
