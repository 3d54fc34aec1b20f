#include <simulator/manualinstrument.h>

#include <simulator/error.h>
#include <simulator/flashmemory.h>
#include <support/success.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using test::Image;
using test::Journal;
using test::makeImage;
using test::ManualInstrument;
using test::MemoryObserver;
using testing::ElementsAre;
using testing::IsEmpty;

using tests::success;
constexpr std::uint32_t size = 1U << 20U;

Settings prompt(CompletionMode mode = CompletionMode::Thread)
{
    Settings settings;
    settings.memorySize = size;
    settings.speed = std::numeric_limits<double>::infinity();
    settings.completion = mode;
    return settings;
}

class MemoryTest : public testing::TestWithParam<CompletionMode> {
protected:
    ManualInstrument instrument{prompt(GetParam())};
    std::shared_ptr<test::Memory> memory = instrument.control<test::Memory>();
    Journal journal;
    MemoryObserver observer{journal};
};

INSTANTIATE_TEST_SUITE_P(Modes, MemoryTest, testing::Values(CompletionMode::Thread, CompletionMode::Inline));

TEST_P(MemoryTest, IsAvailableAndErasedAtFirst)
{
    EXPECT_TRUE(memory->isAvailable());
    const auto [image, code] = test::read(*memory);
    EXPECT_EQ(code, success);
    EXPECT_EQ(image, Image(size, std::byte{0xFF}));
    EXPECT_EQ(test::check(*memory), success);
}

TEST_P(MemoryTest, GivesBackTheImageThatWasWrittenLast)
{
    for (const std::size_t length : {100'000U, 1U, size, 5000U}) {
        const auto image = makeImage(length, static_cast<unsigned>(length));
        ASSERT_EQ(test::write(*memory, image), success);
        EXPECT_EQ(test::read(*memory), std::pair(image, success));
        EXPECT_EQ(test::check(*memory), success);
    }
    ASSERT_EQ(test::erase(*memory), success);
    EXPECT_EQ(test::read(*memory).first, Image(size, std::byte{0xFF}));
}

TEST_P(MemoryTest, RefusesAnImageThatIsEmptyOrTooLarge)
{
    const auto image = makeImage(1000);
    ASSERT_EQ(test::write(*memory, image), success);
    EXPECT_EQ(test::write(*memory, {}), Error::BadSize);
    EXPECT_EQ(test::write(*memory, Image(size + 1)), Error::BadSize);
    EXPECT_EQ(test::read(*memory).first, image);
    EXPECT_EQ(test::check(*memory), success);
}

TEST_P(MemoryTest, ChangesNothingWhileItIsWriteProtected)
{
    const auto image = makeImage(1000);
    ASSERT_EQ(test::write(*memory, image), success);
    FaultPlan plan;
    plan.writeProtect = true;
    instrument.vna->faults().setPlan(plan);
    EXPECT_EQ(test::write(*memory, makeImage(500)), Error::WriteProtected);
    EXPECT_EQ(test::erase(*memory), Error::WriteProtected);
    EXPECT_EQ(test::read(*memory).first, image);
    EXPECT_EQ(test::check(*memory), success);
    instrument.vna->faults().setPlan({});
    EXPECT_EQ(test::erase(*memory), success);
}

TEST_P(MemoryTest, TellsItsProgressFromNothingToEverything)
{
    memory->addObserver(&observer);
    memory->addObserver(&observer);
    ASSERT_EQ(test::write(*memory, makeImage(600)), success);
    EXPECT_THAT(journal.take(), ElementsAre("write 0/600", "write 256/600", "write 512/600", "write 600/600"));
    ASSERT_EQ(test::read(*memory).second, success);
    EXPECT_THAT(journal.take(), ElementsAre("read 0/600", "read 256/600", "read 512/600", "read 600/600"));
    ASSERT_EQ(test::check(*memory), success);
    EXPECT_THAT(journal.take(), ElementsAre("check 0/600", "check 600/600"));
    ASSERT_EQ(test::erase(*memory), success);
    const auto steps = journal.take();
    ASSERT_EQ(steps.size(), 129U);
    EXPECT_EQ(steps[1], "erase 8192/1048576");
    EXPECT_EQ(steps.back(), "erase 1048576/1048576");
    memory->removeObserver(&observer);
    ASSERT_EQ(test::check(*memory), success);
    EXPECT_THAT(journal.take(), IsEmpty());
}

TEST_P(MemoryTest, TellsItsProgressAtMost129Times)
{
    memory->addObserver(&observer);
    for (const auto length : {size, size - 1, 32769U, 33000U}) {
        ASSERT_EQ(test::write(*memory, Image(length)), success);
        const auto steps = journal.take();
        EXPECT_LE(steps.size(), 129U) << length;
        EXPECT_GE(steps.size(), 60U) << length;
    }
}

TEST_P(MemoryTest, HasNothingToCorruptWhileItIsErased)
{
    auto settings = prompt(GetParam());
    settings.faults.corrupt = true;
    const ManualInstrument blank{settings};
    EXPECT_EQ(test::check(*blank.control<test::Memory>()), success);
}

TEST_P(MemoryTest, EndsWithTheErrorThatWasInjectedAndDoesNothing)
{
    const auto image = makeImage(1000);
    ASSERT_EQ(test::write(*memory, image), success);
    FaultPlan plan;
    plan.failEvery = 1;
    plan.failure = Error::Timeout;
    instrument.vna->faults().setPlan(plan);
    memory->addObserver(&observer);
    EXPECT_EQ(test::write(*memory, makeImage(500)), Error::Timeout);
    EXPECT_EQ(test::erase(*memory), Error::Timeout);
    EXPECT_EQ(test::check(*memory), Error::Timeout);
    EXPECT_EQ(test::read(*memory), std::pair(Image{}, make_error_code(Error::Timeout)));
    EXPECT_THAT(journal.take(), IsEmpty());
    instrument.vna->faults().setPlan({});
    EXPECT_EQ(test::read(*memory).first, image);
}

TEST_P(MemoryTest, TakesNoMoreThanTheImageForARead)
{
    ASSERT_EQ(test::write(*memory, makeImage(size - 1)), success);
    const auto image = test::read(*memory).first;
    EXPECT_EQ(image.size(), size - 1);
    EXPECT_EQ(image.capacity(), image.size());
}

/// The time of real memory.
Settings real()
{
    auto settings = prompt();
    settings.speed = 1.0;
    return settings;
}

TEST(MemoryTimeTest, IsThatOfPagesAndSectors)
{
    struct Case {
        const char* operation;
        Duration time;
    };
    constexpr auto image = 5000U; // 20 pages, 2 sectors
    for (const auto& [operation, time] : {Case{"write", 20 * 700us + 2 * 45ms}, Case{"read", 20 * 20us},
                                          Case{"check", 20 * 20us}, Case{"erase", 256 * 45ms}}) {
        ManualInstrument instrument{real()};
        const auto memory = instrument.control<test::Memory>();
        std::string events;
        memory->write(makeImage(image), [&](auto) { events += "write "; });
        instrument.advance(0ns); // it begins now
        if (operation != std::string{"write"})
            instrument.advance(1s);
        if (operation == std::string{"read"})
            memory->read([&](auto, auto) { events += "read "; });
        if (operation == std::string{"check"})
            memory->integrityCheck([&](auto) { events += "check "; });
        if (operation == std::string{"erase"})
            memory->erase([&](auto) { events += "erase "; });
        instrument.advance(0ns);
        instrument.advance(time - 1ns);
        EXPECT_THAT(events, testing::Not(testing::HasSubstr(operation)));
        instrument.advance(1ns);
        EXPECT_THAT(events, testing::EndsWith(std::string{operation} + ' '));
    }
}

TEST(MemoryTimeTest, IsDividedByTheSpeed)
{
    auto settings = real();
    settings.speed = 1000.0;
    ManualInstrument instrument{settings};
    int completed = 0;
    instrument.control<test::Memory>()->erase([&](auto) { ++completed; });
    instrument.advance(0ns);
    instrument.advance(256 * 45us - 1ns);
    EXPECT_EQ(completed, 0);
    instrument.advance(1ns);
    EXPECT_EQ(completed, 1);
}

TEST(MemoryTimeTest, PassesPieceByPiece)
{
    ManualInstrument instrument{real()};
    Journal journal;
    MemoryObserver observer{journal};
    const auto memory = instrument.control<test::Memory>();
    memory->addObserver(&observer);
    memory->erase([&](auto) { journal.note("done"); });
    instrument.advance(0ns);
    EXPECT_THAT(journal.take(), ElementsAre("erase 0/1048576"));
    instrument.advance(90ms - 1ns);
    EXPECT_THAT(journal.take(), IsEmpty());
    instrument.advance(1ns);
    EXPECT_THAT(journal.take(), ElementsAre("erase 8192/1048576"));
    instrument.advance(180ms);
    EXPECT_THAT(journal.take(), ElementsAre("erase 16384/1048576", "erase 24576/1048576"));
    instrument.advance(1h);
    const auto rest = journal.take();
    ASSERT_EQ(rest.size(), 126U);
    EXPECT_EQ(rest.back(), "done");
}

TEST(MemoryTimeTest, LeavesTheInstrumentFreeForOtherRequests)
{
    int completed = 0; // outlives the instrument, which ends what is under way
    ManualInstrument instrument{real()};
    const auto memory = instrument.control<test::Memory>();
    memory->erase([&](auto) { ++completed; });
    instrument.advance(1s);
    EXPECT_EQ(test::write(*instrument.control<test::Files>(), "f", {1}), success);
    EXPECT_EQ(completed, 0);
}

} // namespace
} // namespace tarn::simulator
