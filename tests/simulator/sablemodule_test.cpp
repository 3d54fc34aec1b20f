#include <simulator/modulefixture.h>

#include <thread>

namespace tarn::simulator {
namespace {

using sdk::sable::PowerSynt;
using test::copyOf;
using test::expectRange;
using test::expectSwitch;
using test::refusal;
using test::SablePower;
using test::SableSynthesis;
using test::settingsOf;
using Capacitor = SableSynthesis::Capacitor;
using CapacitorMode = SableSynthesis::CapacitorMode;
using Filter = SableSynthesis::RfFilter;
using FilterMode = SableSynthesis::FilterMode;

using SablePowerTest = test::ModuleTest<SablePower>;
using SableSynthesisTest = test::ModuleTest<SableSynthesis>;

const std::vector<PowerSynt> deliveredTable{{50e6, 20}, {500e6, 24}, {1.5e9, 28}, {3e9, 34}, {6e9, 42}, {9e9, 50}};

TEST_F(SablePowerTest, TakesTheValuesOfItsRanges)
{
    using S = SablePower;
    expectRange(*module, "RF DAC code", &S::setRfDac, &S::rfDac, 2048, 0, 4095);
    expectRange(*module, "split DAC code", &S::setSplitDac, &S::splitDac, 2048, 0, 4095);
    expectRange(*module, "split DDS code", &S::setSplitDds, &S::splitDds, 8192, 0, 16383);
    expectRange(*module, "attenuation", &S::setAttenuation, &S::attenuation, 0.0, 0.0, 63.5);
    expectRange(*module, "attenuation step", &S::setAttenuationStep, &S::attenuationStep, 0, 0, 127);
    expectRange(*module, "square pattern step", &S::setSquarePatternStep, &S::squarePatternStep, 0.5, 0.0, 10.0);
    expectSwitch(*module, &S::setDiscreteAttenuatorEnabled, &S::discreteAttenuatorEnabled, false);
    expectSwitch(*module, &S::setDdsCorrectionEnabled, &S::ddsCorrectionEnabled, true);
}

TEST_F(SablePowerTest, TakesTheEnumeratorsOfItsModes)
{
    using S = SablePower;
    expectRange(*module, "DAC mode", &S::setDacMode, &S::dacMode, S::DacMode::Automatic, S::DacMode::Automatic,
                S::DacMode::Manual);
    expectRange(*module, "power mode", &S::setPowerMode, &S::powerMode, S::PowerMode::Normal, S::PowerMode::Normal,
                S::PowerMode::High);
    expectRange(*module, "step attenuator mode", &S::setStepAttenuatorMode, &S::stepAttenuatorMode,
                S::StepAttenuatorMode::Automatic, S::StepAttenuatorMode::Through, S::StepAttenuatorMode::Automatic);
    expectRange(*module, "discrete attenuator mode", &S::setDiscreteAttenuatorMode, &S::discreteAttenuatorMode,
                S::DiscreteAttenuatorMode::Automatic, S::DiscreteAttenuatorMode::Automatic,
                S::DiscreteAttenuatorMode::Manual);
    expectRange(*module, "power constant", &S::setPowerConstant, &S::powerConstant, S::PowerConstant::Code,
                S::PowerConstant::Code, S::PowerConstant::Level);
    expectRange(*module, "DDS correction mode", &S::setDdsCorrectionMode, &S::ddsCorrectionMode,
                S::DdsCorrectionMode::Factory, S::DdsCorrectionMode::Factory, S::DdsCorrectionMode::User);
}

TEST_F(SablePowerTest, KeepsTheLevelConstantWithAutomaticDacsAlone)
{
    using Dac = SablePower::DacMode;
    using Constant = SablePower::PowerConstant;
    module->setDacMode(Dac::Manual);
    module->setPowerConstant(Constant::Code);
    EXPECT_EQ(module->dacMode(), Dac::Manual);
    module->setPowerConstant(Constant::Level);
    EXPECT_EQ(module->powerConstant(), Constant::Level);
    EXPECT_EQ(module->dacMode(), Dac::Automatic);
    module->setDacMode(Dac::Automatic);
    EXPECT_EQ(module->powerConstant(), Constant::Level);
    module->setDacMode(Dac::Manual);
    EXPECT_EQ(module->dacMode(), Dac::Manual);
    EXPECT_EQ(module->powerConstant(), Constant::Code);
}

TEST_F(SableSynthesisTest, TakesTheValuesOfItsRanges)
{
    using S = SableSynthesis;
    expectRange(*module, "LO power code", &S::setLoPower, &S::loPower, 32, 4, 60);
    expectRange(*module, "RF power code", &S::setRfPower, &S::rfPower, 32, 4, 60);
    expectRange(*module, "RF power mode", &S::setRfPowerMode, &S::rfPowerMode, S::RfPowerMode::Table,
                S::RfPowerMode::Fixed, S::RfPowerMode::Table);
    expectRange(*module, "IF mode", &S::setIfMode, &S::ifMode, S::IfMode::Automatic, S::IfMode::Automatic,
                S::IfMode::Manual);
    expectRange(*module, "selected IF", &S::setSelectedIf, &S::selectedIf, 1, 0, 2);
    expectRange(*module, "RF filter mode", &S::setRfFilterMode, &S::rfFilterMode, FilterMode::Automatic,
                FilterMode::Automatic, FilterMode::Bypass);
    expectRange(*module, "DDS switch frequency", &S::setDdsSwitchFreq, &S::ddsSwitchFreq, 20e6, 1e6, 200e6);
    expectRange(*module, "delay mode", &S::setDelayMode, &S::delayMode, S::DelayMode::Automatic,
                S::DelayMode::Automatic, S::DelayMode::Manual);
    expectRange(*module, "delay", &S::setMeasureDelay, &S::measureDelay, 100e-6, 0.0, 1.0);
    EXPECT_TRUE(std::ranges::equal(module->supportedIfs(), std::vector{1e6, 4e6, 10e6}));
}

TEST_F(SableSynthesisTest, ChangesOneRowOfTheRangeTable)
{
    EXPECT_EQ(copyOf(module->rfPowerRangeTable()), deliveredTable);
    auto expected = deliveredTable;
    for (int row = 0; row < 6; ++row) {
        auto& [frequency, power] = expected[static_cast<std::size_t>(row)];
        frequency -= 1e6;
        ++power;
        module->setRfPowerRangeFrequency(row, frequency);
        module->setRfPowerRangePower(row, power);
        EXPECT_EQ(copyOf(module->rfPowerRangeTable()), expected) << row;
    }
    EXPECT_EQ(copyOf(module->rfPowerDefaultRangeTable()), deliveredTable);
}

TEST_F(SableSynthesisTest, RefusesWhatIsNotARowOfTheRangeTable)
{
    for (const int row : {-1, 6}) {
        EXPECT_EQ(refusal<std::out_of_range>([&] { module->setRfPowerRangeFrequency(row, 1e9); }),
                  "the row " + std::to_string(row) + " is not from 0 to 5");
        EXPECT_THROW(module->setRfPowerRangePower(row, 30), std::out_of_range);
    }
    module->setRfPowerRangePower(0, 4);
    module->setRfPowerRangePower(5, 60);
    EXPECT_THROW(module->setRfPowerRangePower(0, 3), std::out_of_range);
    EXPECT_THROW(module->setRfPowerRangePower(5, 61), std::out_of_range);
    module->setRfPowerRangeFrequency(0, 100e3);
    for (const double frequency : {99e3, 0.0, -1e6, std::nan("")})
        EXPECT_THROW(module->setRfPowerRangeFrequency(0, frequency), std::out_of_range);
    EXPECT_THROW(module->setRfPowerRangeFrequency(5, 9.1e9), std::out_of_range);
    auto expected = deliveredTable;
    expected.front() = {100e3, 4};
    expected.back().power = 60;
    EXPECT_EQ(copyOf(module->rfPowerRangeTable()), expected);
}

TEST_F(SableSynthesisTest, KeepsTheFrequenciesOfTheRangeTableAscending)
{
    for (const double frequency : {500e6, 499e6, 3e9, 3.1e9}) // the neighbours have 500 MHz and 3 GHz
        EXPECT_EQ(refusal<std::invalid_argument>([&] { module->setRfPowerRangeFrequency(2, frequency); }),
                  "the frequencies of the range table do not ascend");
    EXPECT_EQ(copyOf(module->rfPowerRangeTable()), deliveredTable);
    module->setRfPowerRangeFrequency(2, 501e6);
    module->setRfPowerRangeFrequency(2, 2.9e9);
}

TEST_F(SableSynthesisTest, LeavesTheTableThatAThreadWasGivenUntilThatThreadAsksAgain)
{
    const auto mine = module->rfPowerRangeTable();
    const auto delivered = module->rfPowerDefaultRangeTable();
    const auto ifs = module->supportedIfs();
    module->setRfPowerRangePower(0, 10);
    std::thread{[this] {
        EXPECT_EQ(module->rfPowerRangeTable().front().power, 10);
        module->setRfPowerRangePower(0, 11);
    }}.join();
    EXPECT_EQ(copyOf(mine), deliveredTable);
    EXPECT_EQ(module->rfPowerRangeTable().front().power, 11);
    EXPECT_EQ(module->rfPowerDefaultRangeTable().data(), delivered.data());
    EXPECT_EQ(module->supportedIfs().data(), ifs.data());
}

TEST_F(SableSynthesisTest, LetsEveryThreadWalkItsTableWhileAnotherSetsRows)
{
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 3; ++thread) {
        threads.emplace_back([this] {
            for (int round = 0; round < 300; ++round) {
                for (const auto& row : module->rfPowerRangeTable())
                    EXPECT_GE(row.power, 4);
            }
        });
    }
    for (int round = 0; round < 300; ++round)
        module->setRfPowerRangePower(round % 6, static_cast<std::uint8_t>(4 + round % 50));
}

TEST_F(SableSynthesisTest, HasACapacitanceAsTheModeOfTheCapacitorSays)
{
    using enum CapacitorMode;
    for (const auto capacitor : {Capacitor::First, Capacitor::Second}) {
        EXPECT_EQ(module->capacitanceMode(capacitor), Automatic);
        EXPECT_EQ(module->capacitance(capacitor), 8e-12);
        module->setCapacitance(capacitor, 12e-12);
        EXPECT_EQ(module->capacitance(capacitor), 12e-12);
        module->setCapacitanceMode(capacitor, Minimum);
        EXPECT_EQ(module->capacitance(capacitor), 1e-12);
        module->setCapacitanceMode(capacitor, Maximum);
        EXPECT_EQ(module->capacitance(capacitor), 20e-12);
        module->setCapacitanceMode(capacitor, Range);
        EXPECT_EQ(module->capacitanceMode(capacitor), Range);
        EXPECT_EQ(module->capacitance(capacitor), 12e-12) << "without a range it is the whole one";
        module->setCapacitanceRange(capacitor, 3e-12, 5e-12);
        EXPECT_EQ(module->capacitance(capacitor), 5e-12);
        module->setCapacitanceRange(capacitor, 15e-12, 16e-12);
        EXPECT_EQ(module->capacitance(capacitor), 15e-12);
        module->setCapacitanceMode(capacitor, Automatic);
        EXPECT_EQ(module->capacitance(capacitor), 12e-12);
    }
}

TEST_F(SableSynthesisTest, SetsOneCapacitorAtATime)
{
    const auto before = settingsOf(*module);
    module->setCapacitanceRange(Capacitor::Second, 1e-12, 1e-12);
    EXPECT_EQ(module->capacitanceRange(Capacitor::First), std::nullopt);
    EXPECT_EQ(module->capacitanceRange(Capacitor::Second), std::pair(1e-12, 1e-12));
    module->setCapacitanceMode(Capacitor::First, CapacitorMode::Maximum);
    EXPECT_EQ(module->capacitanceMode(Capacitor::Second), CapacitorMode::Automatic);
    EXPECT_EQ(test::differences(settingsOf(*module), before), 3) << "a range, a mode and with it a capacitance";
}

TEST_F(SableSynthesisTest, RefusesWhatACapacitorCannotBe)
{
    const auto before = settingsOf(*module);
    for (const auto capacitor : {static_cast<Capacitor>(-1), static_cast<Capacitor>(2)}) {
        EXPECT_THROW(module->setCapacitance(capacitor, 8e-12), std::out_of_range);
        EXPECT_THROW(static_cast<void>(module->capacitance(capacitor)), std::out_of_range);
        EXPECT_THROW(module->setCapacitanceMode(capacitor, CapacitorMode::Minimum), std::out_of_range);
        EXPECT_THROW(static_cast<void>(module->capacitanceMode(capacitor)), std::out_of_range);
        EXPECT_THROW(module->setCapacitanceRange(capacitor, 2e-12, 3e-12), std::out_of_range);
        EXPECT_THROW(static_cast<void>(module->capacitanceRange(capacitor)), std::out_of_range);
    }
    for (const auto mode : {-1, 4})
        EXPECT_THROW(module->setCapacitanceMode(Capacitor::First, static_cast<CapacitorMode>(mode)), std::out_of_range);
    for (const double capacitance : test::besides(1e-12, 20e-12)) {
        EXPECT_THROW(module->setCapacitance(Capacitor::First, capacitance), std::out_of_range);
        EXPECT_THROW(module->setCapacitanceRange(Capacitor::First, capacitance, 20e-12), std::out_of_range);
        EXPECT_THROW(module->setCapacitanceRange(Capacitor::First, 1e-12, capacitance), std::out_of_range);
    }
    EXPECT_EQ(refusal<std::invalid_argument>([&] { module->setCapacitanceRange(Capacitor::First, 3e-12, 2e-12); }),
              "the lower bound of the capacitance is above the upper one");
    EXPECT_EQ(settingsOf(*module), before);
    module->setCapacitanceRange(Capacitor::First, 1e-12, 20e-12);
}

TEST_F(SableSynthesisTest, HasNoSelectedFilterUntilOneIsSelectedAndNoneWhenBypassed)
{
    EXPECT_EQ(module->selectedRfFilter(), std::nullopt);
    for (const auto filter : {Filter::First, Filter::Fourth}) {
        module->setSelectedRfFilter(filter);
        EXPECT_EQ(module->selectedRfFilter(), filter);
    }
    for (const auto filter : {static_cast<Filter>(-1), static_cast<Filter>(4)})
        EXPECT_THROW(module->setSelectedRfFilter(filter), std::out_of_range);
    module->setRfFilterMode(FilterMode::Manual);
    module->setRfFilterMode(FilterMode::Automatic);
    EXPECT_EQ(module->selectedRfFilter(), Filter::Fourth);
    module->setRfFilterMode(FilterMode::Bypass);
    EXPECT_EQ(module->selectedRfFilter(), std::nullopt);
    module->setSelectedRfFilter(Filter::Second);
    EXPECT_EQ(module->rfFilterMode(), FilterMode::Bypass);
    EXPECT_EQ(module->selectedRfFilter(), Filter::Second) << "for the time after the bypass";
}

TEST_F(SableSynthesisTest, HasFiltersWithoutAFrequencyUntilItIsSet)
{
    for (const int i : {0, 1, 2, 3}) {
        const auto filter = static_cast<Filter>(i);
        const auto before = settingsOf(*module);
        EXPECT_EQ(module->rfFilterFrom(filter), std::nullopt);
        module->setRfFilterFrom(filter, 1e9 + i);
        EXPECT_EQ(module->rfFilterFrom(filter), 1e9 + i);
        EXPECT_EQ(test::differences(settingsOf(*module), before), 1);
    }
    for (const double frequency : {100e3, 9e9})
        module->setRfFilterFrom(Filter::First, frequency);
    for (const double frequency : test::besides(100e3, 9e9))
        EXPECT_THROW(module->setRfFilterFrom(Filter::First, frequency), std::out_of_range);
    EXPECT_EQ(module->rfFilterFrom(Filter::First), 9e9);
    for (const auto filter : {static_cast<Filter>(-1), static_cast<Filter>(4)}) {
        EXPECT_THROW(module->setRfFilterFrom(filter, 1e9), std::out_of_range);
        EXPECT_THROW(static_cast<void>(module->rfFilterFrom(filter)), std::out_of_range);
    }
}

} // namespace
} // namespace tarn::simulator
