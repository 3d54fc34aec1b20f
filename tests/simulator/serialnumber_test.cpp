#include <simulator/manualinstrument.h>

#include <simulator/error.h>
#include <support/success.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using test::Journal;
using test::ManualInstrument;
using testing::ElementsAre;
using testing::IsEmpty;

using tests::success;

struct ProgressObserver final : test::SerialNumber::Observer {
    explicit ProgressObserver(Journal& theJournal)
        : journal{theJournal}
    {
    }

    void onWriteProgressChanged(unsigned done, unsigned total) override
    {
        journal.note(std::to_string(done) + '/' + std::to_string(total));
    }

    Journal& journal;
};

Settings withSpeed(double speed, CompletionMode mode = CompletionMode::Thread)
{
    Settings settings;
    settings.speed = speed;
    settings.completion = mode;
    return settings;
}

class SerialNumberTest : public testing::TestWithParam<CompletionMode> {
protected:
    ManualInstrument instrument{withSpeed(std::numeric_limits<double>::infinity(), GetParam())};
    std::shared_ptr<test::SerialNumber> serialNumber = instrument.control<test::SerialNumber>();
    Journal journal;
    ProgressObserver observer{journal};
};

INSTANTIATE_TEST_SUITE_P(Modes, SerialNumberTest, testing::Values(CompletionMode::Thread, CompletionMode::Inline));

TEST_P(SerialNumberTest, IsDecidedByTheSeedAtFirst)
{
    EXPECT_TRUE(serialNumber->isAvailable());
    EXPECT_EQ(test::read(*serialNumber), 1'000'001U);
    Settings settings;
    settings.seed = 41;
    EXPECT_EQ(test::read(*ManualInstrument{settings}.control<test::SerialNumber>()), 1'000'042U);
}

TEST_P(SerialNumberTest, TakesEveryNumberOf32Bits)
{
    for (const auto number : {0U, 1U, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(test::write(*serialNumber, number), success);
        EXPECT_EQ(test::read(*serialNumber), number);
    }
}

TEST_P(SerialNumberTest, TellsTheProgressOfAWrite)
{
    serialNumber->addObserver(&observer);
    serialNumber->addObserver(&observer);
    ASSERT_EQ(test::write(*serialNumber, 5), success);
    EXPECT_THAT(journal.take(), ElementsAre("0/4", "1/4", "2/4", "3/4", "4/4"));
    static_cast<void>(test::read(*serialNumber));
    EXPECT_THAT(journal.take(), IsEmpty());
    serialNumber->removeObserver(&observer);
    ASSERT_EQ(test::write(*serialNumber, 6), success);
    EXPECT_THAT(journal.take(), IsEmpty());
}

TEST_P(SerialNumberTest, IsTheOldOneAfterAnInterruption)
{
    serialNumber->addObserver(&observer);
    for (const auto error : {Error::PowerLoss, Error::Disconnected}) {
        FaultPlan plan;
        (error == Error::PowerLoss ? plan.powerLossEvery : plan.unplugEvery) = 1;
        instrument.vna->faults().setPlan(plan);
        EXPECT_EQ(test::write(*instrument.control<test::SerialNumber>(), 5), error);
    }
    EXPECT_THAT(journal.take(), ElementsAre("0/4", "1/4", "2/4")) << "of the control that was dropped";
    instrument.vna->faults().setPlan({});
    EXPECT_EQ(test::read(*instrument.control<test::SerialNumber>()), 1'000'001U);
}

TEST_P(SerialNumberTest, IsProtectedWithTheMemory)
{
    FaultPlan plan;
    plan.writeProtect = true;
    instrument.vna->faults().setPlan(plan);
    EXPECT_EQ(test::write(*serialNumber, 5), Error::WriteProtected);
    EXPECT_EQ(test::read(*serialNumber), 1'000'001U);
}

TEST(SerialNumberTimeTest, IsThatOfASectorTwoPagesAndAPageReadBack)
{
    ManualInstrument instrument{withSpeed(1.0)};
    int completed = 0;
    Journal journal;
    ProgressObserver observer{journal};
    const auto serialNumber = instrument.control<test::SerialNumber>();
    serialNumber->addObserver(&observer);
    serialNumber->writeSerialNumber(5, [&](auto) { ++completed; });
    instrument.advance(0ns);
    instrument.advance(45ms);
    EXPECT_THAT(journal.take(), ElementsAre("0/4", "1/4"));
    instrument.advance(1420us - 1ns);
    EXPECT_EQ(completed, 0);
    EXPECT_EQ(test::read(*serialNumber), 1'000'001U) << "not before the write has ended";
    instrument.advance(1ns);
    EXPECT_EQ(completed, 1);
    EXPECT_EQ(test::read(*serialNumber), 5U);
}

TEST(SerialNumberDestructionTest, InTheMiddleOfAWriteCompletesOnceAndNotifiesNobody)
{
    ManualInstrument instrument{withSpeed(1.0)};
    int completed = 0;
    Journal journal;
    ProgressObserver observer{journal};
    const auto serialNumber = instrument.control<test::SerialNumber>();
    serialNumber->addObserver(&observer);
    serialNumber->writeSerialNumber(5, [&](auto) { ++completed; });
    instrument.advance(1ms);
    EXPECT_THAT(journal.take(), ElementsAre("0/4"));
    instrument.vna.reset();
    EXPECT_EQ(completed, 1);
    EXPECT_THAT(journal.take(), IsEmpty());
    EXPECT_EQ(test::read(*serialNumber), 5U);
}

} // namespace
} // namespace tarn::simulator
