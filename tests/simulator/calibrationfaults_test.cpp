#include <simulator/calibrationfixture.h>

#include <sdk/models.h>
#include <simulator/error.h>

#include <gmock/gmock.h>

#include <random>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using test::CalibratedInstrument;
using test::Kind;
using testing::ElementsAre;
using testing::IsEmpty;

template <class Control>
class CalibrationFaultTest : public testing::Test {
protected:
    /// What a failure of the memory is called.
    const std::string failure = "error " + std::to_string(Kind<Control>::writeFailed);
};

TYPED_TEST_SUITE(CalibrationFaultTest, test::AllKinds);

TYPED_TEST(CalibrationFaultTest, OfARequestIsAnErrorAlone)
{
    CalibratedInstrument<TypeParam> instrument;
    FaultPlan plan;
    plan.failEvery = 2;
    instrument.setFaults(plan);
    for (int i = 0; i < 3; ++i)
        Kind<TypeParam>::write(*instrument.control());
    for (int i = 0; i < 3; ++i)
        instrument.advance(10s);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started", "finished", this->failure, "started", "finished"));
}

TYPED_TEST(CalibrationFaultTest, OfAMemoryThatIsWriteProtectedIsAnErrorAlone)
{
    CalibratedInstrument<TypeParam> instrument;
    FaultPlan plan;
    plan.writeProtect = true;
    instrument.setFaults(plan);
    instrument.write();
    instrument.advance(10s);
    EXPECT_THAT(instrument.journal.take(), ElementsAre(this->failure));
    EXPECT_FALSE(instrument.slot().data().has_value());
    instrument.setFaults({});
    instrument.write();
    instrument.advance(10s);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started", "finished"));
}

TYPED_TEST(CalibrationFaultTest, ThatThrowsWritesNothing)
{
    CalibratedInstrument<TypeParam> instrument;
    FaultPlan plan;
    plan.throwEvery = 1;
    const auto control = instrument.control();
    instrument.setFaults(plan);
    EXPECT_THROW(Kind<TypeParam>::write(*control), DeviceFault);
    instrument.advance(10s);
    EXPECT_THAT(instrument.journal.take(), IsEmpty());
    EXPECT_FALSE(instrument.slot().data().has_value());
}

TYPED_TEST(CalibrationFaultTest, InTellingTheEndLeavesTheWriteAsItIs)
{
    CalibratedInstrument<TypeParam> instrument;
    FaultPlan plan;
    plan.misbehaviour = Misbehaviour::Twice;
    plan.misbehaveEvery = 2;
    instrument.setFaults(plan);
    for (int i = 0; i < 2; ++i)
        instrument.write();
    for (int i = 0; i < 2; ++i)
        instrument.advance(10s);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started", "finished", "started", "finished", "finished"));
    plan.misbehaviour = Misbehaviour::ThrowLate;
    plan.misbehaveEvery = 1;
    instrument.setFaults(plan);
    EXPECT_THROW(instrument.write(), DeviceFault);
    instrument.advance(10s);
    instrument.advance(plan.delay);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started", "finished"));
}

TYPED_TEST(CalibrationFaultTest, InTheMiddleIsHeardWithTheNextOfferAndLeavesWhatIsStored)
{
    CalibratedInstrument<TypeParam> instrument;
    instrument.write();
    instrument.advance(10s);
    static_cast<void>(instrument.journal.take());
    for (const auto member : {&FaultPlan::powerLossEvery, &FaultPlan::unplugEvery}) {
        FaultPlan plan;
        plan.*member = 1;
        plan.dropFor = 10s;
        instrument.setFaults(plan);
        instrument.write();
        instrument.advance(10s);
        const auto events = instrument.journal.take();
        ASSERT_GT(events.size(), 3U);
        EXPECT_EQ(events.front(), "started");
        EXPECT_LE(std::stoi(events.back()), 50);
        EXPECT_EQ(instrument.control(), nullptr);
        instrument.advance(10s);
        EXPECT_THAT(instrument.journal.take(), ElementsAre(this->failure));
        EXPECT_TRUE(instrument.slot().data() == Kind<TypeParam>::data());
    }
}

TYPED_TEST(CalibrationFaultTest, OfADropInTheMiddleLeavesTheRestToTheObserversOfTheNextOffer)
{
    CalibratedInstrument<TypeParam> instrument;
    FaultPlan plan;
    plan.dropEvery = 1;
    const auto control = instrument.control();
    instrument.setFaults(plan);
    Kind<TypeParam>::write(*control);
    instrument.advance(10s);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started", "finished"));
    EXPECT_NE(instrument.control(), control);
}

TYPED_TEST(CalibrationFaultTest, OfADropKeepsTheEndUntilTheNextOffer)
{
    CalibratedInstrument<TypeParam> instrument;
    instrument.write();
    instrument.refuse();
    instrument.advance(Kind<TypeParam>::time / 2);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started"));
    instrument.vna->drop();
    instrument.advance(10s);
    EXPECT_THAT(instrument.journal.take(), IsEmpty());
    EXPECT_TRUE(instrument.slot().data().has_value()) << "the write went on";
    instrument.vna->offer();
    EXPECT_THAT(instrument.journal.take(), ElementsAre("finished", "error 1"));
}

TYPED_TEST(CalibrationFaultTest, OfADropKeepsTheStartUntilTheNextOffer)
{
    CalibratedInstrument<TypeParam> instrument;
    const auto control = instrument.control();
    instrument.vna->drop();
    Kind<TypeParam>::write(*control);
    instrument.advance(Kind<TypeParam>::time / 2);
    EXPECT_THAT(instrument.journal.take(), IsEmpty());
    instrument.vna->offer();
    EXPECT_THAT(instrument.journal.take(), ElementsAre("started"));
    instrument.advance(10s);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("finished"));
}

TEST(CalibrationOfferTest, KeepsTheEndWhileAModelIsOfferedThatLacksTheControl)
{
    Settings settings;
    settings.profile = Profile::Vell;
    CalibratedInstrument<test::Ifsw> instrument{settings};
    instrument.write();
    instrument.advance(Kind<test::Ifsw>::time / 2);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started"));
    test::become(instrument, sdk::models::pell::pell101);
    EXPECT_EQ(instrument.control(), nullptr);
    instrument.advance(10s);
    EXPECT_THAT(instrument.journal.take(), IsEmpty());
    test::become(instrument, sdk::models::vell::vell801);
    EXPECT_THAT(instrument.journal.take(), ElementsAre("finished"));
}

TYPED_TEST(CalibrationFaultTest, OfADropEndsTheRegistrations)
{
    CalibratedInstrument<TypeParam> instrument;
    test::Journal journal;
    test::WriteObserver<TypeParam> stranger{journal};
    const auto control = instrument.control();
    control->addObserver(&stranger);
    instrument.vna->drop();
    control->addObserver(&stranger); // while nothing is offered
    instrument.vna->offer();
    instrument.write();
    instrument.advance(10s);
    EXPECT_THAT(journal.take(), IsEmpty());
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started", "finished"));
}

TYPED_TEST(CalibrationFaultTest, OfTheStorageIsAnErrorAfterTheProgressAndLeavesWhatIsStored)
{
    struct FullStorage final : NoStorage {
        std::error_code save(const QJsonObject& /*sections*/, const Blocks& /*blocks*/) override { return Error::Io; }
    };
    CalibratedInstrument<TypeParam> instrument{{}, std::make_unique<FullStorage>()};
    instrument.write();
    instrument.advance(10s);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started", this->failure));
    EXPECT_FALSE(instrument.slot().data().has_value());
}

/// Whether `events` are those of writes one after the other; counts them.
int countWrites(const std::vector<std::string>& events)
{
    int writes = 0;
    int progress = -1; // of the write that runs
    for (const auto& event : events) {
        if (event == "started") {
            EXPECT_EQ(progress, -1) << "two writes mix";
            progress = 0;
        } else if (event.ends_with('%')) {
            EXPECT_NE(progress, -1) << "progress without a start";
            EXPECT_GE(std::stoi(event), progress);
            progress = std::stoi(event);
        } else {
            EXPECT_TRUE(event.starts_with("error") || (event == "finished" && progress != -1)) << event;
            progress = -1;
            ++writes;
        }
    }
    EXPECT_EQ(progress, -1) << "a write without an end";
    return writes;
}

FaultPlan anyFaults(std::mt19937_64& random)
{
    const auto sometimes = [&](std::uint64_t range) { return random() % 2 ? 0 : 1 + random() % range; };
    FaultPlan plan;
    plan.dropEvery = sometimes(4);
    plan.dropChance = static_cast<double>(random() % 3) / 4.0;
    plan.dropFor = Duration{100ms} * static_cast<int>(sometimes(20));
    plan.failEvery = sometimes(5);
    plan.delayEvery = sometimes(3);
    plan.throwEvery = sometimes(7);
    plan.powerLossEvery = sometimes(4);
    plan.unplugEvery = sometimes(4);
    plan.writeProtect = random() % 8 == 0;
    return plan;
}

TYPED_TEST(CalibrationFaultTest, OfAnyKindLeavesEachWriteExactlyOneEnd)
{
    std::mt19937_64 random{4};
    for (int round = 0; round < 150; ++round) {
        Settings settings;
        settings.seed = random();
        settings.latency = Duration{10ms} * static_cast<int>(random() % 3);
        settings.completion = random() % 2 ? CompletionMode::Inline : CompletionMode::Thread;
        CalibratedInstrument<TypeParam> instrument{settings};
        int asked = 0;
        for (int step = 0; step < 25; ++step) {
            switch (random() % 6) {
            case 0:
                instrument.setFaults(anyFaults(random));
                break;
            case 1:
                instrument.vna->drop();
                break;
            case 2:
                instrument.vna->offer();
                break;
            case 3:
                instrument.advance(Duration{10ms} * static_cast<int>(random() % 200));
                break;
            default:
                try {
                    if (const auto control = instrument.control()) {
                        random() % 3 ? Kind<TypeParam>::write(*control) : Kind<TypeParam>::refuse(*control);
                        ++asked;
                    }
                } catch (const DeviceFault&) {
                    instrument.advance(1ms);
                }
            }
        }
        instrument.setFaults({});
        for (int i = 0; i <= asked; ++i)
            instrument.advance(1s);
        instrument.vna->offer();
        EXPECT_EQ(countWrites(instrument.journal.take()), asked) << "round " << round;
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

} // namespace
} // namespace tarn::simulator
