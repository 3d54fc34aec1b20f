#include <simulator/modulefixture.h>

namespace tarn::simulator {
namespace {

using test::DornPower;
using test::expectRange;
using test::refusal;
using testing::ElementsAre;

using DornPowerTest = test::ModuleTest<DornPower>;
using DornSynthesisTest = test::ModuleTest<test::DornSynthesis>;

TEST_F(DornPowerTest, TakesTheValuesOfItsRanges)
{
    using D = DornPower;
    EXPECT_EQ(module->maxPowerValue(), 63);
    EXPECT_EQ(module->maxDacValue(), 4095);
    expectRange(*module, "LO power code", &D::setLoPower, &D::loPower, 32, 0, 63);
    expectRange(*module, "RF power code", &D::setRfPower, &D::rfPower, 32, 0, 63);
    expectRange(*module, "union DAC code", &D::setUnionDac, &D::unionDac, 2048, 0, 4095);
    expectRange(*module, "code of DAC A", &D::setDacA, &D::dacA, 2048, 0, 4095);
    expectRange(*module, "code of DAC B", &D::setDacB, &D::dacB, 2048, 0, 4095);
    expectRange(*module, "power control mode", &D::setPowerControlMode, &D::powerControlMode, D::ControlMode::Automatic,
                D::ControlMode::Automatic, D::ControlMode::Manual);
    expectRange(*module, "DAC control mode", &D::setDacControlMode, &D::dacControlMode, D::ControlMode::Automatic,
                D::ControlMode::Automatic, D::ControlMode::Manual);
    expectRange(*module, "DAC mode", &D::setDacMode, &D::dacMode, D::DacMode::Separate, D::DacMode::Separate,
                D::DacMode::Union);
}

TEST_F(DornPowerTest, HasOneManualControlThatSetLast)
{
    using enum DornPower::ControlMode;
    module->setPowerControlMode(Manual);
    module->setDacControlMode(Automatic);
    EXPECT_EQ(module->powerControlMode(), Manual);
    module->setDacControlMode(Manual);
    EXPECT_EQ(module->dacControlMode(), Manual);
    EXPECT_EQ(module->powerControlMode(), Automatic);
    module->setPowerControlMode(Automatic);
    EXPECT_EQ(module->dacControlMode(), Manual);
    module->setPowerControlMode(Manual);
    EXPECT_EQ(module->powerControlMode(), Manual);
    EXPECT_EQ(module->dacControlMode(), Automatic);
}

TEST_F(DornPowerTest, TakesTheGainsOfItsList)
{
    EXPECT_THAT(module->availableGains(), ElementsAre(0, 6, 12, 18, 30));
    EXPECT_EQ(module->referenceGain(), 6);
    EXPECT_EQ(module->signalGain(), 12);
    for (const auto gain : module->availableGains()) {
        module->setReferenceGain(gain);
        EXPECT_EQ(module->referenceGain(), gain);
        EXPECT_EQ(module->signalGain(), 12);
    }
    for (const auto gain : module->availableGains()) {
        module->setSignalGain(gain);
        EXPECT_EQ(module->signalGain(), gain);
        EXPECT_EQ(module->referenceGain(), 30);
    }
    EXPECT_EQ(refusal<std::invalid_argument>([&] { module->setReferenceGain(7); }),
              "the reference gain 7 is not one of 0, 6, 12, 18, 30");
    EXPECT_EQ(refusal<std::invalid_argument>([&] { module->setSignalGain(31); }),
              "the signal gain 31 is not one of 0, 6, 12, 18, 30");
    EXPECT_EQ(module->referenceGain(), 30);
    EXPECT_EQ(module->signalGain(), 30);
}

TEST_F(DornSynthesisTest, TakesTheReferenceFrequenciesOfItsList)
{
    EXPECT_THAT(module->availableReferenceFrequencies(), ElementsAre(5e6, 10e6, 12.8e6, 25e6));
    EXPECT_EQ(module->currentReferenceFrequency(), 10e6);
    for (const auto frequency : module->availableReferenceFrequencies()) {
        module->setReferenceFrequency(frequency);
        EXPECT_EQ(module->currentReferenceFrequency(), frequency);
    }
    for (const double frequency : {0.0, -10e6, 10.5e6, std::nextafter(10e6, 0.0), std::nan("")}) {
        EXPECT_THAT(refusal<std::invalid_argument>([&] { module->setReferenceFrequency(frequency); }),
                    testing::StartsWith("the reference frequency "));
        EXPECT_EQ(module->currentReferenceFrequency(), 25e6);
    }
}

} // namespace
} // namespace tarn::simulator
