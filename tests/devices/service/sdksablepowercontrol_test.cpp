#include "sabletuning.h"

#include <support/adaptertest.h>

#include <tuple>

using testing::ElementsAre;

namespace tarn::tests::sdksablepowercontrol {
namespace {

using Adapter = SablePower::Adapter;
using Sdk = SablePower::Sdk;
using SablePowerControl = AdapterTest<Sdk, Adapter, SablePower::Mock>;

TEST_F(SablePowerControl, SwapsTheStepAttenuatorModesThreeAndFour)
{
    control.setStepAttenuatorMode(Adapter::StepAttenuatorMode{3});
    control.setStepAttenuatorMode(Adapter::StepAttenuatorMode{4});
    EXPECT_THAT(mock->takeCalls(), ElementsAre("setStepAttenuatorMode(4)", "setStepAttenuatorMode(3)"));
    mock->answer = Sdk::StepAttenuatorMode{3};
    EXPECT_EQ(control.stepAttenuatorMode(), Adapter::StepAttenuatorMode{4});
}

TEST_F(SablePowerControl, MakesOneOfEveryPowerModeButZero)
{
    control.setPowerMode(Adapter::PowerMode{5});
    EXPECT_THAT(mock->takeCalls(), ElementsAre("setPowerMode(1)"));
    mock->answer = Sdk::PowerMode{2};
    EXPECT_EQ(control.powerMode(), Adapter::PowerMode{1});
}

TEST_F(SablePowerControl, MovesTheTableIntoTheCallOfTheSdk)
{
    std::vector<std::uint8_t> table{1, 2, 3};
    const auto* const bytes = table.data();
    control.assignPowerCalibrationTable(std::move(table));
    EXPECT_EQ(mock->bytes, bytes);
}

TEST_F(SablePowerControl, HasNoAttenuationAndTakesNoTableWithoutAControl)
{
    device.drop(Sdk::key);
    mock.reset();
    EXPECT_EQ(control.attenuationDb(), 0.0);
    EXPECT_NO_THROW(control.assignPowerCalibrationTable({1, 2}));
}

#ifndef NDEBUG
using SablePowerControlDeathTest = SablePowerControl;

TEST_F(SablePowerControlDeathTest, AStepAttenuatorModeBeyondTheFiveEndsADebugBuild)
{
    EXPECT_DEATH(control.setStepAttenuatorMode(Adapter::StepAttenuatorMode{5}), "stepAttenuatorModes");
    EXPECT_DEATH(control.setStepAttenuatorMode(Adapter::StepAttenuatorMode{-1}), "stepAttenuatorModes");
    mock->answer = Sdk::StepAttenuatorMode{5};
    EXPECT_DEATH(std::ignore = control.stepAttenuatorMode(), "stepAttenuatorModes");
}
#endif

TEST(SablePowerInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    expectSlots(&Sdk::setDacMode, &Sdk::dacMode, &Sdk::setPowerMode, &Sdk::powerMode, &Sdk::setStepAttenuatorMode,
                &Sdk::stepAttenuatorMode, &Sdk::setDiscreteAttenuatorMode, &Sdk::discreteAttenuatorMode,
                &Sdk::setPowerConstant, &Sdk::powerConstant, &Sdk::setRfDac, &Sdk::rfDac, &Sdk::setSplitDac,
                &Sdk::splitDac, &Sdk::setSplitDds, &Sdk::splitDds, &Sdk::setAttenuation, &Sdk::attenuation,
                &Sdk::setAttenuationStep, &Sdk::attenuationStep, &Sdk::setDiscreteAttenuatorEnabled,
                &Sdk::discreteAttenuatorEnabled, &Sdk::setSquarePatternStep, &Sdk::squarePatternStep,
                &Sdk::setDdsCorrectionMode, &Sdk::ddsCorrectionMode, &Sdk::setDdsCorrectionEnabled,
                &Sdk::ddsCorrectionEnabled, &Sdk::assignPowerCalibrationTable);
}

} // namespace
} // namespace tarn::tests::sdksablepowercontrol
