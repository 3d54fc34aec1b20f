#include <console/controltable.h>

#include <console/commandtable.h>
#include <devices/controlregistry.h>
#include <devices/service/servicecontrols.h>
#include <support/fakevna.h>

#include <gmock/gmock.h>

#include <set>

namespace tarn::console {

TEST(ControlTable, HasARowForEveryEntryOfTheRegistryInItsOrder)
{
    devices::ControlRegistry registry;
    devices::service::servicecontrols::registrate(&registry);
    std::vector<std::uint64_t> entries;
    for (const auto& entry : registry.entries())
        entries.push_back(entry.key);
    std::vector<std::uint64_t> rows;
    for (const auto& row : controlRows())
        rows.push_back(row.registryKey);
    EXPECT_EQ(rows, entries);
}

TEST(ControlTable, KnowsTheKeyUnderWhichEachEntryAsksTheDevice)
{
    devices::ControlRegistry registry;
    devices::service::servicecontrols::registrate(&registry);
    tests::FakeVna device;
    for (const auto& row : controlRows()) {
        EXPECT_FALSE(registry.find(row.registryKey)->create(static_cast<sdk::IVna*>(&device)).has_value());
        EXPECT_EQ(device.asked(row.sdkKey), 1) << row.name;
    }
}

TEST(ControlTable, NamesEveryControlOnceWithHyphens)
{
    std::set<std::string_view> names;
    for (const auto& row : controlRows()) {
        EXPECT_THAT(std::string{row.name}, testing::MatchesRegex("[a-z]+(-[a-z]+|-[0-9])*"));
        EXPECT_FALSE(row.purpose.empty());
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        EXPECT_EQ(controlName(row.registryKey), row.name);
    }
}

TEST(ControlTable, ShowsTheKeyOfAControlThatItDoesNotKnow)
{
    EXPECT_EQ(controlName(0x1234), "0x0000000000001234");
}

} // namespace tarn::console
