#include "sabletuning.h"

#include <support/adaptertest.h>

#include <stdexcept>
#include <tuple>

using testing::ElementsAre;

namespace tarn::tests::sdksablesynthesiscontrol {
namespace {

using Adapter = SableSynthesis::Adapter;
using Sdk = SableSynthesis::Sdk;
using Row = Adapter::RfPowerRange;
using SableSynthesisControl = AdapterTest<Sdk, Adapter, SableSynthesis::Mock>;

TEST_F(SableSynthesisControl, KnowsTheRfPowerModesOneAndTwoAndZeroWhenUnavailable)
{
    control.setRfPowerMode(Adapter::RfPowerMode{0});
    EXPECT_THAT(mock->takeCalls(), ElementsAre("setRfPowerMode(1)"));
    mock->answer = Sdk::RfPowerMode{2};
    EXPECT_EQ(control.rfPowerMode(), Adapter::RfPowerMode{2});
    mock->answer = Sdk::RfPowerMode{5};
    EXPECT_EQ(control.rfPowerMode(), Adapter::RfPowerMode{1});
    device.drop(Sdk::key);
    mock.reset();
    EXPECT_EQ(control.rfPowerMode(), Adapter::RfPowerMode{0});
}

TEST_F(SableSynthesisControl, SendsTheLastCapacitorAndModeForThoseBeyond)
{
    control.setCapacitanceMode(Adapter::Capacitor{7}, Adapter::CapacitorMode{9});
    EXPECT_THAT(mock->takeCalls(), ElementsAre("setCapacitanceMode(1, 3)"));
}

TEST_F(SableSynthesisControl, SendsTheLastFilterModeForThoseBeyond)
{
    control.setRfFilterMode(Adapter::FilterMode{5});
    EXPECT_THAT(mock->takeCalls(), ElementsAre("setRfFilterMode(2)"));
    mock->answer = Sdk::FilterMode{0};
    EXPECT_EQ(control.rfFilterMode(), Adapter::FilterMode{0});
}

TEST_F(SableSynthesisControl, CopiesTheRangeTablesRowByRow)
{
    std::vector<sdk::sable::PowerSynt> rows{{3e9, 255}, {1e9, 0}, {2e9, 7}};
    mock->answer = Sdk::Rows{rows};
    const auto table = control.rfPowerRangeTable();
    const auto defaults = control.rfPowerDefaultRangeTable();
    rows.assign(3, {0.0, 0}); // the copies do not refer to it
    EXPECT_THAT(table, ElementsAre(Row{3e9, 255}, Row{1e9, 0}, Row{2e9, 7}));
    EXPECT_EQ(table, defaults);
    EXPECT_EQ(table.capacity(), 3U);
}

TEST_F(SableSynthesisControl, RefusesATableOfMoreRowsThanAVectorHolds)
{
    const sdk::sable::PowerSynt row{};
    mock->answer = Sdk::Rows{&row, std::vector<Row>{}.max_size() + 1};
    try {
        std::ignore = control.rfPowerRangeTable();
        FAIL() << "it must not be read";
    } catch (const std::length_error& error) {
        EXPECT_STREQ(error.what(), "vector::reserve");
    }
}

TEST_F(SableSynthesisControl, HasNoSelectedRfFilterIfTheSdkHasNone)
{
    mock->answer = std::optional<Sdk::RfFilter>{};
    EXPECT_EQ(control.selectedRfFilter(), std::nullopt);
    mock->answer = std::optional{Sdk::RfFilter{0}};
    EXPECT_EQ(control.selectedRfFilter(), Adapter::RfFilter{0});
}

TEST(SableSynthesisRecords, HaveTheFrequencyFirst)
{
    const auto [sdkFrequency, sdkPower] = sdk::sable::PowerSynt{1.5, 2};
    const auto [frequency, power] = Row{1.5, 2};
    const auto [lower, upper] = utils::Range<double>{1.5, 2.5};
    EXPECT_EQ(std::tuple(sdkFrequency, sdkPower), std::tuple(1.5, 2));
    EXPECT_EQ(std::tuple(frequency, power), std::tuple(1.5, 2));
    EXPECT_EQ(std::tuple(lower, upper), std::tuple(1.5, 2.5));
    static_assert(std::is_same_v<decltype(sdkPower), const std::uint8_t>);
    static_assert(std::is_same_v<decltype(power), const std::uint8_t>);
}

TEST(SableSynthesisInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    expectSlots(&Sdk::loPower, &Sdk::rfPower, &Sdk::setLoPower, &Sdk::setRfPower, &Sdk::rfPowerMode,
                &Sdk::setRfPowerMode, &Sdk::rfPowerRangeTable, &Sdk::rfPowerDefaultRangeTable,
                &Sdk::setRfPowerRangeFrequency, &Sdk::setRfPowerRangePower, &Sdk::ifMode, &Sdk::setIfMode,
                &Sdk::setSelectedIf, &Sdk::selectedIf, &Sdk::supportedIfs, &Sdk::setCapacitance, &Sdk::capacitance,
                &Sdk::setCapacitanceMode, &Sdk::setCapacitanceRange, &Sdk::capacitanceMode, &Sdk::capacitanceRange,
                &Sdk::setRfFilterMode, &Sdk::setRfFilterFrom, &Sdk::setSelectedRfFilter, &Sdk::rfFilterMode,
                &Sdk::selectedRfFilter, &Sdk::rfFilterFrom, &Sdk::setDdsSwitchFreq, &Sdk::ddsSwitchFreq,
                &Sdk::delayMode, &Sdk::setDelayMode, &Sdk::measureDelay, &Sdk::setMeasureDelay);
}

} // namespace
} // namespace tarn::tests::sdksablesynthesiscontrol
