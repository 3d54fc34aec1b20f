#include <simulator/calibrationfixture.h>

#include <simulator/error.h>
#include <support/success.h>

#include <gmock/gmock.h>

#include <limits>
#include <thread>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using test::CalibratedInstrument;
using test::Kind;
using testing::ElementsAre;
using testing::IsEmpty;

using tests::success;

template <class Control>
class CalibrationWriteTest : public testing::Test { };

TYPED_TEST_SUITE(CalibrationWriteTest, test::AllKinds);

TYPED_TEST(CalibrationWriteTest, IsForThePointsOfAPlan)
{
    EXPECT_EQ(CalibratedInstrument<TypeParam>{}.control()->frequencyPlan(), Kind<TypeParam>::plan());
}

TYPED_TEST(CalibrationWriteTest, TellsItsStartItsProgressAndItsEnd)
{
    CalibratedInstrument<TypeParam> instrument;
    instrument.write();
    instrument.advance(10s);
    const auto events = instrument.journal.take();
    ASSERT_GE(events.size(), 10U);
    EXPECT_EQ(events[0], "started");
    EXPECT_EQ(events[1], "0 %");
    for (std::size_t i = 2; i + 1 < events.size(); ++i)
        EXPECT_LT(std::stoi(events[i - 1]), std::stoi(events[i]));
    EXPECT_EQ(events[events.size() - 2], "100 %");
    EXPECT_EQ(events.back(), "finished");
}

TYPED_TEST(CalibrationWriteTest, TakesItsTime)
{
    CalibratedInstrument<TypeParam> instrument;
    instrument.write();
    instrument.advance(0ns);
    EXPECT_THAT(instrument.journal.take(), ElementsAre("started", "0 %"));
    instrument.advance(Kind<TypeParam>::time - 1ns);
    EXPECT_THAT(instrument.takeEnds(), IsEmpty());
    instrument.advance(1ns);
    EXPECT_THAT(instrument.journal.take(), ElementsAre("100 %", "finished"));
}

TYPED_TEST(CalibrationWriteTest, StoresTheDataBeforeItTellsItsEnd)
{
    CalibratedInstrument<TypeParam> instrument;
    int before = 0;
    int after = 0;
    instrument.observer.reaction = [&] { ++(instrument.slot().data() ? after : before); };
    instrument.write();
    instrument.advance(10s);
    EXPECT_EQ(static_cast<std::size_t>(before), instrument.journal.take().size() - 1);
    EXPECT_EQ(after, 1);
    EXPECT_TRUE(instrument.slot().data() == Kind<TypeParam>::data());
}

TYPED_TEST(CalibrationWriteTest, WaitsForTheOneBeforeIt)
{
    CalibratedInstrument<TypeParam> instrument;
    instrument.write();
    instrument.refuse();
    instrument.write();
    instrument.advance(Kind<TypeParam>::time - 1ns);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started"));
    instrument.advance(1ns);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("finished", "error 1", "started"));
    instrument.advance(Kind<TypeParam>::time);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("finished"));
}

TYPED_TEST(CalibrationWriteTest, ThatIsRefusedTellsItsErrorAloneAndLeavesWhatIsStored)
{
    CalibratedInstrument<TypeParam> instrument;
    instrument.refuse();
    instrument.advance(10s);
    EXPECT_THAT(instrument.journal.take(), ElementsAre("error 1"));
    EXPECT_FALSE(instrument.slot().data().has_value());
    instrument.write();
    instrument.refuse();
    instrument.advance(10s);
    EXPECT_TRUE(instrument.slot().data().has_value());
}

TYPED_TEST(CalibrationWriteTest, IsHeardByEveryObserverOnceForAsLongAsItIsRegistered)
{
    CalibratedInstrument<TypeParam> instrument;
    test::Journal otherJournal;
    test::WriteObserver<TypeParam> other{otherJournal};
    instrument.attach();
    instrument.control()->addObserver(&other);
    instrument.write();
    instrument.advance(0ns);
    EXPECT_THAT(otherJournal.take(), ElementsAre("started", "0 %"));
    instrument.control()->removeObserver(&other);
    instrument.advance(10s);
    EXPECT_THAT(otherJournal.take(), IsEmpty());
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started", "finished"));
}

TYPED_TEST(CalibrationWriteTest, CanBeAskedForFromTheEndOfAnotherOne)
{
    CalibratedInstrument<TypeParam> instrument;
    int writes = 1;
    instrument.observer.reaction = [&] {
        if (instrument.slot().data() && writes++ == 1)
            instrument.write();
    };
    instrument.write();
    instrument.advance(Kind<TypeParam>::time);
    instrument.advance(Kind<TypeParam>::time);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started", "finished", "started", "finished"));
}

TYPED_TEST(CalibrationWriteTest, KeepsItsPlaceWhenItIsDelayed)
{
    CalibratedInstrument<TypeParam> instrument;
    FaultPlan plan;
    plan.delayEvery = 1;
    plan.delay = 1s;
    const auto control = instrument.control();
    instrument.setFaults(plan);
    Kind<TypeParam>::write(*control);
    instrument.setFaults({});
    Kind<TypeParam>::refuse(*control);
    instrument.advance(1s - 1ns);
    EXPECT_THAT(instrument.journal.take(), IsEmpty());
    instrument.advance(1ns);
    instrument.advance(Kind<TypeParam>::time);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started", "finished", "error 1"));
}

TYPED_TEST(CalibrationWriteTest, TakesNoTimeAtUnlimitedSpeed)
{
    Settings settings;
    settings.speed = std::numeric_limits<double>::infinity();
    test::ManualInstrument instrument{settings};
    test::Journal journal;
    test::WriteObserver<TypeParam> observer{journal};
    const auto control = instrument.template control<TypeParam>();
    control->addObserver(&observer);
    Kind<TypeParam>::write(*control);
    instrument.advance(0ns);
    EXPECT_THAT(test::ends(journal.take()), ElementsAre("started", "finished"));
}

TYPED_TEST(CalibrationWriteTest, IsToldOnTheInstrumentsThreadInTheInlineModeToo)
{
    Settings settings;
    settings.completion = CompletionMode::Inline;
    CalibratedInstrument<TypeParam> instrument{settings};
    std::thread::id thread;
    instrument.observer.reaction = [&] { thread = std::this_thread::get_id(); };
    instrument.write(); // returns, though the clock stands still
    instrument.refuse();
    instrument.advance(10s);
    instrument.advance(0ns);
    EXPECT_THAT(instrument.takeEnds(), ElementsAre("started", "finished", "error 1"));
    EXPECT_NE(thread, std::thread::id{});
    EXPECT_NE(thread, std::this_thread::get_id());
}

TYPED_TEST(CalibrationWriteTest, GoesOnWithoutAWordWhenTheInstrumentIsDestroyed)
{
    CalibratedInstrument<TypeParam> instrument;
    const auto control = instrument.control();
    instrument.write();
    instrument.write();
    instrument.advance(Kind<TypeParam>::time / 2);
    static_cast<void>(instrument.journal.take());
    instrument.vna.reset();
    EXPECT_THAT(instrument.journal.take(), IsEmpty());
    EXPECT_EQ(control->frequencyPlan(), Kind<TypeParam>::plan()) << "a control that is held works on";
    Kind<TypeParam>::write(*control);
}

struct Everything : test::ManualInstrument {
    Everything()
        : ManualInstrument{CalibratedInstrument<test::Terms>::atRealSpeed({})}
    {
        control<test::Terms>()->addObserver(&terms);
        control<test::Ifsw>()->addObserver(&ifsw);
        control<test::Power>()->addObserver(&power);
    }

    test::Journal journal;
    test::WriteObserver<test::Terms> terms{journal, "terms "};
    test::WriteObserver<test::Ifsw> ifsw{journal, "ifsw "};
    test::WriteObserver<test::Power> power{journal, "power "};
};

TEST(CalibrationMemoryTest, CarriesOutTheWritesOfAllControlsInTheOrderInWhichTheyCame)
{
    Everything instrument;
    Kind<test::Power>::write(*instrument.control<test::Power>());
    Kind<test::Terms>::write(*instrument.control<test::Terms>());
    Kind<test::Ifsw>::write(*instrument.control<test::Ifsw>());
    for (int i = 0; i < 3; ++i)
        instrument.advance(10s);
    EXPECT_THAT(test::ends(instrument.journal.take()),
                ElementsAre("power started", "power finished", "terms started", "terms finished", "ifsw started",
                            "ifsw finished"));
}

TEST(CalibrationMemoryTest, IsBusyForAMemoryOperationWhileItIsWritten)
{
    Everything instrument;
    Kind<test::Power>::write(*instrument.control<test::Power>());
    instrument.advance(0ns);
    EXPECT_EQ(test::check(*instrument.control<test::Memory>()), Error::Busy);
    instrument.advance(10s);
    std::error_code result = Error::Busy;
    instrument.control<test::Memory>()->integrityCheck([&](auto code) { result = code; });
    instrument.advance(10s);
    EXPECT_EQ(result, success);
}

TEST(CalibrationMemoryTest, IsWrittenWhenAMemoryOperationHasEnded)
{
    Everything instrument;
    instrument.control<test::Memory>()->erase([&](auto) { instrument.journal.note("erased"); });
    instrument.advance(0ns);
    Kind<test::Ifsw>::write(*instrument.control<test::Ifsw>());
    instrument.advance(1s);
    EXPECT_THAT(instrument.journal.take(), IsEmpty());
    instrument.advance(1min);
    instrument.advance(10s);
    EXPECT_THAT(test::ends(instrument.journal.take()), ElementsAre("erased", "ifsw started", "ifsw finished"));
}

} // namespace
} // namespace tarn::simulator
