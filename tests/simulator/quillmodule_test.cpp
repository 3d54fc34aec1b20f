#include <simulator/modulefixture.h>

namespace tarn::simulator {
namespace {

using std::ranges::equal;
using test::expectRange;
using test::expectSwitch;
using test::QuillPower;
using test::QuillSynthesis;
using test::refusal;
using test::settingsOf;

using QuillPowerTest = test::ModuleTest<QuillPower>;
using QuillSynthesisTest = test::ModuleTest<QuillSynthesis>;
using VellSynthesisTest = test::ModuleTest<test::VellSynthesis>;

TEST_F(QuillPowerTest, TakesTheCodesAndStepsOfItsRanges)
{
    EXPECT_EQ(module->minPowerCode(), 8);
    EXPECT_EQ(module->maxPowerCode(), 120);
    EXPECT_EQ(module->defaultAttenuationStep(), 10);
    using Q = QuillPower;
    expectRange(*module, "LO power code", &Q::setLoPower, &Q::loPower, 64, 8, 120);
    expectRange(*module, "RF power code", &Q::setRfPower, &Q::rfPower, 64, 8, 120);
    expectRange(*module, "attenuation step", &Q::setAttenuationStep, &Q::attenuationStep, 10, 0, 70);
    expectRange(*module, "common attenuation step", &Q::setCommonAttenuationStep, &Q::commonAttenuationStep, 0, 0, 31);
}

TEST_F(QuillPowerTest, TakesTheEnumeratorsOfItsModes)
{
    using Q = QuillPower;
    expectRange(*module, "synthesizer power mode", &Q::setSyntPowerMode, &Q::syntPowerMode, Q::SyntPowerMode::Normal,
                Q::SyntPowerMode::Normal, Q::SyntPowerMode::High);
    expectRange(*module, "attenuation mode", &Q::setAttenuationMode, &Q::attenuationMode, Q::AttenuationMode::Automatic,
                Q::AttenuationMode::Automatic, Q::AttenuationMode::Manual);
    expectRange(*module, "step attenuator mode", &Q::setStepAttenuatorMode, &Q::stepAttenuatorMode,
                Q::StepAttenuatorMode::Through, Q::StepAttenuatorMode::Through, Q::StepAttenuatorMode::Both);
    expectRange(*module, "discrete attenuator mode", &Q::setDiscreteAttenuatorMode, &Q::discreteAttenuatorMode,
                Q::DiscreteAttenuatorMode::Automatic, Q::DiscreteAttenuatorMode::Automatic,
                Q::DiscreteAttenuatorMode::Manual);
    expectRange(*module, "common attenuation mode", &Q::setCommonAttenuationMode, &Q::commonAttenuationMode,
                Q::CommonAttenuationMode::Automatic, Q::CommonAttenuationMode::Automatic,
                Q::CommonAttenuationMode::Manual);
    expectRange(*module, "gain of transmit port 2", &Q::setAmpTPort2, &Q::ampTPort2, Q::AmpGain::Low, Q::AmpGain::Low,
                Q::AmpGain::High);
    expectRange(*module, "gain of receive port 1", &Q::setAmpRPort1, &Q::ampRPort1, Q::AmpGain::Low, Q::AmpGain::Low,
                Q::AmpGain::High);
    expectRange(*module, "gain of transmit port 1", &Q::setAmpTPort1, &Q::ampTPort1, Q::AmpGain::Low, Q::AmpGain::Low,
                Q::AmpGain::High);
    expectSwitch(*module, &Q::setDiscreteAttenuatorEnabled, &Q::discreteAttenuatorEnabled, false);
}

TEST_F(QuillPowerTest, SaysWhichValueIsNotWithinWhichLimits)
{
    EXPECT_EQ(refusal<std::out_of_range>([&] { module->setLoPower(200); }),
              "the LO power code 200 is not from 8 to 120");
    EXPECT_EQ(refusal<std::out_of_range>([&] { module->setAttenuationStep(-1); }),
              "the attenuation step -1 is not from 0 to 70");
}

TEST_F(QuillPowerTest, HasOneManualAttenuationThatSetLast)
{
    using Attenuation = QuillPower::AttenuationMode;
    using Common = QuillPower::CommonAttenuationMode;
    module->setAttenuationMode(Attenuation::Manual);
    module->setCommonAttenuationMode(Common::Automatic);
    EXPECT_EQ(module->attenuationMode(), Attenuation::Manual);
    module->setCommonAttenuationMode(Common::Manual);
    EXPECT_EQ(module->commonAttenuationMode(), Common::Manual);
    EXPECT_EQ(module->attenuationMode(), Attenuation::Automatic);
    module->setAttenuationMode(Attenuation::Automatic);
    EXPECT_EQ(module->commonAttenuationMode(), Common::Manual);
    module->setAttenuationMode(Attenuation::Manual);
    EXPECT_EQ(module->attenuationMode(), Attenuation::Manual);
    EXPECT_EQ(module->commonAttenuationMode(), Common::Automatic);
}

TEST_F(QuillPowerTest, ReturnsToItsDefaultsByAResetAlone)
{
    const auto delivered = settingsOf(*module);
    test::vary(*module);
    EXPECT_EQ(test::differences(settingsOf(*module), delivered), 12) << "all but the mode that excludes another";
    instrument.control<QuillSynthesis>()->reset();
    EXPECT_NE(settingsOf(*module), delivered);
    module->reset();
    EXPECT_EQ(settingsOf(*module), delivered);
}

TEST_F(QuillSynthesisTest, TakesTheValuesOfItsRangesAndLists)
{
    using Q = QuillSynthesis;
    EXPECT_TRUE(equal(module->supportedIfs(), std::vector{2.5e6, 5e6, 7.5e6, 10e6}));
    EXPECT_TRUE(equal(module->supportedRefs(), std::vector{10e6, 20e6, 100e6}));
    expectRange(*module, "selected IF", &Q::setSelectedIf, &Q::selectedIf, 1, 0, 3);
    expectRange(*module, "selected reference", &Q::setSelectedRef, &Q::selectedRef, 0, 0, 2);
    expectRange(*module, "frequency of filter 1", &Q::setFilter1Frequency, &Q::filter1Frequency, 100e6, 1e6, 3e9);
    EXPECT_THROW(module->setFilter1Frequency(-100e6), std::out_of_range);
    expectSwitch(*module, &Q::setManualIfEnabled, &Q::manualIfEnabled, false);
    expectSwitch(*module, &Q::setManualRefEnabled, &Q::manualRefEnabled, false);
    expectSwitch(*module, &Q::setLoLeakageMode, &Q::loLeakageMode, false);
}

TEST_F(QuillSynthesisTest, HasTheSameSwitchOfTheLoLeakageAsTheInstrument)
{
    const auto leakage = instrument.control<test::Leakage>();
    module->setLoLeakageMode(true);
    EXPECT_TRUE(leakage->isEnabled());
    leakage->setEnabled(false);
    EXPECT_FALSE(module->loLeakageMode());
    leakage->setEnabled(true);
    EXPECT_TRUE(module->loLeakageMode());
    module->reset();
    EXPECT_FALSE(leakage->isEnabled());
}

TEST_F(QuillSynthesisTest, ReturnsToItsDefaultsByAResetAlone)
{
    const auto delivered = settingsOf(*module);
    test::vary(*module);
    EXPECT_EQ(test::differences(settingsOf(*module), delivered), 6);
    instrument.control<QuillPower>()->reset();
    EXPECT_NE(settingsOf(*module), delivered);
    module->reset();
    EXPECT_EQ(settingsOf(*module), delivered);
}

TEST_F(QuillSynthesisTest, KeepsItsListsWhereTheyAre)
{
    const auto ifs = module->supportedIfs();
    const auto references = module->supportedRefs();
    test::vary(*module);
    EXPECT_EQ(module->supportedIfs().data(), ifs.data());
    EXPECT_EQ(module->supportedRefs().data(), references.data());
}

TEST_F(VellSynthesisTest, TakesTheIfsOfItsList)
{
    using V = test::VellSynthesis;
    EXPECT_TRUE(equal(module->supportedIfs(), std::vector{1e6, 3e6, 7.5e6, 15e6, 30e6}));
    expectRange(*module, "selected IF", &V::setSelectedIf, &V::selectedIf, 2, 0, 4);
    expectSwitch(*module, &V::setManualIfEnabled, &V::manualIfEnabled, false);
}

} // namespace
} // namespace tarn::simulator
