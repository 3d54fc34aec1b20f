#include <simulator/manualinstrument.h>
#include <simulator/watchedinstrument.h>

#include <simulator/error.h>
#include <support/success.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <thread>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using test::dropEvery;
using test::Image;
using test::Journal;
using test::LifecycleObserver;
using test::makeImage;
using test::ManualInstrument;
using test::MemoryObserver;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

using tests::success;
constexpr std::uint32_t size = 1U << 20U;

/// A memory in which an image lies, and observers that write a journal.
struct Watched : ManualInstrument {
    explicit Watched(double speed, CompletionMode mode = CompletionMode::Thread)
        : ManualInstrument{settings(speed, mode)}
    {
        vna->addObserver(&lifecycle);
        attach();
    }

    ~Watched()
    {
        if (vna)
            vna->removeObserver(&lifecycle);
    }

    static Settings settings(double speed, CompletionMode mode)
    {
        Settings settings;
        settings.memorySize = size;
        settings.speed = speed;
        settings.completion = mode;
        return settings;
    }

    /// As a host does that follows the controls.
    void attach() { memory()->addObserver(&progress); }

    [[nodiscard]] std::shared_ptr<test::Memory> memory() const { return control<test::Memory>(); }

    void setFaults(const FaultPlan& plan) const { vna->faults().setPlan(plan); }

    Journal journal;
    LifecycleObserver lifecycle{journal};
    MemoryObserver progress{journal};
};

constexpr double unlimited = std::numeric_limits<double>::infinity();

FaultPlan powerLoss(std::uint64_t every = 1)
{
    FaultPlan plan;
    plan.powerLossEvery = every;
    return plan;
}

FaultPlan unplug(Duration away)
{
    FaultPlan plan;
    plan.unplugEvery = 1;
    plan.dropFor = away;
    return plan;
}

TEST(BusyTest, IsTheMemoryWhileALongOperationRuns)
{
    Watched instrument{1.0};
    const auto memory = instrument.memory();
    const auto serialNumber = instrument.control<test::SerialNumber>();
    std::optional<std::error_code> erased;
    memory->erase([&](auto code) { erased = code; });
    instrument.advance(1s);
    EXPECT_EQ(test::read(*memory), std::pair(Image{}, make_error_code(Error::Busy)));
    EXPECT_EQ(test::write(*memory, Image(1)), Error::Busy);
    EXPECT_EQ(test::erase(*memory), Error::Busy);
    EXPECT_EQ(test::check(*memory), Error::Busy);
    EXPECT_EQ(test::write(*serialNumber, 5), Error::Busy);
    EXPECT_FALSE(erased.has_value());
    instrument.advance(1h);
    EXPECT_EQ(erased, success) << "the one that was running is not disturbed";
    memory->integrityCheck([&](auto code) { erased = code; });
    instrument.advance(1h);
    EXPECT_EQ(erased, success) << "and the next one runs";
}

TEST(BusyTest, IsOverWhenTheCompletionComes)
{
    Watched instrument{unlimited};
    const auto memory = instrument.memory();
    std::promise<std::error_code> second;
    memory->erase([&](auto) { memory->integrityCheck([&](auto code) { second.set_value(code); }); });
    EXPECT_EQ(second.get_future().get(), success);
}

TEST(BusyTest, IsOverAfterAnOperationThatWasRefused)
{
    Watched instrument{unlimited};
    EXPECT_EQ(test::write(*instrument.memory(), {}), Error::BadSize);
    EXPECT_EQ(test::erase(*instrument.memory()), success);
}

class InterruptionTest : public testing::TestWithParam<CompletionMode> { };

INSTANTIATE_TEST_SUITE_P(Modes, InterruptionTest, testing::Values(CompletionMode::Thread, CompletionMode::Inline));

TEST_P(InterruptionTest, OfThePowerLeavesHalfAnImageThatTheCheckFinds)
{
    Watched instrument{unlimited, GetParam()};
    const auto old = makeImage(size, 1);
    const auto image = makeImage(size, 2);
    ASSERT_EQ(test::write(*instrument.memory(), old), success);
    instrument.setFaults(powerLoss());
    static_cast<void>(instrument.journal.take());
    EXPECT_EQ(test::write(*instrument.memory(), image), Error::PowerLoss);
    auto events = instrument.journal.take();
    ASSERT_GE(events.size(), 3U);
    EXPECT_THAT((std::vector<std::string>{events.end() - 3, events.end()}),
                ElementsAre("write 524288/1048576", "about to be released", "available"));

    instrument.setFaults({});
    const auto left = test::read(*instrument.memory()).first;
    ASSERT_EQ(left.size(), size);
    constexpr auto middle = static_cast<std::ptrdiff_t>(size / 2);
    EXPECT_TRUE(std::equal(left.begin(), left.begin() + middle, image.begin()));
    EXPECT_TRUE(std::equal(left.begin() + middle, left.end(), old.begin() + middle));
    EXPECT_EQ(test::check(*instrument.memory()), Error::Corrupt);
    EXPECT_EQ(test::write(*instrument.memory(), image), success) << "writing again repairs it";
    EXPECT_EQ(test::check(*instrument.memory()), success);
}

TEST_P(InterruptionTest, OfAnErasureLeavesHalfOfTheMemory)
{
    Watched instrument{unlimited, GetParam()};
    const auto old = makeImage(size, 1);
    ASSERT_EQ(test::write(*instrument.memory(), old), success);
    instrument.setFaults(powerLoss());
    EXPECT_EQ(test::erase(*instrument.memory()), Error::PowerLoss);
    instrument.setFaults({});
    const auto left = test::read(*instrument.memory()).first;
    EXPECT_EQ(left.front(), std::byte{0xFF});
    EXPECT_EQ(left.back(), old.back());
    EXPECT_EQ(test::check(*instrument.memory()), Error::Corrupt);
    EXPECT_EQ(test::erase(*instrument.memory()), success);
    EXPECT_EQ(test::check(*instrument.memory()), success);
}

TEST_P(InterruptionTest, OfAReadOrACheckChangesNothing)
{
    Watched instrument{unlimited, GetParam()};
    const auto image = makeImage(size, 1);
    ASSERT_EQ(test::write(*instrument.memory(), image), success);
    instrument.setFaults(powerLoss());
    EXPECT_EQ(test::read(*instrument.memory()), std::pair(Image{}, make_error_code(Error::PowerLoss)));
    EXPECT_EQ(test::check(*instrument.memory()), Error::PowerLoss);
    instrument.setFaults({});
    EXPECT_EQ(test::read(*instrument.memory()).first, image);
    EXPECT_EQ(test::check(*instrument.memory()), success);
}

TEST_P(InterruptionTest, ComesEvenToAnImageOfOneByte)
{
    Watched instrument{unlimited, GetParam()};
    instrument.setFaults(powerLoss());
    EXPECT_EQ(test::write(*instrument.memory(), Image(1)), Error::PowerLoss);
    instrument.setFaults({});
    EXPECT_EQ(test::check(*instrument.memory()), Error::Corrupt);
}

TEST_P(InterruptionTest, ComesToEveryNthLongOperationAlone)
{
    Watched instrument{unlimited, GetParam()};
    instrument.setFaults(powerLoss(2));
    const auto& memory = [&]() -> test::Memory& { return *instrument.memory(); };
    EXPECT_EQ(test::erase(memory()), success);
    EXPECT_EQ(test::write(*instrument.control<test::Files>(), "f", {1}), success);
    EXPECT_EQ(test::erase(memory()), Error::PowerLoss);
    EXPECT_EQ(test::erase(memory()), success);
    EXPECT_EQ(test::erase(memory()), Error::PowerLoss);
}

TEST_P(InterruptionTest, OfThePowerLosesTheRamOfThePotentiometers)
{
    Watched instrument{unlimited, GetParam()};
    ASSERT_EQ(test::writeRam(*instrument.control<test::Potentiometers>(), 1, 7), success);
    instrument.setFaults(unplug({}));
    EXPECT_EQ(test::check(*instrument.memory()), Error::Disconnected);
    EXPECT_EQ(instrument.vna->potentiometers()[1].ram, 7) << "the power is still there";
    instrument.setFaults(powerLoss());
    EXPECT_EQ(test::check(*instrument.memory()), Error::PowerLoss);
    EXPECT_EQ(instrument.vna->potentiometers()[1].ram, 512);
}

TEST_P(InterruptionTest, ByUnpluggingKeepsTheControlsAwayForATime)
{
    Watched instrument{unlimited, GetParam()};
    instrument.setFaults(unplug(2s));
    const auto held = instrument.memory();
    EXPECT_EQ(test::write(*held, makeImage(size)), Error::Disconnected);
    EXPECT_EQ(instrument.memory(), nullptr);
    instrument.advance(2s - 1ns);
    EXPECT_EQ(instrument.memory(), nullptr);
    instrument.advance(1ns);
    instrument.setFaults({});
    ASSERT_NE(instrument.memory(), nullptr);
    EXPECT_EQ(test::check(*instrument.memory()), Error::Corrupt) << "half of the image was written";
}

TEST(DropInTheMiddleTest, DoesNotStopALongOperation)
{
    Watched instrument{unlimited};
    instrument.lifecycle.atOffer = [&] { instrument.attach(); };
    instrument.setFaults(dropEvery(1));
    const auto image = makeImage(size);
    EXPECT_EQ(test::write(*instrument.memory(), image), success);
    const auto events = instrument.journal.take();
    const auto released = std::ranges::find(events, "about to be released");
    ASSERT_NE(released, events.end());
    EXPECT_EQ(*(released - 1), "write 524288/1048576");
    EXPECT_EQ(*(released + 1), "available");
    EXPECT_EQ(*(released + 2), "write 532480/1048576") << "the observer of the new control hears on";
    EXPECT_EQ(events.back(), "write 1048576/1048576");
    instrument.setFaults({});
    EXPECT_EQ(test::read(*instrument.memory()).first, image);
    EXPECT_EQ(test::check(*instrument.memory()), success);
}

TEST(DropInTheMiddleTest, ComesWithARequestThatIsRefusedToo)
{
    Watched instrument{unlimited};
    instrument.setFaults(dropEvery(1));
    EXPECT_EQ(test::write(*instrument.memory(), {}), Error::BadSize);
    EXPECT_THAT(instrument.journal.take(), ElementsAre("about to be released", "available"));
}

TEST(DropInTheMiddleTest, EndsTheProgressOfTheDroppedControl)
{
    Watched instrument{1.0};
    std::optional<std::error_code> result;
    instrument.memory()->erase([&](auto code) { result = code; });
    instrument.advance(1s);
    instrument.vna->drop();
    static_cast<void>(instrument.journal.take());
    instrument.advance(1h);
    EXPECT_THAT(instrument.journal.take(), IsEmpty());
    EXPECT_EQ(result, success);
}

TEST(DestructionTest, InTheMiddleCompletesOnceAndNotifiesNobody)
{
    for (const bool isInterrupted : {false, true}) {
        Watched instrument{1.0};
        if (isInterrupted)
            instrument.setFaults(powerLoss());
        int completed = 0;
        const auto held = instrument.memory();
        held->write(makeImage(size), [&](auto code) {
            ++completed;
            EXPECT_EQ(code, isInterrupted ? make_error_code(Error::PowerLoss) : success);
        });
        instrument.advance(1s);
        EXPECT_EQ(completed, 0);
        EXPECT_THAT(instrument.journal.take(), Contains("write 0/1048576"));
        instrument.vna.reset();
        EXPECT_EQ(completed, 1);
        EXPECT_THAT(instrument.journal.take(), IsEmpty());
    }
}

TEST(DestructionTest, LeavesAControlThatIsHeldAtWork)
{
    for (const auto mode : {CompletionMode::Thread, CompletionMode::Inline}) {
        Watched instrument{1.0, mode};
        instrument.setFaults(dropEvery(1));
        const auto held = instrument.memory();
        instrument.vna.reset();
        const auto image = makeImage(size);
        EXPECT_EQ(test::write(*held, image), success);
        EXPECT_EQ(test::read(*held).first, image);
        EXPECT_EQ(test::check(*held), success);
    }
}

TEST(ThrowTest, NeverCompletesALongOperation)
{
    Watched instrument{unlimited};
    FaultPlan plan;
    plan.throwEvery = 1;
    instrument.setFaults(plan);
    EXPECT_THROW(instrument.memory()->erase([&](auto) { instrument.journal.note("done"); }), DeviceFault);
    EXPECT_THROW(instrument.memory()->read([&](auto, auto) { instrument.journal.note("done"); }), DeviceFault);
    instrument.vna->waitUntilIdle();
    EXPECT_THAT(instrument.journal.take(), IsEmpty());
}

TEST(InlineTest, LongOperationsCanBeAskedForInACompletion)
{
    Watched instrument{1.0, CompletionMode::Inline};
    instrument.vna->drop();
    std::optional<std::error_code> result;
    instrument.lifecycle.atOffer = [&] {
        instrument.memory()->erase([&](auto code) { result = code; });
        EXPECT_EQ(result, success) << "there is nobody to wait for";
    };
    instrument.vna->offer();
    EXPECT_EQ(result, success);
}

TEST(InlineTest, ALongOperationCompletesOnTheCallersThread)
{
    Watched instrument{unlimited, CompletionMode::Inline};
    std::thread::id thread;
    instrument.memory()->erase([&](auto) { thread = std::this_thread::get_id(); });
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST(LatencyTest, ComesBeforeALongOperation)
{
    auto settings = Watched::settings(unlimited, CompletionMode::Thread);
    settings.latency = 5ms;
    ManualInstrument instrument{settings};
    int completed = 0;
    instrument.control<test::Memory>()->erase([&](auto) { ++completed; });
    instrument.advance(5ms - 1ns);
    EXPECT_EQ(completed, 0);
    instrument.advance(1ns);
    EXPECT_EQ(completed, 1);
}

} // namespace
} // namespace tarn::simulator
