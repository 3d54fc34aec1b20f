#include "dorntuning.h"

#include <support/adaptertest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace tarn::tests::sdkdornpowercontrol {
namespace {

using Sdk = DornPower::Sdk;
using DornPowerControl = AdapterTest<Sdk, DornPower::Adapter, DornPower::Mock>;

static_assert(std::is_same_v<decltype(std::declval<Sdk&>().availableGains()),
                             decltype(std::declval<DornPower::Adapter&>().availableGains())>);

TEST_F(DornPowerControl, ReadsTheDacModeOneAloneAsUnion)
{
    mock->answer = Sdk::DacMode{2};
    EXPECT_FALSE(control.isDacModeUnion());
    mock->answer = Sdk::DacMode{1};
    EXPECT_TRUE(control.isDacModeUnion());
}

TEST_F(DornPowerControl, MovesTheTablesIntoTheCallsOfTheSdk)
{
    std::vector<std::uint8_t> receiver{1, 2, 3};
    std::vector<std::uint8_t> power{4, 5, 6};
    const auto* const receiverBytes = receiver.data();
    const auto* const powerBytes = power.data();
    control.assignReceiverCorrectionTable(std::move(receiver));
    EXPECT_EQ(mock->bytes, receiverBytes);
    control.assignPowerCalibrationTable(std::move(power));
    EXPECT_EQ(mock->bytes, powerBytes);
}

TEST_F(DornPowerControl, HasNoGainsAndTakesNoTablesWithoutAControl)
{
    device.drop(Sdk::key);
    mock.reset();
    EXPECT_THAT(control.availableGains(), IsEmpty());
    EXPECT_NO_THROW(control.assignPowerCalibrationTable({1, 2}));
    EXPECT_NO_THROW(control.assignReceiverCorrectionTable({1, 2}));
}

TEST(DornPowerInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    expectSlots(&Sdk::maxPowerValue, &Sdk::powerControlMode, &Sdk::setPowerControlMode, &Sdk::loPower, &Sdk::setLoPower,
                &Sdk::rfPower, &Sdk::setRfPower, &Sdk::maxDacValue, &Sdk::dacControlMode, &Sdk::setDacControlMode,
                &Sdk::dacMode, &Sdk::setDacMode, &Sdk::unionDac, &Sdk::setUnionDac, &Sdk::dacA, &Sdk::setDacA,
                &Sdk::dacB, &Sdk::setDacB, &Sdk::availableGains, &Sdk::referenceGain, &Sdk::setReferenceGain,
                &Sdk::signalGain, &Sdk::setSignalGain, &Sdk::assignReceiverCorrectionTable,
                &Sdk::assignPowerCalibrationTable);
}

} // namespace
} // namespace tarn::tests::sdkdornpowercontrol
