#include <simulator/manualinstrument.h>

#include <simulator/error.h>
#include <support/success.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace tarn::simulator {
namespace {

using test::ManualInstrument;

using tests::success;
constexpr unsigned long sourceOffset = 2; // -128 to 127

class PotentiometersTest : public testing::TestWithParam<CompletionMode> {
protected:
    static Settings settings()
    {
        Settings settings;
        settings.completion = GetParam();
        return settings;
    }

    [[nodiscard]] PotentiometerModel::Value value(unsigned long index) const
    {
        return instrument.vna->potentiometers().at(index);
    }

    ManualInstrument instrument{settings()};
    std::shared_ptr<test::Potentiometers> all = instrument.control<test::Potentiometers>();
};

INSTANTIATE_TEST_SUITE_P(Modes, PotentiometersTest, testing::Values(CompletionMode::Thread, CompletionMode::Inline));

TEST_P(PotentiometersTest, HaveNamesOfTheirOwnAndRangesThatHoldTheirValues)
{
    EXPECT_TRUE(all->isAvailable());
    const auto list = all->potentiometers();
    const auto values = instrument.vna->potentiometers();
    ASSERT_GE(list.size(), 6U);
    ASSERT_EQ(values.size(), list.size());
    std::set<std::string> names;
    for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_FALSE(list[i].name.empty());
        EXPECT_TRUE(names.insert(list[i].name).second) << list[i].name;
        EXPECT_GE(values[i].eeprom, list[i].minimum);
        EXPECT_LE(values[i].eeprom, list[i].maximum);
        EXPECT_EQ(values[i].ram, values[i].eeprom);
        EXPECT_EQ(values[i].eepromWrites, 0U);
        EXPECT_EQ(test::readEeprom(*all, i), std::pair(values[i].eeprom, success));
    }
    EXPECT_EQ(all->potentiometers(), list);
}

TEST_P(PotentiometersTest, KeepRamAndEepromApart)
{
    ASSERT_EQ(test::writeRam(*all, sourceOffset, -100), success);
    EXPECT_EQ(value(sourceOffset), (PotentiometerModel::Value{.ram = -100, .eeprom = 0, .eepromWrites = 0}));
    EXPECT_EQ(test::readEeprom(*all, sourceOffset).first, 0);
    ASSERT_EQ(test::writeEeprom(*all, sourceOffset, 55), success);
    EXPECT_EQ(value(sourceOffset), (PotentiometerModel::Value{.ram = -100, .eeprom = 55, .eepromWrites = 1}));
    EXPECT_EQ(test::readEeprom(*all, sourceOffset).first, 55);
    EXPECT_EQ(value(0).eepromWrites, 0U);
}

TEST_P(PotentiometersTest, CountEveryWriteOfTheEeprom)
{
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(test::writeEeprom(*all, 0, 9), success);
    EXPECT_EQ(value(0).eepromWrites, 3U);
}

TEST_P(PotentiometersTest, TakeExactlyTheValuesOfTheirRange)
{
    const auto list = all->potentiometers();
    for (unsigned long i = 0; i < list.size(); ++i) {
        for (const auto inside : {list[i].minimum, list[i].maximum}) {
            EXPECT_EQ(test::writeRam(*all, i, inside), success);
            EXPECT_EQ(test::writeEeprom(*all, i, inside), success);
        }
        const auto before = value(i);
        for (const auto outside : {list[i].minimum - 1, list[i].maximum + 1}) {
            EXPECT_EQ(test::writeRam(*all, i, outside), Error::OutOfRange);
            EXPECT_EQ(test::writeEeprom(*all, i, outside), Error::OutOfRange);
        }
        EXPECT_EQ(value(i), before);
    }
    EXPECT_FALSE(make_error_code(Error::OutOfRange).message().empty());
}

TEST_P(PotentiometersTest, RefuseAnIndexThatIsNotInTheList)
{
    const auto before = instrument.vna->potentiometers();
    for (const auto index : {before.size(), ~std::size_t{0}}) {
        EXPECT_EQ(test::readEeprom(*all, index).second, Error::BadIndex);
        EXPECT_EQ(test::writeRam(*all, index, 0), Error::BadIndex);
        EXPECT_EQ(test::writeEeprom(*all, index, 0), Error::BadIndex);
    }
    EXPECT_EQ(instrument.vna->potentiometers(), before);
}

TEST_P(PotentiometersTest, KeepTheirRamWhenTheControlsAreDropped)
{
    ASSERT_EQ(test::writeRam(*all, 0, 1), success);
    instrument.vna->drop();
    instrument.vna->offer();
    EXPECT_EQ(value(0).ram, 1);
}

TEST_P(PotentiometersTest, StayAsTheyWereWhenAWriteFails)
{
    FaultPlan plan;
    plan.failEvery = 1;
    instrument.vna->faults().setPlan(plan);
    const auto before = instrument.vna->potentiometers();
    EXPECT_EQ(test::writeRam(*all, 0, 1), Error::Io);
    EXPECT_EQ(test::writeEeprom(*all, 0, 1), Error::Io);
    EXPECT_EQ(test::readEeprom(*all, 0).second, Error::Io);
    EXPECT_EQ(instrument.vna->potentiometers(), before);
}

} // namespace
} // namespace tarn::simulator
