#include <simulator/calibrationfixture.h>

#include <sdk/models.h>

#include <gmock/gmock.h>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using test::become;
using test::Calibration;
using test::Journal;
using test::Kind;
using test::ManualInstrument;
using test::Unit;
using testing::ElementsAre;
using testing::IsEmpty;

std::string text(Unit::Status status)
{
    switch (status) {
    case Unit::Status::Empty:
        return "empty";
    case Unit::Status::Saving:
        return "saving";
    case Unit::Status::Valid:
        return "valid";
    case Unit::Status::Invalid:
        return "invalid";
    }
    return "?";
}

struct UnitObserver final : Calibration::Observer {
    explicit UnitObserver(Journal& theJournal)
        : journal{theJournal}
    {
    }

    void onUnitStatusChanged(Unit* unit) override { journal.note(unit->name() + " " + text(unit->status())); }
    void onSaveProgress(Unit* unit, sdk::service::calibrations::Progress progress) override
    {
        journal.note(unit->name() + " " + std::to_string(progress.done) + "/" + std::to_string(progress.total));
    }
    void onConfigurationChanged() override { journal.note("configuration"); }

    Journal& journal;
};

class CalibrationControllerTest : public testing::Test {
protected:
    [[nodiscard]] std::shared_ptr<Calibration> controller(sdk::Key key) const
    {
        return instrument.vna->control<Calibration>(key);
    }

    [[nodiscard]] std::vector<std::string> units(sdk::Key key) const
    {
        std::vector<std::string> units;
        for (auto* const unit : controller(key)->units())
            units.push_back(unit->name() + " " + text(unit->status()));
        return units;
    }

    void writeTerms()
    {
        Kind<test::Terms>::write(*instrument.control<test::Terms>());
        instrument.advance(10s);
    }

    ManualInstrument instrument;
    Journal journal;
    UnitObserver observer{journal};
};

TEST_F(CalibrationControllerTest, HasUnitsThatAreEmptyAtFirst)
{
    EXPECT_THAT(units(Calibration::firstKey), ElementsAre("System terms empty"));
    EXPECT_THAT(units(Calibration::secondKey), ElementsAre("IF switches empty", "Power empty"));
}

TEST_F(CalibrationControllerTest, TellsHowAUnitIsSaved)
{
    controller(Calibration::firstKey)->addObserver(&observer);
    writeTerms();
    auto events = journal.take();
    ASSERT_EQ(events.size(), 22U);
    EXPECT_EQ(events[0], "System terms saving");
    for (int done = 0; done <= 19; ++done)
        EXPECT_EQ(events[static_cast<std::size_t>(done) + 1], "System terms " + std::to_string(done) + "/19");
    EXPECT_EQ(events.back(), "System terms valid");
    EXPECT_THAT(units(Calibration::firstKey), ElementsAre("System terms valid"));
    EXPECT_THAT(units(Calibration::secondKey), ElementsAre("IF switches empty", "Power empty"));
}

TEST_F(CalibrationControllerTest, TellsOfItsOwnUnitsAlone)
{
    controller(Calibration::secondKey)->addObserver(&observer);
    writeTerms();
    EXPECT_THAT(journal.take(), IsEmpty());
    Kind<test::Power>::write(*instrument.control<test::Power>());
    instrument.advance(10s);
    const auto events = journal.take();
    ASSERT_EQ(events.size(), 25U);
    EXPECT_EQ(events.front(), "Power saving");
    EXPECT_EQ(events[1], "Power 0/22");
    EXPECT_EQ(events.back(), "Power valid");
    Kind<test::Ifsw>::write(*instrument.control<test::Ifsw>());
    instrument.advance(10s);
    EXPECT_EQ(journal.take().front(), "IF switches saving");
    controller(Calibration::secondKey)->removeObserver(&observer);
    Kind<test::Ifsw>::write(*instrument.control<test::Ifsw>());
    instrument.advance(10s);
    EXPECT_THAT(journal.take(), IsEmpty());
}

TEST_F(CalibrationControllerTest, BracketsTheSavingWithStartAndEndOfTheWrite)
{
    test::WriteObserver<test::Ifsw> writes{journal, "write "};
    controller(Calibration::secondKey)->addObserver(&observer);
    instrument.control<test::Ifsw>()->addObserver(&writes);
    Kind<test::Ifsw>::write(*instrument.control<test::Ifsw>());
    instrument.advance(10s);
    const auto events = journal.take();
    ASSERT_GT(events.size(), 6U);
    EXPECT_THAT((std::vector<std::string>{events.begin(), events.begin() + 4}),
                ElementsAre("write started", "IF switches saving", "write 0 %", "IF switches 0/18"));
    EXPECT_THAT((std::vector<std::string>{events.end() - 4, events.end()}),
                ElementsAre("write 100 %", "IF switches 18/18", "IF switches valid", "write finished"));
}

TEST_F(CalibrationControllerTest, SaysNothingOfAWriteThatIsRefused)
{
    controller(Calibration::firstKey)->addObserver(&observer);
    Kind<test::Terms>::refuse(*instrument.control<test::Terms>());
    instrument.advance(10s);
    EXPECT_THAT(journal.take(), IsEmpty());
}

TEST_F(CalibrationControllerTest, GoesBackToWhatWasAfterAnInterruption)
{
    FaultPlan plan;
    plan.powerLossEvery = 1;
    for (const auto* const after : {"System terms empty", "System terms valid"}) {
        instrument.vna->faults().setPlan(plan);
        controller(Calibration::firstKey)->addObserver(&observer);
        writeTerms();
        EXPECT_EQ(journal.take().back(), after);
        EXPECT_THAT(units(Calibration::firstKey), ElementsAre(after));
        instrument.vna->faults().setPlan({});
        writeTerms();
    }
}

TEST_F(CalibrationControllerTest, KeepsItsUnitsFromOfferToOfferAndEndsTheRegistrations)
{
    const auto held = controller(Calibration::firstKey);
    const auto before = held->units();
    held->addObserver(&observer);
    instrument.vna->drop();
    instrument.vna->offer();
    EXPECT_NE(controller(Calibration::firstKey), held);
    EXPECT_EQ(controller(Calibration::firstKey)->units(), before);
    writeTerms();
    EXPECT_THAT(journal.take(), IsEmpty());
}

TEST(CalibrationControllerProfileTest, TakesNoRegistrationWithAControllerThatTheModelDoesNotHaveAnyMore)
{
    Settings settings;
    settings.profile = Profile::Vell;
    ManualInstrument instrument{settings};
    Journal journal;
    UnitObserver observer{journal};
    const auto held = instrument.vna->control<Calibration>(Calibration::secondKey);
    const auto power = instrument.control<test::Power>();
    become(instrument, sdk::models::marl::marl301);
    ASSERT_EQ(instrument.vna->control<Calibration>(Calibration::secondKey), nullptr);
    held->addObserver(&observer);
    Kind<test::Power>::write(*power);
    instrument.advance(10s);
    EXPECT_THAT(journal.take(), IsEmpty());
}

TEST_F(CalibrationControllerTest, FindsTermsInvalidThatDoNotFitTheModelAnyMore)
{
    writeTerms();
    become(instrument, sdk::models::multiport::lum::lum901);
    EXPECT_EQ(instrument.control<test::Terms>()->portCount(), 4U);
    EXPECT_THAT(units(Calibration::firstKey), ElementsAre("System terms invalid"));
    become(instrument, sdk::models::vell::vell802);
    EXPECT_THAT(units(Calibration::firstKey), ElementsAre("System terms valid"));
}

TEST_F(CalibrationControllerTest, FindsTheTermsOfAnotherPlanInvalidWhereThereCanBeNone)
{
    const sdk::FrequencyPlan plan{{{1e9, 2e9, 2}}};
    instrument.control<test::Terms>()->writeTermsForPlan(test::measured, plan, test::makeTerms(test::pointsOf(plan)),
                                                         test::warm);
    instrument.advance(10s);
    EXPECT_EQ(instrument.vna->calibrations().systemTerms.data()->plan, plan);
    EXPECT_TRUE(instrument.control<test::Terms>()->isFrequencyOverrideSupported());
    become(instrument, sdk::models::pell::pell101);
    EXPECT_FALSE(instrument.control<test::Terms>()->isFrequencyOverrideSupported());
    EXPECT_THAT(units(Calibration::firstKey), ElementsAre("System terms invalid"));
}

TEST(CalibrationProfileTest, OffersTheFactoryCalibrationsOnVellInstrumentsAlone)
{
    for (const auto& info : profiles()) {
        Settings settings;
        settings.profile = info.profile;
        const ManualInstrument instrument{settings};
        const bool isBare = info.profile == Profile::Bare;
        const bool isVell = info.profile == Profile::Vell || info.profile == Profile::Full;
        for (const auto key : {test::Terms::key, test::Corrections::key, Calibration::firstKey})
            EXPECT_EQ(instrument.vna->control(key) != nullptr, !isBare) << info.name;
        for (const auto key : {test::Ifsw::key, test::Power::key, Calibration::secondKey})
            EXPECT_EQ(instrument.vna->control(key) != nullptr, isVell) << info.name;
    }
}

TEST(CalibrationProfileTest, HasRoomForSoManyPoints)
{
    EXPECT_EQ(ManualInstrument{}.control<test::Terms>()->maximumPointCount(), CalibrationLimits::maximumPointCount);
}

} // namespace
} // namespace tarn::simulator
